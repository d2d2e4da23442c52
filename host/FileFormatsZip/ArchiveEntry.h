#pragma once

#include <QString>

#include <ctime>
#include <vector>

#include "host/FileFormatsZip/CentralDirectory.h"

namespace vx {

/** What an archive says of one of its entries. */
struct ArchiveEntry
{
    enum Kind { File, Folder, Link, Special };

    RecordRange record;     ///< its place in the directory
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

} // namespace vx
