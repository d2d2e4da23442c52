#include "client/SoftwareUpdateClient.h"

#include "host/NodeDB/NodeDB.h"

namespace vx {

QNetworkProxy SoftwareUpdateClient::networkProxy()
{
    const NetworkProxy proxy = NodeDB::getDB().globalProxy();
    if (!proxy.useProxy()) {
        // Not the default type, which would follow the system's settings.
        return QNetworkProxy(QNetworkProxy::NoProxy, QString(), 0, QString(), QString());
    }
    return QNetworkProxy(QNetworkProxy::HttpProxy, proxy.proxyAddress(), proxy.proxyPort(),
                         proxy.proxyUser(), proxy.proxyPassword());
}

} // namespace vx
