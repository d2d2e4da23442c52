#include "client/SoftwareUpdateClient.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>

#include <QPointer>

#include "base/KeepForever.h"
#include "base/LogLine.h"
#include "client/SoftwareUpdateConstants.h"
#include "client/internal/MessageBoxes.h"
#include "download/DownloadManager.h"

namespace vx {

namespace {

int askForRestart(QWidget* parent, Qt::WindowFlags flags)
{
    Question question;
    question.title = SoftwareUpdateClient::tr("Restart required");
    question.text = SoftwareUpdateClient::tr(
        "Please restart your application to finish the installation process.");
    question.rejectText = SoftwareUpdateClient::tr("Restart later");
    question.acceptText = SoftwareUpdateClient::tr("Restart now");
    question.parent = parent;
    question.flags = flags;
    return ask(question);
}

QString in(const QDir& folder)
{
    return folder.absolutePath() + QLatin1Char('/') + sSoftUpUpdateApplicationExecutable;
}

void logStart(const QString& target, const QString& unzipTargetPath)
{
    const QString folder = QCoreApplication::applicationDirPath();
    logLine(1, QStringLiteral("SoftwareUpdateClient::startInstallZip() -> starting zip "
                              "installation application ") +
                   target + QStringLiteral(" -> removing ") + folder +
                   QStringLiteral(", renaming ") + unzipTargetPath + QStringLiteral("  to ") +
                   folder + QStringLiteral(" and restarting ") +
                   QCoreApplication::applicationFilePath());
}

// Returns only if the process was not replaced, and says "could not copy" whatever the cause was.
void handOverTo(const QString& target, const QFile& source, const QString& unzipTargetPath)
{
    logStart(target, unzipTargetPath);
    // A helper that is there already is used as it stands, even if it is older.
    if (QFile::exists(target) || QFile::copy(source.fileName(), target)) {
        DownloadManager::startUpdate(
            target, QCoreApplication::applicationDirPath(), unzipTargetPath,
            QCoreApplication::applicationFilePath().section(QLatin1Char('/'), -1, -1));
    }
    logLine(3, QStringLiteral(
                   "SoftwareUpdateClient::startInstallApplication() -> could not copy file to ") +
                   target);
}

} // namespace

void SoftwareUpdateClient::installZIPPackage()
{
    // Nobody listens: the update helper finds the unpacked files by itself.
    keepForever(new DownloadManager)->unzipPackage(downloadFilePath);
    logLine(1, QStringLiteral("SoftwareUpdateClient::installZipPackage() -> unzipping ") +
                   downloadFilePath + QStringLiteral(" to ") + unzipTargetPath);
    const QPointer<SoftwareUpdateClient> self(this);
    // Unpacking goes on meanwhile, and nothing waits for it.
    if (askForRestart(parentWidget, windowFlags) == 1 && self) {
        startZipInstall();
    }
}

void SoftwareUpdateClient::startZipInstall()
{
    QDir folder(QCoreApplication::applicationDirPath());
    const QFile source(QCoreApplication::applicationDirPath() + QLatin1Char('/') +
                       sSoftUpUpdateApplicationExecutable);
    if (folder.exists() && source.exists()) {
        // The helper replaces the application's folder and so can't run from inside of it.
        folder.cdUp();
        handOverTo(in(folder), source, unzipTargetPath);
    }
    // Written after a failed start, too: both causes end here.
    logLine(3, QStringLiteral("SoftwareUpdateClient::startInstallApplication() -> one of the "
                              "following file/dir is missing: ") +
                   source.fileName() + QStringLiteral(" or ") + folder.absolutePath());
    showError(tr("Installation failed"),
              tr("Installation process failed. If problem persists try manual install."),
              parentWidget, windowFlags);
}

} // namespace vx
