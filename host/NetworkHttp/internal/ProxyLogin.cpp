#include "host/NetworkHttp/internal/ProxyLogin.h"

#include <QAuthenticator>

#include "host/NodeDB/NodeDB.h"

namespace vx {

namespace {

/** The application's proxy, whether or not it is in use: its password is good either way. */
HttpAccess applicationProxy()
{
    const NetworkProxy global = NodeDB::getDB().globalProxy();
    return HttpAccess(global.proxyAddress(), global.proxyPort(), global.proxyUser(),
                      global.proxyPassword());
}

} // namespace

QNetworkProxy networkProxyOf(const HttpHost& host)
{
    const bool isKnown =
        host.proxyPreference == HttpHost::OwnProxy || host.proxyPreference == HttpHost::GlobalProxy;
    if (!isKnown || host.proxy.address.isEmpty()) {
        return QNetworkProxy(QNetworkProxy::NoProxy);
    }
    return QNetworkProxy(QNetworkProxy::HttpProxy, host.proxy.address,
                         static_cast<quint16>(host.proxy.port));
}

void logInToProxy(const HttpHost& host, QAuthenticator* authenticator)
{
    HttpAccess login = host.proxy;
    const HttpAccess known = applicationProxy();
    // A host is often stored with the user, but without the password.
    const bool isIncomplete =
        login.password.isEmpty() && (login.user.isEmpty() || login.user == known.user);
    if (isIncomplete && known.hasSameAddress(host.proxy)) {
        login = known;
    }
    if (!login.user.isEmpty()) {
        authenticator->setUser(login.user);
        authenticator->setPassword(login.password);
    }
}

} // namespace vx
