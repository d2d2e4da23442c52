#pragma once

#include <QByteArray>
#include <QString>

#include <atomic>
#include <ctime>
#include <vector>

namespace vx {

class ArchiveFile;

/** What an archive says of one of its entries. */
struct ArchiveEntry
{
    enum Kind { File, Folder, Link, Special };

    int position = 0;       ///< among the entries in the order of their data, from 0
    QString name;           ///< folders end in "/"
    Kind kind = File;       ///< Special is what is neither file, folder nor symbolic link
    qint64 size = 0;        ///< bytes when unpacked, 0 except for files
    unsigned mode = 0;      ///< permission bits, 0 to 0777
    timespec modified = {}; ///< time of the last modification
    QString linkTarget;     ///< of a link, where it points
    bool isEncrypted = false;
    bool isMethodSupported = true; ///< whether the content is stored or deflated
};

/** The entries of an archive in the order of their data. */
using ArchiveIndex = std::vector<ArchiveEntry>;

/**
 * Reads what @p file says of its entries, from its directory and from the headers in front of the
 * data; both must agree. Whether an entry may be unpacked is not looked at. The thread must have a
 * Utf8Locale.
 *
 * @param canceled looked at between entries; once it is true, what has been read so far is given.
 * @throws IOException if the archive is damaged or contradicts itself.
 */
ArchiveIndex readArchiveIndex(const ArchiveFile& file, const std::atomic<bool>& canceled);

} // namespace vx
