#include "host/FileFormatsZip/Archive.h"

#include <archive_entry.h>

#include "host/FileFormatsZip/ArchiveStream.h"
#include "host/FileFormatsZip/Checksum.h"
#include "host/FileFormatsZip/EntryName.h"
#include "host/FileFormatsZip/Failure.h"

namespace vx {

namespace {

const DirectoryRecord& recordOf(const CentralDirectory& directory, archive_entry* entry)
{
    const char* name = archive_entry_pathname(entry);
    const DirectoryRecord* record = name != nullptr ? directory.find(decodeName(name)) : nullptr;
    if (record == nullptr) {
        failAsDamaged(QStringLiteral("its directory and its entries disagree about names"));
    }
    return *record;
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

ArchiveEntry readEntry(const ArchiveStream& stream, const CentralDirectory& directory)
{
    archive_entry* const raw = stream.entry();
    const DirectoryRecord& record = recordOf(directory, raw);
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
    if (entry.kind == ArchiveEntry::Folder && !entry.name.endsWith(QLatin1Char('/'))) {
        entry.name += QLatin1Char('/');
    }
    return entry;
}

} // namespace

Archive::Archive(const QString& path, const std::atomic<bool>& canceled)
    : m_file(path)
    , m_directory(m_file)
{
    m_index.reserve(static_cast<size_t>(m_directory.count()));
    // libarchive calls an archive without entries damaged.
    if (m_directory.count() > 0) {
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
    ArchiveStream stream(all, ArchiveStream::Reading::Headers);
    while (!canceled && stream.next()) {
        m_index.push_back(readEntry(stream, m_directory));
    }
    if (!canceled && m_index.size() != static_cast<size_t>(m_directory.count())) {
        failAsDamaged(QStringLiteral("its directory and its entries disagree about their number"));
    }
}

} // namespace vx
