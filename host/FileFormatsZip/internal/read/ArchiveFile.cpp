#include "host/FileFormatsZip/internal/read/ArchiveFile.h"

#include <QFile>

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>

#include "host/FileFormatsZip/internal/Failure.h"

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

QByteArray ArchiveFile::bytesAt(qint64 offset, qint64 length) const
{
    QByteArray bytes;
    readExactly(offset, length, bytes);
    return bytes;
}

void ArchiveFile::readExactly(qint64 offset, qint64 length, QByteArray& bytes) const
{
    QByteArray read;
    read.swap(bytes);
    read.resize(static_cast<int>(length));
    qint64 filled = 0;
    while (filled < length) {
        const ssize_t got = ::pread(m_descriptor.get(), read.data() + filled,
                                    static_cast<size_t>(length - filled), offset + filled);
        if (got == 0) {
            failAsDamaged(QStringLiteral("it ends too early"));
        }
        if (got < 0 && errno != EINTR) {
            failWithErrno(QStringLiteral("read the archive %1").arg(quoted(m_path)), errno);
        }
        filled += got < 0 ? 0 : got;
    }
    bytes.swap(read);
}

} // namespace vx
