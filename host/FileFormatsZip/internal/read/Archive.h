#pragma once

#include <QString>

#include <atomic>

#include "host/FileFormatsZip/internal/read/ArchiveEntry.h"
#include "host/FileFormatsZip/internal/read/ArchiveFile.h"

namespace vx {

class CentralDirectory;

/** An open archive and what it says of its entries. Any number of threads may use it at once. */
class Archive
{
public:
    /**
     * Opens the archive at @p path and reads its directory, the headers in front of the data and
     * the targets of links; all must agree. Whether an entry may be unpacked is not looked at.
     *
     * @param canceled looked at between entries; once it is true, the index stays incomplete.
     * @throws IOException if the archive can't be read or contradicts itself.
     */
    Archive(const QString& path, const std::atomic<bool>& canceled);

    /** All entries. */
    const ArchiveIndex& index() const { return m_index; }

    /** The bytes of the archive. */
    const ArchiveFile& file() const { return m_file; }

    /** Where the data of entries ends in the file at the latest. */
    qint64 dataEnd() const { return m_dataEnd; }

private:
    void readEntries(const CentralDirectory& directory, const std::atomic<bool>& canceled);
    void readLinkTargets(const std::atomic<bool>& canceled);

    ArchiveFile m_file;
    qint64 m_dataEnd = 0;
    ArchiveIndex m_index;
};

} // namespace vx
