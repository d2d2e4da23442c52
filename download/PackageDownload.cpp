#include <QPointer>

#include "base/LogLine.h"
#include "download/DownloadManager.h"
#include "download/internal/DownloadFile.h"
#include "download/internal/RequestRecord.h"

namespace vx {

namespace {

// Scheme and port of the URL play no part: packages and release notes are served on port 80.
HttpHost downloadHost(HttpHost host, const QUrl& url)
{
    host.server.setAddress(url.host(), 80, false);
    return host;
}

QFile* downloadFile(const ::RequestData& request)
{
    return qobject_cast<QFile*>(request.responseDevice);
}

// Packages of unknown size are not downloads for the slots below, nor are queries, whose filter may
// be a package of known size.
DownloadManager::RequestData* downloadRecord(const ::RequestData& request)
{
    DownloadManager::RequestData* record = requestRecord(request);
    const bool isDownload =
        record != nullptr && record->fileSize != 0 && downloadFile(request) != nullptr;
    return isDownload ? record : nullptr;
}

// A transfer that went wrong has been logged by the client; here only one that went well.
void logShortFile(const ::RequestData& request, quint64 size, quint64 expected)
{
    const QString announced = request.responseHeader.value(QStringLiteral("content-length"));
    const bool isWhole = announced.isEmpty() || announced.toULongLong() == size;
    if (request.statusCode >= 200 && request.statusCode < 300 && isWhole) {
        logLine(3, QStringLiteral("DownloadManager::downloadResult() -> the server's file has %1 "
                                  "bytes, of %2 in the catalogue; correct the size there, or the "
                                  "file on the server")
                       .arg(size)
                       .arg(expected));
    }
}

} // namespace

void DownloadManager::startDownload(const PackageInfo& pack, const QString& fileName)
{
    auto* file = new DownloadFile(fileName);
    file->openEmpty();
    httpClient.setHost(downloadHost(serverHost, pack.url));
    const RequestPtr request = httpClient.prepareGet(HttpClient::encodedUrlPath(pack.url), {}, this,
                                                     SLOT(downloadResult(RequestPtr)), file, {});
    auto* record = new RequestData;
    static_cast<PackageInfo&>(*record) = pack;
    request->userData = record; // before execute(), within which downloadStarting() reads it
    httpClient.execute(request);
}

void DownloadManager::downloadStarting(RequestPtr resp)
{
    const RequestData* record = downloadRecord(*resp);
    if (record == nullptr) {
        return;
    }
    // Copies: a slot may abort the download, which frees record and file.
    const PackageInfo pack = *record;
    const QString fileName = downloadFile(*resp)->fileName();
    emit downloadStarted(pack, fileName);
}

// A download of size 0 ends here unheard, and what it holds is kept: it counts as none.
void DownloadManager::downloadResult(RequestPtr resp)
{
    RequestData* record = downloadRecord(*resp);
    if (record == nullptr) {
        return;
    }
    QFile& file = *downloadFile(*resp);
    const QString fileName = file.fileName();
    const QPointer<DownloadManager> self(this); // a slot may delete the engine at the first signal
    const quint64 size = closeAndMeasure(file);
    if (size < record->fileSize) {
        logShortFile(*resp, size, record->fileSize);
        emit downloadFailure(*record, fileName);
        if (self) {
            emit downloadFailure(resp->statusCode);
        }
    } else {
        record->localFile = fileName;
        emit downloadSuccess(*record, fileName);
        if (self) {
            emit downloadSuccess();
        }
    }
    releaseRequest(resp);
}

// The client hands back what it cancelled; see releaseRequest().
void DownloadManager::abortDownload()
{
    httpClient.reset();
    emit downloadAborted();
}

void DownloadManager::downloadReleaseNotes(const QUrl& url)
{
    if (url.isEmpty()) {
        emit releaseNotesDownloaded(url, QString());
        return;
    }
    httpClient.setHost(downloadHost(serverHost, url));
    httpClient.get(HttpClient::encodedUrlPath(url), this, SLOT(releaseNotesResult(RequestPtr)),
                   clientBuffer());
}

void DownloadManager::releaseNotesResult(RequestPtr resp)
{
    const QString text = resp->statusCode == 200 ? resp->getResponseText() : QString();
    emit releaseNotesDownloaded(resp->requestUrls.value(0), text);
}

} // namespace vx
