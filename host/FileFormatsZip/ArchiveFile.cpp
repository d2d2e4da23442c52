#include "host/FileFormatsZip/ArchiveFile.h"

#include <QFile>

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>

#include "host/FileFormatsZip/Failure.h"

namespace vx {

ArchiveFile::ArchiveFile(const QString& path)
    : m_path(path)
    // Without O_NONBLOCK, opening a fifo would wait for a writer.
    , m_descriptor(::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK))
{
    struct stat status = {};
    if (!m_descriptor.isValid() || ::fstat(m_descriptor.get(), &status) != 0) {
        failWithErrno(QStringLiteral("open the archive %1").arg(quoted(path)), errno);
    }
    if (!S_ISREG(status.st_mode)) {
        fail(QStringLiteral("%1 is not a file.").arg(quoted(path)));
    }
    m_size = status.st_size;
}

qint64 ArchiveFile::readAt(qint64 offset, char* buffer, qint64 length) const noexcept
{
    ssize_t got = -1;
    do {
        got = ::pread(m_descriptor.get(), buffer, static_cast<size_t>(length), offset);
    } while (got < 0 && errno == EINTR);
    return got;
}

QByteArray ArchiveFile::bytesAt(qint64 offset, qint64 length) const
{
    QByteArray bytes(static_cast<int>(length), Qt::Uninitialized);
    qint64 filled = 0;
    while (filled < length) {
        const qint64 got = readAt(offset + filled, bytes.data() + filled, length - filled);
        if (got < 0) {
            failWithErrno(QStringLiteral("read the archive %1").arg(quoted(m_path)), errno);
        }
        if (got == 0) {
            failAsDamaged(QStringLiteral("it ends too early"));
        }
        filled += got;
    }
    return bytes;
}

} // namespace vx
