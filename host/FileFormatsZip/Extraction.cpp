#include "host/FileFormatsZip/Extraction.h"

#include <QLocale>

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <utility>

#include "host/FileFormatsZip/EntryName.h"
#include "host/FileFormatsZip/Failure.h"
#include "host/FileFormatsZip/FileWriters.h"
#include "host/FileFormatsZip/FolderCursor.h"
#include "host/FileFormatsZip/LinkRules.h"

namespace vx {

namespace {

// What a file system needs on top of the contents of one entry, generously.
constexpr qint64 overheadPerEntry = 4096;

// Deflate makes at most 1032 bytes of one. Only an archive whose entries share their data, which
// no honest one does, exceeds it as a whole.
constexpr qint64 mostExpansion = 1032;

QString readable(qint64 bytes)
{
    return QLocale::c().formattedDataSize(bytes, 1, QLocale::DataSizeSIFormat);
}

} // namespace

Extraction::Extraction(const Archive& archive, ExtractionPlan plan, const QString& targetFolder,
                       ExtractionState& state)
    : m_archive(archive)
    , m_plan(std::move(plan))
    , m_target(targetFolder)
    , m_state(state)
{
    m_state.totalBytes = m_plan.totalSize();
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
    requireLinksInside(m_plan, m_target, m_state.canceled);
    if (m_state.canceled) {
        return false;
    }
    requireSpace();
    makeFolders();
    writeFiles();
    // Links come after all files, so that no file can be written through one.
    makeLinks();
    setFolderAttributes();
    return !m_state.canceled;
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
template <typename Item>
void Extraction::removeMadeOf(const std::vector<Item>& items)
{
    FolderCursor cursor(m_target, m_plan);
    for (const Item& item : items) {
        if (item.isMade) {
            ::unlinkat(cursor.open(item.folder).get(), item.name.constData(), 0);
        }
    }
}

void Extraction::requireSpace() const
{
    if (m_plan.totalSize() / mostExpansion > m_archive.size()) {
        fail(QStringLiteral("The archive is refused: it declares %1, more than its %2 can hold.")
                 .arg(readable(m_plan.totalSize()), readable(m_archive.size())));
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
    for (size_t i = 1; i < m_plan.folders.size() && !m_state.canceled; ++i) {
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
    FileWriters(m_archive, m_plan, m_target, m_state).run();
}

void Extraction::makeLinks()
{
    FolderCursor cursor(m_target, m_plan);
    for (PlannedLink& link : m_plan.links) {
        if (m_state.canceled) {
            return;
        }
        const FileDescriptor& folder = cursor.require(link.folder);
        if (::symlinkat(link.target.toUtf8().constData(), folder.get(), link.name.constData()) !=
            0) {
            failWithErrno(
                QStringLiteral("create the link %1").arg(quoted(QString::fromUtf8(link.name))),
                errno);
        }
        link.isMade = true;
        const timespec times[] = {{0, UTIME_OMIT}, link.modified};
        ::utimensat(folder.get(), link.name.constData(), times, AT_SYMLINK_NOFOLLOW);
    }
}

void Extraction::setFolderAttributes()
{
    FolderCursor cursor(m_target, m_plan);
    // Children first: a folder's time changes with its content, and its mode may shut it.
    for (size_t i = m_plan.folders.size(); i-- > 1 && !m_state.canceled;) {
        PlannedFolder& folder = m_plan.folders[i];
        if (!folder.isMade) {
            continue;
        }
        timespec modified = folder.modified;
        if (!folder.isListed) {
            modified.tv_nsec = UTIME_NOW;
        }
        folder.isShut = true;
        setAttributes(cursor.require(static_cast<int>(i)), folder.mode, modified, folder.name);
    }
}

} // namespace vx
