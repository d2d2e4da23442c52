#include "tests/support/ZipBuilder.h"

#include <QFile>
#include <QtEndian>

#include <array>

namespace vx::test {

namespace {

constexpr quint16 version = 20;
constexpr quint16 dosTime = 2 << 11 | 2 << 5 | 1;
constexpr quint16 dosDate = (2020 - 1980) << 9 | 2 << 5 | 2;

template <typename T>
void put(QByteArray& to, T value)
{
    const T little = qToLittleEndian(value);
    to.append(reinterpret_cast<const char*>(&little), sizeof little);
}

void put16(QByteArray& to, qint64 value)
{
    put(to, static_cast<quint16>(value));
}

void put32(QByteArray& to, qint64 value)
{
    put(to, static_cast<quint32>(value));
}

void put64(QByteArray& to, qint64 value)
{
    put(to, static_cast<quint64>(value));
}

std::array<quint32, 256> checksumTable()
{
    std::array<quint32, 256> table = {};
    for (quint32 i = 0; i < table.size(); ++i) {
        quint32 value = i;
        for (int bit = 0; bit < 8; ++bit) {
            value = (value >> 1) ^ ((value & 1U) != 0 ? 0xEDB88320U : 0U);
        }
        table[i] = value;
    }
    return table;
}

QByteArray packedOf(const ZipEntry& entry)
{
    return entry.packed.value_or(entry.method == ZipEntry::deflated ? deflated(entry.content)
                                                                    : entry.content);
}

/** What the two headers have in common, from the flags to the length of the extra field. */
QByteArray commonPart(const ZipEntry& entry, int nameLength, int extraLength)
{
    QByteArray part;
    put16(part, entry.flags);
    put16(part, entry.method);
    put16(part, dosTime);
    put16(part, dosDate);
    put32(part, entry.crc32.value_or(checksum(entry.content)));
    put32(part, packedOf(entry).size());
    put32(part, entry.unpackedSize.value_or(static_cast<quint32>(entry.content.size())));
    put16(part, nameLength);
    put16(part, extraLength);
    return part;
}

QByteArray localHeader(const ZipEntry& entry)
{
    const QByteArray name = entry.localName.value_or(entry.name);
    QByteArray header("PK\3\4");
    put16(header, version);
    header += commonPart(entry, name.size(), entry.localExtra.size());
    return header + name + entry.localExtra;
}

QByteArray centralHeader(const ZipEntry& entry, qint64 offset)
{
    QByteArray header("PK\1\2");
    put16(header, entry.madeBy << 8 | version);
    put16(header, version);
    header += commonPart(entry, entry.name.size(), entry.centralExtra.size());
    put16(header, 0); // length of the comment
    put16(header, 0); // disk
    put16(header, 0); // internal attributes
    put32(header, entry.madeBy == ZipEntry::unixSystem ? static_cast<qint64>(entry.mode) << 16 : 0);
    put32(header, entry.localOffset.value_or(static_cast<quint32>(offset)));
    return header + entry.name + entry.centralExtra;
}

/**
 * A deflate stream of zeros: one block with the fixed codes of RFC 1951, 3.2.6, that holds two
 * literals, "x" and zero, and then matches of 258 bytes at distance 1, in 13 bits each.
 */
class ZerosStream
{
public:
    explicit ZerosStream(qint64 matches)
        : m_bodyEnd(prefix.size() + matches * match.size())
    {}

    QByteArray bytes() const
    {
        constexpr int periodStart = 3;
        constexpr int period = 13;
        const qint64 length = (m_bodyEnd + endOfBlock + 7) / 8;
        QByteArray stream;
        for (int i = 0; i < periodStart + period; ++i) {
            stream += byteAt(i);
        }
        const auto periods = static_cast<int>(m_bodyEnd / 8 - periodStart) / period - 1;
        stream += stream.mid(periodStart).repeated(periods);
        while (stream.size() < length) {
            stream += byteAt(stream.size());
        }
        return stream;
    }

private:
    char byteAt(qint64 index) const
    {
        int byte = 0;
        for (int bit = 0; bit < 8; ++bit) {
            byte |= bitAt(index * 8 + bit) << bit;
        }
        return static_cast<char>(byte);
    }

    int bitAt(qint64 index) const
    {
        if (index < prefix.size()) {
            return prefix[static_cast<int>(index)] - '0';
        }
        return index < m_bodyEnd
                   ? match[static_cast<int>((index - prefix.size()) % match.size())] - '0'
                   : 0;
    }

