#pragma once

#include <QPair>
#include <QString>
#include <QStringList>

#include "client/SoftwareUpdateSettings.h"
#include "host/Core/VersionNumber.h"
#include "package/PackageInfo.h"

namespace vx {

/** What decides, beside the catalogue, which packages an installation is offered. */
struct OfferCriteria
{
    /** The name that the application's packages must have; empty accepts every name. */
    QString applicationName;
    /** The installed version of the application. */
    VersionNumber versionNumber;
    /** The platforms of the application. */
    QStringList supportedPlatforms;
    /** The file types that the application accepts; empty accepts all. */
    QStringList supportedPackageTypes;
    /** Name and installed firmware of each camera. */
    SoftUpCurrentCameraVersions currentCameraVersions;
    /** Whether packages of any status will do, and not only "STABLE" ones. */
    bool checkForBeta = false;
};

/** What @p record decides for an application of that name. */
OfferCriteria criteriaFrom(const SoftwareUpdateSettings& record, const QString& applicationName);

/** What a package for the application must pass. File types are tested beside it. */
PackageInfo applicationFilter(const OfferCriteria& criteria);

/**
 * What firmware for @p camera must pass: to the catalogue a camera is a platform. A camera without
 * a name is offered nothing.
 */
PackageInfo cameraFilter(const QPair<QString, VersionNumber>& camera,
                         const OfferCriteria& criteria);

/**
 * What a check offers of @p catalogue: the newest packages for the application, then those for the
 * cameras, each with the type under which it was found.
 *
 * @param catalogue is changed: the type of a package becomes the tag of the last search that
 *     accepted it.
 */
PackageInfoList selectOffers(PackageInfoList& catalogue, const OfferCriteria& criteria);

} // namespace vx
