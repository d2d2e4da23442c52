#include "download/DownloadManager.h"

#include "base/SignalArgumentType.h"
#include "download/internal/RequestRecord.h"
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

// Signals name the types without their namespace, and a queued connection looks them up like that.
template <typename Type>
int registerUnderBothNames(const char* qualifiedName, const char* name)
{
    const int id = qRegisterMetaType<Type>(qualifiedName);
    registerSignalArgument<Type>(name);
    return id;
}

} // namespace

// A name reserved for examples, so that an application that sets no server asks nobody's.
const QString DownloadManager::UPDATE_URL = QStringLiteral("http://update.example.com");

// Filled while the library is loaded, before anything can be queued.
const int DownloadManager::qMetaTypes[2] = {
    registerUnderBothNames<PackageInfo>("vx::PackageInfo", "PackageInfo"),
    registerUnderBothNames<PackageInfoList>("vx::PackageInfoList", "PackageInfoList"),
};

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
