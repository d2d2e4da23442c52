#pragma once

#include <QByteArray>
#include <QList>
#include <QPair>
#include <QTcpServer>
#include <QTcpSocket>

#include <functional>

#include "host/NetworkHttp/HttpHost.h"

namespace vx::test {

/** Header fields of an answer, as name and value. */
using Fields = QList<QPair<QByteArray, QByteArray>>;

/** A whole answer with its length, after which the server closes the connection. */
QByteArray rawReply(int status, const QByteArray& body = QByteArray(),
                    const Fields& fields = Fields());

/** The value of the header @p field in the raw @p request; empty if it isn't there. */
QByteArray headerOf(const QByteArray& request, const QByteArray& field);

/** The address in the first line of the raw @p request, as it was sent. */
QByteArray targetOf(const QByteArray& request);

/**
 * A server on loopback that answers each request with the bytes that a test dictates, right or
 * wrong. It runs in the event loop of the test.
 */
class RawServer : public QTcpServer
{
    Q_OBJECT

public:
    /** What happens to a request. The script writes to the socket and may close it. */
    using Script = std::function<void(QTcpSocket* socket, const QByteArray& request)>;

    RawServer();

    /** From now on each request is handed to @p script. */
    void setScript(const Script& script) { m_script = script; }

    /** From now on each request gets these bytes, and the connection is closed. */
    void setReply(const QByteArray& bytes);

    /** The requests so far, each from its first line to its empty line. */
    QList<QByteArray> requests() const { return m_requests; }

    /** "http://127.0.0.1:port" followed by @p path. */
    QByteArray url(const QByteArray& path = QByteArray()) const;

    /** This server without a proxy. */
    HttpHost host() const;

private slots:
    void acceptClient();
    void readRequest();

private:
    Script m_script;
    QList<QByteArray> m_requests;
};

} // namespace vx::test
