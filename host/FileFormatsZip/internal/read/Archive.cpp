#include "host/FileFormatsZip/internal/read/Archive.h"

#include <QFile>
#include <QSet>

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <functional>
#include <memory>
#include <sys/stat.h>

#include "host/FileFormatsZip/internal/Failure.h"
#include "host/FileFormatsZip/internal/read/ContentReader.h"
#include "host/FileFormatsZip/internal/read/EntryName.h"

namespace vx {

namespace {

// The records at the end, by PKWARE's APPNOTE.TXT, 4.3.14 to 4.3.16.
constexpr ByteView endSignature = "PK\5\6";
constexpr ByteView end64Signature = "PK\6\6";
constexpr ByteView locatorSignature = "PK\6\7";

constexpr qint64 endLength = 22;
constexpr qint64 end64Length = 56;
constexpr qint64 locatorLength = 20;
constexpr qint64 longestComment = 0xFFFF;

constexpr qint64 mostBytesOfDirectory = 512LL * 1024 * 1024;

// Some headers with the small contents between them.
constexpr int searchWindowSize = 16 * 1024;

// Far more than any system takes for a path.
constexpr int mostBytesOfLink = 64 * 1024;

[[noreturn]] void refuseAsTooLarge()
{
    fail(QStringLiteral("The archive is refused: it holds more than %1 entries.")
             .arg(Archive::mostEntries));
}

/** Where the directory of an archive lies in the file, as the record at its end says. */
struct DirectoryExtent
{
    qint64 begin = 0;
    qint64 length = 0;
    /** Where the archive begins: what is in front of that, an unpacking program say, is not its. */
    qint64 archiveBegin = 0;
    quint64 count = 0;    ///< announced entries
    bool isZip64 = false; ///< otherwise the count has 16 bits, which some writers let overflow
};

/**
 * The place of the end record in the tail of the file: the last one whose comment reaches to the
 * end of the file. If something was appended to the archive, the last one at all.
 */
qint64 findEnd(ByteView tail)
{
    qint64 last = -1;
    const auto length = static_cast<qint64>(tail.size());
    for (qint64 at = length - endLength; at >= 0; --at) {
        if (hasSignature(tail, at, endSignature)) {
            last = std::max(last, at);
            if (at + endLength + number<quint16>(tail, static_cast<size_t>(at) + 20) == length) {
                return at;
            }
        }
    }
    if (last < 0) {
        fail(QStringLiteral("The file is not a ZIP archive, or it is incomplete."));
    }
    return last;
}

/** The end record of Zip64 at a place in the file, or nothing if there is none. */
QByteArray zip64EndAt(const ArchiveFile& file, quint64 at)
{
    if (file.size() < end64Length || at > static_cast<quint64>(file.size() - end64Length)) {
        return {};
    }
    const QByteArray bytes = file.read(static_cast<qint64>(at), end64Length);
    return hasSignature(viewOf(bytes), 0, end64Signature) ? bytes : QByteArray();
}

/** Looks for the end record and reads it, in the old form or in that of Zip64. */
DirectoryExtent findDirectory(const ArchiveFile& file)
{
    const qint64 tailLength = std::min(file.size(), endLength + longestComment + locatorLength);
    const qint64 tailBegin = file.size() - tailLength;
    const QByteArray bytes = file.read(tailBegin, tailLength);
    const ByteView tail = viewOf(bytes);
    const qint64 at = findEnd(tail);
    const qint64 locator = at - locatorLength;
    const ByteView record = tail.substr(static_cast<size_t>(at));
    DirectoryExtent extent;
    extent.isZip64 = hasSignature(tail, locator, locatorSignature);
    extent.count = number<quint16>(record, 10);
    quint64 length = number<quint32>(record, 12);
    quint64 offset = number<quint32>(record, 16);
    auto end = static_cast<quint64>(tailBegin + at);
    if (extent.isZip64) {
        end = number<quint64>(tail, static_cast<size_t>(locator) + 8);
        QByteArray record64 = zip64EndAt(file, end);
        if (record64.isEmpty()) {
            // Where something was put in front of the archive, the locator names an earlier place.
            end = static_cast<quint64>(tailBegin + locator - end64Length);
            record64 = zip64EndAt(file, end);
        }
        if (record64.isEmpty()) {
            failAsDamaged(QStringLiteral("its end record is missing"));
        }
        extent.count = number<quint64>(viewOf(record64), 32);
        length = number<quint64>(viewOf(record64), 40);
        offset = number<quint64>(viewOf(record64), 48);
    }
    // Counted back from the end, so that something in front does no harm. The sums may wrap around.
    extent.length = static_cast<qint64>(length);
    extent.begin = static_cast<qint64>(end - length);
    extent.archiveBegin = static_cast<qint64>(end - length - offset);
    if (extent.length < 0 || extent.begin < 0 || extent.archiveBegin < 0 ||
        extent.begin > tailBegin + at - extent.length || extent.archiveBegin > extent.begin) {
        failAsDamaged(QStringLiteral("its directory lies outside"));
    }
    return extent;
}

} // namespace

ArchiveFile::ArchiveFile(const QString& path)
    : m_path(path)
    // Without O_NONBLOCK, opening a fifo would wait for a writer.
    , m_descriptor(::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK))
{
    struct stat status = {};
    if (!m_descriptor.isValid() || ::fstat(m_descriptor.get(), &status) != 0) {
        failWithErrno(QStringLiteral("open the archive %1").arg(quoted(path)), errno);
    }
    if (!S_ISREG(status.st_mode)) {
        fail(QStringLiteral("%1 is not a file.").arg(quoted(path)));
    }
    m_size = status.st_size;
}

