#pragma once

#include <QByteArray>
#include <QNetworkAccessManager>
#include <QNetworkProxy>
#include <QObject>
#include <QString>
#include <QTimer>

#include "host/NetworkHttp/RequestData.h"
#include "host/NetworkHttp/internal/BodyWriter.h"
#include "host/NetworkHttp/internal/ProgressMeter.h"

class QAuthenticator;
class QNetworkReply;

namespace vx {

/**
 * One request on its way: asks, follows redirects, and moves the body to the device.
 *
 * It has a network manager of its own, so that proxy, password and connections are never those of
 * another request. The signals of the reply are taken through the event loop: then no frame of the
 * reply is on the stack while a slot of the application runs, and that slot may cancel the request
 * or destroy the client.
 */
class HttpTransfer : public QObject
{
    Q_OBJECT

public:
    /** @param idleTimeout how long to wait for the next byte, in milliseconds. */
    HttpTransfer(const RequestPtr& request, int idleTimeout);
    ~HttpTransfer() override;

    const RequestPtr& request() const { return m_request; }

    /** Whether its result slot is being called, so that it can't be cancelled any more. */
    bool isDelivering() const { return m_isDelivering; }
    void setDelivering() { m_isDelivering = true; }

    /** Sends the request. No signal is raised before the event loop runs again. */
    void start();

    /** Ends without a signal. */
    void cancel();

    /** Raises progressed with what has been reached, however short the time since the last. */
    void reportProgress();

    /** Flushes and closes the device. */
    void closeDevice();

signals:
    void progressed(int done, int total);

    /** The record says all there is to say, and the reply is gone. Raised once. */
    void ended(vx::HttpTransfer* transfer);

private slots:
    void proceed();
    void end();
    void giveUp();
    void reportLate();
    void answerProxy(const QNetworkProxy& proxy, QAuthenticator* authenticator);
    void answerServer(QNetworkReply* reply, QAuthenticator* authenticator);

private:
    void ask(const QUrl& url);
    void takeHeader();
    void followRedirect();
    void moveBody();
    bool moveChunk();
    void dropReply();
    void logFailure() const;

    RequestPtr m_request;
    QNetworkAccessManager m_manager;
    QNetworkReply* m_reply = nullptr;
    QTimer m_idle;
    BodyWriter m_writer;
    ProgressMeter m_meter;
    QTimer m_lateReport;
    QByteArray m_chunk;
    // What has ended the request, if it wasn't the network.
    QString m_failure;
    qint64 m_total = 0;
    // Of the address asked now; a redirect leads to another one.
    bool m_hasAnsweredProxy = false;
    bool m_hasAnsweredServer = false;
    bool m_hasEnded = false;
    bool m_isDelivering = false;
};

} // namespace vx
