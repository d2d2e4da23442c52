#include "host/FileFormatsZip/internal/write/TargetFolder.h"

#include <QFile>

#include <cerrno>
#include <fcntl.h>
#include <limits>
#include <sys/stat.h>
#include <sys/statvfs.h>

#include "host/FileFormatsZip/internal/Failure.h"

namespace vx {

namespace {

// Whoever may make a folder need not have the right to list the one around it.
#ifdef O_PATH
constexpr int parentFlags = O_PATH | O_DIRECTORY | O_CLOEXEC;
#else
constexpr int parentFlags = O_RDONLY | O_DIRECTORY | O_CLOEXEC;
#endif

} // namespace

TargetFolder::TargetFolder(const QString& path)
    : m_path(path)
{
    const QByteArray name = QFile::encodeName(path);
    m_isMade = ::mkdir(name.constData(), 0777) == 0;
    if (!m_isMade && errno != EEXIST) {
        failWithErrno(QStringLiteral("create the folder %1").arg(quoted(path)), errno);
    }
    m_root = FileDescriptor(::open(name.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!m_root.isValid()) {
        failWithErrno(QStringLiteral("open the folder %1").arg(quoted(path)), errno);
    }
}

void TargetFolder::removeIfMade()
{
    if (m_isMade) {
        // The path may mean another folder by now, if the application changed its own.
        const FileDescriptor parent(::openat(m_root.get(), "..", parentFlags));
        const QString name = m_path.section(QLatin1Char('/'), -1, -1, QString::SectionSkipEmpty);
        ::unlinkat(parent.get(), QFile::encodeName(name).constData(), AT_REMOVEDIR);
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

TargetFolder::Found TargetFolder::find(const QByteArray& path) const
{
    struct stat status = {};
    if (::fstatat(m_root.get(), path.constData(), &status, AT_SYMLINK_NOFOLLOW) != 0) {
        return Nothing;
    }
    return S_ISLNK(status.st_mode) ? Link : Other;
}

void setAttributes(const FileDescriptor& descriptor, unsigned mode, const timespec& modified,
                   const QByteArray& name)
{
    if (::fchmod(descriptor.get(), mode) != 0) {
        failWithErrno(QStringLiteral("set the mode of %1").arg(quoted(QString::fromUtf8(name))),
                      errno);
    }
    const timespec times[] = {{0, UTIME_OMIT}, modified};
    ::futimens(descriptor.get(), times);
}

} // namespace vx
