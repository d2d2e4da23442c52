#include <QFileInfo>

#include "download/DownloadManager.h"

namespace vx {

void DownloadManager::installLater(const PackageInfo& info, bool confirmInstall)
{
    pendingInstall.package = info;
    pendingInstall.package.confirmInstall = confirmInstall;
}

void DownloadManager::installLater(const QString& packageFile, const QString& updaterExe,
                                   const QString& targetFolder, const QString& applicationExe)
{
    pendingInstall.package.localFile = packageFile;
    pendingInstall.updaterExe = updaterExe;
    pendingInstall.targetFolder = targetFolder;
    pendingInstall.applicationExe = applicationExe;
}

bool DownloadManager::hasInstallPackage() const
{
    const PackageInfo& package = pendingInstall.package;
    if (package.localFile.isEmpty()) {
        return false;
    }
    const QFileInfo file(package.localFile);
    return file.isFile() && static_cast<quint64>(file.size()) == package.fileSize;
}

const PackageInfo& DownloadManager::installPackage() const
{
    return pendingInstall.package;
}

PackageInfo& DownloadManager::installPackage()
{
    return pendingInstall.package;
}

} // namespace vx
