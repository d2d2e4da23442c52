#include "host/FileFormatsZip/Archive.h"

#include <archive_entry.h>

#include "host/FileFormatsZip/ArchiveStream.h"
#include "host/FileFormatsZip/Bytes.h"
#include "host/FileFormatsZip/Checksum.h"
#include "host/FileFormatsZip/EntryName.h"
#include "host/FileFormatsZip/Failure.h"

namespace vx {

namespace {

constexpr char headerSignature[] = "PK\3\4";
constexpr int headerLength = 30;

[[noreturn]] void failOverNames()
{
    failAsDamaged(QStringLiteral("its directory and its entries disagree about names"));
}

[[noreturn]] void failOverNumber()
{
    failAsDamaged(QStringLiteral("its directory and its entries disagree about their number"));
}

/** Whoever lists the archive sees the directory; what is unpacked has the names of the entries. */
void requireName(archive_entry* entry, const DirectoryRecord& record)
{
    const char* const raw = archive_entry_pathname(entry);
    const QString name = raw != nullptr ? decodeName(raw) : QString();
    if (name != record.name && nameKey(name) != nameKey(record.name)) {
        failOverNames();
    }
    if (name.endsWith(QLatin1Char('/')) != record.isFolder) {
        failOverNames();
    }
}

/** libarchive cuts the name at a NUL, so that this looks for itself. */
void requireNameWithoutNul(const ArchiveFile& file, qint64 begin, const DirectoryRecord& record)
{
    QByteArray header = file.bytesAt(begin, headerLength + record.nameLength);
    if (!hasSignature(header, 0, headerSignature)) {
        failOverNames();
    }
    const int length = headerLength + number<quint16>(header, 26);
    if (length > header.size()) {
        header += file.bytesAt(begin + header.size(), length - header.size());
    }
    if (header.left(length).indexOf('\0', headerLength) >= 0) {
        failOverNames();
    }
}

void requireChecksumOfNothing(const ArchiveEntry& entry, const DirectoryRecord& record)
{
    // libarchive checks contents while it reads them, and here is nothing to read.
    if (entry.kind == ArchiveEntry::File && entry.size == 0 && record.crc32 != 0) {
        refuse(record.name, QStringLiteral("is damaged: its checksum is wrong"));
    }
}

ArchiveEntry::Kind kindOf(archive_entry* entry, const DirectoryRecord& record)
{
    if (record.isSpecial || archive_entry_hardlink(entry) != nullptr) {
        return ArchiveEntry::Special;
    }
    switch (archive_entry_filetype(entry)) {
    case AE_IFREG:
        return ArchiveEntry::File;
    case AE_IFDIR:
        return ArchiveEntry::Folder;
    case AE_IFLNK:
        return ArchiveEntry::Link;
    default:
        return ArchiveEntry::Special;
    }
}

/**
 * libarchive leaves the checksum of link targets alone, and composes the characters of those that
 * are flagged as UTF-8. macOS writes them decomposed; the checksum tells which form was packed.
 */
QString linkTargetOf(archive_entry* entry, const DirectoryRecord& record)
{
    const QByteArray target = archive_entry_symlink(entry);
    const QString text = decodeName(target);
    const QString decomposed = text.normalized(QString::NormalizationForm_D);
    if (archive_entry_is_encrypted(entry) != 0 || crc32(target) == record.crc32) {
        return text;
    }
    if (crc32(decomposed.toUtf8()) == record.crc32) {
        return decomposed;
    }
    refuse(record.name, QStringLiteral("is damaged: its checksum is wrong"));
}

ArchiveEntry readEntry(const ArchiveStream& stream, const DirectoryRecord& record)
{
    archive_entry* const raw = stream.entry();
    requireName(raw, record);
    ArchiveEntry entry;
    entry.record = record.range;
    entry.name = record.name;
    entry.kind = kindOf(raw, record);
    entry.size = archive_entry_size(raw);
    entry.mode = archive_entry_perm(raw) & 0777U;
    entry.modified.tv_sec = archive_entry_mtime(raw);
    entry.modified.tv_nsec = archive_entry_mtime_nsec(raw);
    entry.isEncrypted = archive_entry_is_encrypted(raw) != 0;
    entry.isMethodSupported = stream.isMethodSupported();
    if (entry.kind == ArchiveEntry::Link) {
        entry.linkTarget = linkTargetOf(raw, record);
    }
    requireChecksumOfNothing(entry, record);
    if (entry.kind == ArchiveEntry::Folder && !entry.name.endsWith(QLatin1Char('/'))) {
        entry.name += QLatin1Char('/');
    }
    return entry;
}

} // namespace

Archive::Archive(const QString& path, const std::atomic<bool>& canceled)
    : m_file(path)
    , m_directory(m_file, canceled)
{
    m_index.reserve(static_cast<size_t>(m_directory.count()));
    // libarchive calls an archive without entries damaged.
    if (m_directory.count() > 0 && !canceled) {
        readIndex(canceled);
    }
}

ArchiveView Archive::view(const std::vector<RecordRange>& records) const
{
    return {m_file, m_directory, m_directory.bytesOf(records), static_cast<int>(records.size())};
}

void Archive::readIndex(const std::atomic<bool>& canceled)
{
    const ArchiveView all(m_file, m_directory, m_directory.bytes(), m_directory.count());
    ArchiveStream stream(all, ArchiveStream::Reading::Headers, canceled);
    for (const DirectoryRecord& record : m_directory.records()) {
        const bool isThere = stream.next();
        if (canceled) {
            return;
        }
        if (!isThere) {
            failOverNumber();
        }
        requireNameWithoutNul(m_file, headerOf(record), record);
        m_index.push_back(readEntry(stream, record));
    }
    if (stream.next()) {
        failOverNumber();
    }
}

qint64 Archive::headerOf(const DirectoryRecord& record) const
{
    // It may wrap around, to a place where no header is.
    const auto begin = static_cast<quint64>(m_directory.extent().archiveBegin);
    return static_cast<qint64>(begin + record.offset);
}

} // namespace vx
