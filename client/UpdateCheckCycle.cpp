#include "client/SoftwareUpdateClient.h"

#include <QNetworkAccessManager>
#include <QNetworkProxy>
#include <QNetworkReply>
#include <QTimer>
#include <QUrl>

#include "base/FailureReason.h"
#include "base/LogLine.h"
#include "client/internal/AnswerLimit.h"
#include "client/internal/AskedAddress.h"
#include "client/internal/ResponseReading.h"
#include "dialogs/SoftwareUpdateDialog.h"

namespace vx {

namespace {

constexpr int timeLimit = 15; // seconds, of requestTimer

// Written by two slots and whatever the error was, on purpose: the level 1 line has the true text.
const char requestFailedLine[] =
    "SoftwareUpdateClient::requestTimeout() -> Timeout occurred requesting update server!";

int statusOf(const QNetworkReply& reply)
{
    return reply.attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
}

bool isRedirect(const QNetworkReply& reply)
{
    const int status = statusOf(reply);
    return status == 302 || status == 301 || status == 303 || status == 307;
}

// A catalogue that was too long counts as a broken one. What a failed request has for a body
// doesn't count.
bool hasFailed(const QNetworkReply& reply)
{
    const bool isCatalogueTooLong = wasTooLong(reply) && statusOf(reply) < 400;
    return reply.error() != QNetworkReply::NoError && !isCatalogueTooLong;
}

void logFromEvaluation(int level, const QString& text)
{
    logLine(level, QStringLiteral("SoftwareUpdateClient::evaluateServerResponse() -> ") + text);
}

QNetworkProxy proxyOf(const QNetworkReply& reply)
{
    const QNetworkAccessManager* const manager = reply.manager();
    return manager != nullptr ? manager->proxy() : QNetworkProxy(QNetworkProxy::NoProxy);
}

/** Empty if no request runs. */
QString timeoutReason(const QNetworkAccessManager* manager)
{
    const auto* const reply = manager != nullptr ? manager->findChild<QNetworkReply*>() : nullptr;
    return reply != nullptr ? stallReason(*reply, proxyOf(*reply), reply->bytesAvailable(),
                                          QStringLiteral("the whole answer"), timeLimit)
                            : QString();
}

} // namespace

void SoftwareUpdateClient::evaluateServerResponse(QNetworkReply* reply)
{
    if (requestTimer != nullptr) {
        requestTimer->stop();
    }
    // The reply belongs to the manager and stays readable until control is in the event loop again.
    deleteNetworkmanager();
    if (isRedirect(*reply)) {
        // Without a target the attribute is still there and holds an empty URL.
        const QUrl target = reply->attribute(QNetworkRequest::RedirectionTargetAttribute).toUrl();
        if (!target.isEmpty()) {
            logFromEvaluation(1, QStringLiteral("redirect url ") + target.toString());
            performUpdateCheck(target);
            if (networkManager != nullptr) {
                passAskedAddressOn(*reply, *networkManager);
            }
            return;
        }
        logFromEvaluation(3, QStringLiteral("could not obtain redirect url from server response"));
    }
    if (updateDialog != nullptr) {
        updateDialog->disbaleProgress();
    }
    if (hasFailed(*reply)) {
        logFromEvaluation(3, failureReason(*reply, proxyOf(*reply), reply->bytesAvailable()));
        requestError(reply->errorString());
        logFromEvaluation(1, QStringLiteral("reply->errorString(): ") + reply->errorString());
        return;
    }
    if (parseServerResponse(reply) == NoPackageRead) {
        return;
    }
    if (packageList.isEmpty()) {
        logFromEvaluation(1, QStringLiteral("product is up-to-date "));
        productUpToDate();
    } else {
        logFromEvaluation(1, QStringLiteral("update available"));
        updateAvailable();
    }
}

void SoftwareUpdateClient::productUpToDate()
{
    if (updateDialog != nullptr) {
        updateDialog->setNotificationText(tr("Congratulations! Your product is up-to-date!"));
    }
    deleteNetworkmanager();
    logLine(1, QStringLiteral("SoftwareUpdateClient::productUpToDate() -> product is up to date!"));
}

void SoftwareUpdateClient::requestError(const QString& errorText)
{
    if (updateDialog != nullptr) {
        updateDialog->setNotificationText(errorText);
    }
    deleteNetworkmanager();
    logLine(3, QString::fromLatin1(requestFailedLine));
}

void SoftwareUpdateClient::requestTimeout()
{
    if (updateDialog != nullptr) {
        updateDialog->disbaleProgress();
        updateDialog->setNotificationText(tr("Timeout error! Update server unreachable!"));
    }
    const QString reason = timeoutReason(networkManager);
    if (!reason.isEmpty()) {
        logLine(3, QStringLiteral("SoftwareUpdateClient::requestTimeout() -> ") + reason);
    }
    deleteNetworkmanager();
    logLine(3, QString::fromLatin1(requestFailedLine));
}

QString SoftwareUpdateClient::transformReleaseStatus(bool flag) const
{
    return flag ? QString() : QStringLiteral("STABLE");
}

} // namespace vx
