#pragma once

#include <QByteArray>
#include <QString>
#include <QtEndian>

#include <string_view>
#include <unistd.h>
#include <utility>

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

} // namespace vx
