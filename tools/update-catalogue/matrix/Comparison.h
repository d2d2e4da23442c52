#pragma once

#include <QList>
#include <QMap>
#include <QString>

#include "tools/update-catalogue/matrix/OfferTable.h"

namespace vx {

/** What a new catalogue changes for an application or a camera. */
enum class Change { Gained, Lost, Replaced, Upgrade, Downgrade, Other, None };

/** "gained", "lost", "replaced", "upgrade", "downgrade", "other" or "none". */
QString changeName(Change change);

/** One change, and how many installations it concerns. */
struct ChangeRow
{
    QString target;
    Change change = Change::None;
    QString before;
    QString after;
    int count = 0;
};

/** What a new catalogue changes in the field. */
struct Comparison
{
    /** By target, change and offers; unchanged ones are left out. */
    QList<ChangeRow> rows;
    int installations = 0;
    /** Installations for which at least one change of the kind happens. */
    QMap<Change, int> installationsBy;
    /** Installations that the new catalogue offers nothing. */
    int withoutOffer = 0;
};

/** Compares what @p before and @p after offer to @p installations. */
Comparison compareOffers(const OfferTable& before, const OfferTable& after,
                         const InstallationList& installations);

} // namespace vx
