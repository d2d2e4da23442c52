#pragma once

#include <QSet>
#include <QStringList>

#include <atomic>
#include <memory>
#include <optional>
#include <vector>

#include "host/FileFormatsZip/internal/plan/ExtractionPlan.h"

namespace vx {

class ContentReader;
struct FolderCursor;

/** What the thread that watches an extraction and the thread that does it share. */
struct ExtractionState
{
    std::atomic<bool> canceled{false}; ///< set by the watcher; the work then ends soon
    std::atomic<qint64> doneBytes{0};  ///< written so far
    std::atomic<qint64> totalBytes{0}; ///< to be written; 0 until that is known
};

/** What is to be unpacked, and where to. */
struct ExtractionOrder
{
    QString archivePath;
    std::shared_ptr<const Archive> archive; ///< the same, if it is open already
    std::optional<QStringList> names;       ///< of entries; unset means all
    QString targetFolder;                   ///< made if it does not exist
    bool flat = false;                      ///< explained in ExtractionPlan
    bool keepsWhenCanceled = false;         ///< what has been made by then
};

/**
 * Unpacks an archive, or some of its entries; both ZipReader and Unzipper work by it. What the
 * object holds is large if the entries are many, and takes a while to be destroyed.
 */
class Extraction
{
public:
    Extraction(ExtractionOrder order, std::shared_ptr<ExtractionState> state);

    /**
     * Does it. When it throws IOException, too because it is cancelled, what it made is removed.
     * It needs a thread of its own, with signals blocked: a file that exceeds a resource limit is
     * then an error and not the end of the process. For many files it takes a second one to help.
     */
    void run();

private:
    void select();
    void openTarget();
    void requireSpace() const;
    void makeFolders();
    void writeFiles();
    void writeShares();
    bool isStopped() const { return m_hasFailed || m_state->canceled; }
    void writeFile(PlannedItem& item, ContentReader& reader, FolderCursor& cursor);
    void makeLinks();
    void setFolderAttributes();
    void removeMade();

    ExtractionOrder m_order;
    const std::shared_ptr<ExtractionState> m_state;
    QSet<QString> m_wanted;
    std::vector<const ArchiveEntry*> m_selection;
    ExtractionPlan m_plan;
    FileDescriptor m_target;
    bool m_isTargetMade = false;
    std::atomic<size_t> m_nextItem{0};
    std::atomic<bool> m_hasFailed{false};
};

} // namespace vx
