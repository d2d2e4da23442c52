#pragma once

#include <sodium.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace vx {

/** Decodes @p text if it is exactly the base64 form of @p size bytes, padding included. */
inline bool decodeBase64(std::string_view text, std::uint8_t* bytes, std::size_t size)
{
    // libsodium 1.0.18 takes some bytes beyond ASCII for letters.
    const auto isAscii = [](char c) { return static_cast<unsigned char>(c) < 0x80; };
    if (!std::all_of(text.begin(), text.end(), isAscii)) {
        return false;
    }
    std::size_t decoded = 0;
    const char* end = nullptr;
    const int failed = sodium_base642bin(bytes, size, text.data(), text.size(), nullptr, &decoded,
                                         &end, sodium_base64_VARIANT_ORIGINAL);
    return failed == 0 && decoded == size && end == text.data() + text.size();
}

} // namespace vx
