#include "host/FileFormatsZip/CentralDirectory.h"

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
constexpr qint64 mostBytes = 512 * 1024 * 1024;

constexpr quint16 unicodePathId = 0x7075;
constexpr quint8 madeOnDos = 0;
constexpr quint8 madeOnUnix = 3;

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

} // namespace

CentralDirectory::CentralDirectory(const ArchiveFile& file)
    : m_extent(findDirectory(file))
    , m_bytes(readRecords(file, m_extent))
{
    for (int at = 0; at < m_bytes.size();) {
        const DirectoryRecord record = recordAt(at);
        insert(record);
        at += record.range.length;
    }
    requireCount();
}

QByteArray CentralDirectory::bytesOf(const std::vector<RecordRange>& records) const
{
    QByteArray bytes;
    for (const RecordRange& record : records) {
        bytes.append(m_bytes.constData() + record.begin, record.length);
    }
    return bytes;
}

const DirectoryRecord* CentralDirectory::find(const QString& name) const
{
    const auto found = m_records.constFind(nameKey(name));
    return found == m_records.constEnd() ? nullptr : &*found;
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
    record.crc32 = number<quint32>(m_bytes, at + 16);
    record.isSpecial = isSpecial(system, number<quint32>(m_bytes, at + 38));
    if (system == madeOnDos && !record.name.contains(QLatin1Char('/'))) {
        record.name.replace(QLatin1Char('\\'), QLatin1Char('/'));
    }
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
