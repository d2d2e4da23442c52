#include "client/SoftwareUpdateClient.h"

#include <QVariant>

#include "base/ReleaseNumber.h"
#include "client/SoftwareUpdateConstants.h"
#include "client/internal/Store.h"
#include "client/internal/StoredSettings.h"
#include "host/CoreQt/QtVersions.h"

namespace vx {

namespace {

// Nothing is escaped: the form of the stores in use must not change.
QStringList cameraItems(const SoftUpCurrentCameraVersions& cameras)
{
    QStringList items;
    for (const auto& camera : cameras) {
        items << camera.first + QLatin1Char(':') + releaseText(camera.second);
    }
    return items;
}

void writeText(QSettings& store, const QString& key, const QString& text)
{
    if (!text.isNull()) {
        store.setValue(key, text);
    }
}

void writeList(QSettings& store, const QString& key, const QStringList& list)
{
    if (!list.isEmpty()) {
        store.setValue(key, list.join(QLatin1Char(',')));
    }
}

} // namespace

void SoftwareUpdateClient::getCurrentSettings(SoftwareUpdateSettings* record)
{
    readSettings(*openStore(), record);
}

void SoftwareUpdateClient::setCurrentSettings(const SoftwareUpdateSettings* record)
{
    const auto store = openStoreToWrite();
    store->setValue(sSoftUpSettingsDoUpdateCheckKey, record->doUpdateCheck);
    store->setValue(sSoftUpSettingsCheckForBetaKey, record->checkForBeta);
    store->setValue(sSoftUpSettingsIntervalKey, record->updateInterval);
    writeText(*store, sSoftUpSettingsUpdateServerURLKey, record->serverURL);
    if (record->versionNumber != VersionNumber()) {
        store->setValue(sSoftUpSettingsVersionNumberKey, releaseText(record->versionNumber));
    }
    writeText(*store, sSoftUpSettingsProductKey, record->product);
    if (!record->lastCheck.isNull() && !isUnwritable(record->lastCheck)) {
        store->setValue(sSoftUpLastCheckKey, record->lastCheck);
    }
    writeList(*store, sSoftUpSupportedPlatformsKey, record->supportedPlatforms);
    writeList(*store, sSoftUpSupportedPackageTypeKey, record->supportedPackageTypes);
    writeList(*store, sSoftUpInstallablePackageTypeKey, record->installablePackageTypes);
    writeList(*store, sSoftUpCurrentCameraVersionsKey, cameraItems(record->currentCameraVersions));
}

} // namespace vx
