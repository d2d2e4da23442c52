#include "host/FileFormatsZip/internal/read/EndRecord.h"

#include <algorithm>

#include "host/FileFormatsZip/internal/Failure.h"
#include "host/FileFormatsZip/internal/read/ArchiveFile.h"
#include "host/FileFormatsZip/internal/read/Bytes.h"

namespace vx {

namespace {

constexpr ByteView endSignature = "PK\5\6";
constexpr ByteView end64Signature = "PK\6\6";
constexpr ByteView locatorSignature = "PK\6\7";

constexpr qint64 endLength = 22;
constexpr qint64 end64Length = 56;
constexpr qint64 locatorLength = 20;
constexpr qint64 longestComment = 0xFFFF;

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

/** @p end is the place of the record in the file. The sums may wrap around; see isPossible(). */
DirectoryExtent readEnd(ByteView tail, size_t at, qint64 end)
{
    DirectoryExtent extent;
    extent.count = number<quint16>(tail, at + 10);
    extent.length = number<quint32>(tail, at + 12);
    // Counted back from the end, so that something in front of the archive does no harm.
    extent.begin = end - extent.length;
    extent.archiveBegin = extent.begin - number<quint32>(tail, at + 16);
    return extent;
}

/** The end record of Zip64 at a place in the file, or nothing if there is none. */
QByteArray zip64EndAt(const ArchiveFile& file, quint64 at)
{
    if (file.size() < end64Length || at > static_cast<quint64>(file.size() - end64Length)) {
        return {};
    }
    const QByteArray bytes = file.bytesAt(static_cast<qint64>(at), end64Length);
    return hasSignature(viewOf(bytes), 0, end64Signature) ? bytes : QByteArray();
}

/** @p end is where the record lies by its locator, which lies at @p locator itself. */
DirectoryExtent readZip64End(const ArchiveFile& file, quint64 end, qint64 locator)
{
    QByteArray bytes = zip64EndAt(file, end);
    if (bytes.isEmpty()) {
        // Where something was put in front of the archive, the locator names an earlier place.
        end = static_cast<quint64>(locator - end64Length);
        bytes = zip64EndAt(file, end);
    }
    if (bytes.isEmpty()) {
        failAsDamaged(QStringLiteral("its end record is missing"));
    }
    const ByteView record = viewOf(bytes);
    const auto length = number<quint64>(record, 40);
    DirectoryExtent extent;
    extent.isZip64 = true;
    extent.count = number<quint64>(record, 32);
    extent.length = static_cast<qint64>(length);
    extent.begin = static_cast<qint64>(end - length);
    extent.archiveBegin = static_cast<qint64>(end - length - number<quint64>(record, 48));
    return extent;
}

bool isPossible(const DirectoryExtent& extent, qint64 end)
{
    return extent.length >= 0 && extent.begin >= 0 && extent.begin <= end - extent.length &&
           extent.archiveBegin >= 0 && extent.archiveBegin <= extent.begin;
}

} // namespace

DirectoryExtent findDirectory(const ArchiveFile& file)
{
    const qint64 tailLength = std::min(file.size(), endLength + longestComment + locatorLength);
    const QByteArray bytes = file.bytesAt(file.size() - tailLength, tailLength);
    const ByteView tail = viewOf(bytes);
    const qint64 at = findEnd(tail);
    const qint64 end = file.size() - tailLength + at;
    const DirectoryExtent extent =
        hasSignature(tail, at - locatorLength, locatorSignature)
            ? readZip64End(file, number<quint64>(tail, static_cast<size_t>(at - locatorLength + 8)),
                           end - locatorLength)
            : readEnd(tail, static_cast<size_t>(at), end);
    if (!isPossible(extent, end)) {
        failAsDamaged(QStringLiteral("its directory lies outside"));
    }
    return extent;
}

} // namespace vx
