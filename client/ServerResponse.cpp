#include "client/SoftwareUpdateClient.h"

#include <QCoreApplication>
#include <QNetworkReply>

#include "client/SoftwareUpdateConstants.h"
#include "dialogs/SoftwareUpdateDialog.h"
#include "download/DownloadManager.h"
#include "package/LogLine.h"

namespace vx {

namespace {

QString textOf(const VersionNumber& version)
{
    return QString::fromStdString(version.toString());
}

// With beta versions wanted no status is required, which lets stable ones pass as well.
QString requiredStatus(bool checkForBeta)
{
    return checkForBeta ? QString() : QStringLiteral("STABLE");
}

// To the catalogue a camera is a platform: firmware has no name of its own to look for.
PackageInfo cameraFilter(const QPair<QString, VersionNumber>& camera, const QString& status)
{
    return PackageInfo(QString(), QString(), textOf(camera.second), status, QDateTime(),
                       QStringSet{camera.first}, QStringSet(), QString(), QString());
}

PackageInfo applicationFilter(const SoftwareUpdateSettings& record, const QString& status)
{
    const QStringSet platforms(record.supportedPlatforms.begin(), record.supportedPlatforms.end());
    // The application's own name and not the product's: the two may differ.
    return PackageInfo(QString(), QCoreApplication::applicationName(), textOf(record.versionNumber),
                       status, QDateTime(), platforms, QStringSet(), QString(), QString());
}

PackageInfoList findCameraCandidates(PackageInfoList& catalogue,
                                     const SoftwareUpdateSettings& record, const QString& status)
{
    PackageInfoList candidates;
    for (const auto& camera : record.currentCameraVersions) {
        candidates += DownloadManager::findPackageCandidates(
            catalogue, cameraFilter(camera, status), sSoftUpCameraUpdateTag, QStringList());
    }
    DownloadManager::eliminateDuplicatePackages(candidates);
    return candidates;
}

} // namespace

int SoftwareUpdateClient::parseServerResponse(QNetworkReply* reply)
{
    packageList = PackageInfoList();
    packageList = DownloadManager::parseXML(reply);
    if (packageList.isEmpty()) {
        logLine(3, QStringLiteral(
                       "SoftwareUpdateClient::parseServerResponse() -> no update available"));
        if (updateDialog) {
            updateDialog->setNotificationText(tr("No update available!"));
        }
        return 1;
    }
    SoftwareUpdateSettings record;
    getCurrentSettings(&record);
    const bool checkForBeta =
        updateDialog ? updateDialog->getDialogSettings().checkForBeta : record.checkForBeta;
    const QString status = requiredStatus(checkForBeta);
    // The order matters: each search writes its tag into the catalogue's records, and duplicates
    // are removed among the cameras only.
    const PackageInfoList cameras = findCameraCandidates(packageList, record, status);
    packageList = DownloadManager::findPackageCandidates(
        packageList, applicationFilter(record, status), sSoftUpApplicationUpdateTag,
        record.supportedPackageTypes);
    packageList += cameras;
    return 0;
}

} // namespace vx
