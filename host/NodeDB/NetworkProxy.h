#pragma once

#include <QString>

#include "host/NodeDB/NodeDBExport.h"

namespace vx {

/** The proxy that the application's connections go through, as the user has set it. */
class VX_NODEDB_EXPORT NetworkProxy
{
public:
    /** No proxy: not to be used, empty texts, port 0. */
    NetworkProxy() = default;

    /**
     * @param use whether the proxy is to be used; the rest is kept either way.
     * @param address host name or address of the proxy.
     * @param port its TCP port.
     * @param user and @p password log in to the proxy; empty where it asks for none. The password
     *     is held as plain text and stored nowhere.
     */
    NetworkProxy(bool use, const QString& address, unsigned short port, const QString& user,
                 const QString& password);

    bool useProxy() const { return m_use; }
    QString proxyAddress() const { return m_address; }
    unsigned short proxyPort() const { return m_port; }
    QString proxyUser() const { return m_user; }
    QString proxyPassword() const { return m_password; }

private:
    bool m_use = false;
    QString m_address;
    unsigned short m_port = 0;
    QString m_user;
    QString m_password;
};

} // namespace vx
