#include "host/FileFormatsZip/internal/read/ContentReader.h"

#include "host/FileFormatsZip/internal/Failure.h"
#include "host/FileFormatsZip/internal/read/Archive.h"

namespace vx {

namespace {

// With a piece of the output, it stays in a core's cache.
constexpr int windowSize = 128 * 1024;

} // namespace

ContentReader::ContentReader(const Archive& archive, size_t pieceSize)
    : m_archive(archive)
    , m_window(archive.file(), archive.dataEnd(), windowSize)
    , m_pieceSize(pieceSize)
    , m_output(new char[pieceSize])
{}

void ContentReader::begin(const PackedContent& content, const QString& name)
{
    m_content = content;
    m_name = name;
    m_consumed = 0;
    m_produced = 0;
    m_crc32 = 0;
    // A content without data is complete whatever its method.
    m_isAtEnd = content.packedSize == 0;
    if (content.packedSize < 0 || content.packedSize > m_archive.dataEnd() - content.begin) {
        failOver(QStringLiteral("lies outside the archive"));
    }
    if (content.method == PackedContent::deflated) {
        m_inflater.begin();
    }
}

ByteView ContentReader::next()
{
    const ByteView piece =
        m_content.method == PackedContent::stored ? nextStored() : nextInflated();
    if (piece.empty()) {
        requireComplete();
    } else {
        takeIn(piece);
    }
    return piece;
}

ByteView ContentReader::nextStored()
{
    if (m_consumed == m_content.packedSize) {
        return {};
    }
    const ByteView piece =
        m_window.some(m_content.begin + m_consumed, m_content.packedSize - m_consumed);
    m_consumed += static_cast<qint64>(piece.size());
    return piece;
}

ByteView ContentReader::nextInflated()
{
    size_t filled = 0;
    while (!m_isAtEnd && filled < m_pieceSize) {
        const qint64 left = m_content.packedSize - m_consumed;
        ByteView input = left > 0 ? m_window.some(m_content.begin + m_consumed, left) : ByteView();
        const auto given = static_cast<qint64>(input.size());
        size_t produced = 0;
        const Inflater::Result result =
            m_inflater.step(input, m_output.get() + filled, m_pieceSize - filled, produced);
        filled += produced;
        m_consumed += given - static_cast<qint64>(input.size());
        if (result == Inflater::AtEnd) {
            m_isAtEnd = true;
            m_consumed = m_inflater.consumed();
        }
        if (result == Inflater::Damaged) {
            failOver(QStringLiteral("is not a sound deflate stream"));
        }
        if (result == Inflater::NeedsInput && left == 0 && produced == 0) {
            failOver(QStringLiteral("ends too early"));
        }
    }
    return {m_output.get(), filled};
}

void ContentReader::takeIn(ByteView piece)
{
    if (static_cast<qint64>(piece.size()) > m_content.size - m_produced) {
        failOver(QStringLiteral("holds more than it declares"));
    }
    m_produced += static_cast<qint64>(piece.size());
    m_crc32 = crc32(piece, m_crc32);
}

void ContentReader::requireComplete() const
{
    if (m_produced != m_content.size) {
        failOver(QStringLiteral("holds less than it declares"));
    }
    if (m_consumed != m_content.packedSize) {
        failOver(QStringLiteral("has something behind its content"));
    }
    if (m_crc32 != m_content.crc32) {
        refuse(m_name, QStringLiteral("is damaged: its checksum is wrong"));
    }
}

void ContentReader::failOver(const QString& flaw) const
{
    failAsDamaged(quoted(m_name) + QLatin1Char(' ') + flaw);
}

} // namespace vx
