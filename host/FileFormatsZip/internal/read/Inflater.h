#pragma once

#include <QtGlobal>

#include <memory>

#include "host/FileFormatsZip/internal/read/Bytes.h"

struct inflate_state;

namespace vx {

/** The CRC-32 of ZIP of some bytes, going on from that of those before them. */
quint32 crc32(ByteView bytes, quint32 before = 0);

/** Inflates deflate streams (RFC 1951) one after the other, by means of ISA-L. */
class Inflater
{
public:
    Inflater();
    ~Inflater();
    Inflater(const Inflater&) = delete;
    Inflater& operator=(const Inflater&) = delete;

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
     * Inflates for as long as there is input and room.
     *
     * @param input    the next bytes of the stream. All of them are taken in unless the output is
     *                 full or the stream has ended; what is not taken in stays.
     * @param output   where the content goes.
     * @param room     the size of @p output, one at least.
     * @param produced how many bytes of it are filled.
     */
    Result step(ByteView& input, char* output, size_t room, size_t& produced);

    /** Bytes of the stream, as many as its content needed: what was taken in too much is not. */
    qint64 consumed() const;

private:
    std::unique_ptr<inflate_state> m_state;
    qint64 m_takenIn = 0;
};

} // namespace vx
