#include "tools/update-catalogue/CatalogueSource.h"

#include <QEventLoop>
#include <QFile>
#include <QFileInfo>
#include <QNetworkAccessManager>
#include <QNetworkProxy>
#include <QNetworkReply>
#include <QScopedPointer>
#include <QTimer>

#include <cstdio>

#include "base/AnyCompression.h"
#include "host/FileFormatsXml/XmlUtils.h"
#include "tools/update-catalogue/Command.h"

namespace vx {

namespace {

constexpr int requestTimeout = 15000;
constexpr int maximumRedirects = 20;

CommandFailure unreadable(const QString& name, const QString& reason)
{
    return CommandFailure(ExitUnreadable, QString("%1: %2").arg(name, reason));
}

QByteArray readDevice(QIODevice& device, const QString& name)
{
    QByteArray bytes = device.read(XmlUtils::maximumDocumentSize + 1);
    if (bytes.size() > XmlUtils::maximumDocumentSize) {
        throw unreadable(name, QString("larger than the %1 MiB that a client reads")
                                   .arg(XmlUtils::maximumDocumentSize >> 20));
    }
    return bytes;
}

CatalogueSource readFile(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        throw unreadable(path, file.errorString());
    }
    CatalogueSource catalogue{path, readDevice(file, path), QFileInfo(path).lastModified()};
    if (file.error() != QFile::NoError) {
        throw unreadable(path, file.errorString());
    }
    return catalogue;
}

CatalogueSource readStandardInput()
{
    const QString name = "standard input";
    QFile file;
    if (!file.open(stdin, QIODevice::ReadOnly)) {
        throw unreadable(name, file.errorString());
    }
    return {name, readDevice(file, name)};
}

CatalogueSource readUrl(const QString& address)
{
    QNetworkAccessManager manager;
    manager.setProxy(QNetworkProxy::NoProxy);
    QNetworkRequest request{QUrl(address)};
    request.setHeader(QNetworkRequest::ContentTypeHeader, "text/xml");
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute,
                         QNetworkRequest::NoLessSafeRedirectPolicy);
    request.setMaximumRedirectsAllowed(maximumRedirects);
    request.setTransferTimeout(requestTimeout);
    allowAnyCompression(request);
    const QScopedPointer<QNetworkReply> reply(manager.get(request));
    QEventLoop loop;
    QObject::connect(reply.data(), SIGNAL(finished()), &loop, SLOT(quit()));
    loop.exec();
    if (reply->error() != QNetworkReply::NoError) {
        throw unreadable(address, reply->errorString());
    }
    const QDateTime date = reply->header(QNetworkRequest::LastModifiedHeader).toDateTime();
    return {address, readDevice(*reply, address), date};
}

} // namespace

CatalogueSource readCatalogue(const QString& source)
{
    if (source == "-") {
        return readStandardInput();
    }
    if (source.startsWith("http://") || source.startsWith("https://")) {
        return readUrl(source);
    }
    return readFile(source);
}

} // namespace vx
