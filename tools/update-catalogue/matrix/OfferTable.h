#pragma once

#include <QHash>
#include <QString>
#include <QVector>

#include "package/PackageInfo.h"
#include "tools/update-catalogue/Installation.h"

namespace vx {

/** What the application or a camera of an installation is offered. */
struct Offer
{
    /** The packages by their place in the catalogue, in order; empty for nothing. */
    QVector<int> packages;
    /** Their release; empty for nothing. */
    QString release;
};

/**
 * The offers of one catalogue to many installations. Those that are alike are worked out once, on
 * all processors.
 */
class OfferTable
{
public:
    OfferTable(const PackageInfoList& catalogue, const InstallationList& installations);

    const PackageInfoList& catalogue() const { return m_catalogue; }

    /** What the application of @p installation is offered. */
    const Offer& application(const Installation& installation) const;

    /** What the camera at @p index of @p installation is offered. */
    const Offer& camera(const Installation& installation, int index) const;

    /** Whether neither the application nor a camera is offered anything. */
    bool isEmpty(const Installation& installation) const;

private:
    PackageInfoList m_catalogue;
    QHash<QString, Offer> m_offers;
};

} // namespace vx
