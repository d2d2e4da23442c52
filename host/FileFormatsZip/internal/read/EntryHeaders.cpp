#include "host/FileFormatsZip/internal/read/Archive.h"

#include <limits>
#include <optional>
#include <sys/stat.h>

#include "host/FileFormatsZip/internal/Failure.h"
#include "host/FileFormatsZip/internal/read/ContentReader.h"
#include "host/FileFormatsZip/internal/read/EntryName.h"

namespace vx {

namespace {

constexpr ByteView recordSignature = "PK\1\2";
constexpr size_t recordLength = 46;
constexpr ByteView headerSignature = "PK\3\4";
constexpr size_t headerLength = 30;
constexpr size_t extraFieldHeader = 4;

// The value of a number that is too large for the header and stands in the extra field of Zip64.
constexpr quint64 elsewhere = 0xFFFFFFFF;

enum MadeOn : quint8 { Dos = 0, Unix = 3 };
constexpr quint32 dosReadOnly = 0x01;
constexpr quint32 dosFolder = 0x10;

enum Flag : quint16 { Encrypted = 0x0001, StronglyEncrypted = 0x0040, NameInUtf8 = 0x0800 };

enum FieldId : quint16 {
    Zip64 = 0x0001,
    InfoZipTimes = 0x5455,    // "UT"
    OldInfoZipTimes = 0x5855, // "UX"
    UnicodePath = 0x7075,
    Aes = 0x9901
};

/** What both headers of an entry hold, their extra fields included. */
struct CommonHeader
{
    ByteView rawName;
    std::optional<ByteView> unicodeName; ///< in UTF-8, in place of the raw one
    std::optional<quint32> modified;     ///< seconds since 1970
    quint32 crc32 = 0;
    quint64 size = 0;
    quint64 packedSize = 0;
    quint64 begin = 0; ///< of the entry, in its record only

