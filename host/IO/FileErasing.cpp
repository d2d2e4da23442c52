#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <filesystem>

#include <sys/stat.h>

#include "host/IO/FileUtils.h"

namespace vx {

namespace {

namespace fs = std::filesystem;

/**
 * @p path with all links in it resolved but the last: its folder's real path and its own name.
 * Empty for a path that is no place of its own, or whose folder does not exist.
 */
QString resolvedUpToName(QString path)
{
    while (path.endsWith(QLatin1Char('/'))) {
        path.chop(1);
    }
    const int slash = path.lastIndexOf(QLatin1Char('/'));
    const QString name = path.mid(slash + 1);
    // The system reads a name only up to a NUL, and so would remove something else.
    const bool isName = !name.isEmpty() && name != QLatin1String(".") &&
                        name != QLatin1String("..") && !path.contains(QChar::Null);
    if (!isName) {
        return {};
    }
    const QString folder = slash < 0 ? QStringLiteral(".") : path.left(slash + 1);
    const QString realFolder = QFileInfo(folder).canonicalFilePath();
    return realFolder.isEmpty() ? QString() : QDir(realFolder).filePath(name);
}

/** The folder and all folders above it, up to the root. */
QStringList withFoldersAbove(const QString& folder)
{
    QStringList folders{folder};
    while (!QDir(folders.last()).isRoot()) {
        folders.append(QFileInfo(folders.last()).path());
    }
    return folders;
}

/** The folders that are never removed, under their real names and under those they are known by. */
QStringList protectedFolders()
{
    QStringList folders;
    for (const QString& known : {QDir::homePath(), QDir::tempPath(), QDir::currentPath()}) {
        folders += withFoldersAbove(QDir::cleanPath(QFileInfo(known).absoluteFilePath()));
        const QString real = QFileInfo(known).canonicalFilePath();
        if (!real.isEmpty()) {
            folders += withFoldersAbove(real);
        }
    }
    return folders;
}

/** Whether @p path itself, not what it links to, is @p folder; names do not always tell. */
bool isFolder(const QString& path, const QString& folder)
{
    struct stat pathStatus;
    struct stat folderStatus;
    return path == folder ||
           (lstat(QFile::encodeName(path).constData(), &pathStatus) == 0 &&
            stat(QFile::encodeName(folder).constData(), &folderStatus) == 0 &&
            pathStatus.st_dev == folderStatus.st_dev && pathStatus.st_ino == folderStatus.st_ino);
}

bool isProtected(const QString& path)
{
    const QStringList folders = protectedFolders();
    return std::any_of(folders.begin(), folders.end(),
                       [&path](const QString& folder) { return isFolder(path, folder); });
}

/** Lets the owner list and empty @p path and the folders in it; links are not followed. */
void makeErasable(const fs::path& path)
{
    std::error_code error;
    if (fs::symlink_status(path, error).type() != fs::file_type::directory) {
        return;
    }
    fs::permissions(path, fs::perms::owner_all, fs::perm_options::add, error);
    fs::directory_iterator entry(path, error);
    while (!error && entry != fs::directory_iterator()) {
        makeErasable(entry->path());
        entry.increment(error);
    }
}

} // namespace

bool FileUtils::erase(const QString& path)
{
    const QString resolved = resolvedUpToName(path);
    if (resolved.isEmpty() || isProtected(resolved)) {
        return false;
    }
    const fs::path target(QFile::encodeName(resolved).toStdString());
    makeErasable(target);
    std::error_code error;
    const auto removed = fs::remove_all(target, error);
    return !error && removed > 0;
}

} // namespace vx
