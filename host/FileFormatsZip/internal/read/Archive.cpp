#include "host/FileFormatsZip/internal/read/Archive.h"

#include <memory>
#include <sys/stat.h>

#include "host/FileFormatsZip/internal/Failure.h"
#include "host/FileFormatsZip/internal/read/ContentReader.h"
#include "host/FileFormatsZip/internal/read/EntryName.h"
#include "host/FileFormatsZip/internal/read/FileWindow.h"
#include "host/FileFormatsZip/internal/read/LocalHeader.h"

namespace vx {

namespace {

// Some headers with the small contents between them.
constexpr int windowSize = 16 * 1024;

// Far more than any system takes for a path.
constexpr int mostBytesOfLink = 64 * 1024;

// Of what names no permissions, as of what was not packed on a system that has them.
constexpr unsigned defaultMode = 0664;
constexpr unsigned executable = 0111;

ArchiveEntry::Kind kindOf(const DirectoryRecord& record)
{
    const mode_t type = record.mode & S_IFMT;
    // What zip packs from a pipe carries the pipe's type and the content that came through it.
    const bool isFromPipe = type == S_IFIFO && record.extent.size > 0;
    if (type != 0 && type != S_IFREG && type != S_IFDIR && type != S_IFLNK && !isFromPipe) {
        return ArchiveEntry::Special;
    }
    if (record.isFolder) {
        return ArchiveEntry::Folder;
    }
    return type == S_IFLNK ? ArchiveEntry::Link : ArchiveEntry::File;
}

unsigned permissionsOf(const DirectoryRecord& record)
{
    const unsigned mode = record.mode != 0 ? record.mode : defaultMode;
    // Only the slash says that this is a folder, so that its mode may not have been meant for one.
    const bool isFolderByName = record.isFolder && !S_ISDIR(record.mode);
    return (isFolderByName ? mode | executable : mode) & 0777U;
}

ArchiveEntry makeEntry(const DirectoryRecord& record, const LocalHeader& header)
{
    ArchiveEntry entry;
    entry.name = record.name;
    entry.kind = kindOf(record);
    if (entry.kind == ArchiveEntry::Folder && !entry.name.endsWith(QLatin1Char('/'))) {
        entry.name += QLatin1Char('/');
    }
    entry.content.begin = header.dataBegin;
    entry.content.packedSize = static_cast<qint64>(record.extent.packedSize);
    entry.content.size = static_cast<qint64>(record.extent.size);
    entry.content.crc32 = record.crc32;
    entry.content.method = header.method;
    entry.mode = permissionsOf(record);
    entry.modified = header.modified;
    entry.isEncrypted = header.isEncrypted;
    return entry;
}

} // namespace

Archive::Archive(const QString& path, const std::atomic<bool>& canceled)
    : m_file(path)
{
    const CentralDirectory directory(m_file, canceled);
    m_dataEnd = directory.extent().begin;
    readEntries(directory, canceled);
    readLinkTargets(canceled);
}

void Archive::readEntries(const CentralDirectory& directory, const std::atomic<bool>& canceled)
{
    const auto archiveBegin = static_cast<quint64>(directory.extent().archiveBegin);
    FileWindow window(m_file, m_dataEnd, windowSize);
    m_index.reserve(directory.records().size());
    for (const DirectoryRecord& record : directory.records()) {
        if (canceled) {
            return;
        }
        // It may wrap around, to a place where no header is.
        const auto begin = static_cast<qint64>(archiveBegin + record.extent.offset);
        m_index.push_back(makeEntry(record, readLocalHeader(window, begin, record)));
        const ArchiveEntry& entry = m_index.back();
        if (entry.kind == ArchiveEntry::File && entry.content.size == 0 && record.crc32 != 0) {
            refuse(entry.name, QStringLiteral("is damaged: its checksum is wrong"));
        }
    }
}

void Archive::readLinkTargets(const std::atomic<bool>& canceled)
{
    std::unique_ptr<ContentReader> reader;
    for (ArchiveEntry& entry : m_index) {
        if (canceled) {
            return;
        }
        if (entry.kind != ArchiveEntry::Link || entry.isEncrypted || !entry.isMethodSupported()) {
            continue;
        }
        if (entry.content.packedSize > mostBytesOfLink || entry.content.size > mostBytesOfLink) {
            failAsDamaged(QStringLiteral("%1 is a symbolic link of impossible length")
                              .arg(quoted(entry.name)));
        }
        if (!reader) {
            reader = std::make_unique<ContentReader>(*this, mostBytesOfLink);
        }
        QByteArray target;
        reader->begin(entry.content, entry.name);
        for (ByteView piece = reader->next(); !piece.empty(); piece = reader->next()) {
            target.append(piece.data(), static_cast<int>(piece.size()));
        }
        entry.linkTarget = decodeName(viewOf(target));
    }
}

} // namespace vx
