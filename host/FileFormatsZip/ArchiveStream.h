#pragma once

#include <QString>

#include <cstddef>
#include <memory>
#include <vector>

struct archive;
struct archive_entry;

namespace vx {

class ArchiveFile;

/**
 * Walks through the entries of an archive once, in the order of their data, by means of libarchive.
 *
 * Only the directory at the end of the archive is trusted for where entries are: without it an
 * archive counts as broken, so that half a download is never taken for a whole archive. Each object
 * belongs to one thread, which must have a Utf8Locale; several objects may read one ArchiveFile.
 */
class ArchiveStream
{
public:
    /** How much is read from the file at once, in bytes. */
    enum class Reading { Headers = 16 * 1024, Contents = 128 * 1024 };

    /** @p file must outlive the stream. Throws IOException. */
    ArchiveStream(const ArchiveFile& file, Reading reading);
    ~ArchiveStream();
    ArchiveStream(const ArchiveStream&) = delete;
    ArchiveStream& operator=(const ArchiveStream&) = delete;

    /** Moves to the next entry. Gives false at the end, throws IOException on damage. */
    bool next();

    /** Which entry the current one is, counted from 0; -1 before the first. */
    int position() const { return m_position; }

    /** What libarchive says of the current entry; valid until the next move. */
    archive_entry* entry() const { return m_entry; }

    /** Whether the content is stored or deflated; only such is unpacked. */
    bool isMethodSupported() const;

    /**
     * The next piece of the current entry's content, valid until the next call. Gives false when
     * the content is complete and its checksum right, throws IOException on damage.
     */
    bool readBlock(const char** data, size_t* size);

private:
    static ssize_t readMore(archive*, void* self, const void** data);
    static qint64 seek(archive*, void* self, qint64 offset, int whence);
    static qint64 skip(archive*, void* self, qint64 length);

    const ArchiveFile& m_file;
    std::vector<char> m_buffer;
    qint64 m_offset = 0;
    std::unique_ptr<archive, int (*)(archive*)> m_archive;
    archive_entry* m_entry = nullptr;
    int m_position = -1;
};

} // namespace vx
