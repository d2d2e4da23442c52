#include "base/FailureReason.h"

#include <QNetworkProxy>
#include <QNetworkReply>
#include <QUrl>
#include <QVariant>

#include "base/HeaderLimit.h"
#include "base/TlsReason.h"

namespace vx {

namespace {

constexpr char tlsProperty[] = "vx_tlsReason";

QString hostAndPort(const QString& host, int port)
{
    return host.contains(QLatin1Char(':')) ? QStringLiteral("[%1]:%2").arg(host).arg(port)
                                           : QStringLiteral("%1:%2").arg(host).arg(port);
}

QString serverOf(const QUrl& url)
{
    if (url.host().isEmpty()) {
        return QStringLiteral("an address without a host");
    }
    const int usualPort = url.scheme() == QLatin1String("https") ? 443 : 80;
    return printable(hostAndPort(url.host(QUrl::FullyEncoded), url.port(usualPort)));
}

QString proxyName(const QNetworkProxy& proxy)
{
    return QStringLiteral("the proxy ") + printable(hostAndPort(proxy.hostName(), proxy.port()));
}

bool isUsed(const QNetworkProxy& proxy)
{
    return proxy.type() != QNetworkProxy::NoProxy;
}

QString through(const QNetworkProxy& proxy)
{
    return isUsed(proxy) ? QStringLiteral(" (through %1)").arg(proxyName(proxy)) : QString();
}

/** How much of the answer there is. */
QString progress(const QNetworkReply& reply, qint64 received)
{
    if (!reply.attribute(QNetworkRequest::HttpStatusCodeAttribute).isValid()) {
        return QStringLiteral("before the end of its header");
    }
    const QVariant announced = reply.header(QNetworkRequest::ContentLengthHeader);
    return announced.isValid()
               ? QStringLiteral("after %1 of %2 bytes").arg(received).arg(announced.toLongLong())
               : QStringLiteral("after %1 bytes, the end of which is not marked").arg(received);
}

QString proxyReason(QNetworkReply::NetworkError error, const QString& proxy)
{
    switch (error) {
    case QNetworkReply::ProxyConnectionRefusedError:
        return proxy + QStringLiteral(" refuses connections; start it or correct its address");
    case QNetworkReply::ProxyNotFoundError:
        return proxy + QStringLiteral(" is not known by that name; correct its address");
    case QNetworkReply::ProxyTimeoutError:
        return proxy + QStringLiteral(" does not answer; look whether it can be reached");
    case QNetworkReply::ProxyAuthenticationRequiredError:
        return proxy + QStringLiteral(" refuses the user and password that it was given, or got "
                                      "none; they are not tried again, correct them");
    default:
        return proxy + QStringLiteral(" closed the connection; its own log says why");
    }
}

QString statusReason(const QNetworkReply& reply, const QString& server)
{
    const int status = reply.attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    const QString answer = QStringLiteral("%1 answered with status %2").arg(server).arg(status);
    if (status == 401) {
        return answer + QStringLiteral("; correct the user and password, or serve without");
    }
    if (status == 403 || status == 404 || status == 410) {
        return answer + QStringLiteral("; correct the address, or serve the file there");
    }
    return answer + QStringLiteral("; the server's own log says why");
}

QString connectionReason(const QNetworkReply& reply, const QString& server, qint64 received)
{
    switch (reply.error()) {
    case QNetworkReply::ConnectionRefusedError:
        return server + QStringLiteral(" refuses connections; start the server or correct the "
                                       "address");
    case QNetworkReply::HostNotFoundError:
        return server + QStringLiteral(" is not known by that name; correct the address, or look "
                                       "whether this machine has a network");
    case QNetworkReply::RemoteHostClosedError:
        return QStringLiteral("%1 cut the connection %2; look for what stands between")
            .arg(server, progress(reply, received));
    case QNetworkReply::ProtocolUnknownError:
        return QStringLiteral("the scheme \"%1\" cannot be asked; a whole address begins with "
                              "http:// or https://")
            .arg(printable(reply.url().scheme()));
    default:
        return QStringLiteral("%1 cannot be asked: %2").arg(server, printable(reply.errorString()));
    }
}

/** The error of @p reply as one of the proxy, if it is one; through the proxy it must have gone. */
QNetworkReply::NetworkError proxyError(const QNetworkReply& reply)
{
    const QNetworkReply::NetworkError error = reply.error();
    if (error >= QNetworkReply::ProxyConnectionRefusedError &&
        error <= QNetworkReply::UnknownProxyError) {
        return error;
    }
    // Without a tunnel it is the proxy that is connected to, and the network stack doesn't say so.
    const bool isTunnel = reply.url().scheme() == QLatin1String("https");
    if (error == QNetworkReply::ConnectionRefusedError && !isTunnel) {
        return QNetworkReply::ProxyConnectionRefusedError;
    }
    return error == QNetworkReply::HostNotFoundError && !isTunnel
               ? QNetworkReply::ProxyNotFoundError
               : QNetworkReply::NoError;
}

bool isOfStatus(const QNetworkReply& reply)
{
    return reply.attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt() >= 400;
}

} // namespace

void rememberTlsErrors(QNetworkReply* reply)
{
    QObject::connect(reply, &QNetworkReply::sslErrors, reply,
                     [reply](const QList<QSslError>& errors) {
                         reply->setProperty(tlsProperty, tlsReason(errors, serverOf(reply->url())));
                     });
}

QString failureReason(const QNetworkReply& reply, const QNetworkProxy& proxy, qint64 received)
{
    const QString server = serverOf(reply.url());
    const QString tls = reply.property(tlsProperty).toString();
    if (hasTooLongHeader(reply)) {
        return QStringLiteral(
                   "%1 sent a header of more than %2 bytes and was cut off; correct what "
                   "it sends, or look for what stands between")
                   .arg(server)
                   .arg(largestHeader) +
               through(proxy);
    }
    const QNetworkReply::NetworkError ofProxy =
        isUsed(proxy) ? proxyError(reply) : QNetworkReply::NoError;
    if (ofProxy != QNetworkReply::NoError) {
        return proxyReason(ofProxy, proxyName(proxy));
    }
    if (reply.error() == QNetworkReply::SslHandshakeFailedError) {
        const QString reason = tls.isEmpty()
                                   ? QStringLiteral("%1 does not speak TLS as it should: %2")
                                         .arg(server, printable(reply.errorString()))
                                   : tls;
        return reason + through(proxy);
    }
    return (isOfStatus(reply) ? statusReason(reply, server)
                              : connectionReason(reply, server, received)) +
           through(proxy);
}

QString stallReason(const QNetworkReply& reply, const QNetworkProxy& proxy, qint64 received,
                    const QString& what, int seconds)
{
    return QStringLiteral("%1 did not send %2 within %3 s and was given up %4; look whether it is "
                          "reached, and how fast it sends")
               .arg(serverOf(reply.url()), what, QString::number(seconds),
                    progress(reply, received)) +
           through(proxy);
}

QString interimReason(int status)
{
    return QStringLiteral("the interim answer %1 was taken for the answer; keep the server from "
                          "sending it for this address")
        .arg(status);
}

QString printable(const QString& text)
{
    constexpr int longest = 100;
    QString result;
    for (const QChar character : text.left(longest)) {
        const ushort code = character.unicode();
        result.append(code >= 0x20 && code < 0x7f ? character : QChar(QLatin1Char('?')));
    }
    return result;
}

} // namespace vx
