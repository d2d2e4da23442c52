#include "tests/download/ProxyRoad.h"

#include "host/NodeDB/NodeDB.h"

namespace vx::test {

ProxyRoad::ProxyRoad()
{
    if (!server.start()) {
        qFatal("no free port on the loopback address");
    }
    NodeDB::getDB().setGlobalProxy(
        NetworkProxy(true, QStringLiteral("127.0.0.1"), server.port(), QString(), QString()));
}

ProxyRoad::~ProxyRoad()
{
    NodeDB::getDB().setGlobalProxy(NetworkProxy());
}

void ProxyRoad::serveOnly(DownloadManager& engine)
{
    NodeDB::getDB().setGlobalProxy(NetworkProxy());
    engine.setProxy(HttpHost::OwnProxy, QStringLiteral("127.0.0.1:%1").arg(server.port()));
}

void ProxyRoad::serve(const QString& path, const QByteArray& body, int status)
{
    ServedReply reply;
    reply.status = status;
    reply.body = body;
    server.setReply(path, reply);
}

void ProxyRoad::serveFault(const QString& path, const QByteArray& body, ServedReply::Fault fault,
                           qint64 bytes)
{
    ServedReply reply;
    reply.body = body;
    reply.fault = fault;
    reply.bytesBeforeFault = bytes;
    server.setReply(path, reply);
}

PackageInfo packageAt(const QString& url, quintptr size)
{
    PackageInfo package;
    package.name = QStringLiteral("camera");
    package.url = QUrl(url);
    package.fileSize = size;
    return package;
}

} // namespace vx::test
