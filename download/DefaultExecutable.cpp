#include <QSet>

#include "download/DownloadManager.h"

namespace vx {

namespace {

QString withSlash(const QString& path)
{
    return path.endsWith(QLatin1Char('/')) ? path : path + QLatin1Char('/');
}

/** A search below one folder, which links cannot lead out of it or into a circle. */
class ExecutableSearch
{
public:
    explicit ExecutableSearch(const QDir& top)
        : m_top(withSlash(top.canonicalPath()))
    {}

    /** @return a path relative to @p dir. */
    QString below(const QDir& dir);

private:
    bool isFirstVisit(const QDir& dir);

    QString m_top;
    QSet<QString> m_visited;
};

QString ExecutableSearch::below(const QDir& dir)
{
    // What a second visit would find, by another link, the first has found already.
    if (!isFirstVisit(dir)) {
        return QString();
    }
    // Sorted by size, the largest first; QDir sorts equal ones by name.
    const QStringList programs =
        dir.entryList(QDir::Files | QDir::Executable | QDir::Hidden, QDir::Size);
    if (!programs.isEmpty()) {
        return programs.first();
    }
    const QStringList folders =
        dir.entryList(QDir::Dirs | QDir::Hidden | QDir::NoDotAndDotDot, QDir::Unsorted);
    for (const QString& folder : folders) {
        const QString program = below(QDir(dir.filePath(folder)));
        if (!program.isEmpty()) {
            return folder + QLatin1Char('/') + program;
        }
    }
    return QString();
}

bool ExecutableSearch::isFirstVisit(const QDir& dir)
{
    const QString path = dir.canonicalPath();
    if (!withSlash(path).startsWith(m_top) || m_visited.contains(path)) {
        return false;
    }
    m_visited.insert(path);
    return true;
}

} // namespace

QString DownloadManager::findDefaultExecutable(const QDir& dir)
{
    return ExecutableSearch(dir).below(dir);
}

} // namespace vx
