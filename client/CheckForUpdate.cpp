#include "client/SoftwareUpdateClient.h"

#include <QTimer>
#include <QUrl>

#include "dialogs/SoftwareUpdateDialog.h"

namespace vx {

void SoftwareUpdateClient::checkForUpdate()
{
    SoftwareUpdateSettings record;
    getCurrentSettings(&record);
    record.lastCheck = QDateTime::currentDateTime();
    if (updateDialog != nullptr) {
        performUpdateCheck(QUrl(updateDialog->getDialogSettings().serverURL));
    } else if (record.doUpdateCheck) {
        performUpdateCheck(QUrl(record.serverURL));
    } else {
        return;
    }
    // Before the outcome is known: a failed check counts, and the next waits for its interval.
    setCurrentSettings(&record);
}

void SoftwareUpdateClient::checkForUpdate(int millisecondsDelay)
{
    SoftwareUpdateSettings record;
    getCurrentSettings(&record);
    if (!record.doUpdateCheck) {
        return;
    }
    if (millisecondsDelay < 1) {
        if (updateDialog == nullptr) {
            checkForUpdate();
        }
        return;
    }
    // Kept until the client goes, so that any number of delayed checks can wait side by side.
    auto* delayTimer = new QTimer(this);
    QObject::connect(delayTimer, SIGNAL(timeout()), this, SLOT(doBackgroundCheck()));
    delayTimer->setSingleShot(true);
    delayTimer->start(millisecondsDelay);
}

void SoftwareUpdateClient::doBackgroundCheck()
{
    if (updateDialog == nullptr) {
        checkForUpdate();
    }
}

} // namespace vx
