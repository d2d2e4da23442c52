#include "tools/server/UpdateServer.h"

#include <mutex>
#include <utility>

#include "tools/server/HttpListener.h"
#include "tools/server/RequestReader.h"
#include "tools/server/ServedFile.h"

namespace vx {

namespace {

ServedReply proxyPasswordRequired()
{
    ServedReply reply;
    reply.status = 407;
    reply.headers = {{"Proxy-Authenticate", "Basic realm=\"update server\""}};
    return reply;
}

ServedReply noTunnels()
{
    ServedReply reply;
    reply.status = 501;
    return reply;
}

ServedReply notFound()
{
    ServedReply reply;
    reply.status = 404;
    reply.headers = {{"Content-Type", "text/plain"}};
    reply.body = "Not found\n";
    return reply;
}

/** The address that clients on this machine use. */
QString reachableHost(const QString& address)
{
    const bool everywhere = address == QLatin1String("0.0.0.0") || address == QLatin1String("::");
    return everywhere ? QStringLiteral("127.0.0.1") : address;
}

} // namespace

class UpdateServer::Private
{
public:
    Answer answer(const ServedRequest& request);

    /** Guards the start and the end of the listener; never taken by its threads. */
    std::mutex lifeMutex;
    std::unique_ptr<HttpListener> listener;

    /** One call of the handler at a time. */
    std::mutex handlerMutex;

    /** Guards all below. */
    mutable std::mutex mutex;
    QString address = QStringLiteral("127.0.0.1");
    quint16 port = 0;
    QMap<QString, ServedReply> replies;
    Handler handler;
    QString folder;
    QByteArray credentials;
    QList<ServedRequest> requests;

private:
    bool mayPass(const ServedRequest& request) const;
};

bool UpdateServer::Private::mayPass(const ServedRequest& request) const
{
    return credentials.isEmpty() || !isProxyRequest(request) ||
           request.headers.value("proxy-authorization") == credentials;
}

Answer UpdateServer::Private::answer(const ServedRequest& request)
{
    Handler ask;
    QString served;
    {
        const std::lock_guard<std::mutex> lock(mutex);
        requests.append(request);
        if (!mayPass(request)) {
            return {QString(), proxyPasswordRequired()};
        }
        if (request.method == "CONNECT") {
            return {QString(), noTunnels()};
        }
        const auto found = replies.constFind(request.path);
        if (found != replies.constEnd()) {
            return {QString(), *found};
        }
        ask = handler;
        served = folder;
    }
    if (ask) {
        const std::lock_guard<std::mutex> lock(handlerMutex);
        return {QString(), ask(request)};
    }
    return {served.isEmpty() ? QString() : fileBelow(served, request.path), notFound()};
}

UpdateServer::UpdateServer()
    : d(std::make_unique<Private>())
{}

UpdateServer::~UpdateServer()
{
    stop();
}

bool UpdateServer::start(const QString& address, quint16 port)
{
    const std::lock_guard<std::mutex> life(d->lifeMutex);
    if (d->listener) {
        return false;
    }
    auto listener = std::make_unique<HttpListener>(
        [this](const ServedRequest& request) { return d->answer(request); });
    const quint16 bound = listener->listen(address, port);
    if (bound == 0) {
        return false;
    }
    d->listener = std::move(listener);
    const std::lock_guard<std::mutex> lock(d->mutex);
    d->address = address;
    d->port = bound;
    return true;
}

void UpdateServer::stop()
{
    const std::lock_guard<std::mutex> life(d->lifeMutex);
    d->listener.reset();
    const std::lock_guard<std::mutex> lock(d->mutex);
    d->port = 0;
}

quint16 UpdateServer::port() const
{
    const std::lock_guard<std::mutex> lock(d->mutex);
    return d->port;
}

QUrl UpdateServer::url(const QString& path) const
{
    const std::lock_guard<std::mutex> lock(d->mutex);
    QUrl url;
    url.setScheme(QStringLiteral("http"));
    url.setHost(reachableHost(d->address));
    url.setPort(d->port);
    url.setPath(path, QUrl::DecodedMode);
    return url;
}

void UpdateServer::setReply(const QString& path, const ServedReply& reply)
{
    const std::lock_guard<std::mutex> lock(d->mutex);
    d->replies.insert(path, reply);
}

void UpdateServer::setHandler(const Handler& handler)
{
    const std::lock_guard<std::mutex> lock(d->mutex);
    d->handler = handler;
}

void UpdateServer::setFolder(const QString& folder)
{
    const std::lock_guard<std::mutex> lock(d->mutex);
    d->folder = folder;
}

void UpdateServer::setProxyPassword(const QString& user, const QString& password)
{
    const QByteArray pair = user.toUtf8() + ':' + password.toUtf8();
    const std::lock_guard<std::mutex> lock(d->mutex);
    d->credentials = user.isEmpty() ? QByteArray() : "Basic " + pair.toBase64();
}

QList<ServedRequest> UpdateServer::requests() const
{
    const std::lock_guard<std::mutex> lock(d->mutex);
    return d->requests;
}

void UpdateServer::clearRequests()
{
    const std::lock_guard<std::mutex> lock(d->mutex);
    d->requests.clear();
}

} // namespace vx
