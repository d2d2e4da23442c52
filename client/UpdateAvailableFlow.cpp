#include "client/SoftwareUpdateClient.h"

#include <QDesktopServices>

#include "client/internal/PackageTable.h"
#include "dialogs/SoftwareUpdateAvailableDialog.h"
#include "dialogs/SoftwareUpdateDialog.h"
#include "host/CoreQt/Connect.h"

namespace vx {

namespace {

void connectDialog(SoftwareUpdateAvailableDialog* dialog, SoftwareUpdateClient* client)
{
    const auto type = Qt::AutoConnection;
    vx::connect(dialog, SIGNAL(downloadUrls(SoftUpIndexList)), client,
                SLOT(downloadUrls(SoftUpIndexList)), type);
    vx::connect(dialog, SIGNAL(downloadReleaseNotes(SoftUpIndexList)), client,
                SLOT(downloadReleaseNotes(SoftUpIndexList)), type);
    vx::connect(dialog, SIGNAL(installPackage(int)), client, SLOT(installPackage(int)), type);
    vx::connect(dialog, SIGNAL(accepted()), client, SLOT(deleteUpdateAvailableDialog()), type);
    vx::connect(dialog, SIGNAL(rejected()), client, SLOT(deleteUpdateAvailableDialog()), type);
    vx::connect(dialog, SIGNAL(currentItemsChangedSig(SoftUpIndexList)), client,
                SLOT(manageUpdateAvailableDialog(SoftUpIndexList)), type);
    vx::connect(dialog, SIGNAL(showAllLanguages(bool)), client,
                SLOT(showHideForeignLanguageItems(bool)), type);
    vx::connect(dialog, SIGNAL(destroyed(QObject*)), client, SLOT(setUpdateAvailableNull(QObject*)),
                type);
    vx::connect(dialog, SIGNAL(openUpdateSettings()), client,
                SLOT(openSettingsDialogFromUpdateAvailableDialog()), type);
}

QWidget* firstOf(QWidget* preferred, QWidget* other)
{
    return preferred ? preferred : other;
}

// The English ones on every system, also for the button that stands for them.
QUrl releaseNotes(const PackageInfo& package)
{
    return package.relNotes.value(QStringLiteral("en"));
}

} // namespace

void SoftwareUpdateClient::updateAvailable()
{
    if (updateAvailableDialog == nullptr) {
        updateAvailableDialog =
            new SoftwareUpdateAvailableDialog(firstOf(updateDialog, parentWidget), windowFlags);
        connectDialog(updateAvailableDialog, this);
    }
    QList<QStringList> rows;
    for (const PackageInfo& package : qAsConst(packageList)) {
        rows.append(packageTableRow(package));
    }
    // Filling the table comes back into this object, and clears the headers.
    updateAvailableDialog->setTableEntries(rows);
    updateAvailableDialog->setTableHeaders(packageTableHeaders());
    updateAvailableDialog->setVisible(true);
    updateAvailableDialog->activateWindow();
}

void SoftwareUpdateClient::showHideForeignLanguageItems(bool state)
{
    if (updateAvailableDialog != nullptr) {
        updateAvailableDialog->setHiddenEntries(state ? QList<int>()
                                                      : determineForeignLanguageRows(packageList));
    }
}

void SoftwareUpdateClient::manageUpdateAvailableDialog(SoftUpIndexList indexList)
{
    if (updateAvailableDialog == nullptr) {
        return;
    }
    updateAvailableDialog->setInstallButtonState(false);
    updateAvailableDialog->setRealeaseNotesButtonState(false);
    showHideForeignLanguageItems(updateAvailableDialog->getShowAllLanguagesState());
    updateAvailableDialog->setDownloadButtonState(!indexList.isEmpty());
    if (indexList.size() != 1) {
        updateAvailableDialog->setCommentText(QString());
        return;
    }
    SoftwareUpdateSettings record;
    getCurrentSettings(&record);
    const PackageInfo package = packageList.value(indexList.first());
    updateAvailableDialog->setInstallButtonState(
        record.installablePackageTypes.contains(package.packageType, Qt::CaseSensitive));
    updateAvailableDialog->setRealeaseNotesButtonState(!releaseNotes(package).isEmpty());
    updateAvailableDialog->setCommentText(packageComment(package));
}

void SoftwareUpdateClient::downloadReleaseNotes(SoftUpIndexList itemIndexes)
{
    QDesktopServices::openUrl(releaseNotes(packageList.value(itemIndexes.value(0, -1))));
}

void SoftwareUpdateClient::deleteUpdateAvailableDialog()
{
    if (updateAvailableDialog != nullptr) {
        updateAvailableDialog->setVisible(false);
        updateAvailableDialog->deleteLater();
    }
}

void SoftwareUpdateClient::setUpdateAvailableNull(QObject* /*obj*/)
{
    updateAvailableDialog = nullptr;
}

} // namespace vx
