#include "download/CandidateSelection.h"

#include <QSet>

#include <algorithm>

#include "download/DownloadManager.h"
#include "package/ReleaseNumber.h"

namespace vx {

PackageInfoList CandidateSelection::tagAccepted(PackageInfoList& allPackages,
                                                const CandidateMatcher& matcher,
                                                const QString& categoryTag)
{
    PackageInfoList accepted;
    for (int i = 0; i < allPackages.size(); ++i) {
        if (matcher.accepts(allPackages.at(i))) {
            // The searched list itself is tagged; later calls overwrite the tags of earlier ones.
            allPackages[i].type = categoryTag;
            accepted.append(allPackages.at(i));
        }
    }
    return accepted;
}

QString CandidateSelection::highestRelease(const PackageInfoList& candidates)
{
    QString highest = QStringLiteral("0");
    VersionNumber highestNumber = releaseNumber(highest);
    for (const PackageInfo& candidate : candidates) {
        const VersionNumber number = releaseNumber(candidate.release);
        if (number > highestNumber) {
            highest = candidate.release;
            highestNumber = number;
        }
    }
    return highest;
}

void CandidateSelection::keepRelease(PackageInfoList& candidates, const QString& release)
{
    const auto isOther = [&release](const PackageInfo& candidate) {
        return candidate.release != release;
    };
    candidates.erase(std::remove_if(candidates.begin(), candidates.end(), isOther),
                     candidates.end());
}

PackageInfoList DownloadManager::findPackageCandidates(PackageInfoList& allPackages,
                                                       const PackageInfo& filter,
                                                       const QString& categoryTag,
                                                       const QStringList& allowedFileTypes)
{
    PackageInfoList candidates = CandidateSelection::tagAccepted(
        allPackages, CandidateMatcher(filter, allowedFileTypes), categoryTag);
    CandidateSelection::keepRelease(candidates, CandidateSelection::highestRelease(candidates));
    return candidates;
}

void DownloadManager::eliminateDuplicatePackages(PackageInfoList& list)
{
    if (list.size() < 2) {
        return;
    }
    PackageInfoList unique;
    QSet<QString> seen;
    for (const PackageInfo& package : qAsConst(list)) {
        const QString id = package.stringID();
        if (!seen.contains(id)) {
            seen.insert(id);
            unique.append(package);
        }
    }
    list = unique;
}

int DownloadManager::countNew(const PackageInfoList& list)
{
    const auto isNew = [](const PackageInfo& package) { return !package.flags.known; };
    return static_cast<int>(std::count_if(list.begin(), list.end(), isNew));
}

} // namespace vx
