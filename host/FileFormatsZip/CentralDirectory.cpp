#include "host/FileFormatsZip/CentralDirectory.h"

#include <algorithm>
#include <sys/stat.h>

#include "host/FileFormatsZip/ArchiveFile.h"
#include "host/FileFormatsZip/Bytes.h"
#include "host/FileFormatsZip/Checksum.h"
#include "host/FileFormatsZip/EntryName.h"
#include "host/FileFormatsZip/Failure.h"

namespace vx {

namespace {

constexpr char recordSignature[] = "PK\1\2";
constexpr int recordLength = 46;
constexpr qint64 mostBytes = 512LL * 1024 * 1024;

constexpr quint16 zip64Id = 1;
constexpr quint16 unicodePathId = 0x7075;
constexpr quint32 inZip64 = 0xFFFFFFFF;
constexpr quint8 madeOnDos = 0;
constexpr quint8 madeOnUnix = 3;
constexpr quint32 dosFolder = 0x10;

[[noreturn]] void refuseAsTooLarge()
{
    fail(QStringLiteral("The archive is refused: it holds more than %1 entries.")
             .arg(CentralDirectory::mostEntries));
}

QByteArray readRecords(const ArchiveFile& file, const DirectoryExtent& extent)
{
    if (extent.count > CentralDirectory::mostEntries || extent.length > mostBytes) {
        refuseAsTooLarge();
    }
    return file.bytesAt(extent.begin, extent.length);
}

/** The data of the first extra field of that id, or nothing. */
QByteArray extraField(const QByteArray& extra, quint16 id)
{
    int at = 0;
    while (at + 4 <= extra.size()) {
        const int length = number<quint16>(extra, at + 2);
        if (number<quint16>(extra, at) == id && at + 4 + length <= extra.size()) {
            return extra.mid(at + 4, length);
        }
        at += 4 + length;
    }
    return {};
}

/** Info-ZIP writes the name a second time, in UTF-8, with a checksum of the first. */
QByteArray unicodePath(const QByteArray& raw, const QByteArray& extra)
{
    const QByteArray field = extraField(extra, unicodePathId);
    return field.size() > 5 && number<quint32>(field, 1) == crc32(raw) ? field.mid(5) : raw;
}

/** The field of Zip64 holds only those of the two sizes and the offset that have no room. */
quint64 dataOffset(const QByteArray& records, int at, const QByteArray& extra)
{
    const auto offset = number<quint32>(records, at + 42);
    if (offset != inZip64) {
        return offset;
    }
    const QByteArray field = extraField(extra, zip64Id);
    int place = 0;
    for (const int size : {24, 20}) {
        place += number<quint32>(records, at + size) == inZip64 ? 8 : 0;
    }
    return place + 8 <= field.size() ? number<quint64>(field, place) : offset;
}

bool isFolder(quint8 system, quint32 attributes)
{
    return (system == madeOnUnix && ((attributes >> 16) & S_IFMT) == S_IFDIR) ||
           (system == madeOnDos && (attributes & dosFolder) != 0);
}

bool isSpecial(quint8 system, quint32 attributes)
{
    const mode_t type = (attributes >> 16) & S_IFMT;
    return system == madeOnUnix && type != 0 && type != S_IFREG && type != S_IFDIR &&
           type != S_IFLNK;
}

} // namespace

CentralDirectory::CentralDirectory(const ArchiveFile& file, const std::atomic<bool>& canceled)
    : m_extent(findDirectory(file))
    , m_bytes(readRecords(file, m_extent))
{
    QSet<QString> keys;
    for (int at = 0; at < m_bytes.size();) {
        if (canceled) {
            return;
        }
        const DirectoryRecord record = recordAt(at);
        add(record, keys);
        at += record.range.length;
    }
    requireCount();
    std::stable_sort(
        m_records.begin(), m_records.end(),
        [](const DirectoryRecord& a, const DirectoryRecord& b) { return a.offset < b.offset; });
}

QByteArray CentralDirectory::bytesOf(const std::vector<RecordRange>& records) const
{
    QByteArray bytes;
    for (const RecordRange& record : records) {
        bytes.append(m_bytes.constData() + record.begin, record.length);
    }
    return bytes;
}

DirectoryRecord CentralDirectory::recordAt(int at) const
{
    DirectoryRecord record;
    record.range = {at, lengthOfRecordAt(at)};
    const int nameLength = number<quint16>(m_bytes, at + 28);
    const int extraLength = number<quint16>(m_bytes, at + 30);
    const auto system = static_cast<quint8>(m_bytes.at(at + 5));
    const QByteArray raw = m_bytes.mid(at + recordLength, nameLength);
    const QByteArray extra = m_bytes.mid(at + recordLength + nameLength, extraLength);
    record.name = decodeName(unicodePath(raw, extra));
    record.nameLength = nameLength;
    record.offset = dataOffset(m_bytes, at, extra);
    record.crc32 = number<quint32>(m_bytes, at + 16);
    if (system == madeOnDos && !record.name.contains(QLatin1Char('/'))) {
        record.name.replace(QLatin1Char('\\'), QLatin1Char('/'));
    }
    const auto attributes = number<quint32>(m_bytes, at + 38);
    record.isFolder = record.name.endsWith(QLatin1Char('/')) || isFolder(system, attributes);
    record.isSpecial = isSpecial(system, attributes);
    return record;
}

int CentralDirectory::lengthOfRecordAt(int at) const
{
    if (!hasSignature(m_bytes, at, recordSignature) || m_bytes.size() - at < recordLength) {
        failAsDamaged(QStringLiteral("its directory is not readable"));
    }
    const int length = recordLength + number<quint16>(m_bytes, at + 28) +
                       number<quint16>(m_bytes, at + 30) + number<quint16>(m_bytes, at + 32);
    if (length > m_bytes.size() - at) {
        failAsDamaged(QStringLiteral("its directory ends too early"));
    }
    return length;
}

void CentralDirectory::add(const DirectoryRecord& record, QSet<QString>& keys)
{
    if (record.name.contains(QChar(QChar::Null))) {
        refuse(record.name, QStringLiteral("has a name with control characters"));
    }
    keys.insert(nameKey(record.name));
    m_records.push_back(record);
    if (keys.size() != count()) {
        refuse(record.name, QStringLiteral("is contained twice"));
    }
    if (m_records.size() > mostEntries) {
        refuseAsTooLarge();
    }
}

void CentralDirectory::requireCount() const
{
    const bool isAnnounced = m_extent.isZip64 ? static_cast<quint64>(count()) == m_extent.count
                                              : static_cast<quint16>(count()) == m_extent.count;
    if (!isAnnounced) {
        failAsDamaged(QStringLiteral("its directory announces another number of entries"));
    }
}

} // namespace vx
