#pragma once

#include <QByteArray>

#include <optional>

#include "host/FileFormatsZip/internal/read/Bytes.h"

namespace vx {

/** The three numbers of an entry that have 32 bits in its header, and 64 in a field behind it. */
struct EntryExtent
{
    static constexpr quint64 elsewhere = 0xFFFFFFFF; ///< the value that points to the field

    quint64 size = 0;
    quint64 packedSize = 0;
    quint64 offset = 0; ///< where the entry begins, from the beginning of the archive
};

/** What the extra fields of a header say, as far as it matters here. */
struct ExtraFields
{
    std::optional<QByteArray> name;  ///< in UTF-8, in place of that of the header
    std::optional<quint32> modified; ///< seconds since 1970
};

/**
 * Reads the extra fields of a header: Zip64 (PKWARE's APPNOTE.TXT, 4.5.3), the name in UTF-8
 * (4.6.9) and the times that Info-ZIP's programs write ("UT" and "UX" in the file extrafld.txt of
 * zip). Others are passed over. Throws IOException where the fields have no sound form.
 *
 * @param extra  the fields.
 * @param rawName the name in the header, whose checksum an UTF-8 name must carry to count.
 * @param extent completed from the field of Zip64.
 */
ExtraFields readExtraFields(ByteView extra, ByteView rawName, EntryExtent& extent);

} // namespace vx
