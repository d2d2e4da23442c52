#include <QFile>
#include <QFileInfo>

#include <algorithm>

#include <fcntl.h>

#include "download/DownloadManager.h"
#include "download/RequestRecord.h"

namespace vx {

namespace {

// The name of the file may come from a catalogue. A null character would end the path early.
bool isUsablePath(const QString& path)
{
    const QString name = path.section(QLatin1Char('/'), -1);
    const bool hasControl = std::any_of(
        name.cbegin(), name.cend(), [](QChar c) { return c.category() == QChar::Other_Control; });
    return !hasControl && !path.contains(QChar::Null);
}

// A file that stays closed here ends as a download that came out short. By hand, since QFile would
// write through a link that someone has put in the file's place, and wait for a reader of a pipe.
void openForWriting(QFile& file)
{
    if (!isUsablePath(file.fileName())) {
        return;
    }
    const int flags = O_WRONLY | O_CREAT | O_TRUNC | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC;
    const int handle = ::open(QFile::encodeName(file.fileName()).constData(), flags, 0666);
    if (handle >= 0) {
        file.open(handle, QIODevice::WriteOnly, QFileDevice::AutoCloseHandle);
    }
}

// Scheme and port of the URL play no part: packages and release notes are served on port 80.
HttpHost downloadHost(HttpHost host, const QUrl& url)
{
    host.server.setAddress(url.host(), 80, false);
    return host;
}

// Queries and packages of unknown size are no downloads for the slots below.
DownloadManager::RequestData* downloadRecord(const ::RequestData& request)
{
    DownloadManager::RequestData* record = requestRecord(request);
    return record != nullptr && record->fileSize != 0 ? record : nullptr;
}

// What was never open holds nothing of the download, whatever else is found under its name.
quint64 closeAndMeasure(QFile& file)
{
    if (!file.isOpen()) {
        return 0;
    }
    file.close();
    return static_cast<quint64>(QFileInfo(file.fileName()).size());
}

} // namespace

void DownloadManager::startDownload(const PackageInfo& pack, const QString& fileName)
{
    auto* file = new QFile(fileName);
    openForWriting(*file);
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
    const QString fileName = static_cast<QFile*>(resp->responseDevice)->fileName();
    emit downloadStarted(pack, fileName);
}

// A download of size 0 ends here unheard, and what it holds is kept: it counts as none.
void DownloadManager::downloadResult(RequestPtr resp)
{
    RequestData* record = downloadRecord(*resp);
    if (record == nullptr) {
        return;
    }
    auto* file = static_cast<QFile*>(resp->responseDevice);
    const QString fileName = file->fileName();
    if (closeAndMeasure(*file) < record->fileSize) {
        emit downloadFailure(*record, fileName);
        emit downloadFailure(resp->statusCode);
    } else {
        record->localFile = fileName;
        emit downloadSuccess(*record, fileName);
        emit downloadSuccess();
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
