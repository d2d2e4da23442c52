#include "host/FileFormatsZip/FileWriter.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>

#include "host/FileFormatsZip/ExtractionPlan.h"
#include "host/FileFormatsZip/Failure.h"
#include "host/FileFormatsZip/TargetFolder.h"

namespace vx {

namespace {

constexpr int createFlags = O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC;

QString nameOf(const PlannedFile& file)
{
    return quoted(QString::fromUtf8(file.name));
}

bool isAllZero(const char* data, size_t size)
{
    return size > 0 && data[0] == 0 && std::memcmp(data, data + 1, size - 1) == 0;
}

} // namespace

FileWriter::FileWriter(const FileDescriptor& folder, PlannedFile& file)
    : m_file(file)
    , m_descriptor(::openat(folder.get(), file.name.constData(), createFlags, 0600))
{
    if (!m_descriptor.isValid()) {
        failWithErrno(QStringLiteral("create the file %1").arg(nameOf(file)), errno);
    }
    file.isMade = true;
}

void FileWriter::write(const char* data, size_t size)
{
    if (static_cast<qint64>(size) > m_file.size - m_written) {
        refuse(QString::fromUtf8(m_file.name), QStringLiteral("holds more than it declares"));
    }
    m_written += static_cast<qint64>(size);
    if (isAllZero(data, size)) {
        leaveHole(size);
        return;
    }
    while (size > 0) {
        const ssize_t count = ::write(m_descriptor.get(), data, size);
        if (count >= 0) {
            m_endsInHole = false;
            data += count;
            size -= static_cast<size_t>(count);
        } else if (errno != EINTR) {
            failWithErrno(QStringLiteral("write the file %1").arg(nameOf(m_file)), errno);
        }
    }
}

/** Skips bytes that are all zero, which saves the disk much of an image or a database. */
void FileWriter::leaveHole(size_t size)
{
    if (::lseek(m_descriptor.get(), static_cast<off_t>(size), SEEK_CUR) < 0) {
        failWithErrno(QStringLiteral("write the file %1").arg(nameOf(m_file)), errno);
    }
    m_endsInHole = true;
}

void FileWriter::finish()
{
    if (m_written != m_file.size) {
        refuse(QString::fromUtf8(m_file.name), QStringLiteral("holds less than it declares"));
    }
    if (m_endsInHole && ::ftruncate(m_descriptor.get(), m_written) != 0) {
        failWithErrno(QStringLiteral("write the file %1").arg(nameOf(m_file)), errno);
    }
    setAttributes(m_descriptor, m_file.mode, m_file.modified, m_file.name);
}

} // namespace vx
