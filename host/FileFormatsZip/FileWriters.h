#pragma once

#include <atomic>
#include <cstddef>
#include <exception>
#include <mutex>
#include <utility>

namespace vx {

class Archive;
class ArchiveStream;
class ExtractionPlan;
class FolderCursor;
class TargetFolder;
struct ExtractionState;
struct PlannedFile;

/**
 * Writes the files of a plan with as many threads as pay. Whenever a thread has done with a share
 * of the files, it takes the next, so that all end at about the same time.
 */
class FileWriters
{
public:
    /** The references must outlive the object. The folders of @p plan must exist. */
    FileWriters(const Archive& archive, ExtractionPlan& plan, const TargetFolder& target,
                ExtractionState& state);

    /**
     * Returns when everything is written or the job was cancelled. Throws the first failure of any
     * of the threads. Files that were begun are marked as made.
     */
    void run();

private:
    /** Files from the first up to, but without, the last. */
    using Share = std::pair<size_t, size_t>;

    size_t threadCount() const;
    void work() noexcept;
    void writeShares();
    Share takeShare();
    void writeShare(const Share& share, FolderCursor& folders);
    void writeFile(ArchiveStream& stream, FolderCursor& folders, PlannedFile& file);
    template <typename Sink>
    bool copyContent(ArchiveStream& stream, Sink& sink);
    bool isStopped() const;

    const Archive& m_archive;
    ExtractionPlan& m_plan;
    const TargetFolder& m_target;
    ExtractionState& m_state;

    std::mutex m_mutex; ///< guards the two members that follow
    size_t m_next = 0;
    std::exception_ptr m_failure;
    std::atomic<bool> m_failed{false};
};

} // namespace vx
