#include "tools/update-catalogue/Selection.h"

#include "download/internal/CandidateSelection.h"

namespace vx {

namespace {

Selection select(const PackageInfoList& catalogue, const CandidateMatcher& matcher)
{
    Selection selection;
    PackageInfoList candidates;
    for (int i = 0; i < catalogue.size(); ++i) {
        if (matcher.accepts(catalogue.at(i))) {
            selection.accepted.append(i);
            candidates.append(catalogue.at(i));
        }
    }
    selection.highestRelease = CandidateSelection::highestRelease(candidates);
    for (const int i : qAsConst(selection.accepted)) {
        if (catalogue.at(i).release == selection.highestRelease) {
            selection.kept.append(i);
        }
    }
    return selection;
}

} // namespace

CandidateMatcher applicationMatcher(const OfferCriteria& criteria)
{
    return CandidateMatcher(applicationFilter(criteria), criteria.supportedPackageTypes);
}

CandidateMatcher cameraMatcher(const QPair<QString, VersionNumber>& camera,
                               const OfferCriteria& criteria)
{
    return CandidateMatcher(cameraFilter(camera, criteria), QStringList());
}

Selection selectForApplication(const PackageInfoList& catalogue, const OfferCriteria& criteria)
{
    return select(catalogue, applicationMatcher(criteria));
}

Selection selectForCamera(const PackageInfoList& catalogue,
                          const QPair<QString, VersionNumber>& camera,
                          const OfferCriteria& criteria)
{
    return select(catalogue, cameraMatcher(camera, criteria));
}

} // namespace vx
