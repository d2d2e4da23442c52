#pragma once

#include <vector>

#include "host/FileFormatsZip/internal/FileDescriptor.h"

namespace vx {

class ExtractionPlan;
class TargetFolder;

/**
 * Opens planned folders one after the other. It walks part by part and never follows a symbolic
 * link. The last folder and those above it stay open, for the next one is mostly near: to open a
 * folder costs about the same at any depth. Belongs to one thread.
 */
class FolderCursor
{
public:
    /** The references must outlive the object. */
    FolderCursor(const TargetFolder& target, const ExtractionPlan& plan);

    /** The planned folder of that index, open until the next call; invalid if it can't be opened.
     */
    const FileDescriptor& open(int index);

    /** The same, but throws IOException if it can't be opened. */
    const FileDescriptor& require(int index);

private:
    struct Level
    {
        int index;
        FileDescriptor folder;
    };

    std::vector<int> leaveFor(int index);
    bool enter(int index);
    const FileDescriptor& current() const;

    const TargetFolder& m_target;
    const ExtractionPlan& m_plan;
    /** What is open, each within the one before it. The outermost may have been closed again. */
    std::vector<Level> m_levels;
    const FileDescriptor m_none;
};

} // namespace vx
