#pragma once

#include "host/FileFormatsZip/internal/FileDescriptor.h"
#include "host/FileFormatsZip/internal/plan/ExtractionPlan.h"
#include "host/FileFormatsZip/internal/read/Bytes.h"

namespace vx {

/** Writes one new file. */
class FileWriter
{
public:
    /**
     * Creates @p file in @p folder, for the owner alone, and marks it as made. Throws IOException,
     * too if something of that name is there already.
     */
    FileWriter(const FileDescriptor& folder, PlannedItem& file);

    /**
     * Appends a piece; one of nothing but zeros becomes a hole, which saves the disk much of an
     * image or a database. Throws IOException if it can't be written.
     */
    void write(ByteView piece);

    /** Gives the file its mode and time. Throws IOException if its end can't be written. */
    void finish();

private:
    void require(bool isDone) const;

    const PlannedItem& m_file;
    FileDescriptor m_descriptor;
    bool m_endsInHole = false;
};

} // namespace vx
