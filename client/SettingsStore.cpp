#include "client/SoftwareUpdateClient.h"

#include <QCoreApplication>
#include <QTimeZone>
#include <QVariant>

#include <algorithm>
#include <memory>

#include "client/SoftwareUpdateConstants.h"
#include "package/ReleaseNumber.h"

namespace vx {

namespace {

QString textOr(const QString& text, const QString& fallback)
{
    return text.isEmpty() ? fallback : text;
}

std::unique_ptr<QSettings> openStore()
{
    return std::make_unique<QSettings>(
        SoftwareUpdateClient::sSoftUpQSettingsFormat, SoftwareUpdateClient::sSoftUpQSettingsScope,
        textOr(QCoreApplication::organizationName(), QStringLiteral("Veldrix")),
        textOr(QCoreApplication::applicationName(), QStringLiteral("softwareUpdate")));
}

/** A time that a damaged store can give, and that Qt crashes on when it writes the store. */
bool isUnwritable(const QDateTime& time)
{
    return time.timeSpec() == Qt::TimeZone && !time.timeZone().isValid();
}

/** A list is what the store makes of a value with commas. */
bool holdsUnwritableTime(const QVariant& value)
{
    if (value.type() == QVariant::List) {
        const QVariantList items = value.toList();
        return std::any_of(items.begin(), items.end(), holdsUnwritableTime);
    }
    return value.type() == QVariant::DateTime && isUnwritable(value.toDateTime());
}

// Qt writes a whole file at once, so that one such value of any part of the application would do.
void removeUnwritableTimes(QSettings& store)
{
    const QStringList keys = store.allKeys();
    for (const QString& key : keys) {
        if (holdsUnwritableTime(store.value(key))) {
            store.remove(key);
        }
    }
}

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
    return value.isNull() ? VersionNumber("0") : releaseNumber(value.toString());
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
    const auto store = openStore();
    removeUnwritableTimes(*store);
    store->setValue(sSoftUpSettingsDoUpdateCheckKey, record->doUpdateCheck);
    store->setValue(sSoftUpSettingsCheckForBetaKey, record->checkForBeta);
    store->setValue(sSoftUpSettingsIntervalKey, record->updateInterval);
    writeText(*store, sSoftUpSettingsUpdateServerURLKey, record->serverURL);
    if (record->versionNumber != VersionNumber()) {
        store->setValue(sSoftUpSettingsVersionNumberKey, releaseText(record->versionNumber));
    }
    writeText(*store, sSoftUpSettingsProductKey, record->product);
    if (!record->lastCheck.isNull()) {
        store->setValue(sSoftUpLastCheckKey, record->lastCheck);
    }
    writeList(*store, sSoftUpSupportedPlatformsKey, record->supportedPlatforms);
    writeList(*store, sSoftUpSupportedPackageTypeKey, record->supportedPackageTypes);
    writeList(*store, sSoftUpInstallablePackageTypeKey, record->installablePackageTypes);
    writeList(*store, sSoftUpCurrentCameraVersionsKey, cameraItems(record->currentCameraVersions));
}

} // namespace vx
