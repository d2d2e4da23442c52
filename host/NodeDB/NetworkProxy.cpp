#include "host/NodeDB/NetworkProxy.h"

vx::NetworkProxy::NetworkProxy(bool use, const QString& address, unsigned short port,
                               const QString& user, const QString& password)
    : m_use(use)
    , m_address(address)
    , m_port(port)
    , m_user(user)
    , m_password(password)
{}
