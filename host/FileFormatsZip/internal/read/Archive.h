#pragma once

#include <QString>

#include <atomic>
#include <ctime>
#include <vector>

#include "host/FileFormatsZip/internal/read/ArchiveFile.h"

namespace vx {

/** What an archive says of one of its entries. */
struct ArchiveEntry
{
    enum Kind { File, Folder, Link, Special };
    enum Method : quint8 { Stored = 0, Deflated = 8 };

    QString name;         ///< folders end in "/"
    Kind kind = File;     ///< Special is what is neither file, folder nor symbolic link
    qint64 begin = 0;     ///< from the beginning of the archive, which need not be that of the file
    qint64 dataBegin = 0; ///< in the file
    qint64 packedSize = 0;
    qint64 size = 0; ///< bytes when unpacked
    quint32 crc32 = 0;
    quint8 method = Stored;
    unsigned mode = 0; ///< type and permissions as of stat(); a type of 0 is that of a file
    std::time_t modified = 0;
    QString linkTarget; ///< of a link that may be unpacked, where it points
    bool isEncrypted = false;

    /** Whether the content is stored or deflated; only such is unpacked. */
    bool isMethodSupported() const { return method == Stored || method == Deflated; }
};

/** An open archive and what it says of its entries. Any number of threads may use it at once. */
class Archive
{
public:
    /** Entries that an archive may hold: far more than any has, and a bound for memory and time. */
    static constexpr quint64 mostEntries = 1000000;

    /**
     * Opens the archive at @p path and reads its directory, the headers in front of the data and
     * the targets of links; all must agree, and no entry may be named twice. Whether an entry may
     * be unpacked is not looked at. Throws IOException, and Canceled once @p canceled is set.
     */
    Archive(const QString& path, const std::atomic<bool>& canceled);

    /** All entries, in the order of their data. */
    const std::vector<ArchiveEntry>& entries() const { return m_entries; }

    /** The bytes of the archive. */
    const ArchiveFile& file() const { return m_file; }

    /** Where the data of entries ends in the file at the latest. */
    qint64 dataEnd() const { return m_dataEnd; }

private:
    static ArchiveEntry takeRecord(ByteView& directory);
    static void readLocalHeader(FileWindow& window, qint64 archiveBegin, ArchiveEntry& entry);
    void readRecords(ByteView directory, const std::atomic<bool>& canceled);
    void sort();
    void readHeaders(qint64 archiveBegin, const std::atomic<bool>& canceled);
    void readLinkTargets(const std::atomic<bool>& canceled);

    ArchiveFile m_file;
    qint64 m_dataEnd = 0;
    std::vector<ArchiveEntry> m_entries;
};

} // namespace vx
