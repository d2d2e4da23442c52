#include <QMap>
#include <QSet>

#include "download/DownloadManager.h"

namespace vx {

namespace {

QString bestMatchKey(const PackageInfo& package, const QString& platform)
{
    return package.type + QLatin1Char('/') + platform;
}

} // namespace

PackageInfoList DownloadManager::findBestMatches(const PackageInfoList& allPackages,
                                                 const PackageInfo& filter) const
{
    QMap<QString, const PackageInfo*> holders;
    for (const PackageInfo& package : allPackages) {
        if (!package.matchesFilter(filter)) {
            continue;
        }
        for (const QString& platform : package.platforms) {
            const PackageInfo*& holder = holders[bestMatchKey(package, platform)];
            if (holder == nullptr || package.isBetterMatch(*holder)) {
                holder = &package;
            }
        }
    }
    // A package may hold several platforms and is taken once.
    QSet<const PackageInfo*> winners;
    for (const PackageInfo* holder : qAsConst(holders)) {
        winners.insert(holder);
    }
    PackageInfoList best;
    for (const PackageInfo* winner : qAsConst(winners)) {
        best.append(*winner);
    }
    return best;
}

} // namespace vx
