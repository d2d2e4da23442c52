#include "client/internal/OfferSelection.h"

#include "base/ReleaseNumber.h"
#include "client/SoftwareUpdateConstants.h"
#include "download/DownloadManager.h"

namespace vx {

namespace {

// With beta versions wanted no status is required, which lets stable ones pass as well.
QString requiredStatus(const OfferCriteria& criteria)
{
    return criteria.checkForBeta ? QString() : QStringLiteral("STABLE");
}

/**
 * The name of @p camera. An empty one would begin the platforms of every package; a space begins
 * none, since platforms are separated by it.
 */
QString cameraPlatform(const QPair<QString, VersionNumber>& camera)
{
    return camera.first.isEmpty() ? QStringLiteral(" ") : camera.first;
}

PackageInfoList findCameraCandidates(PackageInfoList& catalogue, const OfferCriteria& criteria)
{
    PackageInfoList candidates;
    for (const auto& camera : criteria.currentCameraVersions) {
        candidates += DownloadManager::findPackageCandidates(
            catalogue, cameraFilter(camera, criteria), sSoftUpCameraUpdateTag, QStringList());
    }
    DownloadManager::eliminateDuplicatePackages(candidates);
    return candidates;
}

} // namespace

OfferCriteria criteriaFrom(const SoftwareUpdateSettings& record, const QString& applicationName)
{
    OfferCriteria criteria;
    criteria.applicationName = applicationName;
    criteria.versionNumber = record.versionNumber;
    criteria.supportedPlatforms = record.supportedPlatforms;
    criteria.supportedPackageTypes = record.supportedPackageTypes;
    criteria.currentCameraVersions = record.currentCameraVersions;
    criteria.checkForBeta = record.checkForBeta;
    return criteria;
}

PackageInfo applicationFilter(const OfferCriteria& criteria)
{
    const QStringSet platforms(criteria.supportedPlatforms.begin(),
                               criteria.supportedPlatforms.end());
    return PackageInfo(QString(), criteria.applicationName, releaseText(criteria.versionNumber),
                       requiredStatus(criteria), QDateTime(), platforms, QStringSet(), QString(),
                       QString());
}

PackageInfo cameraFilter(const QPair<QString, VersionNumber>& camera, const OfferCriteria& criteria)
{
    return PackageInfo(QString(), QString(), releaseText(camera.second), requiredStatus(criteria),
                       QDateTime(), QStringSet{cameraPlatform(camera)}, QStringSet(), QString(),
                       QString());
}

PackageInfoList selectOffers(PackageInfoList& catalogue, const OfferCriteria& criteria)
{
    // The order matters: each search writes its tag into the catalogue's records, and duplicates
    // are removed among the cameras only.
    const PackageInfoList cameras = findCameraCandidates(catalogue, criteria);
    PackageInfoList offers = DownloadManager::findPackageCandidates(
        catalogue, applicationFilter(criteria), sSoftUpApplicationUpdateTag,
        criteria.supportedPackageTypes);
    offers += cameras;
    return offers;
}

} // namespace vx
