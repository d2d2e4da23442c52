// A node database of the host's own: the proxy is where the application's property says.
#include <QCoreApplication>
#include <QVariant>

#include "host/NodeDB/NodeDB.h"

namespace vx {

NetworkProxy::NetworkProxy(bool use, const QString& address, unsigned short port,
                           const QString& user, const QString& password)
    : m_use(use)
    , m_address(address)
    , m_port(port)
    , m_user(user)
    , m_password(password)
{}

NodeDB& NodeDB::getDB()
{
    static NodeDB database;
    return database;
}

NetworkProxy NodeDB::globalProxy() const
{
    const int port = QCoreApplication::instance()->property("proxyPort").toInt();
    return NetworkProxy(true, "127.0.0.1", static_cast<unsigned short>(port), QString(), QString());
}

void NodeDB::setGlobalProxy(const NetworkProxy& proxy)
{
    m_globalProxy = proxy;
}

} // namespace vx
