#pragma once

#include <QString>

#include <atomic>
#include <vector>

#include "host/FileFormatsZip/internal/read/Bytes.h"
#include "host/FileFormatsZip/internal/read/EndRecord.h"
#include "host/FileFormatsZip/internal/read/ExtraFields.h"

namespace vx {

class ArchiveFile;

/** What the directory at the end of an archive says of one entry. */
struct DirectoryRecord
{
    QString name; ///< as it stands there; of archives made on DOS, with slashes
    EntryExtent extent;
    quint32 crc32 = 0; ///< checksum of the unpacked content
    /** Type and permissions as of stat(); a type of 0 is that of a file. */
    unsigned mode = 0;
    bool isFolder = false; ///< says so by a slash at the end of its name, or by its mode
};

/**
 * The directory at the end of a ZIP archive, which is what other programs show of the archive.
 * Layout: PKWARE's APPNOTE.TXT, 4.3.12 and 4.4.
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

    /** In the order of their data. */
    const std::vector<DirectoryRecord>& records() const { return m_records; }

    /** Where it lies in the file. */
    const DirectoryExtent& extent() const { return m_extent; }

private:
    void readRecords(ByteView bytes, const std::atomic<bool>& canceled);
    void requireCount() const;
    void sort();

    DirectoryExtent m_extent;
    std::vector<DirectoryRecord> m_records;
};

} // namespace vx
