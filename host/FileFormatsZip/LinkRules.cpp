#include "host/FileFormatsZip/LinkRules.h"

#include <QStringList>

#include <vector>

#include "host/FileFormatsZip/EntryName.h"
#include "host/FileFormatsZip/ExtractionPlan.h"
#include "host/FileFormatsZip/Failure.h"
#include "host/FileFormatsZip/TargetFolder.h"

namespace vx {

namespace {

// As many as Linux follows before it speaks of a circle.
constexpr int mostHops = 40;

// Parts of targets to be walked for all links together: four for each entry that an archive may
// hold. A few links through each other, packed to nothing, would otherwise take hours.
constexpr qint64 mostSteps = 4000000;

const QString up = QStringLiteral("..");

/** A place that a walk has come to: a planned folder or, by the parts from there, what is not. */
struct Place
{
    int folder = 0;
    QStringList below;
    int existing = 0; ///< how many parts of these are on disk already
};

/** Where a link leads to, and through how many links, itself included. */
struct End
{
    Place place;
    int hops = 1;
};

/** Walks from links to what they point at, as the system would, but on the plan. */
class LinkWalker
{
public:
    LinkWalker(const ExtractionPlan& plan, const TargetFolder& target,
               const std::atomic<bool>& canceled)
        : m_plan(plan)
        , m_target(target)
        , m_canceled(canceled)
        , m_known(plan.links.size())
    {}

    /** Gives the end of a link that was reached through @p depth others. */
    End endOf(int index, int depth)
    {
        const KnownEnd& known = m_known[static_cast<size_t>(index)];
        return known.hops > 0 ? End{{known.folder, {}, 0}, known.hops} : walk(index, depth);
    }

private:
    /** The end of a link that leads to a planned folder; no hops if it is not known. */
    struct KnownEnd
    {
        int folder = 0;
        int hops = 0;
    };

    End walk(int index, int depth)
    {
        const PlannedLink& link = m_plan.links[static_cast<size_t>(index)];
        requireFit(link);
        End end;
        end.place.folder = link.folder;
        requireFewHops(depth + end.hops, link);
        for (const QString& part : nameParts(link.target)) {
            if (m_canceled) {
                return end;
            }
            countStep();
            step(part, depth, link, end);
        }
        if (end.place.below.isEmpty()) {
            m_known[static_cast<size_t>(index)] = {end.place.folder, end.hops};
        }
        return end;
    }

    [[noreturn]] void refuseLink(const PlannedLink& link, const QString& flaw) const
    {
        const QByteArray folder = m_plan.pathOf(link.folder);
        refuse(QString::fromUtf8(folder.isEmpty() ? link.name : folder + '/' + link.name), flaw);
    }

    void requireFit(const PlannedLink& link) const
    {
        const QString flaw = pathFlaw(link.target);
        if (!flaw.isEmpty()) {
            refuseLink(link,
                       QStringLiteral("is a symbolic link, and what it points at %1").arg(flaw));
        }
    }

    void requireFewHops(int hops, const PlannedLink& link) const
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

    void step(const QString& part, int depth, const PlannedLink& link, End& end)
    {
        if (part == up) {
            leave(end.place, link);
        } else if (end.place.below.isEmpty()) {
            enter(part, depth, link, end);
        } else {
            descend(part, link, end.place);
        }
    }

    void leave(Place& place, const PlannedLink& link) const
    {
        if (!place.below.isEmpty()) {
            place.below.removeLast();
            place.existing = qMin(place.existing, place.below.size());
        } else if (place.folder == 0) {
            refuseLink(link, QStringLiteral("is a symbolic link that leads out of the folder"));
        } else {
            place.folder = m_plan.folders[static_cast<size_t>(place.folder)].parent;
        }
    }

    void enter(const QString& part, int depth, const PlannedLink& link, End& end)
    {
        const ExtractionPlan::Node node = m_plan.find(end.place.folder, part);
        switch (node.kind) {
        case ExtractionPlan::Folder:
            end.place.folder = node.index;
            break;
        case ExtractionPlan::Link: {
            const End through = endOf(node.index, depth + end.hops);
            end = {through.place, end.hops + through.hops};
            requireFewHops(depth + end.hops, link);
            break;
        }
        case ExtractionPlan::File:
        case ExtractionPlan::Nothing:
            descend(part, link, end.place);
        }
    }

    /** Goes to something that is no planned folder. What is not there yet has nothing below it. */
    void descend(const QString& part, const PlannedLink& link, Place& place) const
    {
        const bool mayExist = place.existing == place.below.size();
        place.below.append(part);
        const TargetFolder::Found found =
            mayExist ? m_target.find(pathOf(place)) : TargetFolder::Nothing;
        if (found == TargetFolder::Link) {
            refuseLink(link,
                       QStringLiteral("is a symbolic link that leads through an existing one"));
        }
        place.existing += found == TargetFolder::Nothing ? 0 : 1;
    }

    QByteArray pathOf(const Place& place) const
    {
        const QByteArray below = place.below.join(QLatin1Char('/')).toUtf8();
        const QByteArray folder = m_plan.pathOf(place.folder);
        return folder.isEmpty() ? below : folder + '/' + below;
    }

    const ExtractionPlan& m_plan;
    const TargetFolder& m_target;
    const std::atomic<bool>& m_canceled;
    std::vector<KnownEnd> m_known;
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
