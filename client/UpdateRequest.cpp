#include "client/SoftwareUpdateClient.h"

#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QTimer>
#include <QUrl>

#include "client/AnswerLimit.h"
#include "dialogs/SoftwareUpdateDialog.h"
#include "host/CoreQt/DeprecatedQt.h"
#include "host/NodeDB/NodeDB.h"
#include "package/LogLine.h"

namespace vx {

namespace {

constexpr int requestTimeoutInterval = 15000; // milliseconds

void showCheckBegins(SoftwareUpdateDialog& dialog, const QDateTime& lastCheck)
{
    dialog.enableProgress();
    dialog.setNotificationText(QString());
    SoftwareUpdateDialogSettings shown = dialog.getDialogSettings();
    shown.lastCheckText = longDateText(lastCheck);
    dialog.setDialogSettings(shown);
}

// Without a parent: a client that is destroyed during a check leaves it behind.
QNetworkAccessManager* newRequestManager(SoftwareUpdateClient* client)
{
    auto* manager = new QNetworkAccessManager;
    manager->setRedirectPolicy(QNetworkRequest::ManualRedirectPolicy);
    QObject::connect(manager, SIGNAL(finished(QNetworkReply*)), client,
                     SLOT(evaluateServerResponse(QNetworkReply*)));
    return manager;
}

QNetworkRequest requestFor(const QUrl& url)
{
    QNetworkRequest request(url);
    // Part of the protocol, although there is no body.
    request.setHeader(QNetworkRequest::ContentTypeHeader, QStringLiteral("text/xml"));
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute,
                         QNetworkRequest::ManualRedirectPolicy);
    return request;
}

} // namespace

void SoftwareUpdateClient::performUpdateCheck(const QUrl& url)
{
    if (updateDialog) {
        // The store still holds the time of the check before this one, which is the one to show.
        SoftwareUpdateSettings record;
        getCurrentSettings(&record);
        showCheckBegins(*updateDialog, record.lastCheck);
    }
    logLine(1, QStringLiteral("SoftwareUpdateClient::performUpdateCheck() -> ") + url.toString());
    if (!networkManager) {
        networkManager = newRequestManager(this);
    }
    networkManager->setProxy(networkProxy());
    stopAboveLargestAnswer(networkManager->get(requestFor(url)));
    if (!requestTimer) {
        requestTimer = new QTimer(this);
        QObject::connect(requestTimer, SIGNAL(timeout()), this, SLOT(requestTimeout()));
    }
    requestTimer->setSingleShot(true);
    requestTimer->start(requestTimeoutInterval);
}

QNetworkProxy SoftwareUpdateClient::networkProxy()
{
    const NetworkProxy proxy = NodeDB::getDB().globalProxy();
    if (!proxy.useProxy()) {
        // Not the default type, which would follow the system's settings.
        return QNetworkProxy(QNetworkProxy::NoProxy, QString(), 0, QString(), QString());
    }
    return QNetworkProxy(QNetworkProxy::HttpProxy, proxy.proxyAddress(), proxy.proxyPort(),
                         proxy.proxyUser(), proxy.proxyPassword());
}

void SoftwareUpdateClient::deleteNetworkmanager()
{
    if (!networkManager) {
        return;
    }
    // Another reply of this manager may be in the event queue already; it must not end the next
    // check as well.
    networkManager->disconnect(this);
    networkManager->deleteLater();
    networkManager = nullptr;
}

} // namespace vx
