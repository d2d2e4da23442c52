#include <QFileInfo>

#include <algorithm>

#include "download/DownloadManager.h"
#include "host/FileFormatsPreferences/Preferences.h"
#include "host/IO/FileUtils.h"

namespace vx {

namespace {

const QLatin1String groupName("Download");
const QLatin1String lastCheckKey("last-check");
const QLatin1String regularCheckKey("reg-check");
const QLatin1String formerRegularCheckKey("regular-check");
const QLatin1String layoutKey("ver");
const QLatin1String historyKey("hist");
const QLatin1String idKey("version"); // holds a PackageInfo::stringID, and no version
const QLatin1String timeKey("time");

constexpr int currentLayout = 3;
constexpr int yearsToKeep = 2;

/**
 * The indices below @p size, in order, under which the open array holds anything at all. The other
 * ones have no time and would be skipped, and a damaged size can be 2147483647.
 */
QList<int> filledIndices(const QSettings& settings, int size)
{
    QList<int> indices;
    const QStringList entries = settings.childGroups();
    for (const QString& entry : entries) {
        const int index = entry.toInt() - 1;
        if (index >= 0 && index < size) {
            indices.append(index);
        }
    }
    std::sort(indices.begin(), indices.end());
    return indices;
}

void readHistory(QSettings& settings, QHash<QString, QDateTime>& history)
{
    const QDateTime cutOff = QDateTime::currentDateTime().addYears(-yearsToKeep);
    const int size = settings.beginReadArray(historyKey);
    const QList<int> indices = filledIndices(settings, size);
    for (const int index : indices) {
        settings.setArrayIndex(index);
        const QDateTime time = Preferences::dateTimeValue(settings, timeKey, QDateTime());
        if (time.isValid() && time >= cutOff) {
            history.insert(Preferences::stringValue(settings, idKey, QString()), time);
        }
    }
    settings.endArray();
}

void writeHistory(QSettings& settings, const QHash<QString, QDateTime>& history)
{
    // A longer array from before would keep its last entries.
    settings.remove(historyKey);
    settings.beginWriteArray(historyKey, int(history.size()));
    int index = 0;
    for (auto item = history.cbegin(); item != history.cend(); ++item) {
        settings.setArrayIndex(index++);
        settings.setValue(idKey, item.key());
        Preferences::setDateTimeValue(settings, timeKey, item.value());
    }
    settings.endArray();
}

} // namespace

void DownloadManager::loadHistory(QSettings& settings, const QString& catalogueFile)
{
    if (!catalogueFile.isEmpty() && QFileInfo::exists(catalogueFile)) {
        lastCatalogue = FileUtils::readBytes(catalogueFile);
    }
    settings.beginGroup(groupName);
    lastCheck = Preferences::dateTimeValue(settings, lastCheckKey, QDateTime());
    regularCheck = Preferences::boolValue(settings, regularCheckKey, false);
    serverHost.load(settings);
    if (Preferences::intValue(settings, layoutKey, 0) < currentLayout) {
        serverHost.proxyPreference = HttpHost::GlobalProxy;
        serverHost.server.setUrl(QUrl(UPDATE_URL));
        serverPath = HttpClient::encodedUrlPath(UPDATE_URL);
    }
    readHistory(settings, updateHistory);
    settings.endGroup();
}

void DownloadManager::storeHistory(QSettings& settings, const QString& catalogueFile)
{
    if (!catalogueFile.isEmpty() && !lastCatalogue.isEmpty()) {
        FileUtils::writeBytes(lastCatalogue, catalogueFile);
    }
    settings.beginGroup(groupName);
    Preferences::setDateTimeValue(settings, lastCheckKey, lastCheck);
    settings.setValue(regularCheckKey, regularCheck);
    settings.remove(formerRegularCheckKey);
    settings.setValue(layoutKey, currentLayout);
    serverHost.store(settings, false);
    writeHistory(settings, updateHistory);
    settings.endGroup();
}

} // namespace vx
