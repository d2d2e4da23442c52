#include "host/NetworkHttp/HttpHost.h"

#include <QStringList>

#include "host/NodeDB/NodeDB.h"

namespace vx {

namespace {

/** Encodes "+" as well, which many servers take for a space. */
QString encodedQuery(const QMap<QString, QVariant>& params)
{
    QStringList pairs;
    for (auto it = params.constBegin(); it != params.constEnd(); ++it) {
        pairs.append(QString::fromLatin1(QUrl::toPercentEncoding(it.key()) + '=' +
                                         QUrl::toPercentEncoding(it.value().toString())));
    }
    return pairs.join(QLatin1Char('&'));
}

} // namespace

HttpHost::HttpHost()
    : proxyPreference(NoProxy)
{}

HttpHost::HttpHost(const HttpHost& other) = default;

HttpHost::HttpHost(const HttpAccess& serverAccess, const HttpAccess& proxyAccess,
                   const QString& agent)
    : server(serverAccess)
    , proxyPreference(proxyAccess.address.isEmpty() ? NoProxy : OwnProxy)
    , proxy(proxyAccess)
    , userAgent(agent)
{}

HttpHost::~HttpHost() = default;

HttpHost& HttpHost::operator=(const HttpHost& other) = default;

void HttpHost::updateProxy(const QUrl& /*url*/)
{
    if (proxyPreference != GlobalProxy) {
        return;
    }
    const NetworkProxy global = NodeDB::getDB().globalProxy();
    proxy = global.useProxy() ? HttpAccess(global.proxyAddress(), global.proxyPort(),
                                           global.proxyUser(), global.proxyPassword())
                              : HttpAccess();
}

QUrl HttpHost::makeURL(const QString& path, const QMap<QString, QVariant>& params, bool full) const
{
    if (full && server.address.isEmpty()) {
        return QUrl();
    }
    QUrl url = full ? QUrl(QString(server)) : QUrl();
    const bool needsSlash = !path.startsWith(QLatin1Char('/')) && (full || !path.isEmpty());
    url.setPath(needsSlash ? QLatin1Char('/') + path : path, QUrl::TolerantMode);
    if (!params.isEmpty()) {
        url.setQuery(encodedQuery(params), QUrl::StrictMode);
    }
    return url;
}

} // namespace vx
