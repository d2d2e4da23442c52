#include "host/FileFormatsZip/internal/read/LocalHeader.h"

#include <sys/stat.h>

#include "host/FileFormatsZip/internal/Failure.h"
#include "host/FileFormatsZip/internal/read/EntryName.h"
#include "host/FileFormatsZip/internal/read/FileWindow.h"

namespace vx {

namespace {

constexpr ByteView headerSignature = "PK\3\4";
constexpr int headerLength = 30;

enum Flag : quint16 { Encrypted = 0x0001, StronglyEncrypted = 0x0040, NameInUtf8 = 0x0800 };

[[noreturn]] void failOver(const char* what)
{
    failAsDamaged(
        QStringLiteral("its directory and its entries disagree about %1").arg(QLatin1String(what)));
}

/** The header with all that belongs to it. */
ByteView headerAt(FileWindow& window, qint64 begin)
{
    const ByteView header = window.all(begin, headerLength);
    if (!hasSignature(header, 0, headerSignature)) {
        failAsDamaged(QStringLiteral("the header of an entry is missing"));
    }
    return window.all(begin,
                      headerLength + number<quint16>(header, 26) + number<quint16>(header, 28));
}

void requireName(ByteView raw, const ExtraFields& fields, bool isInUtf8,
                 const DirectoryRecord& record)
{
    if ((isInUtf8 && !isUtf8(raw)) || (fields.name && !isUtf8(viewOf(*fields.name)))) {
        failAsDamaged(QStringLiteral("a name is not in UTF-8, which it claims"));
    }
    QString name = decodeName(fields.name ? viewOf(*fields.name) : raw);
    if (raw.find('\0') != ByteView::npos || nameKey(name) != nameKey(record.name)) {
        failOver("names");
    }
    if (!name.contains(QLatin1Char('/'))) {
        name.replace(QLatin1Char('\\'), QLatin1Char('/'));
    }
    if ((name.endsWith(QLatin1Char('/')) || S_ISDIR(record.mode)) != record.isFolder) {
        failOver("names");
    }
}

/** What was not known when the header was written is 0, or full of ones, and stands behind. */
void requireSame(quint64 here, quint64 inDirectory, const char* what)
{
    if (here != 0 && here != EntryExtent::elsewhere && here != inDirectory) {
        failOver(what);
    }
}

/** The time of DOS, which is local and has steps of two seconds. */
std::time_t dosTime(quint16 time, quint16 date)
{
    std::tm parts = {};
    parts.tm_year = (date >> 9) + 80;
    parts.tm_mon = ((date >> 5) & 0x0F) - 1;
    parts.tm_mday = date & 0x1F;
    parts.tm_hour = time >> 11;
    parts.tm_min = (time >> 5) & 0x3F;
    parts.tm_sec = (time & 0x1F) * 2;
    parts.tm_isdst = -1;
    return std::mktime(&parts);
}

} // namespace

LocalHeader readLocalHeader(FileWindow& window, qint64 begin, const DirectoryRecord& record)
{
    const ByteView header = headerAt(window, begin);
    const auto flags = number<quint16>(header, 6);
    const ByteView rawName = header.substr(headerLength, number<quint16>(header, 26));
    EntryExtent extent;
    extent.packedSize = number<quint32>(header, 18);
    extent.size = number<quint32>(header, 22);
    const ExtraFields fields =
        readExtraFields(header.substr(headerLength + rawName.size()), rawName, extent);
    requireName(rawName, fields, (flags & NameInUtf8) != 0, record);
    const auto crc32 = number<quint32>(header, 14);
    if (crc32 != 0 && crc32 != record.crc32) {
        failOver("checksums");
    }
    requireSame(extent.packedSize, record.extent.packedSize, "sizes");
    requireSame(extent.size, record.extent.size, "sizes");

    LocalHeader local;
    local.dataBegin = begin + static_cast<qint64>(header.size());
    // The upper byte of the method is not used by any.
    local.method = static_cast<quint8>(number<quint16>(header, 8));
    local.isEncrypted = (flags & (Encrypted | StronglyEncrypted)) != 0;
    local.modified = fields.modified
                         ? static_cast<std::time_t>(*fields.modified)
                         : dosTime(number<quint16>(header, 10), number<quint16>(header, 12));
    return local;
}

} // namespace vx
