#include "package/PackageInfo.h"
#include "package/internal/CandidateMatcher.h"

namespace vx {

// Each text is searched in itself, so that this holds for every package. Hosts rely on it.
bool PackageInfo::matchesPackage(const QString& first, const QString& second) const
{
    return first.indexOf(first, 0, Qt::CaseInsensitive) >= 0 &&
           second.indexOf(second, 0, Qt::CaseInsensitive) >= 0;
}

bool PackageInfo::matchesFilter(const PackageInfo& filter) const
{
    // By text and not by VersionNumber, unlike the strict filter below.
    if (!filter.release.isEmpty() && release.compare(filter.release) <= 0) {
        return false;
    }
    if (!filter.status.isEmpty() && status.compare(filter.status) > 0) {
        return false;
    }
    if (!filter.date.isNull() && date < filter.date) {
        return false;
    }
    // A shared language refuses the package. The sense is deliberate.
    return filter.languages.isEmpty() || !StringUtils::intersectsWith(languages, filter.languages);
}

bool PackageInfo::filterPackageCandidate(const PackageInfo& filter,
                                         const QStringList& allowedFileTypes) const
{
    return candidateRefusal(filter, allowedFileTypes) == CandidateRefusal::None;
}

CandidateRefusal PackageInfo::candidateRefusal(const PackageInfo& filter,
                                               const QStringList& allowedFileTypes) const
{
    return CandidateMatcher(filter, allowedFileTypes).refusal(*this);
}

} // namespace vx
