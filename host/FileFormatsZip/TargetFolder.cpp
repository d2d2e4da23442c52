#include "host/FileFormatsZip/TargetFolder.h"

#include <QFile>

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <limits>
#include <sys/stat.h>
#include <sys/statvfs.h>

#include "host/FileFormatsZip/Failure.h"

namespace vx {

namespace {

constexpr int openFolderFlags = O_RDONLY | O_DIRECTORY | O_CLOEXEC;

QString shown(const QByteArray& name)
{
    return quoted(QString::fromUtf8(name));
}

QByteArray parentOf(const QByteArray& path)
{
    return path.left(std::max(path.lastIndexOf('/'), 0));
}

QByteArray leafOf(const QByteArray& path)
{
    return path.mid(path.lastIndexOf('/') + 1);
}

} // namespace

TargetFolder::TargetFolder(const QString& path)
    : m_path(path)
{
    const QByteArray name = QFile::encodeName(path);
    m_isMade = ::mkdir(name.constData(), 0777) == 0;
    if (!m_isMade && errno != EEXIST) {
        failWithErrno(QStringLiteral("create the folder %1").arg(quoted(path)), errno);
    }
    m_root = FileDescriptor(::open(name.constData(), openFolderFlags));
    if (!m_root.isValid()) {
        failWithErrno(QStringLiteral("open the folder %1").arg(quoted(path)), errno);
    }
}

void TargetFolder::removeIfMade()
{
    if (m_isMade) {
        ::rmdir(QFile::encodeName(m_path).constData());
    }
}

qint64 TargetFolder::freeBytes() const
{
    struct statvfs status = {};
    qint64 bytes = 0;
    if (::fstatvfs(m_root.get(), &status) != 0 ||
        __builtin_mul_overflow(status.f_bavail, status.f_frsize, &bytes)) {
        return std::numeric_limits<qint64>::max();
    }
    return bytes;
}

bool TargetFolder::isLink(const QStringList& parts) const
{
    const QByteArray path = parts.join(QLatin1Char('/')).toUtf8();
    struct stat status = {};
    return ::fstatat(m_root.get(), path.constData(), &status, AT_SYMLINK_NOFOLLOW) == 0 &&
           S_ISLNK(status.st_mode);
}

FileDescriptor TargetFolder::openFolder(const QByteArray& path) const
{
    FileDescriptor folder(::openat(m_root.get(), ".", openFolderFlags));
    const QList<QByteArray> parts = path.isEmpty() ? QList<QByteArray>() : path.split('/');
    for (const QByteArray& part : parts) {
        if (folder.isValid()) {
            folder = FileDescriptor(
                ::openat(folder.get(), part.constData(), openFolderFlags | O_NOFOLLOW));
        }
    }
    return folder;
}

FileDescriptor TargetFolder::requireFolder(const QByteArray& path) const
{
    FileDescriptor folder = openFolder(path);
    if (!folder.isValid()) {
        failWithErrno(QStringLiteral("open the folder %1").arg(shown(path)), errno);
    }
    return folder;
}

bool TargetFolder::makeFolder(const QByteArray& path)
{
    const FileDescriptor parent = requireFolder(parentOf(path));
    // For the owner alone until everything is in it, and writable even if its mode will not be.
    if (::mkdirat(parent.get(), leafOf(path).constData(), 0700) == 0) {
        return true;
    }
    if (errno != EEXIST) {
        failWithErrno(QStringLiteral("create the folder %1").arg(shown(path)), errno);
    }
    requireFolder(path);
    return false;
}

void TargetFolder::removeFolder(const QByteArray& path)
{
    const FileDescriptor parent = openFolder(parentOf(path));
    if (parent.isValid()) {
        ::unlinkat(parent.get(), leafOf(path).constData(), AT_REMOVEDIR);
    }
}

void setAttributes(const FileDescriptor& descriptor, unsigned mode, const timespec& modified,
                   const QByteArray& name)
{
    if (::fchmod(descriptor.get(), mode) != 0) {
        failWithErrno(QStringLiteral("set the mode of %1").arg(shown(name)), errno);
    }
    const timespec times[] = {{0, UTIME_OMIT}, modified};
    ::futimens(descriptor.get(), times);
}

} // namespace vx
