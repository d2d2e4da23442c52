#pragma once

#include <isa-l/igzip_lib.h>

#include <memory>

#include "host/FileFormatsZip/internal/read/Archive.h"

namespace vx {

/** The CRC-32 of ZIP of some bytes, going on from that of those before them. */
quint32 crc32(ByteView bytes, quint32 before = 0);

/** Inflates deflate streams (RFC 1951) one after the other, by means of ISA-L. */
class Inflater
{
public:
    Inflater() { begin(); }

    /** Begins a new stream. */
    void begin();

    /** What step() came to. */
    enum Result {
        NeedsInput, ///< all that was given is taken in, and all of it that can be is in the output
        OutputFull, ///< there may be more to come
        AtEnd,      ///< the stream has ended, and everything is in the output
        Damaged     ///< this is no deflate stream
    };

    /**
     * Inflates for as long as there is @p input and @p room for the output, one byte at least, and
     * removes what it took in from the input. @p produced bytes of @p output are filled then.
     */
    Result step(ByteView& input, char* output, size_t room, size_t& produced);

    /** Bytes of the stream, as many as its content needed: what was taken in too much is not. */
    qint64 consumed() const;

private:
    inflate_state m_state = {};
    qint64 m_takenIn = 0;
};

/** Unpacks the contents of entries, one after the other, piece by piece. Belongs to one thread. */
class ContentReader
{
public:
    /** @p archive must outlive the object. Pieces have up to @p pieceSize bytes. */
    explicit ContentReader(const Archive& archive, size_t pieceSize = 1024 * size_t(1024));

    /** Begins the content of @p entry, a stored or deflated one that stays. Throws IOException. */
    void begin(const ArchiveEntry& entry);

    /**
     * The next piece, valid until the call after the next; empty when the content is complete,
     * which means that size and checksum are those declared. Throws IOException on damage.
     */
    ByteView next();

private:
    ByteView nextPiece();
    [[noreturn]] void failOver(const char* flaw) const;

    const qint64 m_dataEnd;
    FileWindow m_window;
    Inflater m_inflater;
    const size_t m_pieceSize;
    std::unique_ptr<char[]> m_output;
    std::unique_ptr<char[]> m_previous; ///< output that may still be in use
    const ArchiveEntry* m_entry = nullptr;
    qint64 m_consumed = 0; ///< of the packed bytes
    qint64 m_produced = 0;
    quint32 m_crc32 = 0;
    bool m_isAtEnd = false; ///< of the deflate stream
};

} // namespace vx
