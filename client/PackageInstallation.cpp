#include "client/SoftwareUpdateClient.h"

#include <QDesktopServices>
#include <QPointer>
#include <QProgressDialog>

#include "base/ForgetWhenDestroyed.h"
#include "base/KeepForever.h"
#include "base/LogLine.h"
#include "client/internal/ClientTrust.h"
#include "client/internal/MessageBoxes.h"
#include "dialogs/SoftwareUpdateAvailableDialog.h"
#include "download/DownloadManager.h"
#include "host/GUIBaseUtils/DialogFlags.h"
#include "host/IO/FileUtils.h"
#include "host/NetworkHttp/HttpAccess.h"
#include "host/NetworkHttp/HttpHost.h"
#include "trust/UpdateTrust.h"

namespace vx {

namespace {

bool confirmInstallation(QWidget* parent)
{
    Question question;
    question.title = SoftwareUpdateClient::tr("Install Package");
    question.text = SoftwareUpdateClient::tr("After downloading the package, the installer will "
                                             "automatically exit and restart your application!");
    question.rejectText = SoftwareUpdateClient::tr("Cancel Install");
    question.acceptText = SoftwareUpdateClient::tr("Proceed");
    question.parent = parent;
    question.flags = sheetDialogFlags(parent);
    return ask(question) != 0;
}

// Never deleted: nothing tells when the last reply of a download has been dealt with.
DownloadManager* newDownloadManager(const QNetworkProxy& proxy)
{
    const HttpAccess proxyAccess(proxy.hostName(), proxy.port(), QString(), QString());
    return keepForever(
        new DownloadManager(HttpHost(HttpAccess(), proxyAccess, QString()), QString()));
}

// May be empty or "..", since it comes from the catalogue. Such a path can't be opened for writing,
// which ends like any other download that fails.
QString fileNameIn(const QUrl& url)
{
    return url.toString().section(QLatin1Char('/'), -1, -1, QString::SectionSkipEmpty);
}

void connectDownload(DownloadManager* manager, QProgressDialog* dialog,
                     SoftwareUpdateClient* client)
{
    QObject::connect(manager, SIGNAL(downloadProgress(int, int)), client,
                     SLOT(downloadProgress(int, int)));
    dialog->setLabelText(SoftwareUpdateClient::tr("Downloading package to temporary folder..."));
    QObject::connect(manager, SIGNAL(downloadFailure(int)), client, SLOT(downloadError(int)));
    QObject::connect(manager, SIGNAL(downloadSuccess()), client, SLOT(downloadFinished()));
    QObject::connect(dialog, SIGNAL(canceled()), manager, SLOT(abortDownload()));
    QObject::connect(manager, SIGNAL(downloadAborted()), client, SLOT(abortDownload()));
}

} // namespace

void SoftwareUpdateClient::downloadUrls(SoftUpIndexList itemIndexes)
{
    for (const int index : qAsConst(itemIndexes)) {
        QDesktopServices::openUrl(packageList.value(index).url);
    }
}

void SoftwareUpdateClient::installPackage(int itemIndex)
{
    installIndexes.clear();
    installIndexes.append(itemIndex);
    const QPointer<SoftwareUpdateClient> self(this);
    const bool confirmed = confirmInstallation(updateAvailableDialog);
    if (!confirmed) {
        logLine(1, QStringLiteral(
                       "SoftwareUpdateClient::installPackage() -> user rejected installation"));
        return;
    }
    if (!self) {
        return; // the host may delete the client while the box is open
    }
    DownloadManager* manager = newDownloadManager(networkProxy());
    const PackageInfo package = packageList.value(itemIndex);
    downloadFilePath = FileUtils::createTempDir() + QLatin1Char('/') + fileNameIn(package.url);
    logLine(1, QStringLiteral("SoftwareUpdateClient::downloadPackage() -> ") +
                   package.url.toString() + QStringLiteral(" to ") + downloadFilePath);
    // With a dialog there already, the new download runs unobserved.
    if (progressDialog == nullptr) {
        progressDialog = new QProgressDialog(updateAvailableDialog, windowFlags);
        forgetWhenDestroyed(this, progressDialog);
        connectDownload(manager, progressDialog, this);
        if (UpdateTrust::isRequired()) {
            ClientTrust::of(this).follow(manager, progressDialog);
        }
    }
    if (UpdateTrust::isRequired()) {
        ClientTrust::of(this).confirm(downloadFilePath, package);
    }
    manager->startDownload(package, downloadFilePath);
}

void SoftwareUpdateClient::downloadProgress(int value, int total)
{
    if (progressDialog != nullptr) {
        progressDialog->setRange(0, total);
        progressDialog->setValue(value);
    }
}

void SoftwareUpdateClient::downloadError(int httpStatusCode)
{
    const QPointer<SoftwareUpdateClient> self(this);
    showError(tr("Download Error"),
              tr("Error downloading! Http status code %1").arg(httpStatusCode, 0, 10), parentWidget,
              windowFlags);
    if (self) {
        abortDownload();
    }
}

void SoftwareUpdateClient::abortDownload()
{
    deleteProgressDialog();
    if (!FileUtils::erase(downloadFilePath)) {
        logLine(3, QStringLiteral("SoftwareUpdateClient::abortDownload() -> could not remove "
                                  "downloaded files: ") +
                       downloadFilePath);
    }
}

void SoftwareUpdateClient::deleteProgressDialog()
{
    if (progressDialog != nullptr) {
        progressDialog->setVisible(false);
        progressDialog->deleteLater();
    }
    progressDialog = nullptr;
}

} // namespace vx
