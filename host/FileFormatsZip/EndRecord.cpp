#include "host/FileFormatsZip/EndRecord.h"

#include <algorithm>

#include "host/FileFormatsZip/ArchiveFile.h"
#include "host/FileFormatsZip/Bytes.h"
#include "host/FileFormatsZip/Failure.h"

namespace vx {

namespace {

constexpr char endSignature[] = "PK\5\6";
constexpr char end64Signature[] = "PK\6\6";
constexpr char locatorSignature[] = "PK\6\7";

constexpr qint64 endLength = 22;
constexpr qint64 end64Length = 56;
constexpr qint64 locatorLength = 20;
constexpr qint64 longestComment = 0xFFFF;

/**
 * The place of the end record in the tail of the file: the last one whose comment reaches to the
 * end of the file. If something was appended to the archive, the last one at all.
 */
qint64 findEnd(const QByteArray& tail)
{
    qint64 last = -1;
    for (qint64 at = tail.size() - endLength; at >= 0; --at) {
        if (hasSignature(tail, at, endSignature)) {
            last = std::max(last, at);
            if (at + endLength + number<quint16>(tail, at + 20) == tail.size()) {
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
DirectoryExtent readEnd(const QByteArray& tail, qint64 at, qint64 end)
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
    return hasSignature(bytes, 0, end64Signature) ? bytes : QByteArray();
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
    DirectoryExtent extent;
    extent.isZip64 = true;
    extent.count = number<quint64>(bytes, 32);
    extent.length = static_cast<qint64>(number<quint64>(bytes, 40));
    extent.begin = static_cast<qint64>(end - number<quint64>(bytes, 40));
    extent.archiveBegin =
        static_cast<qint64>(static_cast<quint64>(extent.begin) - number<quint64>(bytes, 48));
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
    const QByteArray tail = file.bytesAt(file.size() - tailLength, tailLength);
    const qint64 at = findEnd(tail);
    const qint64 end = file.size() - tailLength + at;
    const DirectoryExtent extent =
        hasSignature(tail, at - locatorLength, locatorSignature)
            ? readZip64End(file, number<quint64>(tail, at - locatorLength + 8), end - locatorLength)
            : readEnd(tail, at, end);
    if (!isPossible(extent, end)) {
        failAsDamaged(QStringLiteral("its directory lies outside"));
    }
    return extent;
}

} // namespace vx
