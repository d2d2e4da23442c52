#include "host/FileFormatsZip/internal/write/FileWriter.h"

#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

#include "host/FileFormatsZip/internal/Failure.h"
#include "host/FileFormatsZip/internal/write/TargetFolder.h"

namespace vx {

namespace {

constexpr int createFlags = O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC;

QString nameOf(const PlannedItem& file)
{
    return quoted(QString::fromUtf8(file.name));
}

bool isAllZero(ByteView piece)
{
    return piece.front() == 0 && piece.substr(1) == piece.substr(0, piece.size() - 1);
}

} // namespace

FileWriter::FileWriter(const FileDescriptor& folder, PlannedItem& file)
    : m_file(file)
    , m_descriptor(::openat(folder.get(), file.name.constData(), createFlags, 0600))
{
    if (!m_descriptor.isValid()) {
        failWithErrno(QStringLiteral("create the file %1").arg(nameOf(file)), errno);
    }
    file.isMade = true;
}

void FileWriter::write(ByteView piece)
{
    m_endsInHole = isAllZero(piece);
    if (m_endsInHole) {
        require(::lseek(m_descriptor.get(), static_cast<off_t>(piece.size()), SEEK_CUR) >= 0);
        return;
    }
    while (!piece.empty()) {
        const ssize_t count = ::write(m_descriptor.get(), piece.data(), piece.size());
        require(count >= 0 || errno == EINTR);
        piece.remove_prefix(count > 0 ? static_cast<size_t>(count) : 0);
    }
}

void FileWriter::finish()
{
    if (m_endsInHole) {
        require(::ftruncate(m_descriptor.get(), m_file.entry->content.size) == 0);
    }
    const timespec modified = {m_file.entry->modified, 0};
    setAttributes(m_descriptor, m_file.entry->mode, modified, m_file.name);
}

void FileWriter::require(bool isDone) const
{
    if (!isDone) {
        failWithErrno(QStringLiteral("write the file %1").arg(nameOf(m_file)), errno);
    }
}

} // namespace vx
