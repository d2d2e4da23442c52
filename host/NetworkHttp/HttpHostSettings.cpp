#include <QSettings>

#include "host/NetworkHttp/HttpHost.h"

namespace vx {

namespace {

const QLatin1String serverKeys("server-");
const QLatin1String proxyKeys("proxy-");
const QLatin1String addressKey("address");
const QLatin1String portKey("port");
const QLatin1String secureKey("secure");
const QLatin1String userKey("user");
const QLatin1String passwordKey("password");
const QLatin1String preferenceKey("proxy-preference");

/** The number of @p key or 0. By way of the text, as QVariant::toInt wraps large numbers around. */
int numberOf(const QSettings& settings, const QString& key)
{
    return settings.value(key).toString().toInt();
}

HttpAccess loadAccess(const QSettings& settings, QLatin1String keys)
{
    HttpAccess access;
    access.setAddress(settings.value(keys + addressKey).toString(),
                      numberOf(settings, keys + portKey),
                      settings.value(keys + secureKey).toBool());
    if (!access.address.isEmpty()) {
        access.user = settings.value(keys + userKey).toString();
        access.password = settings.value(keys + passwordKey).toString();
    }
    return access;
}

HttpHost::ProxyPreference loadPreference(const QSettings& settings)
{
    switch (numberOf(settings, preferenceKey)) {
    case HttpHost::OwnProxy:
        return HttpHost::OwnProxy;
    case HttpHost::GlobalProxy:
        return HttpHost::GlobalProxy;
    default:
        return HttpHost::NoProxy;
    }
}

void storeAccess(QSettings& settings, QLatin1String keys, const HttpAccess& access,
                 bool withPassword)
{
    settings.setValue(keys + addressKey, access.address);
    settings.setValue(keys + portKey, access.port);
    settings.setValue(keys + userKey, access.user);
    if (withPassword) {
        settings.setValue(keys + passwordKey, access.password);
    } else {
        settings.remove(keys + passwordKey);
    }
}

} // namespace

void HttpHost::load(const QSettings& settings)
{
    server = loadAccess(settings, serverKeys);
    proxyPreference = loadPreference(settings);
    proxy = loadAccess(settings, proxyKeys);
}

void HttpHost::store(QSettings& settings, bool withPasswords) const
{
    storeAccess(settings, serverKeys, server, withPasswords);
    settings.setValue(serverKeys + secureKey, server.secure);
    settings.setValue(preferenceKey, static_cast<int>(proxyPreference));
    storeAccess(settings, proxyKeys, proxy, withPasswords);
}

} // namespace vx
