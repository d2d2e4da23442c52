#include "client/SoftwareUpdateClient.h"

#include <QNetworkReply>
#include <QTimer>
#include <QUrl>

#include "client/AnswerLimit.h"
#include "dialogs/SoftwareUpdateDialog.h"
#include "package/LogLine.h"

namespace vx {

namespace {

constexpr int noPackageAtAll = 1;

// Written by two slots and whatever the error was, on purpose: the level 1 line has the true text.
const char requestFailedLine[] =
    "SoftwareUpdateClient::requestTimeout() -> Timeout occurred requesting update server!";

bool isRedirect(const QNetworkReply& reply)
{
    const int status = reply.attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    return status == 302 || status == 301 || status == 303 || status == 307;
}

void logFromEvaluation(int level, const QString& text)
{
    logLine(level, QStringLiteral("SoftwareUpdateClient::evaluateServerResponse() -> ") + text);
}

} // namespace

void SoftwareUpdateClient::checkForUpdate()
{
    SoftwareUpdateSettings record;
    getCurrentSettings(&record);
    record.lastCheck = QDateTime::currentDateTime();
    if (updateDialog) {
        performUpdateCheck(QUrl(updateDialog->getDialogSettings().serverURL));
    } else if (record.doUpdateCheck) {
        performUpdateCheck(QUrl(record.serverURL));
    } else {
        return;
    }
    // Before the outcome is known: a failed check counts, and the next waits for its interval.
    setCurrentSettings(&record);
}

void SoftwareUpdateClient::evaluateServerResponse(QNetworkReply* reply)
{
    if (requestTimer) {
        requestTimer->stop();
    }
    // The reply belongs to the manager and stays readable until control is in the event loop again.
    deleteNetworkmanager();
    if (isRedirect(*reply)) {
        // Without a target the attribute is there all the same and holds an empty URL.
        const QUrl target = reply->attribute(QNetworkRequest::RedirectionTargetAttribute).toUrl();
        if (!target.isEmpty()) {
            logFromEvaluation(1, QStringLiteral("redirect url ") + target.toString());
            performUpdateCheck(target);
            return;
        }
        logFromEvaluation(3, QStringLiteral("could not obtain redirect url from server response"));
    }
    if (updateDialog) {
        updateDialog->disbaleProgress();
    }
    if (reply->error() != QNetworkReply::NoError && !wasTooLong(*reply)) {
        requestError(reply->errorString());
        logFromEvaluation(1, QStringLiteral("reply->errorString(): ") + reply->errorString());
        return;
    }
    if (parseServerResponse(reply) == noPackageAtAll) {
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
    if (updateDialog) {
        updateDialog->setNotificationText(tr("Congratulations! Your product is up-to-date!"));
    }
    deleteNetworkmanager();
    logLine(1, QStringLiteral("SoftwareUpdateClient::productUpToDate() -> product is up to date!"));
}

void SoftwareUpdateClient::requestError(const QString& errorText)
{
    if (updateDialog) {
        updateDialog->setNotificationText(errorText);
    }
    deleteNetworkmanager();
    logLine(3, QString::fromLatin1(requestFailedLine));
}

void SoftwareUpdateClient::requestTimeout()
{
    if (updateDialog) {
        updateDialog->disbaleProgress();
        updateDialog->setNotificationText(tr("Timeout error! Update server unreachable!"));
    }
    deleteNetworkmanager();
    logLine(3, QString::fromLatin1(requestFailedLine));
}

QString SoftwareUpdateClient::transformReleaseStatus(bool flag) const
{
    return flag ? QString() : QStringLiteral("STABLE");
}

} // namespace vx
