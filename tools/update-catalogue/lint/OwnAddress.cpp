#include "tools/update-catalogue/lint/OwnAddress.h"

#include <QElapsedTimer>
#include <QEventLoop>
#include <QNetworkAccessManager>
#include <QNetworkProxy>
#include <QNetworkReply>
#include <QScopedPointer>
#include <QTimer>

namespace vx {

namespace {

constexpr int timeLimit = 15000; // milliseconds
constexpr int mostRedirects = 20;

QString shown(const QUrl& url)
{
    return url.toString(QUrl::RemoveUserInfo);
}

int statusOf(const QNetworkReply& reply)
{
    return reply.attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
}

QUrl targetOf(const QNetworkReply& reply)
{
    return QUrl::fromEncoded(reply.rawHeader("Location"));
}

bool isFollowed(int status)
{
    return status == 301 || status == 302 || status == 303 || status == 307;
}

/** The whole answer, or an error. */
QNetworkReply* ask(QNetworkAccessManager& manager, const QUrl& url)
{
    QNetworkRequest request(url);
    request.setHeader(QNetworkRequest::ContentTypeHeader, "text/xml");
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute,
                         QNetworkRequest::ManualRedirectPolicy);
    QNetworkReply* const reply = manager.get(request);
    QEventLoop loop;
    QObject::connect(reply, SIGNAL(finished()), &loop, SLOT(quit()));
    QTimer limit;
    limit.setTimerType(Qt::PreciseTimer);
    QObject::connect(&limit, SIGNAL(timeout()), reply, SLOT(abort()));
    limit.start(timeLimit);
    loop.exec();
    return reply;
}

QString targetFailure(const QUrl& target)
{
    if (target.scheme() == "http" || target.scheme() == "https") {
        return QString();
    }
    return target.isRelative()
               ? QString("the redirect to \"%1\" is not to a whole address, and is not completed")
                     .arg(shown(target))
               : QString("the redirect to \"%1\" leads away from the network").arg(shown(target));
}

/** Whether the answer came in an encoding that not every client can read. */
bool isOddlyEncoded(const QNetworkReply& reply)
{
    const QByteArray encoding = reply.rawHeader("Content-Encoding");
    return !encoding.isEmpty() && encoding != "gzip" && encoding != "deflate";
}

QString statusFailure(const QNetworkReply& reply)
{
    const int status = statusOf(reply);
    // Qt 6 tries to decode more of them. That such an answer came at all is a finding of its own.
    if (status == 200 && reply.error() == QNetworkReply::UnknownContentError &&
        isOddlyEncoded(reply)) {
        return QString();
    }
    if (status == 308) {
        return QString("status 308 points to %1, and a check does not follow it")
            .arg(shown(targetOf(reply)));
    }
    if (reply.error() == QNetworkReply::OperationCanceledError) {
        return QString("the last byte has not come within 15 s");
    }
    if (reply.error() != QNetworkReply::NoError) {
        return status == 0 ? reply.errorString() : QString("the status is %1").arg(status);
    }
    return status == 200 ? QString() : QString("the status is %1").arg(status);
}

} // namespace

OwnAddressAnswer askOwnAddress(const QUrl& address)
{
    QNetworkAccessManager manager;
    manager.setProxy(QNetworkProxy::NoProxy);
    QUrl url = address;
    for (int hop = 0; hop <= mostRedirects; ++hop) {
        QElapsedTimer clock;
        clock.start();
        const QScopedPointer<QNetworkReply> reply(ask(manager, url));
        const qint64 time = clock.elapsed();
        url = targetOf(*reply);
        if (!isFollowed(statusOf(*reply)) || url.isEmpty()) {
            const QString type = reply->header(QNetworkRequest::ContentTypeHeader).toString();
            return {statusFailure(*reply), type.section(';', 0, 0).trimmed(),
                    QString::fromLatin1(reply->rawHeader("Content-Encoding")), time};
        }
        const QString failure = targetFailure(url);
        if (!failure.isEmpty()) {
            return {failure, QString(), QString(), time};
        }
    }
    return {QString("more than %1 redirects, which a check follows without end").arg(mostRedirects),
            QString(), QString(), 0};
}

} // namespace vx
