#include "client/SoftwareUpdateClient.h"

#include <QDir>
#include <QFileInfo>
#include <QPointer>
#include <QProcess>

#include "base/LogLine.h"
#include "client/internal/ClientTrust.h"
#include "client/internal/MessageBoxes.h"
#include "trust/UpdateTrust.h"
#include "trust/internal/TrustTexts.h"

namespace vx {

namespace {

// Said of every type, though only "exe" is run on this platform.
void logTryingToRun(const QString& operation, const QString& path)
{
    logLine(1, QStringLiteral("SoftwareUpdateClient::") + operation +
                   QStringLiteral("() -> trying to run ") + path);
}

} // namespace

void SoftwareUpdateClient::downloadFinished()
{
    QString type = packageList.value(installIndexes.value(0, -1)).packageType;
    if (UpdateTrust::isRequired()) {
        ClientTrust& trust = ClientTrust::of(this);
        const std::optional<VerifiedPackage> verified = trust.takeVerified();
        if (!verified) {
            // Comes back here once the file has turned out to be what the user confirmed.
            trust.verify(downloadFilePath, progressDialog,
                         [this](const QString& path, const QString& reason) {
                             downloadFilePath = path;
                             abortDownload();
                             QDir().rmdir(QFileInfo(path).path());
                             showError(packageRefusedTitle(), reason, parentWidget, windowFlags);
                         });
            return;
        }
        downloadFilePath = verified->path;
        type = verified->packageType;
    }
    deleteProgressDialog();
    deleteUpdateAvailableDialog();
    if (type == QLatin1String("exe")) {
        installEXEPackage();
    } else if (type == QLatin1String("mpkg")) {
        installMPKGPackage();
    } else if (type == QLatin1String("zip")) {
        installZIPPackage();
    } else if (type == QLatin1String("msi")) {
        installMSIPackage();
    } else if (type == QLatin1String("deb")) {
        installDEBPackage();
    } else if (type == QLatin1String("rpk")) {
        installRPKPackage();
    } else if (type == QLatin1String("tar.gz")) {
        installTARGZPackage();
    } else {
        const QPointer<SoftwareUpdateClient> self(this);
        showError(tr("Download Error"), tr("Unknown package type! Installation cannot proceed!"),
                  parentWidget, windowFlags);
        if (self) {
            abortDownload();
        }
    }
}

void SoftwareUpdateClient::installEXEPackage()
{
    logTryingToRun(QStringLiteral("installEXEPackage"), downloadFilePath);
    // With an argument list, so that the path is not split at spaces.
    QProcess::startDetached(downloadFilePath, QStringList());
}

void SoftwareUpdateClient::installMSIPackage()
{
    logTryingToRun(QStringLiteral("installMSIPackage"), downloadFilePath);
}

void SoftwareUpdateClient::installDEBPackage()
{
    logTryingToRun(QStringLiteral("installDEBPackage"), downloadFilePath);
}

void SoftwareUpdateClient::installRPKPackage()
{
    logTryingToRun(QStringLiteral("installRPKPackage"), downloadFilePath);
}

void SoftwareUpdateClient::installTARGZPackage()
{
    logTryingToRun(QStringLiteral("installTARGZPackage"), downloadFilePath);
}

} // namespace vx