QByteArray ArchiveFile::read(qint64 offset, qint64 length, QByteArray memory) const
{
    memory.resize(static_cast<int>(length));
    qint64 filled = 0;
    while (filled < length) {
        const ssize_t got = ::pread(m_descriptor.get(), memory.data() + filled,
                                    static_cast<size_t>(length - filled), offset + filled);
        if (got == 0) {
            failAsDamaged(QStringLiteral("it ends too early"));
        }
        if (got < 0 && errno != EINTR) {
            failWithErrno(QStringLiteral("read the archive %1").arg(quoted(m_path)), errno);
        }
        filled += got < 0 ? 0 : got;
    }
    return memory;
}

FileWindow::FileWindow(const ArchiveFile& file, qint64 end, int capacity)
    : m_file(file)
    , m_end(end)
    , m_capacity(capacity)
{}

ByteView FileWindow::at(qint64 offset, qint64 least, qint64 most)
{
    // The offset may be any number, so that nothing is added to it before it is known to be small.
    if (offset < m_begin || offset > m_begin + m_bytes.size() - least) {
        if (offset < 0 || offset > m_end - least) {
            failAsDamaged(QStringLiteral("it ends too early"));
        }
        const qint64 wanted = std::min(std::max(least, m_capacity), m_end - offset);
        m_bytes = m_file.read(offset, wanted, std::move(m_bytes));
        m_begin = offset;
    }
    const ByteView rest = viewOf(m_bytes).substr(static_cast<size_t>(offset - m_begin));
    return rest.substr(0, static_cast<size_t>(most));
}

Archive::Archive(const QString& path, const std::atomic<bool>& canceled)
    : m_file(path)
{
    const DirectoryExtent extent = findDirectory(m_file);
    if (extent.count > mostEntries || extent.length > mostBytesOfDirectory) {
        refuseAsTooLarge();
    }
    readRecords(viewOf(m_file.read(extent.begin, extent.length)), canceled);
    // Where the count has 16 bits, some writers let it overflow.
    const quint64 count = m_entries.size();
    if ((extent.isZip64 ? count : static_cast<quint16>(count)) != extent.count) {
        failAsDamaged(QStringLiteral("its directory announces another number of entries"));
    }
    sort();
    m_dataEnd = extent.begin;
    FileWindow window(m_file, m_dataEnd, searchWindowSize);
    for (ArchiveEntry& entry : m_entries) {
        requireNotCanceled(canceled);
        readLocalHeader(window, extent.archiveBegin, entry);
        if (entry.kind == ArchiveEntry::File && entry.size == 0 && entry.crc32 != 0) {
            refuse(entry.name, "is damaged: its checksum is wrong");
        }
    }
    readLinkTargets(canceled);
}

void Archive::readRecords(ByteView directory, const std::atomic<bool>& canceled)
{
    QSet<QString> keys;
    while (!directory.empty()) {
        requireNotCanceled(canceled);
        m_entries.push_back(takeRecord(directory));
        const QString& name = m_entries.back().name;
        if (name.contains(QChar(QChar::Null))) {
            refuse(name, "has a name with control characters");
        }
        keys.insert(nameKey(name));
        if (static_cast<size_t>(keys.size()) != m_entries.size()) {
            refuse(name, "is contained twice");
        }
        if (m_entries.size() > mostEntries) {
            refuseAsTooLarge();
        }
    }
}

void Archive::sort()
{
    const auto isBefore = [](const ArchiveEntry& a, const ArchiveEntry& b) {
        return a.begin < b.begin;
    };
    const auto begin = m_entries.begin();
    const auto end = m_entries.end();
    // Nearly all archives are in order, and sorting a million entries would take a while.
    if (!std::is_sorted(begin, end, isBefore)) {
        std::stable_sort(begin, end, isBefore);
    }
    // Two that stand side by side, neither before the other, lie at the same place.
    if (std::adjacent_find(begin, end, std::not_fn(isBefore)) != end) {
        failAsDamaged(QStringLiteral("its directory and its entries disagree about their number"));
    }
}

void Archive::readLinkTargets(const std::atomic<bool>& canceled)
{
    const auto reader = std::make_unique<ContentReader>(*this, mostBytesOfLink);
    for (ArchiveEntry& entry : m_entries) {
        requireNotCanceled(canceled);
        if (entry.kind != ArchiveEntry::Link || entry.isEncrypted || !entry.isMethodSupported()) {
            continue;
        }
        if (entry.packedSize > mostBytesOfLink || entry.size > mostBytesOfLink) {
            failAsDamaged(QStringLiteral("%1 is a symbolic link of impossible length")
                              .arg(quoted(entry.name)));
        }
        QByteArray target;
        reader->begin(entry);
        for (ByteView piece = reader->next(); !piece.empty(); piece = reader->next()) {
            target.append(piece.data(), static_cast<int>(piece.size()));
        }
        entry.linkTarget = decodeName(viewOf(target));
    }
}

} // namespace vx
