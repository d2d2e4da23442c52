#pragma once

#include <QString>

#include <atomic>
#include <vector>

#include "host/FileFormatsZip/ArchiveEntry.h"
#include "host/FileFormatsZip/ArchiveFile.h"
#include "host/FileFormatsZip/ArchiveView.h"
#include "host/FileFormatsZip/CentralDirectory.h"

namespace vx {

/** An open archive and what it says of its entries. Any number of threads may use it at once. */
class Archive
{
public:
    /**
     * Opens the archive at @p path and reads its directory and the headers in front of the data;
     * both must agree. Whether an entry may be unpacked is not looked at. The thread must have a
     * Utf8Locale.
     *
     * @param canceled looked at between entries; once it is true, the index stays incomplete.
     * @throws IOException if the archive can't be read or contradicts itself.
     */
    Archive(const QString& path, const std::atomic<bool>& canceled);

    /** All entries. */
    const ArchiveIndex& index() const { return m_index; }

    /** The archive as if it held only the entries of @p records. It must not outlive this object.
     */
    ArchiveView view(const std::vector<RecordRange>& records) const;

    /** The size of the file in bytes. */
    qint64 size() const { return m_file.size(); }

private:
    void readIndex(const std::atomic<bool>& canceled);
    qint64 headerOf(const DirectoryRecord& record) const;

    ArchiveFile m_file;
    CentralDirectory m_directory;
    ArchiveIndex m_index;
};

} // namespace vx
