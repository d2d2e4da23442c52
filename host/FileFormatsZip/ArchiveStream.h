#pragma once

#include <QString>

#include <atomic>
#include <cstddef>
#include <memory>
#include <vector>

struct archive;
struct archive_entry;

namespace vx {

class ArchiveView;

/**
 * Walks through the entries of an archive once, in the order of their data, by means of libarchive.
 * Each object belongs to one thread, which must have a Utf8Locale.
 */
class ArchiveStream
{
public:
    /** How much is read from the file at once, in bytes: no more than stays in a core's cache. */
    enum class Reading { Headers = 16 * 1024, Contents = 32 * 1024 };

    /**
     * @p view must outlive the stream. Throws IOException.
     *
     * @param canceled looked at whenever bytes are read, for the first move alone reads the whole
     *                 directory; once it is true, next() and readBlock() give false.
     */
    ArchiveStream(const ArchiveView& view, Reading reading, const std::atomic<bool>& canceled);
    ~ArchiveStream();
    ArchiveStream(const ArchiveStream&) = delete;
    ArchiveStream& operator=(const ArchiveStream&) = delete;

    /** Moves to the next entry. Gives false at the end, throws IOException on damage. */
    bool next();

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

    const ArchiveView& m_view;
    const std::atomic<bool>& m_canceled;
    std::vector<char> m_buffer;
    qint64 m_offset = 0;
    std::unique_ptr<archive, int (*)(archive*)> m_archive;
    archive_entry* m_entry = nullptr;
};

} // namespace vx
