#include "host/FileFormatsZip/ArchiveView.h"

#include <algorithm>
#include <cstring>

#include "host/FileFormatsZip/ArchiveFile.h"
#include "host/FileFormatsZip/Bytes.h"
#include "host/FileFormatsZip/CentralDirectory.h"

namespace vx {

namespace {

constexpr quint16 zip64Version = 45;

/** The end of an archive in the Zip64 form, which fits archives of all sizes. */
QByteArray endRecords(qint64 directoryBegin, qint64 directoryLength, int count)
{
    QByteArray end("PK\6\6");
    appendNumber<quint64>(end, 44); // of the rest of this record
    appendNumber<quint16>(end, zip64Version);
    appendNumber<quint16>(end, zip64Version);
    appendNumber<quint32>(end, 0); // this disk
    appendNumber<quint32>(end, 0); // the disk of the directory
    appendNumber<quint64>(end, static_cast<quint64>(count));
    appendNumber<quint64>(end, static_cast<quint64>(count));
    appendNumber<quint64>(end, static_cast<quint64>(directoryLength));
    appendNumber<quint64>(end, static_cast<quint64>(directoryBegin));
    end += "PK\6\7";
    appendNumber<quint32>(end, 0); // the disk of the record above
    appendNumber<quint64>(end, static_cast<quint64>(directoryBegin + directoryLength));
    appendNumber<quint32>(end, 1); // number of disks
    end += "PK\5\6";
    appendNumber<quint32>(end, 0);           // both disks
    appendNumber<quint64>(end, ~quint64(0)); // counts and length: see above
    appendNumber<quint32>(end, ~quint32(0)); // offset: see above
    appendNumber<quint16>(end, 0);           // length of the comment
    return end;
}

} // namespace

ArchiveView::ArchiveView(const ArchiveFile& file, const CentralDirectory& directory,
                         const QByteArray& records, int count)
    : m_file(file)
    , m_dataBegin(directory.extent().archiveBegin)
    , m_dataLength(directory.extent().begin - m_dataBegin)
    , m_end(records + endRecords(m_dataLength, records.size(), count))
{}

qint64 ArchiveView::readAt(qint64 offset, char* buffer, qint64 length) const noexcept
{
    if (offset < m_dataLength) {
        return m_file.readAt(m_dataBegin + offset, buffer, std::min(length, m_dataLength - offset));
    }
    const qint64 at = offset - m_dataLength;
    const qint64 count = std::clamp<qint64>(m_end.size() - at, 0, length);
    std::memcpy(buffer, m_end.constData() + at, static_cast<size_t>(count));
    return count;
}

} // namespace vx
