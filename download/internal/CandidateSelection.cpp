#include "download/internal/CandidateSelection.h"

#include <QSet>

#include <algorithm>

#include "base/ReleaseNumber.h"

namespace vx {

PackageInfoList CandidateSelection::tagAccepted(PackageInfoList& allPackages,
                                                const CandidateMatcher& matcher,
                                                const QString& categoryTag)
{
    PackageInfoList accepted;
    for (PackageInfo& package : allPackages) {
        if (matcher.accepts(package)) {
            // The searched list itself is tagged; later calls overwrite the tags of earlier ones.
            package.type = categoryTag;
            accepted.append(package);
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

PackageInfoList CandidateSelection::findPackageCandidates(PackageInfoList& allPackages,
                                                          const PackageInfo& filter,
                                                          const QString& categoryTag,
                                                          const QStringList& allowedFileTypes)
{
    PackageInfoList candidates = CandidateSelection::tagAccepted(
        allPackages, CandidateMatcher(filter, allowedFileTypes), categoryTag);
    CandidateSelection::keepRelease(candidates, CandidateSelection::highestRelease(candidates));
    return candidates;
}

void CandidateSelection::eliminateDuplicatePackages(PackageInfoList& list)
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

int CandidateSelection::countNew(const PackageInfoList& list)
{
    const auto isNew = [](const PackageInfo& package) { return !package.flags.known; };
    return static_cast<int>(std::count_if(list.begin(), list.end(), isNew));
}

} // namespace vx
