#pragma once

#include <QByteArray>

namespace vx {

class ArchiveFile;
class CentralDirectory;

/**
 * An archive as libarchive gets to see it: the data of a file as it stands there, and behind it a
 * directory of our choice with an end record of our own.
 *
 * So there is one reading of where the directory lies, and a thread that unpacks some entries need
 * not walk through the headers of all. Reading changes no state; several threads may read at once.
 */
class ArchiveView
{
public:
    /**
     * A view of @p file, which must outlive it.
     *
     * @param directory tells where the data lies.
     * @param records   those of the entries to be seen, from that directory.
     * @param count     their number.
     */
    ArchiveView(const ArchiveFile& file, const CentralDirectory& directory,
                const QByteArray& records, int count);

    /** The bytes to be seen. */
    qint64 size() const { return m_dataLength + m_end.size(); }

    /** As ArchiveFile::readAt(). It may give less than is asked for and there. */
    qint64 readAt(qint64 offset, char* buffer, qint64 length) const noexcept;

private:
    const ArchiveFile& m_file;
    qint64 m_dataBegin;
    qint64 m_dataLength;
    QByteArray m_end;
};

} // namespace vx