    QString name() const { return decodeName(unicodeName.value_or(rawName)); }
};

[[noreturn]] void failOverField()
{
    failAsDamaged(QStringLiteral("an extra field is not readable"));
}

[[noreturn]] void failOver(const char* what)
{
    failAsDamaged(
        QStringLiteral("its directory and its entries disagree about %1").arg(QLatin1String(what)));
}

/** The field holds, in this order, only those numbers that have no room in the header. */
void readZip64(ByteView field, CommonHeader& header)
{
    for (quint64* const value : {&header.size, &header.packedSize, &header.begin}) {
        if (*value != elsewhere) {
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

void readExtraField(quint16 id, ByteView field, CommonHeader& header)
{
    if (id == Zip64) {
        readZip64(field, header);
    } else if ((id == InfoZipTimes && field.empty()) || (id == Aes && field.size() < 6)) {
        failOverField();
    } else if (id == InfoZipTimes && (field[0] & 1) != 0 && field.size() >= 5) {
        // The first byte tells which times follow; that of the last change is the first of them.
        header.modified = number<quint32>(field, 1);
    } else if (id == OldInfoZipTimes && field.size() >= 8) {
        header.modified = number<quint32>(field, 4);
    } else if (id == UnicodePath && !header.unicodeName && field.size() >= 5 &&
               number<quint32>(field, 1) == crc32(header.rawName)) {
        header.unicodeName = field.substr(5);
    }
}

void readExtraFields(ByteView extra, CommonHeader& header)
{
    // Some writers fill up with less than a field; only where that is all there is, it must be 0.
    if (extra.size() < extraFieldHeader && extra.find_first_not_of('\0') != ByteView::npos) {
        failOverField();
    }
    while (extra.size() >= extraFieldHeader) {
        const size_t length = number<quint16>(extra, 2);
        if (length > extra.size() - extraFieldHeader) {
            failOverField();
        }
        readExtraField(number<quint16>(extra, 0), extra.substr(extraFieldHeader, length), header);
        extra.remove_prefix(extraFieldHeader + length);
    }
}

/** Reads a header of @p fixedLength bytes whose checksum stands at @p at, with what follows it. */
CommonHeader readCommonHeader(ByteView bytes, size_t fixedLength, size_t at, quint32 begin)
{
    CommonHeader header;
    header.crc32 = number<quint32>(bytes, at);
    header.packedSize = number<quint32>(bytes, at + 4);
    header.size = number<quint32>(bytes, at + 8);
    header.begin = begin;
    header.rawName = bytes.substr(fixedLength, number<quint16>(bytes, at + 12));
    readExtraFields(
        bytes.substr(fixedLength + header.rawName.size(), number<quint16>(bytes, at + 14)), header);
    return header;
}

/** What stat() would have said where the entry was packed, as far as that is known. */
unsigned modeOf(quint8 system, quint32 attributes)
{
    const unsigned dosMode = (attributes & dosFolder) != 0 ? S_IFDIR | 0775U : S_IFREG | 0664U;
    return system == Unix  ? attributes >> 16
           : system != Dos ? 0
                           : dosMode & ~((attributes & dosReadOnly) != 0 ? 0222U : 0);
}

/** The same without setuid, setgid and sticky bit, and with permissions where there were none. */
unsigned cleanMode(unsigned mode, bool isFolder)
{
    // Where only the slash says that this is a folder, the mode may not have been meant for one.
    const unsigned added = isFolder && !S_ISDIR(mode) ? 0111 : 0;
    return (mode & S_IFMT) | (((mode != 0 ? mode : 0664) | added) & 0777U);
}

ArchiveEntry::Kind kindOf(unsigned mode, bool isFolder, quint64 size)
{
    const mode_t type = mode & S_IFMT;
    // What zip packs from a pipe carries the pipe's type and the content that came through it.
    const bool isFromPipe = type == S_IFIFO && size > 0;
    const bool isKnown = type == 0 || type == S_IFREG || type == S_IFDIR || type == S_IFLNK;
    return !isKnown && !isFromPipe ? ArchiveEntry::Special
           : isFolder              ? ArchiveEntry::Folder
           : type == S_IFLNK       ? ArchiveEntry::Link
                                   : ArchiveEntry::File;
}

bool isFolder(const QString& name, unsigned mode)
{
    return S_ISDIR(mode) || name.endsWith(QLatin1Char('/'));
}

void requireName(const CommonHeader& header, bool isInUtf8, const ArchiveEntry& entry)
{
    if ((isInUtf8 && !isUtf8(header.rawName)) ||
        (header.unicodeName && !isUtf8(*header.unicodeName))) {
        failAsDamaged(QStringLiteral("a name is not in UTF-8, which it claims"));
    }
    QString name = header.name();
    if (header.rawName.find('\0') != ByteView::npos || nameKey(name) != nameKey(entry.name)) {
        failOver("names");
    }
    if (!name.contains(QLatin1Char('/'))) {
        name.replace(QLatin1Char('\\'), QLatin1Char('/'));
    }
    if (isFolder(name, entry.mode) != isFolder(entry.name, entry.mode)) {
        failOver("names");
    }
}

/** What was not known when the header was written is 0, or full of ones, and stands behind. */
void requireSame(quint64 here, qint64 inDirectory, const char* what)
{
    if (here != 0 && here != elsewhere && here != static_cast<quint64>(inDirectory)) {
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

/**
 * Takes the record of an entry, which is what other programs show of it, from the beginning of
 * @p directory. Layout: PKWARE's APPNOTE.TXT, 4.3.12, 4.4, 4.5.3 and 4.6.9; the times that
 * Info-ZIP's programs write ("UT" and "UX") are in the file extrafld.txt of zip.
 */
ArchiveEntry Archive::takeRecord(ByteView& directory)
{
    if (!hasSignature(directory, 0, recordSignature) || directory.size() < recordLength) {
        failAsDamaged(QStringLiteral("its directory is not readable"));
    }
    const size_t length = recordLength + number<quint16>(directory, 28) +
                          number<quint16>(directory, 30) + number<quint16>(directory, 32);
    if (length > directory.size()) {
        failAsDamaged(QStringLiteral("its directory ends too early"));
    }
    const ByteView bytes = directory.substr(0, length);
    directory.remove_prefix(length);
    const auto header = readCommonHeader(bytes, recordLength, 16, number<quint32>(bytes, 42));
    ArchiveEntry entry;
    entry.name = header.name();
    const auto system = static_cast<quint8>(bytes[5]);
    if (system == Dos && !entry.name.contains(QLatin1Char('/'))) {
        entry.name.replace(QLatin1Char('\\'), QLatin1Char('/'));
    }
    const unsigned mode = modeOf(system, number<quint32>(bytes, 38));
    entry.mode = cleanMode(mode, isFolder(entry.name, mode));
    entry.kind = kindOf(mode, isFolder(entry.name, mode), header.size);
    entry.begin = static_cast<qint64>(header.begin);
    entry.packedSize = static_cast<qint64>(header.packedSize);
    entry.size = static_cast<qint64>(header.size);
    entry.crc32 = header.crc32;
    return entry;
}

/**
 * Completes @p entry from the header in front of its data (4.3.7), and holds that against the
 * record: names, kind, sizes and checksum must be the same, so that nothing is unpacked that a
 * listing of the archive would not show.
 */
void Archive::readLocalHeader(FileWindow& window, qint64 archiveBegin, ArchiveEntry& entry)
{
    // It may wrap around, to a place where no header is.
    const auto begin =
        static_cast<qint64>(static_cast<quint64>(archiveBegin) + static_cast<quint64>(entry.begin));
    ByteView bytes = window.at(begin, headerLength, headerLength);
    if (!hasSignature(bytes, 0, headerSignature)) {
        failAsDamaged(QStringLiteral("the header of an entry is missing"));
    }
    const size_t length = headerLength + number<quint16>(bytes, 26) + number<quint16>(bytes, 28);
    bytes = window.at(begin, static_cast<qint64>(length), static_cast<qint64>(length));
    const auto flags = number<quint16>(bytes, 6);
    const CommonHeader header = readCommonHeader(bytes, headerLength, 14, 0);
    requireName(header, (flags & NameInUtf8) != 0, entry);
    if (header.crc32 != 0 && header.crc32 != entry.crc32) {
        failOver("checksums");
    }
    requireSame(header.packedSize, entry.packedSize, "sizes");
    requireSame(header.size, entry.size, "sizes");
    entry.dataBegin = begin + static_cast<qint64>(length);
    // The upper byte of the method is not used by any.
    entry.method = static_cast<quint8>(number<quint16>(bytes, 8));
    entry.isEncrypted = (flags & (Encrypted | StronglyEncrypted)) != 0;
    entry.modified = header.modified
                         ? static_cast<std::time_t>(*header.modified)
                         : dosTime(number<quint16>(bytes, 10), number<quint16>(bytes, 12));
    if (entry.kind == ArchiveEntry::Folder && !entry.name.endsWith(QLatin1Char('/'))) {
        entry.name += QLatin1Char('/');
    }
}

} // namespace vx
