#include "tests/host/NetworkHttp/RawServer.h"

#include <QHostAddress>

namespace vx::test {

QByteArray rawReply(int status, const QByteArray& body, const Fields& fields)
{
    QByteArray bytes = "HTTP/1.1 " + QByteArray::number(status) + " Status\r\n";
    for (const auto& field : fields) {
        bytes += field.first + ": " + field.second + "\r\n";
    }
    bytes += "Content-Length: " + QByteArray::number(body.size()) + "\r\n";
    return bytes + "Connection: close\r\n\r\n" + body;
}

QByteArray headerOf(const QByteArray& request, const QByteArray& field)
{
    for (const QByteArray& line : request.split('\n')) {
        const int colon = line.indexOf(':');
        if (colon > 0 && line.left(colon).toLower() == field.toLower()) {
            return line.mid(colon + 1).trimmed();
        }
    }
    return QByteArray();
}

QByteArray targetOf(const QByteArray& request)
{
    return request.split(' ').value(1);
}

RawServer::RawServer()
{
    connect(this, SIGNAL(newConnection()), this, SLOT(acceptClient()));
    listen(QHostAddress::LocalHost);
    setReply(rawReply(200));
}

void RawServer::setReply(const QByteArray& bytes)
{
    setScript([bytes](QTcpSocket* socket, const QByteArray&) {
        socket->write(bytes);
        socket->disconnectFromHost();
    });
}

QByteArray RawServer::url(const QByteArray& path) const
{
    return "http://127.0.0.1:" + QByteArray::number(serverPort()) + path;
}

HttpHost RawServer::host() const
{
    const HttpAccess server(QStringLiteral("127.0.0.1"), serverPort(), QString(), QString());
    return HttpHost(server, HttpAccess(), QString());
}

void RawServer::acceptClient()
{
    while (QTcpSocket* const socket = nextPendingConnection()) {
        connect(socket, SIGNAL(readyRead()), this, SLOT(readRequest()));
        connect(socket, SIGNAL(disconnected()), socket, SLOT(deleteLater()));
    }
}

void RawServer::readRequest()
{
    auto* const socket = qobject_cast<QTcpSocket*>(sender());
    const QByteArray waiting = socket->peek(socket->bytesAvailable());
    const int end = waiting.indexOf("\r\n\r\n");
    if (end < 0) {
        return;
    }
    const QByteArray request = socket->read(end + 4);
    m_requests.append(request);
    m_script(socket, request);
}

} // namespace vx::test
