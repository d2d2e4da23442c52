#pragma once

#include <QString>

#include <ctime>
#include <vector>

namespace vx {

/** Where the content of a file or of a link lies in the archive, and what it must come to. */
struct PackedContent
{
    static constexpr quint8 stored = 0;
    static constexpr quint8 deflated = 8;

    qint64 begin = 0; ///< in the file
    qint64 packedSize = 0;
    qint64 size = 0; ///< bytes when unpacked
    quint32 crc32 = 0;
    quint8 method = stored;
};

/** What an archive says of one of its entries. */
struct ArchiveEntry
{
    enum Kind { File, Folder, Link, Special };

    QString name;     ///< folders end in "/"
    Kind kind = File; ///< Special is what is neither file, folder nor symbolic link
    PackedContent content;
    unsigned mode = 0; ///< permission bits, 0 to 0777
    std::time_t modified = 0;
    QString linkTarget; ///< of a link that may be unpacked, where it points
    bool isEncrypted = false;

    /** Whether the content is stored or deflated; only such is unpacked. */
    bool isMethodSupported() const
    {
        return content.method == PackedContent::stored || content.method == PackedContent::deflated;
    }
};

/** The entries of an archive in the order of their data. */
using ArchiveIndex = std::vector<ArchiveEntry>;

} // namespace vx
