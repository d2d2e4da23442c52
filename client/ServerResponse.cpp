#include "client/SoftwareUpdateClient.h"

#include <QCoreApplication>
#include <QNetworkReply>

#include "client/OfferSelection.h"
#include "dialogs/SoftwareUpdateDialog.h"
#include "download/DownloadManager.h"
#include "package/LogLine.h"

namespace vx {

namespace {

OfferCriteria criteriaFrom(const SoftwareUpdateSettings& record)
{
    OfferCriteria criteria;
    // The application's own name and not the product's: the two may differ.
    criteria.applicationName = QCoreApplication::applicationName();
    criteria.versionNumber = record.versionNumber;
    criteria.supportedPlatforms = record.supportedPlatforms;
    criteria.supportedPackageTypes = record.supportedPackageTypes;
    criteria.currentCameraVersions = record.currentCameraVersions;
    criteria.checkForBeta = record.checkForBeta;
    return criteria;
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
    OfferCriteria criteria = criteriaFrom(record);
    if (updateDialog) {
        criteria.checkForBeta = updateDialog->getDialogSettings().checkForBeta;
    }
    packageList = selectOffers(packageList, criteria);
    return 0;
}

} // namespace vx
