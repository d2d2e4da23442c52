#include "host/FileFormatsZip/internal/write/Extraction.h"

#include <QLocale>

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <future>
#include <sys/stat.h>
#include <system_error>
#include <thread>
#include <utility>

#include "host/FileFormatsZip/internal/Failure.h"
#include "host/FileFormatsZip/internal/plan/LinkRules.h"
#include "host/FileFormatsZip/internal/read/Archive.h"
#include "host/FileFormatsZip/internal/read/ContentReader.h"
#include "host/FileFormatsZip/internal/read/EntryName.h"
#include "host/FileFormatsZip/internal/write/FileWriter.h"
#include "host/FileFormatsZip/internal/write/FolderCursor.h"

namespace vx {

namespace {

// What a file system needs on top of the contents of one entry, generously.
constexpr qint64 overheadPerEntry = 4096;

// Deflate makes at most 1032 bytes of one. Only an archive whose entries share their data, which
// no honest one does, exceeds it as a whole.
constexpr qint64 mostExpansion = 1032;

constexpr unsigned modeOfUnlisted = 0755;

// Creating a file keeps the system busier than this process, so that two threads are faster, and
// few files are written before a second one is ready. More than two would only wait for the disk.
constexpr size_t filesWorthHelp = 64;
constexpr size_t filesPerShare = 16;

QString readable(qint64 bytes)
{
    return QLocale::c().formattedDataSize(bytes, 1, QLocale::DataSizeSIFormat);
}

} // namespace

Extraction::Extraction(std::shared_ptr<const Archive> archive, ExtractionPlan plan,
                       const QString& targetFolder, std::shared_ptr<ExtractionState> state)
    : m_archive(std::move(archive))
    , m_plan(std::move(plan))
    , m_target(targetFolder)
    , m_state(std::move(state))
{
    m_state->totalBytes = m_plan.totalSize();
}

bool Extraction::run()
{
    try {
        return unpack();
    } catch (...) {
        removeMade();
        throw;
    }
}

bool Extraction::unpack()
{
    requireLinksInside(m_plan, m_target, m_state->canceled);
    if (m_state->canceled) {
        return false;
    }
    requireSpace();
    makeFolders();
    writeFiles();
    // Links come after all files, so that no file can be written through one.
    makeLinks();
    setFolderAttributes();
    return !m_state->canceled;
}

void Extraction::removeMade()
{
    reopenFolders();
    removeMadeOf(m_plan.links);
    removeMadeOf(m_plan.files);
    FolderCursor cursor(m_target, m_plan);
    for (size_t i = m_plan.folders.size(); i-- > 1;) {
        const PlannedFolder& folder = m_plan.folders[i];
        if (folder.isMade) {
            ::unlinkat(cursor.open(folder.parent).get(), folder.name.constData(), AT_REMOVEDIR);
        }
    }
    m_target.removeIfMade();
}

/** Gives the owner back the folders that have their final mode, for it may keep even him out. */
void Extraction::reopenFolders()
{
    FolderCursor cursor(m_target, m_plan);
    for (const PlannedFolder& folder : m_plan.folders) {
        if (folder.isShut) {
            ::fchmodat(cursor.open(folder.parent).get(), folder.name.constData(), S_IRWXU,
                       AT_SYMLINK_NOFOLLOW);
        }
    }
}

/** Removes those of @p items, which are files or links, that were made. */
void Extraction::removeMadeOf(const std::vector<PlannedItem>& items)
{
    FolderCursor cursor(m_target, m_plan);
    for (const PlannedItem& item : items) {
        if (item.isMade) {
            ::unlinkat(cursor.open(item.folder).get(), item.name.constData(), 0);
        }
    }
}

void Extraction::requireSpace() const
{
    if (m_plan.totalSize() / mostExpansion > m_archive->file().size()) {
        fail(QStringLiteral("The archive is refused: it declares %1, more than its %2 can hold.")
                 .arg(readable(m_plan.totalSize()), readable(m_archive->file().size())));
    }
    const auto entries =
        static_cast<qint64>(m_plan.files.size()) + static_cast<qint64>(m_plan.folders.size());
    const qint64 needed = m_plan.totalSize() + entries * overheadPerEntry;
    const qint64 available = m_target.freeBytes();
    if (needed > available) {
        fail(QStringLiteral("There is not enough space on the disk: %1 are needed, %2 are free.")
                 .arg(readable(needed), readable(available)));
    }
}

void Extraction::makeFolders()
{
    FolderCursor cursor(m_target, m_plan);
    for (size_t i = 1; i < m_plan.folders.size() && !m_state->canceled; ++i) {
        makeFolder(static_cast<int>(i), cursor);
    }
}

void Extraction::makeFolder(int index, FolderCursor& cursor)
{
    PlannedFolder& folder = m_plan.folders[static_cast<size_t>(index)];
    const FileDescriptor& parent = cursor.require(folder.parent);
    // For the owner alone until everything is in it, and writable even if its mode will not be.
    folder.isMade = ::mkdirat(parent.get(), folder.name.constData(), S_IRWXU) == 0;
    if (folder.isMade) {
        return;
    }
    if (errno != EEXIST) {
        failWithErrno(QStringLiteral("create the folder %1")
                          .arg(quoted(QString::fromUtf8(m_plan.pathOf(index)))),
                      errno);
    }
    // What is there must be a folder.
    cursor.require(index);
}

void Extraction::writeFiles()
{
    std::future<void> helper;
    if (m_plan.files.size() >= filesWorthHelp && std::thread::hardware_concurrency() > 1) {
        try {
            helper = std::async(std::launch::async, [this] { writeShares(); });
        } catch (const std::system_error&) {
            // The system gives no more threads: the one that is there does the work.
        }
    }
    writeShares();
    if (helper.valid()) {
        helper.get();
    }
}

/** Takes and writes shares of the files until none is left. Several threads may do so at once. */
void Extraction::writeShares()
{
    try {
        ContentReader reader(*m_archive);
        FolderCursor cursor(m_target, m_plan);
        for (size_t next = m_nextFile += filesPerShare; next - filesPerShare < m_plan.files.size();
             next = m_nextFile += filesPerShare) {
            for (size_t i = next - filesPerShare; i < std::min(next, m_plan.files.size()); ++i) {
                if (isStopped()) {
                    return;
                }
                writeFile(m_plan.files[i], reader, cursor);
            }
        }
    } catch (...) {
        m_hasFailed = true;
        throw;
    }
}

bool Extraction::isStopped() const
{
    return m_hasFailed || m_state->canceled;
}

void Extraction::writeFile(PlannedItem& file, ContentReader& reader, FolderCursor& cursor)
{
    reader.begin(file.entry->content, file.entry->name);
    FileWriter writer(cursor.require(file.folder), file);
    for (ByteView piece = reader.next(); !piece.empty(); piece = reader.next()) {
        if (isStopped()) {
            return;
        }
        writer.write(piece);
        m_state->doneBytes += static_cast<qint64>(piece.size());
    }
    writer.finish();
}

void Extraction::makeLinks()
{
    FolderCursor cursor(m_target, m_plan);
    for (PlannedItem& link : m_plan.links) {
        if (m_state->canceled) {
            return;
        }
        const FileDescriptor& folder = cursor.require(link.folder);
        const QByteArray target = link.entry->linkTarget.toUtf8();
        if (::symlinkat(target.constData(), folder.get(), link.name.constData()) != 0) {
            failWithErrno(
                QStringLiteral("create the link %1").arg(quoted(QString::fromUtf8(link.name))),
                errno);
        }
        link.isMade = true;
        const timespec times[] = {{0, UTIME_OMIT}, {link.entry->modified, 0}};
        ::utimensat(folder.get(), link.name.constData(), times, AT_SYMLINK_NOFOLLOW);
    }
}

void Extraction::setFolderAttributes()
{
    FolderCursor cursor(m_target, m_plan);
    // Children first: a folder's time changes with its content, and its mode may shut it.
    for (size_t i = m_plan.folders.size(); i-- > 1 && !m_state->canceled;) {
        PlannedFolder& folder = m_plan.folders[i];
        if (!folder.isMade) {
            continue;
        }
        const bool isListed = folder.entry != nullptr;
        const timespec modified = {isListed ? folder.entry->modified : 0, isListed ? 0 : UTIME_NOW};
        folder.isShut = true;
        setAttributes(cursor.require(static_cast<int>(i)),
                      isListed ? folder.entry->mode : modeOfUnlisted, modified, folder.name);
    }
}

} // namespace vx
