#include "client/SoftwareUpdateClient.h"

#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QTimer>
#include <QUrl>

#include "base/AnyCompression.h"
#include "base/FailureReason.h"
#include "base/HeaderLimit.h"
#include "base/LogLine.h"
#include "client/internal/AnswerLimit.h"
#include "dialogs/SoftwareUpdateDialog.h"
#include "host/CoreQt/QtVersions.h"

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
    // Qt 6 would ask for it by default.
    request.setAttribute(QNetworkRequest::Http2AllowedAttribute, false);
    allowAnyCompression(request);
    return request;
}

} // namespace

void SoftwareUpdateClient::performUpdateCheck(const QUrl& url)
{
    if (updateDialog != nullptr) {
        // The store still holds the time of the check before this one, which is the one to show.
        SoftwareUpdateSettings record;
        getCurrentSettings(&record);
        showCheckBegins(*updateDialog, record.lastCheck);
    }
    logLine(1, QStringLiteral("SoftwareUpdateClient::performUpdateCheck() -> ") + url.toString());
    if (networkManager == nullptr) {
        networkManager = newRequestManager(this);
    }
    networkManager->setProxy(networkProxy());
    QNetworkReply* const reply = getWithHeaderLimit(*networkManager, requestFor(url));
    stopAboveLargestAnswer(reply);
    rememberTlsErrors(reply);
    if (requestTimer == nullptr) {
        requestTimer = new QTimer(this);
        requestTimer->setTimerType(Qt::PreciseTimer); // any other may be early by a twentieth
        QObject::connect(requestTimer, SIGNAL(timeout()), this, SLOT(requestTimeout()));
    }
    requestTimer->setSingleShot(true);
    requestTimer->start(requestTimeoutInterval);
}

void SoftwareUpdateClient::deleteNetworkmanager()
{
    if (networkManager == nullptr) {
        return;
    }
    // Another reply of this manager may be in the event queue already; it must not end the next
    // check as well.
    networkManager->disconnect(this);
    networkManager->deleteLater();
    networkManager = nullptr;
}

} // namespace vx
