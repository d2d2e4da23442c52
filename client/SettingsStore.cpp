#include "client/SoftwareUpdateClient.h"

#include <QVariant>

#include "base/ReleaseNumber.h"
#include "client/SoftwareUpdateConstants.h"
#include "client/internal/Store.h"
#include "host/CoreQt/QtVersions.h"

namespace vx {

namespace {

QDateTime storedTime(const QVariant& value)
{
    const QDateTime time = value.toDateTime();
    return isUnwritable(time) ? QDateTime() : time;
}

bool flagOr(const QVariant& value, bool fallback)
{
    return value.toString().isEmpty() ? fallback : value.toBool();
}

VersionNumber storedVersion(const QVariant& value)
{
    return isNullValue(value) ? VersionNumber("0") : releaseNumber(value.toString());
}

QStringList storedList(const QVariant& value)
{
    return value.toString().split(QLatin1Char(','), Qt::SkipEmptyParts, Qt::CaseSensitive);
}

SoftUpCurrentCameraVersions storedCameras(const QVariant& value)
{
    SoftUpCurrentCameraVersions cameras;
    const QStringList items = storedList(value);
    for (const QString& item : items) {
        cameras.append(qMakePair(item.section(QLatin1Char(':'), 0, 0),
                                 releaseNumber(item.section(QLatin1Char(':'), 1, 1))));
    }
    return cameras;
}

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
    record->clear();
    const auto store = openStore();
    record->doUpdateCheck = flagOr(store->value(sSoftUpSettingsDoUpdateCheckKey), true);
    record->checkForBeta = flagOr(store->value(sSoftUpSettingsCheckForBetaKey), false);
    record->updateInterval = store->value(sSoftUpSettingsIntervalKey).toInt();
    record->serverURL = store->value(sSoftUpSettingsUpdateServerURLKey).toString();
    record->versionNumber = storedVersion(store->value(sSoftUpSettingsVersionNumberKey));
    record->product = store->value(sSoftUpSettingsProductKey).toString();
    record->lastCheck = storedTime(store->value(sSoftUpLastCheckKey));
    record->supportedPlatforms = storedList(store->value(sSoftUpSupportedPlatformsKey));
    record->supportedPackageTypes = storedList(store->value(sSoftUpSupportedPackageTypeKey));
    record->installablePackageTypes = storedList(store->value(sSoftUpInstallablePackageTypeKey));
    record->currentCameraVersions = storedCameras(store->value(sSoftUpCurrentCameraVersionsKey));
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
