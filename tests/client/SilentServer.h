#pragma once

#include <QHostAddress>
#include <QTcpServer>
#include <QTcpSocket>

namespace vx::test {

/** A server that never answers, and sees whether someone still waits for it to do so. */
class SilentServer
{
public:
    SilentServer()
    {
        if (!m_server.listen(QHostAddress::LocalHost)) {
            qFatal("no port to be silent on");
        }
    }

    QString url() const
    {
        return QStringLiteral("http://127.0.0.1:%1/").arg(m_server.serverPort());
    }

    /** Whether a request has come and its sender has not given up yet. */
    bool isAwaited()
    {
        if (!m_connection) {
            m_connection = m_server.nextPendingConnection();
        }
        return m_connection && m_connection->bytesAvailable() > 0 &&
               m_connection->state() == QAbstractSocket::ConnectedState;
    }

private:
    QTcpServer m_server;
    QTcpSocket* m_connection = nullptr; // belongs to the server
};

} // namespace vx::test
