#include "host/FileFormatsZip/internal/plan/LinkRules.h"

#include <QStringList>

#include <vector>

#include "host/FileFormatsZip/internal/Failure.h"
#include "host/FileFormatsZip/internal/plan/ExtractionPlan.h"
#include "host/FileFormatsZip/internal/read/EntryName.h"
#include "host/FileFormatsZip/internal/write/TargetFolder.h"

namespace vx {

namespace {

// As many as Linux follows before it speaks of a circle.
constexpr int mostHops = 40;

// Parts of targets to be walked for all links together: four for each entry that an archive may
// hold.
constexpr qint64 mostSteps = 4000000;

const QString up = QStringLiteral("..");

/** Where a link leads to, as far as that is planned or on disk already. */
struct End
{
    int folder = 0;         ///< a planned folder
    QByteArray below;       ///< the path from there of what is on disk and not planned
    bool isNowhere = false; ///< the way goes on to what is not there, or is a file
    int hops = 0;           ///< links on the way, itself included; 0 if it was not followed yet
};

/** Follows links as the system would, but on the plan. */
class LinkWalker
{
public:
    LinkWalker(const ExtractionPlan& plan, const TargetFolder& target,
               const std::atomic<bool>& canceled)
        : m_plan(plan)
        , m_target(target)
        , m_canceled(canceled)
        , m_ends(plan.links.size())
    {}

    /** The end of a link that was reached through @p depth others. */
    End endOf(int index, int depth)
    {
        End& known = m_ends[static_cast<size_t>(index)];
        if (known.hops == 0) {
            known = follow(m_plan.links[static_cast<size_t>(index)], depth);
        }
        return known;
    }

private:
    End follow(const PlannedItem& link, int depth)
    {
        const QString& target = link.entry->linkTarget;
        const QString flaw = pathFlaw(target);
        if (!flaw.isEmpty()) {
            refuseLink(link,
                       QStringLiteral("is a symbolic link, and what it points at %1").arg(flaw));
        }
        End end;
        end.folder = link.folder;
        end.hops = 1;
        requireFewHops(link, depth + end.hops);
        bool isGoingUp = true;
        for (const QString& part : nameParts(target)) {
            if (m_canceled) {
                break;
            }
            countStep();
            isGoingUp = isGoingUp && part == up;
            if (isGoingUp) {
                leaveFolder(link, end);
            } else {
                enter(link, part, depth, end);
            }
        }
        return end;
    }

    [[noreturn]] void refuseLink(const PlannedItem& link, const QString& flaw) const
    {
        const QByteArray folder = m_plan.pathOf(link.folder);
        const QByteArray path = folder.isEmpty() ? link.name : folder + '/' + link.name;
        refuse(QString::fromUtf8(path), flaw);
    }

    void requireFewHops(const PlannedItem& link, int hops) const
    {
        if (hops > mostHops) {
            refuseLink(link, QStringLiteral("is a symbolic link that leads in a circle"));
        }
    }

    void countStep()
    {
        if (++m_steps > mostSteps) {
            fail(QStringLiteral("The archive is refused: it takes more than %1 steps to follow its "
                                "symbolic links.")
                     .arg(mostSteps));
        }
    }

    void leaveFolder(const PlannedItem& link, End& end) const
    {
        if (end.folder == 0) {
            refuseLink(link, QStringLiteral("is a symbolic link that leads out of the folder"));
        }
        end.folder = m_plan.folders[static_cast<size_t>(end.folder)].parent;
    }

    void enter(const PlannedItem& link, const QString& part, int depth, End& end)
    {
        if (part == up) {
            refuseLink(link,
                       QStringLiteral("is a symbolic link that leads up again behind a name"));
        }
        if (end.isNowhere) {
            return;
        }
        const ExtractionPlan::Node node =
            end.below.isEmpty() ? m_plan.find(end.folder, part) : ExtractionPlan::Node();
        if (node.kind == ExtractionPlan::Folder) {
            end.folder = node.index;
        } else if (node.kind == ExtractionPlan::Link) {
            const int hops = end.hops;
            end = endOf(node.index, depth + hops);
            end.hops += hops;
            requireFewHops(link, depth + end.hops);
        } else {
            enterUnplanned(link, part, end);
        }
    }

    void enterUnplanned(const PlannedItem& link, const QString& part, End& end) const
    {
        const QByteArray folder = m_plan.pathOf(end.folder);
        end.below += (end.below.isEmpty() ? "" : "/") + part.toUtf8();
        switch (m_target.find(folder.isEmpty() ? end.below : folder + '/' + end.below)) {
        case TargetFolder::Link:
            refuseLink(link,
                       QStringLiteral("is a symbolic link that leads through an existing one"));
        case TargetFolder::Nothing:
            end.isNowhere = true;
            break;
        case TargetFolder::Other:
            break;
        }
    }

    const ExtractionPlan& m_plan;
    const TargetFolder& m_target;
    const std::atomic<bool>& m_canceled;
    std::vector<End> m_ends;
    qint64 m_steps = 0;
};

} // namespace

void requireLinksInside(const ExtractionPlan& plan, const TargetFolder& target,
                        const std::atomic<bool>& canceled)
{
    LinkWalker walker(plan, target, canceled);
    for (size_t i = 0; i < plan.links.size() && !canceled; ++i) {
        walker.endOf(static_cast<int>(i), 0);
    }
}

} // namespace vx
