#include "host/FileFormatsZip/Checksum.h"

namespace vx {

quint32 crc32(const QByteArray& bytes)
{
    quint32 crc = ~0U;
    for (const char c : bytes) {
        crc ^= static_cast<unsigned char>(c);
        for (int bit = 0; bit < 8; ++bit) {
            crc = (crc >> 1) ^ ((crc & 1U) != 0 ? 0xEDB88320U : 0U);
        }
    }
    return ~crc;
}

} // namespace vx
