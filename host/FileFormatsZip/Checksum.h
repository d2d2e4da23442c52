#pragma once

#include <QByteArray>

namespace vx {

/**
 * The CRC-32 of ZIP (reflected polynomial 0xEDB88320). Meant for names and link targets: it goes
 * bit by bit. The checksums of contents are libarchive's business.
 */
quint32 crc32(const QByteArray& bytes);

} // namespace vx
