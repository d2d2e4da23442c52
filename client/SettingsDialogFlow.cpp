#include "client/SoftwareUpdateClient.h"

#include "dialogs/SoftwareUpdateDialog.h"
#include "host/CoreQt/Connect.h"
#include "host/CoreQt/QtVersions.h"
#include "host/GUIBaseUtils/DialogFlags.h"

namespace vx {

namespace {

void connectDialog(SoftwareUpdateDialog* dialog, SoftwareUpdateClient* client)
{
    const auto type = Qt::AutoConnection;
    vx::connect(dialog, SIGNAL(checkForUpdate()), client, SLOT(checkForUpdate()), type);
    vx::connect(dialog, SIGNAL(applySettings(SoftwareUpdateDialogSettings)), client,
                SLOT(applyDialogSettings(SoftwareUpdateDialogSettings)), type);
    vx::connect(dialog, SIGNAL(rejected()), client, SLOT(deleteUpdateDialog()), type);
    vx::connect(dialog, SIGNAL(accepted()), client, SLOT(deleteUpdateDialog()), type);
    vx::connect(dialog, SIGNAL(destroyed(QObject*)), client, SLOT(setUpdateDialogNull(QObject*)),
                type);
    vx::connect(dialog, SIGNAL(forceUpdateAvailable()), client, SLOT(updateAvailable()), type);
}

SoftwareUpdateDialogSettings dialogSettingsOf(const SoftwareUpdateSettings& record)
{
    SoftwareUpdateDialogSettings shown;
    shown.doUpdateCheck = record.doUpdateCheck;
    shown.checkForBeta = record.checkForBeta;
    shown.updateInterval = record.updateInterval;
    shown.serverURL = record.serverURL;
    shown.versionText = QString::fromLatin1(record.versionNumber.toShortVersion().c_str());
    shown.lastCheckText = longDateText(record.lastCheck);
    return shown;
}

} // namespace

void SoftwareUpdateClient::queryForUpdate(Qt::WindowFlags flags, bool modal)
{
    if (updateDialog == nullptr) {
        updateDialog = new SoftwareUpdateDialog(parentWidget, flags ? flags : windowFlags);
        updateDialog->setModal(modal);
        connectDialog(updateDialog, this);
    }
    updateDialog->setNotificationText(QString());
    SoftwareUpdateSettings record;
    getCurrentSettings(&record);
    updateDialog->setDialogSettings(dialogSettingsOf(record));
    updateDialog->setVisible(true);
    updateDialog->activateWindow();
}

void SoftwareUpdateClient::openSettingsDialogFromUpdateAvailableDialog()
{
    queryForUpdate(dialogFlags(false), true);
}

void SoftwareUpdateClient::applyDialogSettings(const SoftwareUpdateDialogSettings& dialogSettings)
{
    SoftwareUpdateSettings record;
    getCurrentSettings(&record);
    record.doUpdateCheck = dialogSettings.doUpdateCheck;
    record.checkForBeta = dialogSettings.checkForBeta;
    record.updateInterval = dialogSettings.updateInterval;
    record.serverURL = dialogSettings.serverURL;
    setCurrentSettings(&record);
    if (record.doUpdateCheck) {
        enableSoftwareUpdate();
    } else {
        disableSoftwareUpdate();
    }
}

void SoftwareUpdateClient::deleteUpdateDialog()
{
    if (updateDialog != nullptr) {
        updateDialog->setVisible(false);
        updateDialog->deleteLater();
    }
}

void SoftwareUpdateClient::setUpdateDialogNull(QObject* /*obj*/)
{
    updateDialog = nullptr;
}

} // namespace vx
