#include "tools/update-catalogue/explain/UserStore.h"

#include <QFileInfo>
#include <QJsonArray>

#include "base/ReleaseNumber.h"
#include "client/SoftwareUpdateConstants.h"
#include "client/internal/CheckInterval.h"
#include "client/internal/Store.h"
#include "client/internal/StoredSettings.h"
#include "tools/update-catalogue/AddressText.h"
#include "tools/update-catalogue/Command.h"
#include "tools/update-catalogue/ReadableVersion.h"

namespace vx {

namespace {

/** The largest ones hold a name and a version for each of some thousand cameras. */
constexpr qint64 largestStore = 16LL * 1024 * 1024; // bytes

CommandFailure unreadable(const QString& path, const QString& reason)
{
    return CommandFailure(ExitUnreadable, QString("%1: %2").arg(path, reason));
}

QByteArray readBytes(const QString& path)
{
    QFile file(path);
    if (QFileInfo::exists(path) && !QFileInfo(path).isFile()) {
        throw unreadable(path, "is no regular file");
    }
    if (!file.open(QIODevice::ReadOnly)) {
        throw unreadable(path, file.errorString());
    }
    QByteArray bytes = file.read(largestStore + 1);
    if (bytes.size() > largestStore) {
        throw unreadable(path, "is larger than 16 MiB: this is no settings store");
    }
    return bytes;
}

/** Refuses what is something else, before anything is made of it. */
void checkForm(const QString& path, const QByteArray& bytes)
{
    const QByteArray text = bytes.trimmed();
    if (text.isEmpty()) {
        throw unreadable(path, "is empty: no client has stored anything there");
    }
    if (text.startsWith("bplist") || text.startsWith("<?xml")) {
        throw unreadable(path, "is a property list, which cannot be read here; say with "
                               "--application, --version, --camera and --beta what is in it");
    }
}

bool holdsSettings(const QSettings& store)
{
    for (const QString& key :
         {sSoftUpSettingsProductKey, sSoftUpSettingsVersionNumberKey,
          sSoftUpSettingsDoUpdateCheckKey, sSoftUpSettingsIntervalKey, sSoftUpLastCheckKey}) {
        if (store.contains(key)) {
            return true;
        }
    }
    return false;
}

QString joinedOr(const QStringList& words, const QString& without)
{
    return words.isEmpty() ? without : words.join(", ");
}

QString versionText(const VersionNumber& version)
{
    const QString text = releaseText(version);
    return isReadableVersion(text)
               ? text
               : QString("\"%1\", which is no version: lower than every release").arg(text);
}

QString camerasText(const SoftUpCurrentCameraVersions& cameras)
{
    QStringList items;
    for (const auto& camera : cameras) {
        items.append(camera.first + ' ' + versionText(camera.second));
    }
    return joinedOr(items, "none");
}

QString intervalName(int interval)
{
    switch (interval) {
    case AtApplicationStart:
        return "at application start";
    case Daily:
        return "daily";
    case Weekly:
        return "weekly";
    case Monthly:
        return "monthly";
    default:
        return "unknown";
    }
}

QString checksText(const SoftwareUpdateSettings& settings)
{
    const QString interval = intervalName(settings.updateInterval);
    if (!settings.doUpdateCheck) {
        return QString("off (the interval is %1): only the user starts one").arg(interval);
    }
    if (settings.updateInterval == AtApplicationStart) {
        return interval + ", if the application calls doInitialCheck()";
    }
    return interval == "unknown" ? QString("none: %1 is no interval").arg(settings.updateInterval)
                                 : interval;
}

QString timeText(const QDateTime& time)
{
    return time.toString("yyyy-MM-dd hh:mm:ss");
}

/** Null if no check starts by itself, and while the first one is still to come. */
QDateTime nextCheck(const SoftwareUpdateSettings& settings)
{
    return settings.doUpdateCheck && settings.lastCheck.isValid()
               ? checkDueAfter(settings.lastCheck, settings.updateInterval)
               : QDateTime();
}

QString lastCheckText(const QDateTime& lastCheck)
{
    return lastCheck.isValid() ? timeText(lastCheck) + ", whatever came of it" : QString("never");
}

QJsonValue toJson(const QDateTime& time)
{
    return time.isValid() ? QJsonValue(time.toString(Qt::ISODate)) : QJsonValue();
}

QJsonArray toJson(const SoftUpCurrentCameraVersions& cameras)
{
    QJsonArray list;
    for (const auto& camera : cameras) {
        list.append(QJsonObject{{"name", camera.first}, {"version", releaseText(camera.second)}});
    }
    return list;
}

} // namespace

QString UserStore::applicationName() const
{
    return QFileInfo(path).completeBaseName();
}

UserStore readUserStore(const QString& path)
{
    checkForm(path, readBytes(path));
    UserStore store;
    store.path = path;
    const auto settings = openStoreFile(path);
    readSettings(*settings, &store.settings);
    if (settings->status() != QSettings::NoError) {
        throw unreadable(path,
                         "is no settings store, or a damaged one: a line of it is no setting");
    }
    if (!holdsSettings(*settings)) {
        throw unreadable(path, "holds no setting of the update client: this is the file of "
                               "something else");
    }
    return store;
}

FactList storeFacts(const UserStore& store, const QString& applicationName)
{
    const SoftwareUpdateSettings& settings = store.settings;
    FactList facts{
        {"application", applicationName == store.applicationName()
                            ? applicationName + ", as the file is called"
                            : applicationName},
        {"version", versionText(settings.versionNumber)},
        {"platforms", joinedOr(settings.supportedPlatforms, "none")},
        {"file types", joinedOr(settings.supportedPackageTypes, "all")},
        {"cameras", camerasText(settings.currentCameraVersions)},
        {"beta versions", settings.checkForBeta ? "yes" : "no"},
        {"checks", checksText(settings)},
        {"last check", lastCheckText(settings.lastCheck)},
    };
    const QDateTime next = nextCheck(settings);
    if (next.isValid()) {
        facts.append({"next check", "within an hour after " + timeText(next) + ", while it runs"});
    }
    facts.append({"server", settings.serverURL.isEmpty() ? QString("none")
                                                         : withoutPassword(settings.serverURL)});
    return facts;
}

QJsonObject storeToJson(const UserStore& store, const QString& applicationName)
{
    const SoftwareUpdateSettings& settings = store.settings;
    return {{"file", store.path},
            {"application", applicationName},
            {"version", releaseText(settings.versionNumber)},
            {"platforms", QJsonArray::fromStringList(settings.supportedPlatforms)},
            {"types", QJsonArray::fromStringList(settings.supportedPackageTypes)},
            {"cameras", toJson(settings.currentCameraVersions)},
            {"beta", settings.checkForBeta},
            {"checks", settings.doUpdateCheck},
            {"interval", intervalName(settings.updateInterval)},
            {"lastCheck", toJson(settings.lastCheck)},
            {"nextCheck", toJson(nextCheck(settings))},
            {"server", withoutPassword(settings.serverURL)}};
}

} // namespace vx
