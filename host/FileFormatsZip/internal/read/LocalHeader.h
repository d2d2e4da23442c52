#pragma once

#include <ctime>

#include "host/FileFormatsZip/internal/read/CentralDirectory.h"

namespace vx {

class FileWindow;

/** What the header in front of the data of an entry says that its record does not. */
struct LocalHeader
{
    qint64 dataBegin = 0; ///< in the file
    quint8 method = 0;    ///< 0 is stored, 8 deflated
    bool isEncrypted = false;
    std::time_t modified = 0;
};

/**
 * Reads the header of an entry and holds it against the record of the directory: names, kind,
 * sizes and checksum must be the same, so that nothing is unpacked that a listing of the archive
 * would not show. Layout: PKWARE's APPNOTE.TXT, 4.3.7. Throws IOException.
 *
 * @param begin where the header lies in the file.
 */
LocalHeader readLocalHeader(FileWindow& window, qint64 begin, const DirectoryRecord& record);

} // namespace vx
