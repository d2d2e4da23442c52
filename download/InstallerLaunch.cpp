#include <unistd.h>

#include "download/DownloadManager.h"
#include "host/CoreQt/ExceptionQt.h"

namespace vx {

void DownloadManager::startUpdate(const QString& updateApplicationPath,
                                  const QString& installationPath,
                                  const QString& tempApplicationPath, const QString& newApplication)
{
    const QByteArray helper = updateApplicationPath.toLocal8Bit();
    const QByteArray oldFolder = installationPath.toLocal8Bit();
    const QByteArray newFolder = tempApplicationPath.toLocal8Bit();
    const QByteArray program = newApplication.toLocal8Bit();
    ::execl(helper.constData(), helper.constData(), "-oldDir", oldFolder.constData(), "-newDir",
            newFolder.constData(), "-exe", program.constData(), static_cast<char*>(nullptr));
}

// The suffix counts as it stands: "ZIP" is not one of them, and no dot is needed before it.
void DownloadManager::runInstaller(const QString& installerFile)
{
    if (installerFile.endsWith(QLatin1String("zip"))) {
        runZipInstaller(installerFile);
        return;
    }
    // No other kind of installer is ever started; callers tell so by this text.
    throw ExceptionQt(QStringLiteral("execl() failed"));
}

} // namespace vx
