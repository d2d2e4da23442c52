#pragma once

#include <QtGlobal>

namespace vx {

class ArchiveFile;

/** Where the directory of an archive lies in the file, as the record at its end says. */
struct DirectoryExtent
{
    qint64 begin = 0;
    qint64 length = 0;
    /** Where the archive begins: what is in front of that, an unpacking program say, is not its. */
    qint64 archiveBegin = 0;
    quint64 count = 0;    ///< announced entries
    bool isZip64 = false; ///< otherwise the count has 16 bits, which some writers let overflow
};

/**
 * Looks for the end record and reads it, in the old form or in that of Zip64. Layout: PKWARE's
 * APPNOTE.TXT, 4.3.14 to 4.3.16. Throws IOException if there is none or if it points outside.
 */
DirectoryExtent findDirectory(const ArchiveFile& file);

} // namespace vx
