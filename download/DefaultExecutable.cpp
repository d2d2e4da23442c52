#include "download/DownloadManager.h"

namespace vx {

QString DownloadManager::findDefaultExecutable(const QDir& dir)
{
    // Sorted by size, the largest first; QDir sorts equal ones by name.
    const QStringList programs = dir.entryList(QDir::Files | QDir::Executable, QDir::Size);
    if (!programs.isEmpty()) {
        return programs.first();
    }
    // A link to a folder is no folder of its own: it may lead in a circle, or out of the package.
    const QStringList folders =
        dir.entryList(QDir::Dirs | QDir::NoDotAndDotDot | QDir::NoSymLinks, QDir::Unsorted);
    for (const QString& folder : folders) {
        const QString program = findDefaultExecutable(QDir(dir.filePath(folder)));
        if (!program.isEmpty()) {
            return folder + QLatin1Char('/') + program;
        }
    }
    return QString();
}

} // namespace vx
