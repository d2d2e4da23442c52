#include <QSettings>

#include "host/NetworkHttp/HttpHost.h"

namespace vx {

namespace {

constexpr QLatin1String serverKeys("server-");
constexpr QLatin1String proxyKeys("proxy-");
constexpr QLatin1String addressKey("address");
constexpr QLatin1String portKey("port");
constexpr QLatin1String secureKey("secure");
constexpr QLatin1String userKey("user");
constexpr QLatin1String passwordKey("password");
constexpr QLatin1String preferenceKey("proxy-preference");

HttpAccess loadAccess(const QSettings& settings, QLatin1String keys)
{
    HttpAccess access;
    access.setAddress(settings.value(QString(keys + addressKey)).toString(),
                      settings.value(QString(keys + portKey)).toInt(),
                      settings.value(QString(keys + secureKey)).toBool());
    if (!access.address.isEmpty()) {
        access.user = settings.value(QString(keys + userKey)).toString();
        access.password = settings.value(QString(keys + passwordKey)).toString();
    }
    return access;
}

HttpHost::ProxyPreference loadPreference(const QSettings& settings)
{
    switch (settings.value(preferenceKey).toInt()) {
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
    settings.setValue(QString(keys + addressKey), access.address);
    settings.setValue(QString(keys + portKey), access.port);
    settings.setValue(QString(keys + userKey), access.user);
    if (withPassword) {
        settings.setValue(QString(keys + passwordKey), access.password);
    } else {
        settings.remove(QString(keys + passwordKey));
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
    settings.setValue(QString(serverKeys + secureKey), server.secure);
    settings.setValue(preferenceKey, static_cast<int>(proxyPreference));
    storeAccess(settings, proxyKeys, proxy, withPasswords);
}

} // namespace vx
