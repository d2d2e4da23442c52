#pragma once

#include <QByteArray>
#include <QHash>
#include <QString>

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
    quint32 crc32 = 0;      ///< checksum of the unpacked content
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
     */
    explicit CentralDirectory(const ArchiveFile& file);

    int count() const { return m_records.size(); }

    /** Where it lies in the file. */
    const DirectoryExtent& extent() const { return m_extent; }

    /** All records, as they stand in the file. */
    const QByteArray& bytes() const { return m_bytes; }

    /** Some records, one after the other. */
    QByteArray bytesOf(const std::vector<RecordRange>& records) const;

    /** The record of @p name in whatever spelling, see nameKey(); null if there is none. */
    const DirectoryRecord* find(const QString& name) const;

private:
    DirectoryRecord recordAt(int at) const;
    int lengthOfRecordAt(int at) const;
    void insert(const DirectoryRecord& record);
    void requireCount() const;

    DirectoryExtent m_extent;
    QByteArray m_bytes;
    QHash<QString, DirectoryRecord> m_records;
};

} // namespace vx
