#pragma once

#include <QHash>
#include <QString>
#include <QStringList>
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
    /** @param remarks what is to be said of the packages, by place; those without one are empty. */
    OfferTable(const PackageInfoList& catalogue, const InstallationList& installations,
               const QStringList& remarks = QStringList());

    const PackageInfoList& catalogue() const { return m_catalogue; }

    /** What is to be said of the package at @p package, or nothing. */
    QString remark(int package) const { return m_remarks.value(package); }

    /** What the application of @p installation is offered. */
    const Offer& application(const Installation& installation) const;

    /** What the camera at @p index of @p installation is offered. */
    const Offer& camera(const Installation& installation, int index) const;

    /** Whether neither the application nor a camera is offered anything. */
    bool isEmpty(const Installation& installation) const;

private:
    PackageInfoList m_catalogue;
    QStringList m_remarks;
    QHash<QString, Offer> m_offers;
};

} // namespace vx
