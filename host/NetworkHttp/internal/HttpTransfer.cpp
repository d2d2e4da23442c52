#include "host/NetworkHttp/internal/HttpTransfer.h"

#include <QAuthenticator>
#include <QElapsedTimer>
#include <QNetworkReply>
#include <QNetworkRequest>

#include <algorithm>
#include <limits>

#include "base/FailureReason.h"
#include "base/HeaderLimit.h"
#include "base/LogLine.h"
#include "host/NetworkHttp/HttpClient.h"
#include "host/NetworkHttp/internal/NetworkRequest.h"
#include "host/NetworkHttp/internal/ProxyLogin.h"
#include "host/NetworkHttp/internal/ReadBuffer.h"
#include "host/NetworkHttp/internal/Redirect.h"
#include "host/NetworkHttp/internal/RequestPlan.h"

namespace vx {

namespace {

/** What the network stack may hold back; more buys no speed and costs memory. */
constexpr qint64 readBufferSize = 512LL * 1024;

/** One write to the device. */
constexpr int chunkSize = 64 * 1024;

/** After so many milliseconds of writing the event loop gets its turn. */
constexpr int sliceTime = 4;

qint64 bodyLimit(const RequestData& request)
{
    return request.getResponseBuffer() != nullptr ? HttpClient::maxBufferSize
                                                  : std::numeric_limits<qint64>::max();
}

int statusOf(const QNetworkReply& reply)
{
    const int status = reply.attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    // Of a tunnel that the proxy refuses, the network stack keeps the error, but not the status.
    return status == 0 && reply.error() == QNetworkReply::ProxyAuthenticationRequiredError ? 407
                                                                                           : status;
}

QHttpHeader headerOf(const QNetworkReply& reply)
{
    QHttpHeader header;
    for (const QNetworkReply::RawHeaderPair& field : reply.rawHeaderPairs()) {
        // The network stack joins repeated cookies, which may hold a comma, with line breaks.
        for (const QByteArray& value : field.second.split('\n')) {
            header.addValue(QString::fromLatin1(field.first), QString::fromLatin1(value));
        }
    }
    return header;
}

} // namespace

HttpTransfer::HttpTransfer(const RequestPtr& request, int idleTimeout)
    : m_request(request)
    , m_writer(request->responseDevice, bodyLimit(*request))
    , m_chunk(chunkSize, Qt::Uninitialized)
{
    m_idle.setSingleShot(true);
    m_idle.setInterval(idleTimeout);
    m_idle.setTimerType(Qt::PreciseTimer); // any other may be early by a twentieth
    connect(&m_idle, SIGNAL(timeout()), this, SLOT(giveUp()));
    m_lateReport.setSingleShot(true);
    m_lateReport.setInterval(ProgressMeter::interval);
    connect(&m_lateReport, SIGNAL(timeout()), this, SLOT(reportLate()));
    m_manager.setProxy(networkProxyOf(m_request->m_plan->host));
    connect(&m_manager, SIGNAL(proxyAuthenticationRequired(QNetworkProxy, QAuthenticator*)), this,
            SLOT(answerProxy(QNetworkProxy, QAuthenticator*)));
    connect(&m_manager, SIGNAL(authenticationRequired(QNetworkReply*, QAuthenticator*)), this,
            SLOT(answerServer(QNetworkReply*, QAuthenticator*)));
}

HttpTransfer::~HttpTransfer()
{
    dropReply();
}

void HttpTransfer::start()
{
    const QUrl url = m_request->requestUrls.value(0);
    if (url.isEmpty()) {
        m_failure = QStringLiteral("there is no address to ask; the host's server is not set");
        QMetaObject::invokeMethod(this, "end", Qt::QueuedConnection);
        return;
    }
    ask(url);
}

void HttpTransfer::ask(const QUrl& url)
{
    m_request->statusCode = 0;
    m_request->responseHeader.clear();
    m_total = 0;
    m_hasAnsweredProxy = false;
    m_hasAnsweredServer = false;
    m_reply = getWithHeaderLimit(m_manager, networkRequest(url, m_request->m_plan->host.userAgent));
    limitReadBuffer(m_reply, readBufferSize);
    rememberTlsErrors(m_reply);
    for (const char* signal :
         {SIGNAL(metaDataChanged()), SIGNAL(readyRead()), SIGNAL(finished())}) {
        connect(m_reply, signal, this, SLOT(proceed()), Qt::QueuedConnection);
    }
    m_idle.start();
}

void HttpTransfer::proceed()
{
    if (m_hasEnded) {
        return;
    }
    m_idle.start();
    takeHeader();
    if (isRedirect(m_request->statusCode)) {
        followRedirect();
    } else {
        moveBody();
    }
}

void HttpTransfer::takeHeader()
{
    if (m_reply == nullptr || m_request->statusCode != 0) {
        return;
    }
    m_request->statusCode = statusOf(*m_reply);
    m_request->responseHeader = headerOf(*m_reply);
    m_total = std::max(m_reply->header(QNetworkRequest::ContentLengthHeader).toLongLong(), 0LL);
}

void HttpTransfer::followRedirect()
{
    const QUrl target =
        redirectTarget(m_request->requestUrls.last(), m_reply->rawHeader("Location"));
    if (target.isEmpty() || m_request->requestUrls.size() > HttpClient::maxRedirects) {
        m_failure = target.isEmpty()
                        ? QStringLiteral("a redirect has no target by http or https; correct it")
                        : QStringLiteral("there are more than %1 redirects; look whether they lead "
                                         "in a circle")
                              .arg(HttpClient::maxRedirects);
        end();
        return;
    }
    dropReply();
    m_request->requestUrls.append(target);
    ask(target);
}

void HttpTransfer::moveBody()
{
    QElapsedTimer slice;
    slice.start();
    while (m_reply->bytesAvailable() > 0) {
        if (slice.elapsed() >= sliceTime) {
            QMetaObject::invokeMethod(this, "proceed", Qt::QueuedConnection);
            break;
        }
        if (!moveChunk()) {
            m_failure = m_writer.isFull()
                            ? QStringLiteral("the answer is longer than %1 bytes")
                                  .arg(HttpClient::maxBufferSize)
                            : QStringLiteral("the file took no more after %1 bytes; look for space "
                                             "on the disk and for the right to write")
                                  .arg(m_writer.written());
            end();
            return;
        }
    }
    if (m_reply->isFinished() && m_reply->bytesAvailable() == 0) {
        end();
        return;
    }
    if (m_reply->bytesAvailable() == 0) {
        lookForMore(m_reply, readBufferSize);
    }
    if (m_meter.takeTurn()) {
        reportProgress();
    } else if (!m_lateReport.isActive()) {
        m_lateReport.start();
    }
}

bool HttpTransfer::moveChunk()
{
    const qint64 size = m_reply->read(m_chunk.data(), m_chunk.size());
    return size >= 0 && m_writer.write(m_chunk.constData(), size);
}

// If nothing more comes for a while, what has come is shown nevertheless.
void HttpTransfer::reportLate()
{
    m_meter.takeTurn();
    reportProgress();
}

void HttpTransfer::reportProgress()
{
    m_lateReport.stop();
    const Progress progress = scaledProgress(m_writer.written(), m_total);
    emit progressed(progress.done, progress.total);
}

void HttpTransfer::end()
{
    if (m_hasEnded) {
        return;
    }
    takeHeader();
    logFailure();
    cancel();
    m_writer.flush();
    emit ended(this);
}

void HttpTransfer::giveUp()
{
    if (m_reply != nullptr) {
        m_failure = stallReason(*m_reply, m_manager.proxy(), m_writer.written(),
                                QStringLiteral("another byte"), m_idle.interval() / 1000);
    }
    end();
}

void HttpTransfer::logFailure() const
{
    QString reason = m_failure;
    if (reason.isEmpty() && m_reply != nullptr && m_reply->error() != QNetworkReply::NoError) {
        reason = failureReason(*m_reply, m_manager.proxy(), m_writer.written());
    }
    // The network stack knows no interim answer but 100 and reads nothing behind any other.
    if (m_request->statusCode == 102 || m_request->statusCode == 103) {
        reason = interimReason(m_request->statusCode);
    }
    if (!reason.isEmpty()) {
        logLine(3, QStringLiteral("HttpClient::execute() -> ") + reason);
    }
}

void HttpTransfer::cancel()
{
    m_hasEnded = true;
    m_idle.stop();
    m_lateReport.stop();
    dropReply();
    if (m_writer.hasLostDevice()) {
        m_request->responseDevice = nullptr;
    }
}

void HttpTransfer::closeDevice()
{
    m_writer.close();
}

void HttpTransfer::dropReply()
{
    if (m_reply != nullptr) {
        m_reply->disconnect(this);
        m_reply->abort();
        m_reply->deleteLater();
        m_reply = nullptr;
    }
}

// A second question means that the password was wrong. It stays unanswered: in a tunnel the network
// stack would repeat the login without end, and some proxies lock an account after a few failures.
void HttpTransfer::answerProxy(const QNetworkProxy& /*proxy*/, QAuthenticator* authenticator)
{
    if (!m_hasAnsweredProxy) {
        m_hasAnsweredProxy = true;
        logInToProxy(m_request->m_plan->host, authenticator);
    }
}

void HttpTransfer::answerServer(QNetworkReply* reply, QAuthenticator* authenticator)
{
    if (m_hasAnsweredServer) {
        return;
    }
    m_hasAnsweredServer = true;
    // Only the server itself may have the password, not one that it redirects to.
    const HttpAccess& server = m_request->m_plan->host.server;
    HttpAccess asking;
    asking.setUrl(reply->url());
    if (!server.user.isEmpty() && asking.hasSameAddress(server)) {
        authenticator->setUser(server.user);
        authenticator->setPassword(server.password);
    }
}

} // namespace vx
