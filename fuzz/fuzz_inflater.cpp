// Inflates the input, in pieces of sizes that its first two bytes give, and compares with zlib.
//
// What zlib inflates must come out here byte for byte, from as many bytes of input. What zlib
// refuses must be refused, but for code tables with unused codes, which only zlib looks for: there,
// as everywhere, size and checksum decide.

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <zlib.h>

#include "host/FileFormatsZip/internal/read/ContentReader.h"

namespace {

constexpr size_t mostOutput = 1 << 16;

struct Outcome
{
    bool isComplete = false;
    bool isLarge = false;
    std::string output;
    size_t consumed = 0;
    const char* message = "";
};

Outcome inflateWithZlib(vx::ByteView input)
{
    Outcome outcome;
    // One stream for all inputs: to make it takes longer than to inflate most of them.
    static z_stream stream = {};
    static const bool isReady = inflateInit2(&stream, -MAX_WBITS) == Z_OK;
    if (!isReady || inflateReset(&stream) != Z_OK) {
        std::abort();
    }
    static char output[mostOutput];
    stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(input.data()));
    stream.avail_in = static_cast<uInt>(input.size());
    stream.next_out = reinterpret_cast<Bytef*>(output);
    stream.avail_out = static_cast<uInt>(mostOutput);
    outcome.isComplete = inflate(&stream, Z_FINISH) == Z_STREAM_END;
    outcome.isLarge = !outcome.isComplete && stream.avail_out == 0;
    outcome.output.assign(output, mostOutput - stream.avail_out);
    outcome.consumed = input.size() - stream.avail_in;
    outcome.message = stream.msg != nullptr ? stream.msg : "";
    return outcome;
}

Outcome inflateHere(vx::ByteView input, size_t inputPiece, size_t outputPiece)
{
    static vx::Inflater inflater;
    inflater.begin();
    Outcome outcome;
    static char piece[1 << 12];
    for (;;) {
        vx::ByteView given = input.substr(0, inputPiece);
        const size_t size = given.size();
        size_t produced = 0;
        const auto result = inflater.step(given, piece, outputPiece, produced);
        input.remove_prefix(size - given.size());
        outcome.output.append(piece, produced);
        outcome.isLarge = outcome.output.size() > mostOutput;
        outcome.isComplete = result == vx::Inflater::AtEnd;
        const bool isStuck = result == vx::Inflater::NeedsInput && input.empty() && produced == 0;
        if (outcome.isComplete || result == vx::Inflater::Damaged || isStuck || outcome.isLarge) {
            outcome.consumed = static_cast<size_t>(inflater.consumed());
            return outcome;
        }
    }
}

bool isAboutUnusedCodes(const char* message)
{
    return std::strstr(message, "invalid code lengths set") != nullptr ||
           std::strstr(message, "invalid literal/lengths set") != nullptr ||
           std::strstr(message, "invalid distances set") != nullptr ||
           std::strstr(message, "missing end-of-block") != nullptr ||
           std::strstr(message, "too many length or distance symbols") != nullptr;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size < 2) {
        return 0;
    }
    const vx::ByteView input(reinterpret_cast<const char*>(data) + 2, size - 2);
    const Outcome expected = inflateWithZlib(input);
    const Outcome outcome = inflateHere(input, 1U + data[0], 1U + data[1] * 15U);
    if (expected.isLarge || outcome.isLarge) {
        return 0;
    }
    const bool isSame = outcome.isComplete == expected.isComplete &&
                        (!expected.isComplete || (outcome.output == expected.output &&
                                                  outcome.consumed == expected.consumed));
    if (!isSame && !(outcome.isComplete && isAboutUnusedCodes(expected.message))) {
        std::fprintf(stderr, "here %d, %zu from %zu; zlib %d, %zu from %zu %s\n",
                     outcome.isComplete, outcome.output.size(), outcome.consumed,
                     expected.isComplete, expected.output.size(), expected.consumed,
                     expected.message);
        std::abort();
    }
    return 0;
}
