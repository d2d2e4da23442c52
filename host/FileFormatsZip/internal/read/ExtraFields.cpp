#include "host/FileFormatsZip/internal/read/ExtraFields.h"

#include <limits>

#include "host/FileFormatsZip/internal/Failure.h"
#include "host/FileFormatsZip/internal/read/Inflater.h"

namespace vx {

namespace {

constexpr size_t fieldHeader = 4;

enum FieldId : quint16 {
    Zip64 = 0x0001,
    InfoZipTimes = 0x5455,    // "UT"
    OldInfoZipTimes = 0x5855, // "UX"
    UnicodePath = 0x7075,
    Aes = 0x9901
};

[[noreturn]] void failOverField()
{
    failAsDamaged(QStringLiteral("an extra field is not readable"));
}

/** The field holds, in this order, only those numbers that have no room in the header. */
void readZip64(ByteView field, EntryExtent& extent)
{
    for (quint64* const value : {&extent.size, &extent.packedSize, &extent.offset}) {
        if (*value != EntryExtent::elsewhere) {
            continue;
        }
        if (field.size() < sizeof(quint64) ||
            number<quint64>(field, 0) > std::numeric_limits<qint64>::max()) {
            failOverField();
        }
        *value = number<quint64>(field, 0);
        field.remove_prefix(sizeof(quint64));
    }
}

/** The first byte tells which times follow; that of the last modification is the first of them. */
void readTimes(ByteView field, ExtraFields& fields)
{
    if (field.empty()) {
        failOverField();
    }
    if ((field[0] & 1) != 0 && field.size() >= 5) {
        fields.modified = number<quint32>(field, 1);
    }
}

void readUnicodePath(ByteView field, ByteView rawName, ExtraFields& fields)
{
    if (!fields.name && field.size() >= 5 && number<quint32>(field, 1) == crc32(rawName)) {
        const ByteView name = field.substr(5);
        fields.name = QByteArray(name.data(), static_cast<int>(name.size()));
    }
}

void readField(quint16 id, ByteView field, ByteView rawName, EntryExtent& extent,
               ExtraFields& fields)
{
    switch (id) {
    case Zip64:
        readZip64(field, extent);
        break;
    case InfoZipTimes:
        readTimes(field, fields);
        break;
    case OldInfoZipTimes:
        if (field.size() >= 8) {
            fields.modified = number<quint32>(field, 4);
        }
        break;
    case UnicodePath:
        readUnicodePath(field, rawName, fields);
        break;
    case Aes:
        if (field.size() < 6) {
            failOverField();
        }
        break;
    default:
        break;
    }
}

} // namespace

ExtraFields readExtraFields(ByteView extra, ByteView rawName, EntryExtent& extent)
{
    ExtraFields fields;
    // Some writers fill up with less than a field; only where that is all there is, it must be 0.
    if (extra.size() < fieldHeader && extra.find_first_not_of('\0') != ByteView::npos) {
        failOverField();
    }
    while (extra.size() >= fieldHeader) {
        const size_t length = number<quint16>(extra, 2);
        if (length > extra.size() - fieldHeader) {
            failOverField();
        }
        readField(number<quint16>(extra, 0), extra.substr(fieldHeader, length), rawName, extent,
                  fields);
        extra.remove_prefix(fieldHeader + length);
    }
    return fields;
}

} // namespace vx
