#include "host/FileFormatsZip/internal/read/Inflater.h"

#include <isa-l/crc.h>
#include <isa-l/igzip_lib.h>

#include <algorithm>

namespace vx {

namespace {

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

Inflater::Inflater()
    : m_state(std::make_unique<inflate_state>())
{
    begin();
}

Inflater::~Inflater() = default;

void Inflater::begin()
{
    isal_inflate_init(m_state.get());
    m_state->crc_flag = ISAL_DEFLATE;
    m_takenIn = 0;
}

Inflater::Result Inflater::step(ByteView& input, char* output, size_t room, size_t& produced)
{
    inflate_state& state = *m_state;
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
    return m_takenIn - m_state->read_in_length / 8;
}

} // namespace vx
