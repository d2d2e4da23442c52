#pragma once

#include "download/DownloadManager.h"
#include "tools/server/UpdateServer.h"

namespace vx::test {

/**
 * A server that answers for every host, as the application's proxy.
 *
 * Packages come from port 80, which an ordinary user may not open. Asked as a proxy the server
 * stands for any host's port 80, on a port that anybody may open. The application has no proxy
 * again when the object goes.
 */
class ProxyRoad
{
public:
    ProxyRoad();
    ~ProxyRoad();
    ProxyRoad(const ProxyRoad&) = delete;
    ProxyRoad& operator=(const ProxyRoad&) = delete;

    UpdateServer server;

    /** Makes the server the proxy of @p engine alone: the application has none any more. */
    void serveOnly(DownloadManager& engine);

    /** Serves @p body at @p path of every host. */
    void serve(const QString& path, const QByteArray& body, int status = 200);
    /** Serves @p body at @p path, and fails after @p bytes of it. */
    void serveFault(const QString& path, const QByteArray& body, ServedReply::Fault fault,
                    qint64 bytes);

    /** The address of an update server that is reached on this road. */
    static QUrl updateServer() { return QUrl(QStringLiteral("http://updates.example.com/")); }
};

/** A package called "camera", of @p size bytes, to be had at @p url. */
PackageInfo packageAt(const QString& url, quintptr size);

} // namespace vx::test
