#include <QBuffer>
#include <QPointer>

#include "download/DownloadManager.h"
#include "download/internal/RequestRecord.h"
#include "host/CoreQt/InvokeQueued.h"
#include "host/NetworkHttp/HttpAccessHistory.h"

namespace vx {

namespace {

void refreshProxy(HttpHost& host)
{
    host.updateProxy(QUrl());
    if (host.proxyPreference != HttpHost::NoProxy && !host.proxy.address.isEmpty()) {
        HttpAccessHistory::proxies.add(host.proxy);
    }
}

// Field by field: the constructor with these arguments would also fill the public name and release.
PackageInfo filterOf(const QString& types, const QString& names, const QString& releaseVersion,
                     const QString& releaseStatus, const QDateTime& time,
                     const QStringSet& platforms, const QStringSet& languages)
{
    PackageInfo filter;
    filter.type = types;
    filter.name = names;
    filter.release = releaseVersion;
    filter.status = releaseStatus;
    filter.date = time;
    filter.platforms = platforms;
    filter.languages = languages;
    return filter;
}

// A window that asked may be closed before the answer comes. The response buffer is the context of
// the connection, because it is destroyed with the request.
void forgetReceiverWhenDestroyed(QObject* receiver, ::RequestData& request)
{
    if (receiver == nullptr) {
        return;
    }
    QObject::connect(receiver, &QObject::destroyed, request.getResponseBuffer(), [&request] {
        if (DownloadManager::RequestData* record = requestRecord(request)) {
            record->callbackReceiver = nullptr;
        }
    });
}

void markKnown(PackageInfoList& packages, QHash<QString, QDateTime>& history)
{
    for (PackageInfo& package : packages) {
        const QString id = package.stringID();
        if (history.contains(id)) {
            package.flags.known = true;
        } else {
            history.insert(id, QDateTime::currentDateTime());
        }
    }
}

} // namespace

void DownloadManager::setServer(const QUrl& url)
{
    serverHost.server.setUrl(url);
    serverPath = HttpClient::encodedUrlPath(url);
    serverHost.proxyPreference = HttpHost::GlobalProxy;
}

void DownloadManager::setProxy(HttpHost::ProxyPreference preference, const QString& address)
{
    serverHost.proxyPreference = preference;
    serverHost.proxy.parseAddress(address, 80);
    refreshProxy(serverHost);
}

QUrl DownloadManager::queryUrl() const
{
    return serverHost.makeURL(QString(), {}, true);
}

void DownloadManager::queryUpdate(const QString& filterTypes, const QString& filterNames,
                                  const QString& filterReleaseVersion,
                                  const QString& filterReleaseStatus, const QDateTime& filterTime,
                                  const QStringSet& filterPlatform,
                                  const QStringSet& filterLanguages, QObject* callbackReceiver,
                                  const char* callbackSlot)
{
    queryUpdate(filterOf(filterTypes, filterNames, filterReleaseVersion, filterReleaseStatus,
                         filterTime, filterPlatform, filterLanguages),
                callbackReceiver, callbackSlot);
}

void DownloadManager::queryUpdate(const PackageInfo& filter, QObject* callbackReceiver,
                                  const char* callbackSlot)
{
    refreshProxy(serverHost);
    httpClient.setHost(serverHost);
    const RequestPtr request = httpClient.prepareGet(
        QString(), {}, this, SLOT(queryResult(RequestPtr)), clientBuffer(), {});

    auto* record = new RequestData;
    static_cast<PackageInfo&>(*record) = filter;
    record->callbackReceiver = callbackReceiver;
    record->callbackSlot = callbackSlot;
    request->userData = record;
    forgetReceiverWhenDestroyed(callbackReceiver, *request);

    const QPointer<DownloadManager> self(this); // a slot may delete the engine
    emit queryStarted(serverHost.server);
    if (!self) {
        releaseRequest(request);
        return;
    }
    httpClient.execute(request);
}

// The languages go where the platforms belong. Hosts rely on it, so it stays.
void DownloadManager::queryCameraFirmwareUpdate(const QString& filterVersion,
                                                const QString& filterRelease,
                                                const QStringSet& filterLanguages)
{
    queryUpdate(QStringLiteral("system"), QString(), filterVersion, filterRelease, QDateTime(),
                filterLanguages, QStringSet());
}

void DownloadManager::queryResult(RequestPtr resp)
{
    QBuffer* answer = resp->getResponseBuffer();
    answer->seek(0);
    const QString cookie = QStringLiteral("set-cookie");
    if (resp->responseHeader.hasKey(cookie)) {
        serverCookie = resp->responseHeader.value(cookie);
    }
    const QPointer<DownloadManager> self(this); // a slot may delete the engine with the answer
    queryResult(answer, requestRecord(*resp));
    if (self) {
        // Only now, so that a slot of packageFound() still sees the previous catalogue.
        lastCatalogue = answer->data();
    }
    releaseRequest(resp);
    if (self) {
        emit queryFinished();
    }
}

void DownloadManager::queryResult(QIODevice* input, RequestData* data)
{
    PackageInfoList packages = parseXML(input);
    lastCheck = QDateTime::currentDateTime();
    markKnown(packages, updateHistory);

    // Goes no further: a query delivers the whole catalogue, whatever its filter says.
    PackageInfoList best = findBestMatches(packages, data != nullptr ? *data : PackageInfo());
    for (PackageInfo& package : best) {
        package.flags.superseded = false;
    }

    if (data != nullptr && data->callbackSlot != nullptr) {
        invokeQueued(data->callbackReceiver, data->callbackSlot,
                     Q_ARG(vx::PackageInfoList, packages));
    }
    if (packages.isEmpty()) {
        emit noPackageFound();
    } else {
        emit packageFound(packages);
    }
}

PackageInfoList DownloadManager::recentPackages(
    const QString& filterTypes, const QString& filterNames, const QString& filterReleaseVersion,
    const QString& filterReleaseStatus, const QDateTime& filterTime,
    const QStringSet& filterPlatform, const QStringSet& filterLanguages) const
{
    return recentPackages(filterOf(filterTypes, filterNames, filterReleaseVersion,
                                   filterReleaseStatus, filterTime, filterPlatform,
                                   filterLanguages));
}

// The filter is taken for the sake of the interface and has no effect.
PackageInfoList DownloadManager::recentPackages(const PackageInfo&) const
{
    if (lastCatalogue.isEmpty()) {
        return {};
    }
    QBuffer device;
    device.setData(lastCatalogue);
    device.open(QIODevice::ReadOnly);
    PackageInfoList packages = parseXML(&device);
    for (PackageInfo& package : packages) {
        package.flags.known = true;
    }
    return packages;
}

} // namespace vx
