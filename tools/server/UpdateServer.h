#pragma once

#include <QByteArray>
#include <QList>
#include <QMap>
#include <QPair>
#include <QString>
#include <QUrl>

#include <functional>
#include <memory>

namespace vx {

/** One request as it came in. */
struct ServedRequest
{
    /** "GET", "HEAD", ... */
    QByteArray method;
    /** The request target as sent: in absolute form when the client used the server as a proxy. */
    QByteArray target;
    /** The percent-decoded path without the query, whichever host was asked. Begins with "/". */
    QString path;
    /** The host that was asked: of the target when that is absolute, else the Host header. */
    QByteArray host;
    /** The headers under lower-case names; of a repeated header the last one. */
    QMap<QByteArray, QByteArray> headers;
};

/** What to answer, and how to fail while doing so. */
struct ServedReply
{
    enum Fault {
        /** The whole reply is sent. */
        NoFault,
        /** The whole length is announced; after bytesBeforeFault bytes the connection is closed. */
        CloseEarly,
        /** As CloseEarly, but the connection ends with a TCP reset. */
        Reset,
        /** As CloseEarly, but instead of closing nothing more is sent until the client goes or the
            server stops. */
        Stall,
        /** The request is read and never answered; ends as Stall does. */
        Silent,
        /** The body is sent in small pieces, spread over delayMs. */
        Slow,
        /** The body is the whole answer, from its status line on; status and headers are not
            used. The connection is closed behind it. */
        Raw,
        /** As Raw, with lines of a header behind it until the client goes or the server stops. */
        EndlessHeader
    };

    /** The HTTP status code. */
    int status = 200;
    /** Sent as they stand. "Content-Length" replaces the computed one; without a "Content-Type" the
        body goes out as "application/octet-stream". */
    QList<QPair<QByteArray, QByteArray>> headers;
    /** The body, sent as it stands: never compressed, never cut to a range. */
    QByteArray body;
    Fault fault = NoFault;
    /** Bytes of the body that are sent before CloseEarly, Reset or Stall; below 0 counts as 0. */
    qint64 bytesBeforeFault = 0;
    /** Milliseconds. For Slow the time that the body takes; for Silent without meaning; otherwise
        the wait before the answer. */
    int delayMs = 0;
};

/**
 * A small HTTP server for tests, for the demonstration and for trying out catalogues.
 *
 * It answers GET and HEAD (any other method is handed on as well, its body is not read), one
 * request per connection, and fails on request in the ways in which real servers fail. Asked as a
 * forward proxy it answers by itself for every host, so that a package "on port 80 of
 * download.example.com" can be served without that host and without the right to open port 80.
 * Tunnels (CONNECT) get status 501.
 *
 * The answer to a path is, in this order: the reply set for the path, the handler's, the file of
 * that path below the folder, status 404.
 *
 * All operations may be called from any thread, except that a handler must not call start() or
 * stop(). The server runs on threads of its own and needs no event loop. Up to 64 connections are
 * served at once; stalled, silent and slow ones count until they end.
 */
class UpdateServer
{
public:
    /** Called on a thread of the server, one call at a time. */
    using Handler = std::function<ServedReply(const ServedRequest&)>;

    UpdateServer();
    /** Stops the server. */
    ~UpdateServer();
    UpdateServer(const UpdateServer&) = delete;
    UpdateServer& operator=(const UpdateServer&) = delete;

    /**
     * Begins to listen. Connections are accepted from the moment on at which this returns.
     *
     * @param address the local address; "0.0.0.0" for all of them.
     * @param port the port; 0 for any that is free.
     * @return false if the server runs already or the port cannot be had.
     */
    bool start(const QString& address = QStringLiteral("127.0.0.1"), quint16 port = 0);

    /** Ends every connection, whatever state it is in, and returns when none is left. Replies,
        handler, folder, password and recorded requests stay; the server can be started again. */
    void stop();

    /** The port, or 0 while the server does not run. */
    quint16 port() const;

    /** The http URL of @p path (decoded) on this server. */
    QUrl url(const QString& path = QStringLiteral("/")) const;

    /** From now on answers requests of @p path (decoded, without query) with @p reply. */
    void setReply(const QString& path, const ServedReply& reply);

    /** Asks @p handler for every path that has no reply of its own; an empty one is no handler. */
    void setHandler(const Handler& handler);

    /** Serves the files below @p folder, byte ranges included; an empty name serves none. Nothing
        outside the folder is served, be it by "..", by a link or otherwise. */
    void setFolder(const QString& folder);

    /** Answers proxy requests (absolute target or CONNECT) with status 407 until they carry this
        name and password as Basic credentials. An empty @p user lifts that. */
    void setProxyPassword(const QString& user, const QString& password);

    /** Every request so far, in order of arrival, those answered with 407 or 404 included. */
    QList<ServedRequest> requests() const;

    /** Forgets the recorded requests. */
    void clearRequests();

private:
    class Private;
    std::unique_ptr<Private> d;
};

} // namespace vx