    static constexpr int endOfBlock = 7;
    const QByteArray prefix = "1"         // the last block
                              "10"        // with fixed codes
                              "10101000"  // a literal "x"
                              "00110000"; // a literal zero
    const QByteArray match = "11000101"   // length 258
                             "00000";     // distance 1
    qint64 m_bodyEnd;
};

} // namespace

ZipEntry file(const QByteArray& name, const QByteArray& content, unsigned mode)
{
    ZipEntry entry;
    entry.name = name;
    entry.content = content;
    entry.mode = 0100000 | mode;
    return entry;
}

ZipEntry folder(const QByteArray& name, unsigned mode)
{
    ZipEntry entry;
    entry.name = name;
    entry.mode = 0040000 | mode;
    return entry;
}

ZipEntry softLink(const QByteArray& name, const QByteArray& target)
{
    ZipEntry entry = file(name, target);
    entry.mode = 0120777;
    return entry;
}

ZipEntry special(const QByteArray& name, unsigned type)
{
    ZipEntry entry = file(name, QByteArray());
    entry.mode = type | 0644;
    return entry;
}

ZipEntry deflate(ZipEntry entry)
{
    entry.method = ZipEntry::deflated;
    return entry;
}

ZipEntry inUtf8(ZipEntry entry)
{
    entry.flags |= ZipEntry::utf8Flag;
    return entry;
}

ZipEntry declareZip64(ZipEntry entry, quint64 size)
{
    QByteArray extra;
    put16(extra, 1); // Zip64
    put16(extra, 8);
    put64(extra, static_cast<qint64>(size));
    entry.unpackedSize = 0xFFFFFFFF;
    entry.localExtra = entry.centralExtra = extra;
    return entry;
}

ZipEntry fileOfZeros(const QByteArray& name, const Zeros& zeros)
{
    ZipEntry entry = deflate(file(name, QByteArray()));
    entry.packed = ZerosStream(static_cast<qint64>(zeros.count - 2) / 258).bytes();
    entry.crc32 = zeros.crc32;
    return declareZip64(entry, zeros.count);
}

ZipBuilder::ZipBuilder(std::initializer_list<ZipEntry> entries)
{
    for (const ZipEntry& entry : entries) {
        add(entry);
    }
}

ZipBuilder& ZipBuilder::add(const ZipEntry& entry)
{
    const int offset = m_data.size();
    m_data += localHeader(entry) + packedOf(entry);
    m_directory += centralHeader(entry, offset);
    ++m_count;
    return *this;
}

ZipBuilder& ZipBuilder::useZip64()
{
    m_zip64 = true;
    return *this;
}

ZipBuilder& ZipBuilder::announce(quint16 count)
{
    m_announced = count;
    return *this;
}

ZipBuilder& ZipBuilder::comment(const QByteArray& comment)
{
    m_comment = comment;
    return *this;
}

QByteArray ZipBuilder::end(qint64 offset, qint64 length) const
{
    const auto count = static_cast<qint64>(m_count);
    QByteArray end;
    if (m_zip64) {
        end += "PK\6\6";
        put64(end, 44); // of the rest of this record
        put16(end, ZipEntry::unixSystem << 8 | 45);
        put16(end, 45);
        put32(end, 0); // disk
        put32(end, 0); // disk of the directory
        put64(end, count);
        put64(end, count);
        put64(end, length);
        put64(end, offset);
        end += "PK\6\7";
        put32(end, 0); // disk
        put64(end, offset + length);
        put32(end, 1); // disks
    }
    end += "PK\5\6";
    put16(end, 0); // disk
    put16(end, 0); // disk of the directory
    put16(end, m_announced.value_or(static_cast<quint16>(m_zip64 ? 0xFFFF : count)));
    put16(end, m_announced.value_or(static_cast<quint16>(m_zip64 ? 0xFFFF : count)));
    put32(end, m_zip64 ? 0xFFFFFFFF : length);
    put32(end, m_zip64 ? 0xFFFFFFFF : offset);
    put16(end, m_comment.size());
    return end + m_comment;
}

QByteArray ZipBuilder::bytes() const
{
    return m_data + m_directory + end(m_data.size(), m_directory.size());
}

void ZipBuilder::write(const QString& path, const QByteArray& before) const
{
    QFile archive(path);
    if (!archive.open(QIODevice::WriteOnly) || archive.write(before + bytes()) < 0) {
        qFatal("cannot write %s", qPrintable(path));
    }
}

ZipBuilder linkBomb()
{
    const QByteArray way = QByteArray("d/").repeated(127) + "l";
    ZipBuilder archive;
    for (int i = 0; i < 32000; ++i) {
        archive.add(softLink("l" + QByteArray::number(i), way));
    }
    return archive;
}

ZipBuilder folderBomb()
{
    const QByteArray folders = QByteArray("/a").repeated(126) + "/f";
    ZipBuilder archive;
    for (int i = 0; i < 7900; ++i) {
        archive.add(file(QByteArray::number(i) + folders));
    }
    return archive;
}

QByteArray deflated(const QByteArray& content)
{
    // qCompress() gives four bytes of length and the two of the zlib header in front of the raw
    // stream, and four bytes of another checksum behind it.
    const QByteArray zlib = qCompress(content);
    return content.isEmpty() ? QByteArray("\3\0", 2) : zlib.mid(6, zlib.size() - 10);
}

quint32 checksum(const QByteArray& content)
{
    static const std::array<quint32, 256> table = checksumTable();
    quint32 crc = ~0U;
    for (const char c : content) {
        crc = (crc >> 8) ^ table[(crc ^ static_cast<unsigned char>(c)) & 0xFFU];
    }
    return ~crc;
}

} // namespace vx::test
