#include "trust/internal/PrivateFile.h"

#include <QByteArray>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace vx {

namespace {

bool isOwn(const struct stat& status)
{
    return status.st_uid == ::geteuid();
}

bool isWritableByOthers(const struct stat& status)
{
    return (status.st_mode & (S_IWGRP | S_IWOTH)) != 0;
}

/** What others may do with a folder and the files in it. */
enum class Access { Write, Read, None };

bool isFileOfOurs(int handle, Access folderAccess)
{
    struct stat status = {};
    return ::fstat(handle, &status) == 0 && S_ISREG(status.st_mode) && isOwn(status) &&
           (folderAccess == Access::None || !isWritableByOthers(status));
}

Access accessOfOthers(const QByteArray& folder)
{
    struct stat status = {};
    // The folder itself: a link to one could be led elsewhere.
    if (::lstat(folder.constData(), &status) != 0 || !S_ISDIR(status.st_mode) || !isOwn(status) ||
        isWritableByOthers(status)) {
        return Access::Write;
    }
    return (status.st_mode & (S_IRWXG | S_IRWXO)) != 0 ? Access::Read : Access::None;
}

/** Everybody may write there, and rename what is another's: so not /tmp, which has the sticky bit.
 */
bool isFreeForAll(const QByteArray& path)
{
    struct stat status = {};
    return ::stat(path.constData(), &status) != 0 ||
           ((status.st_mode & S_IWOTH) != 0 && (status.st_mode & S_ISVTX) == 0);
}

QByteArray folderOf(const QByteArray& path)
{
    const auto slash = path.lastIndexOf('/');
    return slash <= 0 ? QByteArray("/") : path.left(slash);
}

bool canBeMoved(QByteArray folder)
{
    while (folder != "/") {
        folder = folderOf(folder);
        if (isFreeForAll(folder)) {
            return true;
        }
    }
    return false;
}

} // namespace

bool openPrivately(QFile& file, const QString& path)
{
    const QByteArray name = QFile::encodeName(path);
    const QByteArray folder = folderOf(name);
    const Access access = accessOfOthers(folder);
    if (!name.startsWith('/') || access == Access::Write || canBeMoved(folder)) {
        return false;
    }
    // Without waiting for the writer of a pipe, and not through a link.
    const int handle = ::open(name.constData(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
    if (handle < 0) {
        return false;
    }
    if (!isFileOfOurs(handle, access)) {
        ::close(handle);
        return false;
    }
    return file.open(handle, QIODevice::ReadOnly | QIODevice::Unbuffered,
                     QFileDevice::AutoCloseHandle);
}

} // namespace vx
