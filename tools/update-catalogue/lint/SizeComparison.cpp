#include <QDir>
#include <QEventLoop>
#include <QFileInfo>
#include <QNetworkAccessManager>
#include <QNetworkProxy>
#include <QNetworkReply>
#include <QScopedPointer>

#include <optional>

#include "download/DownloadManager.h"
#include "tools/update-catalogue/lint/Rules.h"

namespace vx::rules {

namespace {

constexpr int requestTimeout = 15000;

std::optional<qint64> sizeInFolder(const PackageInfo& info, const QString& folder)
{
    const QFileInfo file(QDir(folder).filePath(info.fileName()));
    return file.isFile() ? std::optional<qint64>(file.size()) : std::nullopt;
}

/** Asks where the client will ask: by HTTP on port 80. */
std::optional<qint64> sizeOnServer(const PackageInfo& info, QNetworkAccessManager& manager)
{
    QUrl url = info.url;
    url.setScheme("http");
    url.setPort(80);
    QNetworkRequest request(url);
    request.setRawHeader("Accept-Encoding", "identity");
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute,
                         QNetworkRequest::NoLessSafeRedirectPolicy);
    request.setTransferTimeout(requestTimeout);
    const QScopedPointer<QNetworkReply> reply(manager.head(request));
    QEventLoop loop;
    QObject::connect(reply.data(), SIGNAL(finished()), &loop, SLOT(quit()));
    loop.exec();
    const QVariant length = reply->header(QNetworkRequest::ContentLengthHeader);
    if (reply->error() != QNetworkReply::NoError || !length.isValid()) {
        return std::nullopt;
    }
    return length.toLongLong();
}

void compare(const CataloguePackage& package, std::optional<qint64> actual, const QString& where,
             FindingSink& sink)
{
    const auto announced = static_cast<qint64>(package.info.fileSize);
    if (!actual) {
        sink.addAt(package, DownloadManager::URL,
                   QString("The file of this package is not to be had %1: its download fails.")
                       .arg(where));
    } else if (*actual < announced) {
        sink.addAt(package, DownloadManager::FILE_SIZE,
                   QString("The file has %1 bytes %2 and %3 are announced: every download fails.")
                       .arg(*actual)
                       .arg(where)
                       .arg(announced));
    } else if (*actual > announced) {
        sink.addAt(package, DownloadManager::FILE_SIZE,
                   QString("The file has %1 bytes %2 and %3 are announced: a truncated download "
                           "passes as complete.")
                       .arg(*actual)
                       .arg(where)
                       .arg(announced));
    }
}

} // namespace

void sizeMismatch(const CatalogueTree& tree, const LintOptions& options, FindingSink& sink)
{
    QNetworkAccessManager manager;
    manager.setProxy(QNetworkProxy::DefaultProxy);
    for (const CataloguePackage& package : tree.packages()) {
        if (!options.files.isEmpty()) {
            compare(package, sizeInFolder(package.info, options.files), "in the folder", sink);
        }
        if (options.checkUrls) {
            compare(package, sizeOnServer(package.info, manager), "on the server", sink);
        }
    }
}

} // namespace vx::rules
