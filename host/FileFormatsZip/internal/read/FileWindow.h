#pragma once

#include <QByteArray>

#include "host/FileFormatsZip/internal/read/Bytes.h"

namespace vx {

class ArchiveFile;

/**
 * A part of an archive in memory that moves with what is read, so that many small pieces that lie
 * one behind the other cost one call of the system. Belongs to one thread.
 */
class FileWindow
{
public:
    /**
     * @param file     must outlive the window.
     * @param end      where reading ends at the latest: what lies behind is as if it weren't there.
     * @param capacity how many bytes are read at once.
     */
    FileWindow(const ArchiveFile& file, qint64 end, int capacity);

    /** Exactly @p length bytes at @p offset, valid until the next call. Throws IOException. */
    ByteView all(qint64 offset, int length);

    /**
     * Some bytes at @p offset, one at least and @p most at most, valid until the next call. Throws
     * IOException if there is none.
     */
    ByteView some(qint64 offset, qint64 most);

private:
    void moveTo(qint64 offset, int length);

    const ArchiveFile& m_file;
    const qint64 m_end;
    const int m_capacity;
    qint64 m_begin = 0;
    QByteArray m_bytes;
};

} // namespace vx
