#pragma once

#include <QString>

#include <atomic>
#include <memory>
#include <vector>

#include "host/FileFormatsZip/internal/plan/ExtractionPlan.h"
#include "host/FileFormatsZip/internal/write/TargetFolder.h"

namespace vx {

class Archive;
class ContentReader;
class FolderCursor;

/** What the thread that watches an extraction and the thread that does it share. */
struct ExtractionState
{
    std::atomic<bool> canceled{false}; ///< set by the watcher; the work then ends soon
    std::atomic<qint64> doneBytes{0};  ///< written so far
    std::atomic<qint64> totalBytes{0}; ///< to be written; 0 until that is known
};

/**
 * Unpacks what a plan says. Both ZipReader and Unzipper work by it.
 *
 * run() blocks, so that callers give it a thread of its own, with signals blocked: a file that
 * exceeds a resource limit is then an error and not the end of the process. It takes a second
 * thread to help where there are many files; that is gone when it returns.
 */
class Extraction
{
public:
    /**
     * Prepares to unpack @p plan from @p archive.
     *
     * @param targetFolder is made if it does not exist.
     */
    Extraction(std::shared_ptr<const Archive> archive, ExtractionPlan plan,
               const QString& targetFolder, std::shared_ptr<ExtractionState> state);

    /**
     * Unpacks everything. When it throws, what it made is removed again.
     *
     * @return true when all is done; false when the job was cancelled, in which case what was
     *         made is left.
     * @throws IOException
     */
    bool run();

    /** Removes what run() made. What was in the folder before stays. */
    void removeMade();

private:
    void removeMadeOf(const std::vector<PlannedItem>& items);
    void reopenFolders();
    bool unpack();
    void requireSpace() const;
    void makeFolders();
    void makeFolder(int index, FolderCursor& cursor);
    void writeFiles();
    void writeShares();
    bool isStopped() const;
    void writeFile(PlannedItem& file, ContentReader& reader, FolderCursor& cursor);
    void makeLinks();
    void setFolderAttributes();

    std::shared_ptr<const Archive> m_archive;
    ExtractionPlan m_plan;
    TargetFolder m_target;
    std::shared_ptr<ExtractionState> m_state;
    std::atomic<size_t> m_nextFile{0};
    std::atomic<bool> m_hasFailed{false};
};

} // namespace vx
