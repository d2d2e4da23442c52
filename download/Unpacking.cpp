#include <QCoreApplication>
#include <QDir>
#include <QMessageBox>

#include "base/KeepForever.h"
#include "base/LogLine.h"
#include "download/DownloadManager.h"
#include "host/CoreQt/Connect.h"
#include "host/FileFormatsZip/Unzipper.h"
#include "host/IO/FileUtils.h"

namespace vx {

namespace {

/** @p text as it stands, for a label that shows markup. */
QString escaped(QString text)
{
    text.replace(QLatin1Char('&'), QLatin1String("&amp;"));
    return text.replace(QLatin1Char('<'), QLatin1String("&lt;"));
}

} // namespace

void DownloadManager::unzipPackage(const QString& packageFile)
{
    const QString folder = FileUtils::createTempDir();
    if (!QDir(folder).exists() && !QDir().mkdir(folder)) {
        logLine(3, QStringLiteral("DownloadManager::unzipPackage() -> Could not create folder to "
                                  "unzip into!"));
        return;
    }
    // The other name in this line is meant to stand: log files are searched for it.
    logLine(1, QStringLiteral("DownloadManager::installPackage() -> trying to extract ") +
                   packageFile + QStringLiteral(" to ") + folder);
    if (unzipper != nullptr) {
        return; // one object unpacks once in its life
    }
    // The job starts from the event loop, after these connections and those of the caller.
    unzipper = keepForever(new Unzipper(packageFile, folder, false));
    vx::connect(unzipper, SIGNAL(unzippingDone(const QString&)), this,
                SLOT(unzippingFinished(const QString&)), Qt::AutoConnection);
    vx::connect(unzipper, SIGNAL(unzippingFailed(const QString&)), this,
                SLOT(unzippingFailed(const QString&)), Qt::AutoConnection);
}

// The job is not forgotten either, so that a later unzipPackage() starts no second one.
void DownloadManager::unzippingFinished(const QString& path)
{
    if (unzipper != nullptr) {
        unzipper->removeZipFile();
    }
    emit unzippingDone(path);
}

void DownloadManager::unzippingFailed(const QString& reason)
{
    const QString text = tr("Downloaded file could not be unpacked:<br>") + escaped(reason);
    QMessageBox::critical(nullptr, QCoreApplication::applicationName(), text, QMessageBox::Ok);
}

} // namespace vx
