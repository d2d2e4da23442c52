#include "host/FileFormatsZip/internal/read/FileWindow.h"

#include <algorithm>

#include "host/FileFormatsZip/internal/Failure.h"
#include "host/FileFormatsZip/internal/read/ArchiveFile.h"

namespace vx {

FileWindow::FileWindow(const ArchiveFile& file, qint64 end, int capacity)
    : m_file(file)
    , m_end(end)
    , m_capacity(capacity)
{}

ByteView FileWindow::all(qint64 offset, int length)
{
    if (offset < m_begin || offset + length > m_begin + m_bytes.size()) {
        moveTo(offset, length);
    }
    return viewOf(m_bytes).substr(static_cast<size_t>(offset - m_begin),
                                  static_cast<size_t>(length));
}

ByteView FileWindow::some(qint64 offset, qint64 most)
{
    if (offset < m_begin || offset >= m_begin + m_bytes.size()) {
        moveTo(offset, 1);
    }
    const qint64 available = m_begin + m_bytes.size() - offset;
    return viewOf(m_bytes).substr(static_cast<size_t>(offset - m_begin),
                                  static_cast<size_t>(std::min(available, most)));
}

void FileWindow::moveTo(qint64 offset, int length)
{
    // The offset may be any number, so that nothing is added to it before it is known to be small.
    if (offset < 0 || offset > m_end - length) {
        failAsDamaged(QStringLiteral("it ends too early"));
    }
    const qint64 wanted = std::min<qint64>(std::max(length, m_capacity), m_end - offset);
    m_file.readExactly(offset, wanted, m_bytes);
    m_begin = offset;
}

} // namespace vx
