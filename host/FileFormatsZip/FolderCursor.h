#pragma once

#include "host/FileFormatsZip/ExtractionPlan.h"
#include "host/FileFormatsZip/TargetFolder.h"

namespace vx {

/**
 * Opens planned folders one after the other and keeps the last one open, for entries of one folder
 * mostly follow each other. Belongs to one thread.
 */
class FolderCursor
{
public:
    FolderCursor(const TargetFolder& target, const ExtractionPlan& plan)
        : m_target(target)
        , m_plan(plan)
    {}

    /** The planned folder of that index, open until the next call; invalid if it can't be opened.
     */
    const FileDescriptor& open(int index)
    {
        if (index != m_index) {
            m_folder = m_target.openFolder(pathOf(index));
            m_index = index;
        }
        return m_folder;
    }

    /** The same, but throws IOException if it can't be opened. */
    const FileDescriptor& require(int index)
    {
        if (index != m_index) {
            m_folder = m_target.requireFolder(pathOf(index));
            m_index = index;
        }
        return m_folder;
    }

private:
    const QByteArray& pathOf(int index) const
    {
        return m_plan.folders[static_cast<size_t>(index)].path;
    }

    const TargetFolder& m_target;
    const ExtractionPlan& m_plan;
    FileDescriptor m_folder;
    int m_index = -1;
};

} // namespace vx
