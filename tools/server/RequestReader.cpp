#include "tools/server/RequestReader.h"

#include <QSet>
#include <QUrl>

namespace vx {

namespace {

QMap<QByteArray, QByteArray> headersOf(const httplib::Request& request)
{
    // The HTTP library puts these among the headers, though no client sent them.
    static const QSet<QByteArray> added = {"remote_addr", "remote_port", "local_addr",
                                           "local_port"};
    QMap<QByteArray, QByteArray> headers;
    for (const auto& [name, value] : request.headers) {
        const QByteArray key = QByteArray::fromStdString(name).toLower();
        if (!added.contains(key)) {
            headers.insert(key, QByteArray::fromStdString(value));
        }
    }
    return headers;
}

QByteArray authority(const QUrl& url)
{
    return url.authority(QUrl::FullyEncoded | QUrl::RemoveUserInfo).toLatin1();
}

} // namespace

ServedRequest readRequest(const httplib::Request& request)
{
    ServedRequest result;
    result.method = QByteArray::fromStdString(request.method);
    result.target = QByteArray::fromStdString(request.target);
    result.headers = headersOf(request);
    result.host = result.headers.value("host");
    result.path = QStringLiteral("/");
    if (result.target.startsWith('/')) {
        const QByteArray path = result.target.split('?').first();
        result.path = QString::fromUtf8(QByteArray::fromPercentEncoding(path));
    } else if (result.method == "CONNECT") {
        result.host = result.target;
    } else if (isProxyRequest(result)) {
        const QUrl url = QUrl::fromEncoded(result.target);
        result.host = authority(url);
        result.path = url.path().isEmpty() ? result.path : url.path(QUrl::FullyDecoded);
    }
    return result;
}

bool isProxyRequest(const ServedRequest& request)
{
    return request.method == "CONNECT" ||
           (request.target.contains("://") && !request.target.startsWith('/'));
}

} // namespace vx
