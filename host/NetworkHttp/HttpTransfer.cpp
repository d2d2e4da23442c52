#include "host/NetworkHttp/HttpTransfer.h"

#include <QAuthenticator>
#include <QElapsedTimer>
#include <QLoggingCategory>
#include <QNetworkReply>
#include <QNetworkRequest>

#include <algorithm>
#include <limits>

#include "host/NetworkHttp/HttpClient.h"
#include "host/NetworkHttp/ProxyLogin.h"
#include "host/NetworkHttp/Redirect.h"
#include "host/NetworkHttp/RequestPlan.h"

namespace vx {

namespace {

Q_LOGGING_CATEGORY(category, "vx.networkhttp", QtWarningMsg)

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

/** A line break in a header field would begin another one. */
QByteArray fieldValue(const QString& text)
{
    QByteArray value;
    for (const char c : text.toLatin1()) {
        const bool isControl = static_cast<uchar>(c) < 0x20 || c == 0x7f;
        if (!isControl) {
            value.append(c);
        }
    }
    return value;
}

QNetworkRequest networkRequest(const QUrl& url, const QString& userAgent)
{
    QNetworkRequest request(url);
    request.setRawHeader("Accept-Encoding", "identity");
    if (!userAgent.isEmpty()) {
        request.setRawHeader("User-Agent", fieldValue(userAgent));
    }
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute,
                         QNetworkRequest::ManualRedirectPolicy);
    request.setAttribute(QNetworkRequest::CacheLoadControlAttribute,
                         QNetworkRequest::AlwaysNetwork);
    request.setAttribute(QNetworkRequest::CookieSaveControlAttribute, QNetworkRequest::Manual);
    return request;
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
    connect(&m_idle, SIGNAL(timeout()), this, SLOT(end()));
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
    m_reply = m_manager.get(networkRequest(url, m_request->m_plan->host.userAgent));
    m_reply->setReadBufferSize(readBufferSize);
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
    m_request->statusCode = m_reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    m_request->responseHeader = headerOf(*m_reply);
    m_total = std::max(m_reply->header(QNetworkRequest::ContentLengthHeader).toLongLong(), 0LL);
}

void HttpTransfer::followRedirect()
{
    const QUrl target =
        redirectTarget(m_request->requestUrls.last(), m_reply->rawHeader("Location"));
    if (target.isEmpty() || m_request->requestUrls.size() > HttpClient::maxRedirects) {
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
            end();
            return;
        }
    }
    if (m_reply->isFinished() && m_reply->bytesAvailable() == 0) {
        end();
    } else if (m_meter.isDue()) {
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

// If nothing more comes for a while, what has come is shown all the same.
void HttpTransfer::reportLate()
{
    m_meter.isDue();
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
    if (m_reply != nullptr && m_reply->error() != QNetworkReply::NoError) {
        qCDebug(category) << m_request->requestUrls.last() << m_reply->errorString();
    }
    cancel();
    m_writer.flush();
    emit ended(this);
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

// Asked again, since the password was wrong, the network stack gives up on the same answer.
void HttpTransfer::answerProxy(const QNetworkProxy& /*proxy*/, QAuthenticator* authenticator)
{
    logInToProxy(m_request->m_plan->host, authenticator);
}

void HttpTransfer::answerServer(QNetworkReply* reply, QAuthenticator* authenticator)
{
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
