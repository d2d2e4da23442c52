#include "host/FileFormatsZip/internal/write/Extraction.h"

#include <QFile>
#include <QLocale>

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <future>
#include <limits>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <thread>
#include <utility>

#include "host/FileFormatsZip/internal/Failure.h"
#include "host/FileFormatsZip/internal/read/ContentReader.h"

namespace vx {

namespace {

// What a file system needs on top of the contents of one entry, generously.
constexpr qint64 overheadPerEntry = 4096;

// Deflate makes at most 1032 bytes of one. Only an archive whose entries share their data, which
// no honest one does, exceeds it as a whole.
constexpr qint64 mostExpansion = 1032;

// Creating a file keeps the system busier than this process, so that two threads are faster, and
// few files are written before a second one is ready. More than two would only wait for the disk.
constexpr size_t itemsWorthHelp = 64;
constexpr size_t itemsPerShare = 16;
constexpr qint64 sizeWorthHelp = 4LL * 1024 * 1024;
// Bytes that are written at once, or left out as a hole.
constexpr size_t blockSize = 128 * size_t(1024);

// The application needs descriptors too, and has often no more than a thousand.
constexpr size_t mostOpen = 16;
constexpr int folderFlags = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;

/** How to start a piece of work. If the system gives no thread, whoever waits for it does it. */
std::launch wayFor(bool isWorthThread)
{
    return isWorthThread ? std::launch::async | std::launch::deferred : std::launch::deferred;
}

QString readable(qint64 bytes)
{
    return QLocale::c().formattedDataSize(bytes, 1, QLocale::DataSizeSIFormat);
}

/** Fails, unless @p isDone, by the last error of the system. */
void require(bool isDone, const char* action, const QByteArray& name)
{
    if (!isDone) {
        const int code = errno;
        const QString what = quoted(QString::fromUtf8(name));
        failWithErrno(QStringLiteral("%1 %2").arg(QLatin1String(action), what), code);
    }
}

/** Bytes that an ordinary user may still write; the largest number if that is unknown. */
qint64 freeBytes(int folder)
{
    struct statvfs status = {};
    qint64 bytes = 0;
    const bool isKnown = ::fstatvfs(folder, &status) == 0 &&
                         !__builtin_mul_overflow(status.f_bavail, status.f_frsize, &bytes);
    return isKnown ? bytes : std::numeric_limits<qint64>::max();
}

bool isAllZero(ByteView piece)
{
    return piece.front() == 0 && piece.substr(1) == piece.substr(0, piece.size() - 1);
}

/** A block of nothing but zeros becomes a hole, which saves the disk much of an image. */
bool writeAll(int file, ByteView piece, bool& endsInHole)
{
    while (!piece.empty()) {
        const ByteView block = piece.substr(0, blockSize);
        endsInHole = isAllZero(block);
        const auto size = static_cast<off_t>(block.size());
        const ssize_t count = !endsInHole ? ::write(file, block.data(), block.size())
                              : ::lseek(file, size, SEEK_CUR) < 0 ? -1
                                                                  : size;
        if (count < 0 && errno != EINTR) {
            return false;
        }
        piece.remove_prefix(count > 0 ? static_cast<size_t>(count) : 0);
    }
    return true;
}

/** A file system that keeps no times is put up with. */
void setAttributes(int descriptor, unsigned mode, const timespec& modified, const QByteArray& name)
{
    require(::fchmod(descriptor, mode & 0777U) == 0, "set the mode of", name);
    const timespec times[] = {{0, UTIME_OMIT}, modified};
    ::futimens(descriptor, times);
}

} // namespace

/**
 * Opens planned folders one after the other. It walks part by part and never follows a symbolic
 * link, so that nothing outside the target can be reached whatever that holds or comes to hold. The
 * last folder and those above it stay open, for the next one is mostly near. Belongs to one thread.
 */
struct FolderCursor
{
    const FileDescriptor& target;
    const ExtractionPlan& plan;
    /** What is open, each within the one before it. The outermost may have been closed again. */
    std::vector<std::pair<int, FileDescriptor>> levels = {};

    /** The planned folder @p index until the next call; -1 if it can't be opened, see errno. */
    int open(int index)
    {
        // A folder has a lower index than what is in it.
        while (!levels.empty() && levels.back().first > index) {
            levels.pop_back();
        }
        if (index == 0) {
            return target.get();
        }
        if (levels.empty() || levels.back().first != index) {
            const int parent = open(plan.item(index).parent);
            const char* const name = plan.item(index).name.constData();
            FileDescriptor folder(parent < 0 ? -1 : ::openat(parent, name, folderFlags));
            if (!folder.isValid()) {
                return -1;
            }
            if (levels.size() == mostOpen) {
                levels.erase(levels.begin());
            }
            levels.emplace_back(index, std::move(folder));
        }
        return levels.back().second.get();
    }

