#include "client/SoftwareUpdateClient.h"

#include <QDesktopServices>
#include <QDir>
#include <QFileInfo>
#include <QUrl>

#include "base/LogLine.h"
#include "download/DownloadManager.h"

namespace vx {

namespace {

QFileInfoList installerBundlesIn(const QString& folder)
{
    // Bundles are folders; a plain file of that name is not a bundle.
    return QDir(folder).entryInfoList(
        {QStringLiteral("*.mpkg")},
        QDir::Dirs | QDir::NoSymLinks | QDir::Readable | QDir::NoDotAndDotDot, QDir::Unsorted);
}

} // namespace

void SoftwareUpdateClient::installMPKGPackage()
{
    if (unzipManager == nullptr) {
        unzipManager = new DownloadManager;
    }
    unzipManager->unzipPackage(downloadFilePath);
    // No end is missed by connecting after the call: unpacking reports it through the event loop.
    QObject::connect(unzipManager, SIGNAL(unzippingDone(QString)), this,
                     SLOT(unzippedMPKGPackage(QString)));
}

void SoftwareUpdateClient::unzippedMPKGPackage(const QString& unzippedFilePath)
{
    if (unzipManager != nullptr) {
        unzipManager->deleteLater();
        unzipManager = nullptr;
    }
    logLine(1, QStringLiteral(
                   "SoftwareUpdateClient::unzippedMPKGPackage() -> unzipped succesfully to ") +
                   unzippedFilePath);
    const QFileInfoList bundles = installerBundlesIn(unzippedFilePath);
    for (const QFileInfo& bundle : bundles) {
        const QString path = bundle.absoluteFilePath();
        logLine(1, QStringLiteral("SoftwareUpdateClient::installMPKGPackage ") + path);
        if (!QDesktopServices::openUrl(QUrl::fromLocalFile(path))) {
            logLine(3, QStringLiteral("SoftwareUpdateClient::installMPKGPackage, can't start "
                                      "package installer!"));
            break;
        }
    }
}

} // namespace vx
