#include "host/FileFormatsZip/internal/read/CentralDirectory.h"

#include <QSet>

#include <algorithm>
#include <sys/stat.h>

#include "host/FileFormatsZip/internal/Failure.h"
#include "host/FileFormatsZip/internal/read/ArchiveFile.h"
#include "host/FileFormatsZip/internal/read/EntryName.h"

namespace vx {

namespace {

constexpr ByteView recordSignature = "PK\1\2";
constexpr size_t recordLength = 46;
constexpr qint64 mostBytes = 512LL * 1024 * 1024;

enum MadeOn : quint8 { Dos = 0, Unix = 3 };
constexpr quint32 dosReadOnly = 0x01;
constexpr quint32 dosFolder = 0x10;

[[noreturn]] void refuseAsTooLarge()
{
    fail(QStringLiteral("The archive is refused: it holds more than %1 entries.")
             .arg(CentralDirectory::mostEntries));
}

/** What stat() would have said where the entry was packed, as far as that is known. */
unsigned modeOf(quint8 system, quint32 attributes)
{
    if (system == Unix) {
        return attributes >> 16;
    }
    if (system != Dos) {
        return 0;
    }
    const unsigned mode = (attributes & dosFolder) != 0 ? S_IFDIR | 0775U : S_IFREG | 0664U;
    return (attributes & dosReadOnly) != 0 ? mode & ~0222U : mode;
}

/** The length of the record at the beginning of @p bytes. Throws if none lies there. */
size_t lengthOfRecord(ByteView bytes)
{
    if (!hasSignature(bytes, 0, recordSignature) || bytes.size() < recordLength) {
        failAsDamaged(QStringLiteral("its directory is not readable"));
    }
    const size_t length = recordLength + number<quint16>(bytes, 28) + number<quint16>(bytes, 30) +
                          number<quint16>(bytes, 32);
    if (length > bytes.size()) {
        failAsDamaged(QStringLiteral("its directory ends too early"));
    }
    return length;
}

DirectoryRecord readRecord(ByteView bytes)
{
    const ByteView rawName = bytes.substr(recordLength, number<quint16>(bytes, 28));
    const ByteView extra = bytes.substr(recordLength + rawName.size(), number<quint16>(bytes, 30));
    DirectoryRecord record;
    record.crc32 = number<quint32>(bytes, 16);
    record.extent.packedSize = number<quint32>(bytes, 20);
    record.extent.size = number<quint32>(bytes, 24);
    record.extent.offset = number<quint32>(bytes, 42);
    const ExtraFields fields = readExtraFields(extra, rawName, record.extent);
    record.name = decodeName(fields.name ? viewOf(*fields.name) : rawName);
    const auto system = static_cast<quint8>(bytes[5]);
    if (system == Dos && !record.name.contains(QLatin1Char('/'))) {
        record.name.replace(QLatin1Char('\\'), QLatin1Char('/'));
    }
    record.mode = modeOf(system, number<quint32>(bytes, 38));
    record.isFolder = record.name.endsWith(QLatin1Char('/')) || S_ISDIR(record.mode);
    return record;
}

} // namespace

CentralDirectory::CentralDirectory(const ArchiveFile& file, const std::atomic<bool>& canceled)
    : m_extent(findDirectory(file))
{
    if (m_extent.count > mostEntries || m_extent.length > mostBytes) {
        refuseAsTooLarge();
    }
    const QByteArray bytes = file.bytesAt(m_extent.begin, m_extent.length);
    readRecords(viewOf(bytes), canceled);
    if (!canceled) {
        requireCount();
        sort();
    }
}

void CentralDirectory::readRecords(ByteView bytes, const std::atomic<bool>& canceled)
{
    QSet<QString> keys;
    while (!bytes.empty() && !canceled) {
        const size_t length = lengthOfRecord(bytes);
        m_records.push_back(readRecord(bytes.substr(0, length)));
        const QString& name = m_records.back().name;
        if (name.contains(QChar(QChar::Null))) {
            refuse(name, QStringLiteral("has a name with control characters"));
        }
        keys.insert(nameKey(name));
        if (static_cast<size_t>(keys.size()) != m_records.size()) {
            refuse(name, QStringLiteral("is contained twice"));
        }
        if (m_records.size() > mostEntries) {
            refuseAsTooLarge();
        }
        bytes.remove_prefix(length);
    }
}

/** Where the count has 16 bits, some writers let it overflow. */
void CentralDirectory::requireCount() const
{
    const quint64 count = m_records.size();
    if ((m_extent.isZip64 ? count : static_cast<quint16>(count)) != m_extent.count) {
        failAsDamaged(QStringLiteral("its directory announces another number of entries"));
    }
}

void CentralDirectory::sort()
{
    const auto isBefore = [](const DirectoryRecord& a, const DirectoryRecord& b) {
        return a.extent.offset < b.extent.offset;
    };
    // Nearly all archives are in order, and sorting a million entries would take a while.
    if (!std::is_sorted(m_records.begin(), m_records.end(), isBefore)) {
        std::stable_sort(m_records.begin(), m_records.end(), isBefore);
    }
    const auto isAtSamePlace = [](const DirectoryRecord& a, const DirectoryRecord& b) {
        return a.extent.offset == b.extent.offset;
    };
    if (std::adjacent_find(m_records.begin(), m_records.end(), isAtSamePlace) != m_records.end()) {
        failAsDamaged(QStringLiteral("its directory and its entries disagree about their number"));
    }
}

} // namespace vx
