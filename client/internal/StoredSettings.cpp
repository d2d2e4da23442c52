#include "client/internal/StoredSettings.h"

#include <QSettings>
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

} // namespace

void readSettings(const QSettings& store, SoftwareUpdateSettings* record)
{
    record->clear();
    record->doUpdateCheck = flagOr(store.value(sSoftUpSettingsDoUpdateCheckKey), true);
    record->checkForBeta = flagOr(store.value(sSoftUpSettingsCheckForBetaKey), false);
    record->updateInterval = store.value(sSoftUpSettingsIntervalKey).toInt();
    record->serverURL = store.value(sSoftUpSettingsUpdateServerURLKey).toString();
    record->versionNumber = storedVersion(store.value(sSoftUpSettingsVersionNumberKey));
    record->product = store.value(sSoftUpSettingsProductKey).toString();
    record->lastCheck = storedTime(store.value(sSoftUpLastCheckKey));
    record->supportedPlatforms = storedList(store.value(sSoftUpSupportedPlatformsKey));
    record->supportedPackageTypes = storedList(store.value(sSoftUpSupportedPackageTypeKey));
    record->installablePackageTypes = storedList(store.value(sSoftUpInstallablePackageTypeKey));
    record->currentCameraVersions = storedCameras(store.value(sSoftUpCurrentCameraVersionsKey));
}

} // namespace vx
