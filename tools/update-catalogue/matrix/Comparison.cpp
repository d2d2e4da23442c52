#include "tools/update-catalogue/matrix/Comparison.h"

#include <QSet>

#include <tuple>

#include "base/ReleaseNumber.h"
#include "tools/update-catalogue/matrix/OfferCount.h"

namespace vx {

namespace {

using RowKey = std::tuple<QString, Change, QString, QString>;

QStringSet namesOf(const OfferTable& table, const Offer& offer)
{
    QStringSet names;
    for (const int package : offer.packages) {
        names.insert(table.catalogue().at(package).name);
    }
    return names;
}

Change changeBetween(const Offer& before, const Offer& after, const QString& textBefore,
                     const QString& textAfter)
{
    if (textBefore == textAfter) {
        return Change::None;
    }
    if (before.packages.isEmpty()) {
        return Change::Gained;
    }
    if (after.packages.isEmpty()) {
        return Change::Lost;
    }
    const VersionNumber oldNumber = releaseNumber(before.release);
    const VersionNumber newNumber = releaseNumber(after.release);
    if (newNumber > oldNumber) {
        return Change::Upgrade;
    }
    return newNumber < oldNumber ? Change::Downgrade : Change::Other;
}

class Comparer
{
public:
    Comparer(const OfferTable& before, const OfferTable& after)
        : m_before(before)
        , m_after(after)
    {}

    void add(const Installation& installation)
    {
        QSet<int> changes;
        note(applicationTarget(installation), m_before.application(installation),
             m_after.application(installation), installation.count, changes);
        for (int i = 0; i < installation.criteria.currentCameraVersions.size(); ++i) {
            note(cameraTarget(installation, i), m_before.camera(installation, i),
                 m_after.camera(installation, i), installation.count, changes);
        }
        for (const int change : qAsConst(changes)) {
            m_result.installationsBy[static_cast<Change>(change)] += installation.count;
        }
        m_result.installations += installation.count;
        m_result.withoutOffer += m_after.isEmpty(installation) ? installation.count : 0;
    }

    Comparison result()
    {
        for (auto row = m_rows.begin(); row != m_rows.end(); ++row) {
            const auto& [target, change, before, after] = row.key();
            m_result.rows.append({target, change, before, after, *row});
        }
        return m_result;
    }

private:
    void note(const QString& target, const Offer& before, const Offer& after, int count,
              QSet<int>& changes)
    {
        const QString textBefore = offerText(m_before, before);
        const QString textAfter = offerText(m_after, after);
        Change change = changeBetween(before, after, textBefore, textAfter);
        changes.insert(static_cast<int>(change));
        const bool isReplaced = !before.packages.isEmpty() && !after.packages.isEmpty() &&
                                namesOf(m_before, before) != namesOf(m_after, after);
        if (isReplaced) {
            // One that is lower besides still counts as a downgrade, for those who watch for that.
            change = Change::Replaced;
            changes.insert(static_cast<int>(change));
        }
        if (change != Change::None) {
            m_rows[RowKey(target, change, textBefore, textAfter)] += count;
        }
    }

    const OfferTable& m_before;
    const OfferTable& m_after;
    QMap<RowKey, int> m_rows;
    Comparison m_result;
};

} // namespace

QString changeName(Change change)
{
    static const QStringList names{"gained",    "lost",  "replaced", "upgrade",
                                   "downgrade", "other", "none"};
    return names.at(static_cast<int>(change));
}

Comparison compareOffers(const OfferTable& before, const OfferTable& after,
                         const InstallationList& installations)
{
    Comparer comparer(before, after);
    for (const Installation& installation : installations) {
        comparer.add(installation);
    }
    return comparer.result();
}

} // namespace vx
