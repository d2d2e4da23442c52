#include "host/NetworkHttp/internal/NetworkRequest.h"

#include <QUrl>

namespace vx {

namespace {

/** A line break in a header field would begin another one. */
QByteArray fieldValue(const QString& text)
{
    QByteArray value;
    for (const char c : text.toLatin1()) {
        const bool isControl = static_cast<uchar>(c) < 0x20 || c == 0x7f;
        if (!isControl) {
            value.append(c);
        }
    }
    return value;
}

} // namespace

QNetworkRequest networkRequest(const QUrl& url, const QString& userAgent)
{
    QNetworkRequest request(url);
    request.setRawHeader("Accept-Encoding", "identity");
    if (!userAgent.isEmpty()) {
        request.setRawHeader("User-Agent", fieldValue(userAgent));
    }
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute,
                         QNetworkRequest::ManualRedirectPolicy);
    // Qt 6 would ask for it by default.
    request.setAttribute(QNetworkRequest::Http2AllowedAttribute, false);
    request.setAttribute(QNetworkRequest::CacheLoadControlAttribute,
                         QNetworkRequest::AlwaysNetwork);
    request.setAttribute(QNetworkRequest::CookieSaveControlAttribute, QNetworkRequest::Manual);
    return request;
}

} // namespace vx
