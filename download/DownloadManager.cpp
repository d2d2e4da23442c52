#include "download/DownloadManager.h"

#include "download/RequestRecord.h"
#include "host/CoreQt/Connect.h"

namespace vx {

namespace {

// Without a receiver's object: the client raises requestReset also while it is destroyed with the
// manager, when no slot of the manager can be called any more.
void releaseResetRequests(HttpClient& client)
{
    QObject::connect(&client, &HttpClient::requestReset, releaseRequest);
}

void passOnSignals(HttpClient& client, DownloadManager& manager)
{
    connect(&client, SIGNAL(requestStarted(RequestPtr)), &manager,
            SLOT(downloadStarting(RequestPtr)), Qt::AutoConnection);
    connect(&client, SIGNAL(downloadProgress(int, int)), &manager,
            SIGNAL(downloadProgress(int, int)), Qt::AutoConnection);
}

} // namespace

DownloadManager::DownloadManager(const HttpHost& host, const QString& path)
    : httpClient(host)
    , serverHost(host)
    , serverPath(path)
    , regularCheck(true)
{
    releaseResetRequests(httpClient);
    passOnSignals(httpClient, *this);
}

DownloadManager::DownloadManager(const QUrl& url)
    : regularCheck(true)
{
    setServer(url);
    httpClient.setHost(serverHost);
    releaseResetRequests(httpClient);
    passOnSignals(httpClient, *this);
}

DownloadManager::DownloadManager(QSettings& settings, const QString& catalogueFile)
{
    loadHistory(settings, catalogueFile);
    releaseResetRequests(httpClient);
    passOnSignals(httpClient, *this);
}

// Passes no signals on: an object made only to unpack or to launch reports no downloads.
DownloadManager::DownloadManager()
{
    releaseResetRequests(httpClient);
}

DownloadManager::~DownloadManager() = default;

const HttpHost& DownloadManager::server() const
{
    return serverHost;
}

HttpHost& DownloadManager::server()
{
    return serverHost;
}

bool DownloadManager::isQueryBusy() const
{
    return httpClient.isExecutingRequest();
}

bool DownloadManager::isRegularCheck() const
{
    return regularCheck;
}

bool DownloadManager::setRegularCheck(bool value)
{
    const bool previous = regularCheck;
    regularCheck = value;
    return previous;
}

} // namespace vx
