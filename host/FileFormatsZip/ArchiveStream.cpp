#include "host/FileFormatsZip/ArchiveStream.h"

#include <archive.h>
#include <archive_entry.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <new>

#include "host/FileFormatsZip/ArchiveView.h"
#include "host/FileFormatsZip/Failure.h"

namespace vx {

namespace {

[[noreturn]] void failLike(archive* reader)
{
    if (archive_errno(reader) == ENOMEM) {
        throw std::bad_alloc();
    }
    const char* const text = archive_error_string(reader);
    // Some of the texts end in a line feed.
    failAsDamaged(text != nullptr ? QString::fromLatin1(text).trimmed()
                                  : QStringLiteral("it is not readable"));
}

} // namespace

ArchiveStream::ArchiveStream(const ArchiveView& view, Reading reading,
                             const std::atomic<bool>& canceled)
    : m_view(view)
    , m_canceled(canceled)
    , m_buffer(static_cast<size_t>(reading))
    , m_archive(archive_read_new(), archive_read_free)
{
    if (!m_archive) {
        throw std::bad_alloc();
    }
    archive* const reader = m_archive.get();
    // The other reader, which needs no directory, would take half a download for an archive.
    archive_read_support_format_zip_seekable(reader);
    archive_read_set_read_callback(reader, &ArchiveStream::readMore);
    archive_read_set_seek_callback(
        reader, [](archive* a, void* self, la_int64_t offset, int whence) {
            return static_cast<la_int64_t>(seek(a, self, offset, whence));
        });
    archive_read_set_skip_callback(reader, [](archive* a, void* self, la_int64_t length) {
        return static_cast<la_int64_t>(skip(a, self, length));
    });
    archive_read_set_callback_data(reader, this);
    if (archive_read_open1(reader) != ARCHIVE_OK && !m_canceled) {
        failLike(reader);
    }
}

ArchiveStream::~ArchiveStream() = default;

bool ArchiveStream::next()
{
    const int result = archive_read_next_header(m_archive.get(), &m_entry);
    if (result == ARCHIVE_EOF || m_canceled) {
        return false;
    }
    // A mere warning, too, says that the archive contradicts itself or that a name is unreadable.
    if (result != ARCHIVE_OK) {
        failLike(m_archive.get());
    }
    return true;
}

bool ArchiveStream::isMethodSupported() const
{
    // libarchive tells the method of the current entry nowhere else.
    const char* format = archive_format_name(m_archive.get());
    return format != nullptr && (std::strstr(format, "(uncompressed)") != nullptr ||
                                 std::strstr(format, "(deflation)") != nullptr);
}

bool ArchiveStream::readBlock(const char** data, size_t* size)
{
    const void* block = nullptr;
    la_int64_t offset = 0;
    const int result = archive_read_data_block(m_archive.get(), &block, size, &offset);
    if (result == ARCHIVE_EOF || m_canceled) {
        return false;
    }
    if (result != ARCHIVE_OK) {
        failLike(m_archive.get());
    }
    *data = static_cast<const char*>(block);
    return true;
}

ssize_t ArchiveStream::readMore(archive* reader, void* self, const void** data)
{
    auto* const stream = static_cast<ArchiveStream*>(self);
    if (stream->m_canceled) {
        archive_set_error(reader, ECANCELED, "canceled");
        return -1;
    }
    const qint64 got = stream->m_view.readAt(stream->m_offset, stream->m_buffer.data(),
                                             static_cast<qint64>(stream->m_buffer.size()));
    if (got < 0) {
        archive_set_error(reader, errno, "%s", std::strerror(errno));
        return -1;
    }
    stream->m_offset += got;
    *data = stream->m_buffer.data();
    return got;
}

qint64 ArchiveStream::seek(archive*, void* self, qint64 offset, int whence)
{
    auto* const stream = static_cast<ArchiveStream*>(self);
    const qint64 base = whence == SEEK_SET   ? 0
                        : whence == SEEK_CUR ? stream->m_offset
                                             : stream->m_view.size();
    if (base + offset < 0) {
        return ARCHIVE_FATAL;
    }
    stream->m_offset = base + offset;
    return stream->m_offset;
}

qint64 ArchiveStream::skip(archive*, void* self, qint64 length)
{
    auto* const stream = static_cast<ArchiveStream*>(self);
    const qint64 skipped = std::min(length, stream->m_view.size() - stream->m_offset);
    stream->m_offset += std::max<qint64>(skipped, 0);
    return std::max<qint64>(skipped, 0);
}

} // namespace vx
