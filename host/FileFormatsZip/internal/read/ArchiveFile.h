#pragma once

#include <QByteArray>
#include <QString>

#include "host/FileFormatsZip/internal/FileDescriptor.h"

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

    /** Exactly @p length bytes at @p offset. Throws IOException if they aren't there. */
    QByteArray bytesAt(qint64 offset, qint64 length) const;

    /** The same, into @p bytes, whose memory is used again. They are empty if it throws. */
    void readExactly(qint64 offset, qint64 length, QByteArray& bytes) const;

private:
    QString m_path;
    FileDescriptor m_descriptor;
    qint64 m_size = 0;
};

} // namespace vx
