#include "client/SoftwareUpdateClient.h"

#include <QPointer>
#include <QProcess>

#include "client/MessageBoxes.h"
#include "package/LogLine.h"

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
    deleteProgressDialog();
    deleteUpdateAvailableDialog();
    const QString type = packageList.value(installIndexes.value(0, -1)).packageType;
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
    // With an argument list, lest the path be split at blanks.
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
