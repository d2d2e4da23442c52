#include <QDir>
#include <QFile>

#include <algorithm>
#include <filesystem>
#include <vector>

#include "host/IO/FileUtils.h"

namespace vx {

namespace {

// Not QFileInfo and the like, to which a name such as ":x" means something that is no file.
namespace fs = std::filesystem;

fs::path toPath(const QString& path)
{
    return fs::path(QFile::encodeName(path).toStdString());
}

/**
 * @p path with all links in it resolved but the last: its folder's real path and its own name.
 * Empty for a path that is no place of its own, or whose folder does not exist.
 */
fs::path resolvedUpToName(QString path)
{
    while (path.endsWith(QLatin1Char('/'))) {
        path.chop(1);
    }
    const auto slash = path.lastIndexOf(QLatin1Char('/'));
    const QString name = path.mid(slash + 1);
    // The system reads a name only up to a NUL, and so would remove something else.
    const bool isName = !name.isEmpty() && name != QLatin1String(".") &&
                        name != QLatin1String("..") && !path.contains(QChar::Null);
    if (!isName) {
        return {};
    }
    std::error_code error;
    const QString folder = slash < 0 ? QStringLiteral(".") : path.left(slash + 1);
    const fs::path realFolder = fs::canonical(toPath(folder), error);
    return error ? fs::path() : realFolder / toPath(name);
}

/** Adds @p folder and all folders above it, up to the root. */
void addWithFoldersAbove(std::vector<fs::path>& folders, fs::path folder)
{
    folders.push_back(folder);
    while (folder.has_relative_path()) {
        folder = folder.parent_path();
        folders.push_back(folder);
    }
}

/** The folders that are never removed, under their real names and under those they are known by. */
std::vector<fs::path> protectedFolders()
{
    std::vector<fs::path> folders;
    for (const QString& known : {QDir::homePath(), QDir::tempPath(), QDir::currentPath()}) {
        const fs::path path = toPath(QDir::cleanPath(known));
        addWithFoldersAbove(folders, path);
        std::error_code error;
        const fs::path real = fs::canonical(path, error);
        if (!error) {
            addWithFoldersAbove(folders, real);
        }
    }
    return folders;
}

/** Whether @p path itself, not what it links to, is @p folder; the names do not always tell. */
bool isFolder(const fs::path& path, const fs::path& folder)
{
    std::error_code error;
    return path == folder || (!fs::is_symlink(path, error) && fs::equivalent(path, folder, error));
}

bool isProtected(const fs::path& path)
{
    const std::vector<fs::path> folders = protectedFolders();
    return std::any_of(folders.begin(), folders.end(),
                       [&path](const fs::path& folder) { return isFolder(path, folder); });
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
    const fs::path target = resolvedUpToName(path);
    if (target.empty() || isProtected(target)) {
        return false;
    }
    makeErasable(target);
    std::error_code error;
    const auto removed = fs::remove_all(target, error);
    return !error && removed > 0;
}

} // namespace vx
