#pragma once

#include <QByteArray>
#include <QSet>
#include <QString>

#include <atomic>
#include <vector>

#include "host/FileFormatsZip/EndRecord.h"

namespace vx {

class ArchiveFile;

/** The bytes of one record among those of the directory. */
struct RecordRange
{
    int begin = 0;
    int length = 0;
};

/** What the directory at the end of an archive says of one entry. */
struct DirectoryRecord
{
    RecordRange range;
    QString name;           ///< as it stands there; of archives made on DOS, with slashes
    int nameLength = 0;     ///< bytes of the name as it stands there
    quint64 offset = 0;     ///< where its data begins, from the beginning of the archive
    quint32 crc32 = 0;      ///< checksum of the unpacked content
    bool isFolder = false;  ///< says so by a slash at the end of its name, or by its attributes
    bool isSpecial = false; ///< a fifo, a socket or a device
};

/**
 * The directory at the end of a ZIP archive, which is what other programs show of the archive.
 *
 * libarchive takes names from the headers in front of the data instead, cut at the first NUL, and
 * turns fifos into files. An archive may say one thing here and another thing there; what is read
 * here is held against what libarchive reports, so that nothing is unpacked that a listing of the
 * archive would not show. Layout: PKWARE's APPNOTE.TXT, 4.3.12, 4.4 and 4.6.9.
 */
class CentralDirectory
{
public:
    /** Entries that an archive may hold: far more than any has, and a bound for memory and time. */
    static constexpr quint64 mostEntries = 1000000;

    /**
     * Reads the directory. Throws IOException if there is none, if it contradicts itself, or if it
     * names an entry twice.
     *
     * @param canceled looked at between records; once it is true, they stay incomplete.
     */
    CentralDirectory(const ArchiveFile& file, const std::atomic<bool>& canceled);

    /** In the order of their data, which is that of libarchive. */
    const std::vector<DirectoryRecord>& records() const { return m_records; }

    int count() const { return static_cast<int>(m_records.size()); }

    /** Where it lies in the file. */
    const DirectoryExtent& extent() const { return m_extent; }

    /** All records, as they stand in the file. */
    const QByteArray& bytes() const { return m_bytes; }

    /** Some records, one after the other. */
    QByteArray bytesOf(const std::vector<RecordRange>& records) const;

private:
    DirectoryRecord recordAt(int at) const;
    int lengthOfRecordAt(int at) const;
    void add(const DirectoryRecord& record, QSet<QString>& keys);
    void requireCount() const;

    DirectoryExtent m_extent;
    QByteArray m_bytes;
    std::vector<DirectoryRecord> m_records;
};

} // namespace vx
