#pragma once

#include <QString>

#include <atomic>
#include <vector>

#include "host/FileFormatsZip/Archive.h"
#include "host/FileFormatsZip/ExtractionPlan.h"
#include "host/FileFormatsZip/TargetFolder.h"

namespace vx {

class FolderCursor;

/** What the thread that watches an extraction and the threads that do it share. */
struct ExtractionState
{
    std::atomic<bool> canceled{false}; ///< set by the watcher; the work then ends soon
    std::atomic<qint64> doneBytes{0};  ///< written so far
    std::atomic<qint64> totalBytes{0}; ///< to be written; 0 until that is known
};

/**
 * Unpacks what a plan says. Both ZipReader and Unzipper work by it.
 *
 * run() blocks, so that callers give it a thread of its own, with a Utf8Locale and with signals
 * blocked: a file that exceeds a resource limit is then an error and not the end of the process.
 * It takes more threads to help where there is enough to do; they are gone when it returns.
 */
class Extraction
{
public:
    /**
     * Prepares to unpack @p plan from @p archive. The references must outlive the object.
     *
     * @param targetFolder is made, when run() begins, if it does not exist.
     */
    Extraction(const Archive& archive, ExtractionPlan plan, const QString& targetFolder,
               ExtractionState& state);

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
    template <typename Item>
    void removeMadeOf(const std::vector<Item>& items);
    void reopenFolders();
    bool unpack();
    void requireSpace() const;
    void makeFolders();
    void makeFolder(int index, FolderCursor& cursor);
    void writeFiles();
    void makeLinks();
    void setFolderAttributes();

    const Archive& m_archive;
    ExtractionPlan m_plan;
    TargetFolder m_target;
    ExtractionState& m_state;
};

} // namespace vx
