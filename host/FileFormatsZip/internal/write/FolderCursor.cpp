#include "host/FileFormatsZip/internal/write/FolderCursor.h"

#include <cerrno>
#include <fcntl.h>
#include <utility>

#include "host/FileFormatsZip/internal/Failure.h"
#include "host/FileFormatsZip/internal/plan/ExtractionPlan.h"
#include "host/FileFormatsZip/internal/write/TargetFolder.h"

namespace vx {

namespace {

constexpr int openFlags = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;

// The application needs descriptors too, and has often no more than a thousand.
constexpr size_t mostOpen = 16;

} // namespace

FolderCursor::FolderCursor(const TargetFolder& target, const ExtractionPlan& plan)
    : m_target(target)
    , m_plan(plan)
{}

const FileDescriptor& FolderCursor::open(int index)
{
    const std::vector<int> way = leaveFor(index);
    for (auto it = way.rbegin(); it != way.rend(); ++it) {
        if (!enter(*it)) {
            return m_none;
        }
    }
    return current();
}

const FileDescriptor& FolderCursor::require(int index)
{
    const FileDescriptor& folder = open(index);
    if (!folder.isValid()) {
        failWithErrno(QStringLiteral("open the folder %1")
                          .arg(quoted(QString::fromUtf8(m_plan.pathOf(index)))),
                      errno);
    }
    return folder;
}

/** Closes what does not lie above @p index, and gives what is to be opened, the last one first. */
std::vector<int> FolderCursor::leaveFor(int index)
{
    std::vector<int> way;
    int at = index;
    // A parent has a lower index than what is in it.
    for (;;) {
        while (!m_levels.empty() && m_levels.back().index > at) {
            m_levels.pop_back();
        }
        if (at == 0 || (!m_levels.empty() && m_levels.back().index == at)) {
            return way;
        }
        way.push_back(at);
        at = m_plan.folders[static_cast<size_t>(at)].parent;
    }
}

/** Opens a folder whose parent is the current one. */
bool FolderCursor::enter(int index)
{
    const QByteArray& name = m_plan.folders[static_cast<size_t>(index)].name;
    FileDescriptor folder(::openat(current().get(), name.constData(), openFlags));
    if (!folder.isValid()) {
        return false;
    }
    if (m_levels.size() == mostOpen) {
        m_levels.erase(m_levels.begin());
    }
    m_levels.push_back({index, std::move(folder)});
    return true;
}

const FileDescriptor& FolderCursor::current() const
{
    return m_levels.empty() ? m_target.root() : m_levels.back().folder;
}

} // namespace vx
