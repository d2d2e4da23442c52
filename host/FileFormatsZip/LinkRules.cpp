#include "host/FileFormatsZip/LinkRules.h"

#include "host/FileFormatsZip/EntryName.h"
#include "host/FileFormatsZip/ExtractionPlan.h"
#include "host/FileFormatsZip/Failure.h"

namespace vx {

namespace {

// As many as Linux follows before it speaks of a circle.
constexpr int mostHops = 40;

const QString up = QStringLiteral("..");

/** Walks from a link to what it points at, as the system would, but on the plan. */
class LinkWalk
{
public:
    LinkWalk(const ExtractionPlan& plan, const PlannedLink& link,
             const std::function<bool(const QStringList&)>& isLinkOnDisk)
        : m_plan(plan)
        , m_link(link)
        , m_isLinkOnDisk(isLinkOnDisk)
        , m_at(nameParts(folderOf(link)))
    {}

    void run()
    {
        follow(m_link);
        while (!m_pending.isEmpty()) {
            step(m_pending.takeFirst());
        }
    }

private:
    QString folderOf(const PlannedLink& link) const
    {
        return QString::fromUtf8(m_plan.folders[static_cast<size_t>(link.folder)].path);
    }

    [[noreturn]] void refuseLink(const QString& flaw) const
    {
        const QString folder = folderOf(m_link);
        refuse(folder.isEmpty() ? QString::fromUtf8(m_link.name)
                                : folder + QLatin1Char('/') + QString::fromUtf8(m_link.name),
               flaw);
    }

    void follow(const PlannedLink& link)
    {
        const QString flaw = pathFlaw(link.target);
        if (!flaw.isEmpty()) {
            refuseLink(QStringLiteral("is a symbolic link, and what it points at %1").arg(flaw));
        }
        if (++m_hops > mostHops) {
            refuseLink(QStringLiteral("is a symbolic link that leads in a circle"));
        }
        m_pending = nameParts(link.target) + m_pending;
    }

    void step(const QString& part)
    {
        if (part != up) {
            enter(part);
        } else if (m_at.isEmpty()) {
            refuseLink(QStringLiteral("is a symbolic link that leads out of the folder"));
        } else {
            m_at.removeLast();
        }
    }

    void enter(const QString& part)
    {
        m_at.append(part);
        const ExtractionPlan::Node node = m_plan.find(m_at);
        if (node.kind == ExtractionPlan::Link) {
            m_at.removeLast();
            follow(m_plan.links[static_cast<size_t>(node.index)]);
        } else if (node.kind == ExtractionPlan::Nothing && m_isLinkOnDisk(m_at)) {
            refuseLink(QStringLiteral("is a symbolic link that leads through an existing one"));
        }
    }

    const ExtractionPlan& m_plan;
    const PlannedLink& m_link;
    const std::function<bool(const QStringList&)>& m_isLinkOnDisk;
    QStringList m_at;
    QStringList m_pending;
    int m_hops = 0;
};

} // namespace

void requireLinksInside(const ExtractionPlan& plan,
                        const std::function<bool(const QStringList&)>& isLinkOnDisk)
{
    for (const PlannedLink& link : plan.links) {
        LinkWalk(plan, link, isLinkOnDisk).run();
    }
}

} // namespace vx