    /** The same, but throws IOException if it can't be opened. */
    int require(int index)
    {
        const int folder = open(index);
        if (folder < 0) {
            vx::require(false, "open the folder", plan.pathOf(index));
        }
        return folder;
    }
};

Extraction::Extraction(ExtractionOrder order, std::shared_ptr<ExtractionState> state)
    : m_order(std::move(order))
    , m_state(std::move(state))
{}

void Extraction::run()
{
    try {
        if (!m_order.archive) {
            m_order.archive =
                std::make_shared<const Archive>(m_order.archivePath, m_state->canceled);
        }
        select();
        m_plan.add(m_selection, m_order.flat, m_state->canceled);
        openTarget();
        m_state->totalBytes = m_plan.totalSize();
        requireLinksInside(m_plan, m_target, m_state->canceled);
        requireSpace();
        makeFolders();
        writeFiles();
        // Links come after all files, so that no file can be written through one.
        makeLinks();
        setFolderAttributes();
        requireNotCanceled(m_state->canceled);
    } catch (const Canceled&) {
        if (!m_order.keepsWhenCanceled) {
            removeMade();
            fail(QStringLiteral("Unpacking was cancelled."));
        }
    } catch (...) {
        removeMade();
        throw;
    }
}

void Extraction::select()
{
    // To grow a table of a million names takes longer than a cancel may.
    m_wanted.reserve(m_order.names ? m_order.names->size() : 0);
    for (int i = 0; m_order.names && i < m_order.names->size(); ++i) {
        requireNotCanceled(m_state->canceled);
        m_wanted.insert(m_order.names->at(i));
    }
    for (const ArchiveEntry& entry : m_order.archive->entries()) {
        requireNotCanceled(m_state->canceled);
        if (!m_order.names || m_wanted.remove(entry.name)) {
            m_selection.push_back(&entry);
        }
    }
    if (!m_wanted.isEmpty()) {
        fail(QStringLiteral("The archive does not contain %1.").arg(quoted(*m_wanted.begin())));
    }
}

void Extraction::openTarget()
{
    const QByteArray name = QFile::encodeName(m_order.targetFolder);
    const QByteArray shown = m_order.targetFolder.toUtf8();
    m_isTargetMade = ::mkdir(name.constData(), 0777) == 0;
    require(m_isTargetMade || errno == EEXIST, "create the folder", shown);
    m_target = FileDescriptor(::open(name.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    require(m_target.isValid(), "open the folder", shown);
}

void Extraction::requireSpace() const
{
    const qint64 packed = m_order.archive->file().size();
    if (m_plan.totalSize() / mostExpansion > packed) {
        fail(QStringLiteral("The archive is refused: it declares %1, more than its %2 can hold.")
                 .arg(readable(m_plan.totalSize()), readable(packed)));
    }
    const auto entries =
        std::count_if(m_plan.items.begin(), m_plan.items.end(),
                      [](const PlannedItem& item) { return item.kind != ArchiveEntry::Link; });
    const qint64 needed = m_plan.totalSize() + entries * overheadPerEntry;
    const qint64 available = freeBytes(m_target.get());
    if (needed > available) {
        fail(QStringLiteral("There is not enough space on the disk: %1 are needed, %2 are free.")
                 .arg(readable(needed), readable(available)));
    }
}

void Extraction::makeFolders()
{
    FolderCursor cursor = {m_target, m_plan};
    for (size_t i = 1; i < m_plan.items.size(); ++i) {
        requireNotCanceled(m_state->canceled);
        PlannedItem& item = m_plan.items[i];
        if (item.kind != ArchiveEntry::Folder) {
            continue;
        }
        // For the owner alone until everything is in it, and writable even if its mode will not be.
        const int parent = cursor.require(item.parent);
        item.isMade = ::mkdirat(parent, item.name.constData(), S_IRWXU) == 0;
        if (!item.isMade) {
            require(errno == EEXIST, "create the folder", m_plan.pathOf(static_cast<int>(i)));
            // What is there must be a folder.
            cursor.require(static_cast<int>(i));
        }
    }
}

void Extraction::writeFiles()
{
    const bool isWorthHelp =
        m_plan.items.size() >= itemsWorthHelp && std::thread::hardware_concurrency() > 1;
    auto helper = std::async(wayFor(isWorthHelp), [this] { writeShares(); });
    writeShares();
    helper.get();
}

/** Takes and writes shares of the files until none is left. Several threads may do so at once. */
void Extraction::writeShares()
{
    try {
        ContentReader reader(*m_order.archive);
        FolderCursor cursor = {m_target, m_plan};
        while (m_nextItem < m_plan.items.size() && !isStopped()) {
            const size_t begin = m_nextItem.fetch_add(itemsPerShare);
            const size_t end = std::min(begin + itemsPerShare, m_plan.items.size());
            for (size_t i = begin; i < end && !isStopped(); ++i) {
                if (m_plan.items[i].kind == ArchiveEntry::File) {
                    writeFile(m_plan.items[i], reader, cursor);
                }
            }
        }
    } catch (...) {
        m_hasFailed = true;
        throw;
    }
}

void Extraction::writeFile(PlannedItem& item, ContentReader& reader, FolderCursor& cursor)
{
    const ArchiveEntry& entry = *item.entry;
    reader.begin(entry);
    const FileDescriptor file(::openat(cursor.require(item.parent), item.name.constData(),
                                       O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600));
    require(file.isValid(), "create the file", item.name);
    item.isMade = true;
    bool endsInHole = false;
    const auto write = [&](ByteView piece) {
        require(writeAll(file.get(), piece, endsInHole), "write the file", item.name);
        m_state->doneBytes += static_cast<qint64>(piece.size());
    };
    // A piece of a large content is written while the next one is inflated.
    auto writing = std::async(std::launch::deferred, [] {});
    for (ByteView piece = reader.next(); !piece.empty(); piece = reader.next()) {
        writing.get();
        if (isStopped()) {
            return;
        }
        writing = std::async(wayFor(entry.size >= sizeWorthHelp), write, piece);
    }
    writing.get();
    require(!endsInHole || ::ftruncate(file.get(), entry.size) == 0, "write the file", item.name);
    setAttributes(file.get(), entry.mode, {entry.modified, 0}, item.name);
}

void Extraction::makeLinks()
{
    FolderCursor cursor = {m_target, m_plan};
    for (PlannedItem& item : m_plan.items) {
        requireNotCanceled(m_state->canceled);
        if (item.kind != ArchiveEntry::Link) {
            continue;
        }
        const int folder = cursor.require(item.parent);
        const QByteArray target = item.entry->linkTarget.toUtf8();
        require(::symlinkat(target.constData(), folder, item.name.constData()) == 0,
                "create the link", item.name);
        item.isMade = true;
        const timespec times[] = {{0, UTIME_OMIT}, {item.entry->modified, 0}};
        ::utimensat(folder, item.name.constData(), times, AT_SYMLINK_NOFOLLOW);
    }
}

void Extraction::setFolderAttributes()
{
    FolderCursor cursor = {m_target, m_plan};
    // Children first: a folder's time changes with its content, and its mode may shut it.
    for (size_t i = m_plan.items.size(); i-- > 1;) {
        requireNotCanceled(m_state->canceled);
        PlannedItem& item = m_plan.items[i];
        if (item.kind != ArchiveEntry::Folder || !item.isMade) {
            continue;
        }
        const bool isListed = item.entry != nullptr;
        const timespec modified = {isListed ? item.entry->modified : 0, isListed ? 0 : UTIME_NOW};
        setAttributes(cursor.require(static_cast<int>(i)), isListed ? item.entry->mode : 0755,
                      modified, item.name);
    }
}

void Extraction::removeMade()
{
    if (!m_target.isValid()) {
        return;
    }
    FolderCursor cursor = {m_target, m_plan};
    for (const PlannedItem& item : m_plan.items) {
        // Its final mode may keep even the owner of a folder out.
        if (item.isMade && item.kind == ArchiveEntry::Folder) {
            ::fchmodat(cursor.open(item.parent), item.name.constData(), S_IRWXU,
                       AT_SYMLINK_NOFOLLOW);
        }
    }
    for (size_t i = m_plan.items.size(); i-- > 1;) {
        const PlannedItem& item = m_plan.items[i];
        if (item.isMade) {
            ::unlinkat(cursor.open(item.parent), item.name.constData(),
                       item.kind == ArchiveEntry::Folder ? AT_REMOVEDIR : 0);
        }
    }
    if (m_isTargetMade) {
        // The path may mean another folder by now, if the application changed its own.
        const QString name =
            m_order.targetFolder.section(QLatin1Char('/'), -1, -1, QString::SectionSkipEmpty);
        ::unlinkat(m_target.get(), QFile::encodeName(QStringLiteral("../") + name).constData(),
                   AT_REMOVEDIR);
    }
}

} // namespace vx
