#pragma once

#include <QByteArray>
#include <QString>
#include <QtEndian>

#include <atomic>
#include <ctime>
#include <string_view>
#include <unistd.h>
#include <utility>
#include <vector>

namespace vx {

/** Bytes of an archive that lie somewhere else and stay there. */
using ByteView = std::string_view;

/** The bytes of an array, which must outlive the view. */
inline ByteView viewOf(const QByteArray& bytes)
{
    return {bytes.constData(), static_cast<size_t>(bytes.size())};
}

/** The little-endian number at a place that must lie within @p bytes. */
template <typename T>
T number(ByteView bytes, size_t at)
{
    return qFromLittleEndian<T>(bytes.data() + at);
}

/** Whether the four bytes of @p signature stand at a place, which may lie outside. */
inline bool hasSignature(ByteView bytes, qint64 at, ByteView signature)
{
    return at >= 0 && at <= static_cast<qint64>(bytes.size()) &&
           bytes.substr(static_cast<size_t>(at), signature.size()) == signature;
}

/** Owns a POSIX file descriptor and closes it. Moves, does not copy. */
class FileDescriptor
{
public:
    /** Takes over @p descriptor; a negative one means that there is none. */
    explicit FileDescriptor(int descriptor = -1)
        : m_descriptor(descriptor)
    {}

    FileDescriptor(FileDescriptor&& other) noexcept { std::swap(m_descriptor, other.m_descriptor); }

    FileDescriptor& operator=(FileDescriptor&& other) noexcept
    {
        std::swap(m_descriptor, other.m_descriptor);
        return *this;
    }

    ~FileDescriptor()
    {
        if (m_descriptor >= 0) {
            ::close(m_descriptor);
        }
    }

    int get() const { return m_descriptor; }
    bool isValid() const { return m_descriptor >= 0; }

private:
    int m_descriptor = -1;
};

/**
 * The bytes of an archive on disk. The file stays open, so that all who read it see the same one
 * even if the path comes to mean another. Any number of threads may read at once.
 */
class ArchiveFile
{
public:
    /** Opens the file. Throws IOException if it isn't a regular file that can be read. */
    explicit ArchiveFile(const QString& path);

    /** Its size in bytes when it was opened. */
    qint64 size() const { return m_size; }

    /** Exactly @p length bytes, in @p memory if given. Throws IOException if they aren't there. */
    QByteArray read(qint64 offset, qint64 length, QByteArray memory = {}) const;

private:
    QString m_path;
    FileDescriptor m_descriptor;
    qint64 m_size = 0;
};

/**
 * A part of an archive in memory that moves with what is read, so that many small pieces that lie
 * one behind the other cost one call of the system. Belongs to one thread.
 */
class FileWindow
{
public:
    /**
     * @p file must outlive the window. What lies behind @p end is as if it weren't there; @p
     * capacity bytes are read at once.
     */
    FileWindow(const ArchiveFile& file, qint64 end, int capacity);

    /** From @p least to @p most bytes, valid until the next call. Throws IOException if too few. */
    ByteView at(qint64 offset, qint64 least, qint64 most);

private:
    const ArchiveFile& m_file;
    const qint64 m_end;
    const qint64 m_capacity;
    qint64 m_begin = 0;
    QByteArray m_bytes;
};

/** What an archive says of one of its entries. */
struct ArchiveEntry
{
    enum Kind { File, Folder, Link, Special };
    enum Method : quint8 { Stored = 0, Deflated = 8 };

    QString name;         ///< folders end in "/"
    Kind kind = File;     ///< Special is what is neither file, folder nor symbolic link
    qint64 begin = 0;     ///< from the beginning of the archive, which need not be that of the file
    qint64 dataBegin = 0; ///< in the file
    qint64 packedSize = 0;
    qint64 size = 0; ///< bytes when unpacked
    quint32 crc32 = 0;
    quint8 method = Stored;
    unsigned mode = 0; ///< type and permissions as of stat(); a type of 0 is that of a file
    std::time_t modified = 0;
    QString linkTarget; ///< of a link that may be unpacked, where it points
    bool isEncrypted = false;

    /** Whether the content is stored or deflated; only such is unpacked. */
    bool isMethodSupported() const { return method == Stored || method == Deflated; }
};

/** An open archive and what it says of its entries. Any number of threads may use it at once. */
class Archive
{
public:
    /** Entries that an archive may hold: far more than any has, and a bound for memory and time. */
    static constexpr quint64 mostEntries = 1000000;

    /**
     * Opens the archive at @p path and reads its directory, the headers in front of the data and
     * the targets of links; all must agree, and no entry may be named twice. Whether an entry may
     * be unpacked is not looked at. Throws IOException, and Canceled once @p canceled is set.
     */
    Archive(const QString& path, const std::atomic<bool>& canceled);

    /** All entries, in the order of their data. */
    const std::vector<ArchiveEntry>& entries() const { return m_entries; }

    /** The bytes of the archive. */
    const ArchiveFile& file() const { return m_file; }

    /** Where the data of entries ends in the file at the latest. */
    qint64 dataEnd() const { return m_dataEnd; }

private:
    static ArchiveEntry takeRecord(ByteView& directory);
    static void readLocalHeader(FileWindow& window, qint64 archiveBegin, ArchiveEntry& entry);
    void readRecords(ByteView directory, const std::atomic<bool>& canceled);
    void sort();
    void readLinkTargets(const std::atomic<bool>& canceled);

    ArchiveFile m_file;
    qint64 m_dataEnd = 0;
    std::vector<ArchiveEntry> m_entries;
};

} // namespace vx
