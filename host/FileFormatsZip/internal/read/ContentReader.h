#pragma once

#include <QString>

#include <memory>

#include "host/FileFormatsZip/internal/read/ArchiveEntry.h"
#include "host/FileFormatsZip/internal/read/FileWindow.h"
#include "host/FileFormatsZip/internal/read/Inflater.h"

namespace vx {

class Archive;

/**
 * Unpacks the contents of entries, one after the other, piece by piece. Nothing of a content counts
 * before next() has said that it is complete: size and checksum are held against those declared.
 * Belongs to one thread.
 */
class ContentReader
{
public:
    /** @p archive must outlive the object. Inflated pieces have up to @p pieceSize bytes. */
    explicit ContentReader(const Archive& archive, size_t pieceSize = 256 * size_t(1024));

    /** Begins a content, stored or deflated, of the entry @p name. Throws IOException. */
    void begin(const PackedContent& content, const QString& name);

    /**
     * The next piece, valid until the next call; an empty one when the content is complete. Throws
     * IOException on damage.
     */
    ByteView next();

private:
    ByteView nextStored();
    ByteView nextInflated();
    void takeIn(ByteView piece);
    void requireComplete() const;
    [[noreturn]] void failOver(const QString& flaw) const;

    const Archive& m_archive;
    FileWindow m_window;
    Inflater m_inflater;
    const size_t m_pieceSize;
    std::unique_ptr<char[]> m_output;
    PackedContent m_content;
    QString m_name;
    qint64 m_consumed = 0; ///< of the packed bytes
    qint64 m_produced = 0;
    quint32 m_crc32 = 0;
    bool m_isAtEnd = false; ///< of the packed bytes, or of the deflate stream
};

} // namespace vx
