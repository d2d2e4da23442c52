#include "host/FileFormatsZip/internal/read/ArchiveFile.h"

#include <QFile>

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <utility>

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

QByteArray ArchiveFile::read(qint64 offset, qint64 length, QByteArray memory) const
{
    memory.resize(static_cast<int>(length));
    qint64 filled = 0;
    while (filled < length) {
        const ssize_t got = ::pread(m_descriptor.get(), memory.data() + filled,
                                    static_cast<size_t>(length - filled), offset + filled);
        if (got == 0) {
            failAsDamaged(QStringLiteral("it ends too early"));
        }
        if (got < 0 && errno != EINTR) {
            failWithErrno(QStringLiteral("read the archive %1").arg(quoted(m_path)), errno);
        }
        filled += got < 0 ? 0 : got;
    }
    return memory;
}

FileWindow::FileWindow(const ArchiveFile& file, qint64 end, int capacity)
    : m_file(file)
    , m_end(end)
    , m_capacity(capacity)
{}

ByteView FileWindow::at(qint64 offset, qint64 least, qint64 most)
{
    // The offset may be any number, so that nothing is added to it before it is known to be small.
    if (offset < m_begin || offset > m_begin + m_bytes.size() - least) {
        if (offset < 0 || offset > m_end - least) {
            failAsDamaged(QStringLiteral("it ends too early"));
        }
        const qint64 wanted = std::min(std::max(least, m_capacity), m_end - offset);
        m_bytes = m_file.read(offset, wanted, std::move(m_bytes));
        m_begin = offset;
    }
    const ByteView rest = viewOf(m_bytes).substr(static_cast<size_t>(offset - m_begin));
    return rest.substr(0, static_cast<size_t>(most));
}

} // namespace vx
