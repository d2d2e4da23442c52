#include "host/FileFormatsZip/FileWriters.h"

#include <algorithm>
#include <system_error>
#include <thread>
#include <vector>

#include "host/FileFormatsZip/ArchiveStream.h"
#include "host/FileFormatsZip/Extraction.h"
#include "host/FileFormatsZip/Failure.h"
#include "host/FileFormatsZip/FileWriter.h"
#include "host/FileFormatsZip/FolderCursor.h"
#include "host/FileFormatsZip/Utf8Locale.h"
#include "host/FileFormatsZip/WriteBehind.h"

namespace vx {

namespace {

// Creating a file takes about as long as inflating this many bytes.
constexpr qint64 costPerFile = 16LL * 1024;

// A share is large enough that taking it costs nothing, and small enough for an even end.
constexpr qint64 costPerShare = 4LL * 1024 * 1024;

// Below this much work for each, threads cost more than they save.
constexpr qint64 costPerThread = 4LL * 1024 * 1024;

// Below this size a thread that only writes costs more than it saves.
constexpr qint64 sizeWorthOverlap = 4LL * 1024 * 1024;

// More would only wait for the disk.
constexpr size_t mostThreads = 4;

} // namespace

FileWriters::FileWriters(const Archive& archive, ExtractionPlan& plan, const TargetFolder& target,
                         ExtractionState& state)
    : m_archive(archive)
    , m_plan(plan)
    , m_target(target)
    , m_state(state)
{}

void FileWriters::run()
{
    std::vector<std::thread> helpers;
    try {
        while (helpers.size() + 1 < threadCount()) {
            helpers.emplace_back(&FileWriters::work, this);
        }
    } catch (const std::system_error&) {
        // The system gives no more threads: those that are there do the work.
    }
    work();
    for (std::thread& helper : helpers) {
        helper.join();
    }
    if (m_failure) {
        std::rethrow_exception(m_failure);
    }
}

size_t FileWriters::threadCount() const
{
    const size_t files = m_plan.files.size();
    const qint64 cost = m_plan.totalSize() + static_cast<qint64>(files) * costPerFile;
    const auto worthwhile = static_cast<size_t>(1 + cost / costPerThread);
    const size_t available = std::max<size_t>(std::thread::hardware_concurrency(), 1);
    return std::min({worthwhile, available, mostThreads, files});
}

void FileWriters::work() noexcept
{
    try {
        const Utf8Locale locale;
        writeShares();
    } catch (...) {
        const std::lock_guard<std::mutex> lock(m_mutex);
        if (!m_failure) {
            m_failure = std::current_exception();
        }
        m_failed = true;
    }
}

void FileWriters::writeShares()
{
    FolderCursor folders(m_target, m_plan);
    for (Share share = takeShare(); share.first != share.second; share = takeShare()) {
        writeShare(share, folders);
    }
}

void FileWriters::writeShare(const Share& share, FolderCursor& folders)
{
    std::vector<RecordRange> records;
    for (size_t i = share.first; i < share.second; ++i) {
        records.push_back(m_plan.files[i].record);
    }
    const ArchiveView view = m_archive.view(records);
    ArchiveStream stream(view, ArchiveStream::Reading::Contents, m_state.canceled);
    for (size_t i = share.first; i < share.second && !isStopped(); ++i) {
        const bool isThere = stream.next();
        if (m_state.canceled) {
            return;
        }
        if (!isThere) {
            failAsDamaged(QStringLiteral("it has changed while it was read"));
        }
        writeFile(stream, folders, m_plan.files[i]);
    }
}

FileWriters::Share FileWriters::takeShare()
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    const size_t first = m_next;
    if (isStopped()) {
        return {first, first};
    }
    qint64 cost = 0;
    while (m_next < m_plan.files.size() && cost < costPerShare) {
        cost += m_plan.files[m_next].size + costPerFile;
        ++m_next;
    }
    return {first, m_next};
}

void FileWriters::writeFile(ArchiveStream& stream, FolderCursor& folders, PlannedFile& file)
{
    FileWriter writer(folders.require(file.folder), file);
    if (file.size >= sizeWorthOverlap) {
        WriteBehind behind(writer);
        if (!copyContent(stream, behind)) {
            return;
        }
        behind.finish();
    } else if (!copyContent(stream, writer)) {
        return;
    }
    writer.finish();
}

/** Gives false if the job was stopped on the way. */
template <typename Sink>
bool FileWriters::copyContent(ArchiveStream& stream, Sink& sink)
{
    const char* data = nullptr;
    size_t size = 0;
    while (stream.readBlock(&data, &size)) {
        if (isStopped()) {
            return false;
        }
        sink.write(data, size);
        m_state.doneBytes += static_cast<qint64>(size);
    }
    return !m_state.canceled;
}

bool FileWriters::isStopped() const
{
    return m_failed || m_state.canceled;
}

} // namespace vx
