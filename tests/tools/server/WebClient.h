#pragma once

#include <QByteArray>
#include <QNetworkProxy>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QUrl>

namespace vx::test {

/** What the HTTP stack of Qt, the one that the client library uses, makes of a reply. */
struct WebResult
{
    bool finished = false;
    int status = 0;
    QNetworkReply::NetworkError error = QNetworkReply::NoError;
    QByteArray body;
    QByteArray contentType;
    QUrl redirect;
};

/** Fetches @p request through @p proxy and waits for the end, at most @p milliseconds. */
WebResult fetch(const QNetworkRequest& request,
                const QNetworkProxy& proxy = QNetworkProxy(QNetworkProxy::NoProxy),
                int milliseconds = 10000);

} // namespace vx::test
