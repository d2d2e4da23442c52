#include "host/FileFormatsZip/internal/read/ContentReader.h"

#include <isa-l/crc.h>

#include <algorithm>

#include "host/FileFormatsZip/internal/Failure.h"

namespace vx {

namespace {

// With a piece of the output, it stays in a core's cache.
constexpr int contentWindowSize = 128 * 1024;

// ISA-L takes its bytes without const, and leaves them alone.
unsigned char* bytesOf(ByteView bytes)
{
    return reinterpret_cast<unsigned char*>(const_cast<char*>(bytes.data()));
}

} // namespace

quint32 crc32(ByteView bytes, quint32 before)
{
    return crc32_gzip_refl(before, bytesOf(bytes), bytes.size());
}

void Inflater::begin()
{
    isal_inflate_init(&m_state);
    m_state.crc_flag = ISAL_DEFLATE;
    m_takenIn = 0;
}

Inflater::Result Inflater::step(ByteView& input, char* output, size_t room, size_t& produced)
{
    inflate_state& state = m_state;
    state.next_in = bytesOf(input);
    state.avail_in = static_cast<quint32>(input.size());
    state.next_out = reinterpret_cast<unsigned char*>(output);
    state.avail_out = static_cast<quint32>(room);
    const int code = isal_inflate(&state);
    produced = room - state.avail_out;
    if (code < ISAL_DECOMP_OK || code == ISAL_NEED_DICT) {
        return Damaged;
    }
    // Counted by what is left: ISA-L may step back to before the bytes that it was given last.
    m_takenIn += static_cast<qint64>(input.size()) - state.avail_in;
    input.remove_prefix(input.size() - std::min<size_t>(input.size(), state.avail_in));
    if (state.block_state == ISAL_BLOCK_FINISH) {
        return AtEnd;
    }
    return state.avail_out == 0 ? OutputFull : NeedsInput;
}

qint64 Inflater::consumed() const
{
    // ISA-L reads up to eight bytes ahead.
    return m_takenIn - m_state.read_in_length / 8;
}

ContentReader::ContentReader(const Archive& archive, size_t pieceSize)
    : m_dataEnd(archive.dataEnd())
    , m_window(archive.file(), archive.dataEnd(), contentWindowSize)
    , m_pieceSize(pieceSize)
    , m_output(new char[pieceSize])
    , m_previous(new char[pieceSize])
{}

void ContentReader::begin(const ArchiveEntry& entry)
{
    m_entry = &entry;
    m_consumed = 0;
    m_produced = 0;
    m_crc32 = 0;
    // A content without data is complete whatever its method.
    m_isAtEnd = entry.packedSize == 0;
    if (entry.packedSize < 0 || entry.packedSize > m_dataEnd - entry.dataBegin) {
        failOver("lies outside the archive");
    }
    m_inflater.begin();
}

ByteView ContentReader::next()
{
    const ByteView piece = nextPiece();
    if (static_cast<qint64>(piece.size()) > m_entry->size - m_produced) {
        failOver("holds more than it declares");
    }
    m_produced += static_cast<qint64>(piece.size());
    m_crc32 = crc32(piece, m_crc32);
    if (piece.empty() && m_produced != m_entry->size) {
        failOver("holds less than it declares");
    }
    if (piece.empty() && m_consumed != m_entry->packedSize) {
        failOver("has something behind its content");
    }
    if (piece.empty() && m_crc32 != m_entry->crc32) {
        refuse(m_entry->name, "is damaged: its checksum is wrong");
    }
    return piece;
}

ByteView ContentReader::nextPiece()
{
    m_output.swap(m_previous);
    size_t filled = 0;
    while (!m_isAtEnd && filled < m_pieceSize) {
        const qint64 left = m_entry->packedSize - m_consumed;
        ByteView input =
            left > 0 ? m_window.at(m_entry->dataBegin + m_consumed, 1, left) : ByteView();
        if (m_entry->method == ArchiveEntry::Stored) {
            const size_t count = input.copy(m_output.get() + filled, m_pieceSize - filled);
            filled += count;
            m_consumed += static_cast<qint64>(count);
            m_isAtEnd = m_consumed == m_entry->packedSize;
            continue;
        }
        const size_t given = input.size();
        size_t produced = 0;
        const Inflater::Result result =
            m_inflater.step(input, m_output.get() + filled, m_pieceSize - filled, produced);
        filled += produced;
        m_consumed += static_cast<qint64>(given - input.size());
        if (result == Inflater::AtEnd) {
            m_isAtEnd = true;
            m_consumed = m_inflater.consumed();
        }
        if (result == Inflater::Damaged) {
            failOver("is not a sound deflate stream");
        }
        if (result == Inflater::NeedsInput && left == 0 && produced == 0) {
            failOver("ends too early");
        }
    }
    return {m_output.get(), filled};
}

void ContentReader::failOver(const char* flaw) const
{
    failAsDamaged(quoted(m_entry->name) + QLatin1Char(' ') + QLatin1String(flaw));
}

} // namespace vx
