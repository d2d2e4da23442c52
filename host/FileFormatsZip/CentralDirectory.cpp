#include "host/FileFormatsZip/CentralDirectory.h"

#include <QtEndian>

#include <algorithm>
#include <cstring>
#include <sys/stat.h>

#include "host/FileFormatsZip/ArchiveFile.h"
#include "host/FileFormatsZip/Checksum.h"
#include "host/FileFormatsZip/EntryName.h"
#include "host/FileFormatsZip/Failure.h"

namespace vx {

namespace {

constexpr char endSignature[] = "PK\5\6";
constexpr char end64Signature[] = "PK\6\6";
constexpr char locatorSignature[] = "PK\6\7";
constexpr char recordSignature[] = "PK\1\2";

constexpr qint64 endLength = 22;
constexpr qint64 end64Length = 56;
constexpr qint64 locatorLength = 20;
constexpr int recordLength = 46;

// libarchive looks for the end record here and no further; a longer comment makes it find none.
constexpr qint64 searchedTail = 16 * 1024;
constexpr qint64 mostBytes = 512 * 1024 * 1024;

constexpr quint16 unicodePathId = 0x7075;
constexpr quint8 madeOnDos = 0;
constexpr quint8 madeOnUnix = 3;

template <typename T>
T number(const QByteArray& bytes, qint64 at)
{
    return qFromLittleEndian<T>(bytes.constData() + at);
}

bool isAt(const QByteArray& bytes, qint64 at, const char* signature)
{
    return at >= 0 && at + 4 <= bytes.size() &&
           std::memcmp(bytes.constData() + at, signature, 4) == 0;
}

/** Where the directory lies, and how many records it announces. */
struct Extent
{
    quint64 offset = 0;
    quint64 length = 0;
    quint64 count = 0;
    bool countIsWhole = true;
};

/** The end record is the last one whose signature stands in the tail. */
qint64 findEnd(const QByteArray& tail)
{
    for (qint64 at = tail.size() - endLength; at >= 0; --at) {
        if (isAt(tail, at, endSignature)) {
            return at;
        }
    }
    fail(QStringLiteral("The file is not a ZIP archive, or it is incomplete."));
}

Extent readZip64End(const ArchiveFile& file, quint64 end)
{
    if (end > static_cast<quint64>(file.size() - end64Length)) {
        failAsDamaged(QStringLiteral("its end record lies outside"));
    }
    const QByteArray bytes = file.bytesAt(static_cast<qint64>(end), end64Length);
    if (!isAt(bytes, 0, end64Signature)) {
        failAsDamaged(QStringLiteral("its end record is missing"));
    }
    Extent extent;
    extent.count = number<quint64>(bytes, 32);
    extent.length = number<quint64>(bytes, 40);
    extent.offset = end - extent.length;
    return extent;
}

Extent readEnd(const QByteArray& tail, qint64 at, quint64 end)
{
    Extent extent;
    extent.count = number<quint16>(tail, at + 10);
    extent.length = number<quint32>(tail, at + 12);
    // Counted back from the end, so that something in front of the archive does no harm.
    extent.offset = end - extent.length;
    extent.countIsWhole = false;
    return extent;
}

Extent findDirectory(const ArchiveFile& file)
{
    const qint64 tailLength = std::min(file.size(), searchedTail);
    const QByteArray tail = file.bytesAt(file.size() - tailLength, tailLength);
    const qint64 at = findEnd(tail);
    const auto end = static_cast<quint64>(file.size() - tailLength + at);
    const Extent extent = isAt(tail, at - locatorLength, locatorSignature)
                              ? readZip64End(file, number<quint64>(tail, at - locatorLength + 8))
                              : readEnd(tail, at, end);
    // An offset that was counted back beyond the beginning has wrapped round.
    if (extent.offset > end) {
        failAsDamaged(QStringLiteral("its directory lies outside"));
    }
    if (extent.count > CentralDirectory::mostEntries ||
        extent.length > static_cast<quint64>(mostBytes)) {
        fail(QStringLiteral("The archive is refused: it holds more than %1 entries.")
                 .arg(CentralDirectory::mostEntries));
    }
    return extent;
}

/** Info-ZIP writes the name a second time, in UTF-8, with a checksum of the first. */
QByteArray unicodePath(const QByteArray& raw, const QByteArray& extra)
{
    int at = 0;
    while (at + 4 <= extra.size()) {
        const auto id = number<quint16>(extra, at);
        const int length = number<quint16>(extra, at + 2);
        at += 4;
        if (id == unicodePathId && length > 5 && at + length <= extra.size() &&
            number<quint32>(extra, at + 1) == crc32(raw)) {
            return extra.mid(at + 5, length - 5);
        }
        at += length;
    }
    return raw;
}

bool isSpecial(quint8 system, quint32 attributes)
{
    const mode_t type = (attributes >> 16) & S_IFMT;
    return system == madeOnUnix && type != 0 && type != S_IFREG && type != S_IFDIR &&
           type != S_IFLNK;
}

DirectoryRecord recordAt(const QByteArray& bytes, int at)
{
    const int nameLength = number<quint16>(bytes, at + 28);
    const int extraLength = number<quint16>(bytes, at + 30);
    const auto system = static_cast<quint8>(bytes.at(at + 5));
    const QByteArray raw = bytes.mid(at + recordLength, nameLength);
    DirectoryRecord record;
    record.name =
        decodeName(unicodePath(raw, bytes.mid(at + recordLength + nameLength, extraLength)));
    record.crc32 = number<quint32>(bytes, at + 16);
    record.isSpecial = isSpecial(system, number<quint32>(bytes, at + 38));
    if (system == madeOnDos && !record.name.contains(QLatin1Char('/'))) {
        record.name.replace(QLatin1Char('\\'), QLatin1Char('/'));
    }
    return record;
}

int lengthOfRecordAt(const QByteArray& bytes, int at)
{
    if (!isAt(bytes, at, recordSignature) || at + recordLength > bytes.size()) {
        failAsDamaged(QStringLiteral("its directory is not readable"));
    }
    const int length = recordLength + number<quint16>(bytes, at + 28) +
                       number<quint16>(bytes, at + 30) + number<quint16>(bytes, at + 32);
    if (length > bytes.size() - at) {
        failAsDamaged(QStringLiteral("its directory ends too early"));
    }
    return length;
}

bool isAnnounced(int count, const Extent& extent)
{
    // Without Zip64 the count has 16 bits, and writers that know no Zip64 let it overflow.
    return extent.countIsWhole ? static_cast<quint64>(count) == extent.count
                               : static_cast<quint16>(count) == extent.count;
}

} // namespace

CentralDirectory::CentralDirectory(const ArchiveFile& file)
{
    const Extent extent = findDirectory(file);
    const QByteArray bytes =
        file.bytesAt(static_cast<qint64>(extent.offset), static_cast<qint64>(extent.length));
    for (int at = 0; at < bytes.size();) {
        const int length = lengthOfRecordAt(bytes, at);
        insert(recordAt(bytes, at));
        at += length;
    }
    if (!isAnnounced(count(), extent)) {
        failAsDamaged(QStringLiteral("its directory announces another number of entries"));
    }
}

void CentralDirectory::insert(const DirectoryRecord& record)
{
    if (record.name.contains(QChar(QChar::Null))) {
        refuse(record.name, QStringLiteral("has a name with control characters"));
    }
    const QString key = nameKey(record.name);
    if (m_records.contains(key)) {
        refuse(record.name, QStringLiteral("is contained twice"));
    }
    m_records.insert(key, record);
    if (static_cast<quint64>(count()) > mostEntries) {
        fail(QStringLiteral("The archive is refused: it holds more than %1 entries.")
                 .arg(mostEntries));
    }
}

const DirectoryRecord* CentralDirectory::find(const QString& name) const
{
    const auto found = m_records.constFind(nameKey(name));
    return found == m_records.constEnd() ? nullptr : &*found;
}

} // namespace vx
