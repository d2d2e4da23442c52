#include "tests/tools/server/WebClient.h"

#include <QEventLoop>
#include <QNetworkAccessManager>
#include <QScopedPointer>
#include <QTimer>

namespace vx::test {

WebResult fetch(const QNetworkRequest& request, const QNetworkProxy& proxy, int milliseconds)
{
    QNetworkAccessManager manager;
    manager.setProxy(proxy);
    manager.setRedirectPolicy(QNetworkRequest::ManualRedirectPolicy);
    const QScopedPointer<QNetworkReply> reply(manager.get(request));
    QEventLoop loop;
    QObject::connect(reply.data(), SIGNAL(finished()), &loop, SLOT(quit()));
    QTimer::singleShot(milliseconds, &loop, SLOT(quit()));
    loop.exec();
    WebResult result;
    result.finished = reply->isFinished();
    result.status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    result.error = reply->error();
    result.body = reply->readAll();
    result.contentType = reply->rawHeader("Content-Type");
    result.redirect = reply->attribute(QNetworkRequest::RedirectionTargetAttribute).toUrl();
    return result;
}

} // namespace vx::test
