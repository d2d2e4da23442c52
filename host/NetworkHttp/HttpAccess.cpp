#include "host/NetworkHttp/HttpAccess.h"

#include <QHostAddress>

namespace vx {

namespace {

constexpr int httpPort = 80;
constexpr int httpsPort = 443;

bool isHttp(const QString& scheme)
{
    return scheme.isEmpty() || scheme == QLatin1String("http") || scheme == QLatin1String("https");
}

bool isHttps(const QUrl& url)
{
    return url.scheme() == QLatin1String("https");
}

/** The host in @p text without brackets, or empty if it can't stand in a URL. */
QString usableHost(const QString& text)
{
    QString host = text.trimmed();
    if (host.startsWith(QLatin1Char('[')) && host.endsWith(QLatin1Char(']'))) {
        host = host.mid(1, host.size() - 2);
    }
    QUrl probe;
    probe.setHost(host);
    return probe.host().isEmpty() ? QString() : host;
}

bool isBareIpv6(const QString& text)
{
    return QHostAddress(text).protocol() == QAbstractSocket::IPv6Protocol;
}

/** What a person typed as the URL that it is short for. */
QUrl urlFromTyped(const QString& text)
{
    if (isBareIpv6(text)) {
        return QUrl(QStringLiteral("http://[%1]").arg(text));
    }
    if (text.contains(QLatin1String("://"))) {
        return QUrl(text);
    }
    return QUrl(QStringLiteral("http://") + text);
}

} // namespace

HttpAccess::HttpAccess()
    : port(httpPort)
    , secure(false)
{}

HttpAccess::HttpAccess(const QString& host, int hostPort, const QString& userName,
                       const QString& userPassword)
    : HttpAccess()
{
    setAddress(host, hostPort, false);
    user = userName;
    password = userPassword;
}

void HttpAccess::setUrl(const QUrl& url)
{
    *this = HttpAccess();
    if (!url.isValid() || !isHttp(url.scheme())) {
        return;
    }
    setAddress(url.host(), url.port(), isHttps(url));
    if (!address.isEmpty()) {
        user = url.userName(QUrl::FullyDecoded);
        password = url.password(QUrl::FullyDecoded);
    }
}

void HttpAccess::setAddress(const QString& host, int hostPort, bool https)
{
    *this = HttpAccess();
    address = usableHost(host);
    if (address.isEmpty()) {
        return;
    }
    const bool portExists = hostPort >= 1 && hostPort <= 65535;
    const int usualPort = https ? httpsPort : httpPort;
    port = portExists ? hostPort : usualPort;
    secure = https;
}

void HttpAccess::parseAddress(const QString& text, int defaultPort)
{
    QUrl url = urlFromTyped(text.trimmed());
    // Setting the port of an invalid URL would make it valid.
    if (url.isValid() && url.port() == -1 && !isHttps(url)) {
        url.setPort(defaultPort);
    }
    setUrl(url);
}

HttpAccess::operator QString() const
{
    if (address.isEmpty()) {
        return QString();
    }
    QUrl url;
    url.setScheme(secure ? QStringLiteral("https") : QStringLiteral("http"));
    url.setHost(address);
    if (port != (secure ? httpsPort : httpPort)) {
        url.setPort(port);
    }
    return url.toString();
}

bool HttpAccess::hasSameAddress(const HttpAccess& other) const
{
    return port == other.port && address.compare(other.address, Qt::CaseInsensitive) == 0;
}

} // namespace vx
