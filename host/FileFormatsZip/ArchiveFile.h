#pragma once

#include <QByteArray>
#include <QString>

#include "host/FileFormatsZip/FileDescriptor.h"

namespace vx {

/**
 * The bytes of an archive on disk. The file stays open, so that all who read it see the same one
 * even if the path comes to mean another. Reading changes no state: any number of threads may read
 * at once.
 */
class ArchiveFile
{
public:
    /** Opens the file. Throws IOException if it isn't a regular file that can be read. */
    explicit ArchiveFile(const QString& path);

    /** Its size in bytes when it was opened. */
    qint64 size() const { return m_size; }

    /**
     * Reads up to @p length bytes at @p offset. Throws nothing, for it is called from C.
     *
     * @return how many bytes were read, 0 at the end, -1 with errno set on failure.
     */
    qint64 readAt(qint64 offset, char* buffer, qint64 length) const noexcept;

    /** Exactly @p length bytes at @p offset. Throws IOException if they aren't there. */
    QByteArray bytesAt(qint64 offset, qint64 length) const;

private:
    QString m_path;
    FileDescriptor m_descriptor;
    qint64 m_size = 0;
};

} // namespace vx
