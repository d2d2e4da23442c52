#pragma once

#include <QByteArray>
#include <QString>

#include <optional>
#include <vector>

namespace vx::test {

/** One entry of an archive to be built, with what it says of itself in either place. */
struct ZipEntry
{
    static constexpr quint16 stored = 0;
    static constexpr quint16 deflated = 8;
    static constexpr quint16 utf8Flag = 0x0800;
    static constexpr quint16 encryptedFlag = 0x0001;
    static constexpr quint8 dos = 0;
    static constexpr quint8 unixSystem = 3;

    QByteArray name;
    QByteArray content;
    unsigned mode = 0100644; ///< type and permissions, as of stat()
    quint16 flags = 0;
    quint16 method = stored;
    quint8 madeBy = unixSystem;

    // What differs from the truth; unset means the truth.
    std::optional<QByteArray> localName;
    std::optional<QByteArray> packed;
    std::optional<quint32> crc32;
    std::optional<quint32> unpackedSize;
    std::optional<quint32> localOffset;
    QByteArray localExtra;
    QByteArray centralExtra;
};

/** A plain file. */
ZipEntry file(const QByteArray& name, const QByteArray& content = "content", unsigned mode = 0644);

/** A folder; its name ends in "/". */
ZipEntry folder(const QByteArray& name, unsigned mode = 0755);

/** A symbolic link. */
ZipEntry softLink(const QByteArray& name, const QByteArray& target);

/** Something of another type, a fifo or a device. */
ZipEntry special(const QByteArray& name, unsigned type);

/** The same entry, deflated. */
ZipEntry deflate(ZipEntry entry);

/** The same entry, flagged to have its name in UTF-8. */
ZipEntry inUtf8(ZipEntry entry);

/** The same entry, declaring @p size in the Zip64 form. */
ZipEntry declareZip64(ZipEntry entry, quint64 size);

/** A content of one "x" and then zeros: 2 bytes and a multiple of 8 * 258. */
struct Zeros
{
    quint64 count;
    quint32 crc32;
};
constexpr Zeros beyond4GiB = {4308600002, 0x9E3DB5FB};
constexpr Zeros someSeconds = {412800002, 0x909B11FE};

/** A file of almost nothing but zeros, in one 160th of its size, built in no time. */
ZipEntry fileOfZeros(const QByteArray& name, const Zeros& zeros);

/**
 * Writes ZIP archives byte by byte, so that they can lie in every way. Everything carries the time
 * 2020-02-02 02:02:02.
 */
class ZipBuilder
{
public:
    ZipBuilder() = default;
    ZipBuilder(std::initializer_list<ZipEntry> entries);

    ZipBuilder& add(const ZipEntry& entry);

    /** Lets the end of the archive be written in the Zip64 form. */
    ZipBuilder& useZip64();

    /** Lets the end record announce @p count entries, whatever there is. */
    ZipBuilder& announce(quint16 count);

    /** Puts a comment behind the end record. */
    ZipBuilder& comment(const QByteArray& comment);

    QByteArray bytes() const;

    /** Writes the archive to @p path, after @p before. */
    void write(const QString& path, const QByteArray& before = {}) const;

private:
    QByteArray end(qint64 offset, qint64 length) const;

    QByteArray m_data;
    QByteArray m_directory;
    quint64 m_count = 0;
    QByteArray m_comment;
    bool m_zip64 = false;
    std::optional<quint16> m_announced;
};

/** Links whose ways are so long, all together, that they are not followed to the end. */
ZipBuilder linkBomb();

/** Names of folders in folders, all together more than may be made. */
ZipBuilder folderBomb();

/** The raw deflate stream of @p content. */
QByteArray deflated(const QByteArray& content);

/** The CRC-32 that ZIP uses. */
quint32 checksum(const QByteArray& content);

} // namespace vx::test
