#pragma once

#include <QByteArray>

#include <cstddef>

#include "host/FileFormatsZip/FileDescriptor.h"

namespace vx {

struct PlannedFile;

/** Writes one new file. */
class FileWriter
{
public:
    /**
     * Creates @p file in @p folder, for the owner alone, and marks it as made. Throws IOException,
     * too if something of that name is there already.
     */
    FileWriter(const FileDescriptor& folder, PlannedFile& file);

    /**
     * Appends @p size bytes; a piece of nothing but zeros becomes a hole. Throws IOException if
     * they can't be written or are more than the archive declares for the file.
     */
    void write(const char* data, size_t size);

    /** Gives the file its mode and time. Throws IOException if bytes are missing. */
    void finish();

private:
    void leaveHole(size_t size);

    const PlannedFile& m_file;
    FileDescriptor m_descriptor;
    qint64 m_written = 0;
    bool m_endsInHole = false;
};

} // namespace vx
