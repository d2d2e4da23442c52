#include "package/internal/CandidateMatcher.h"

#include "base/ReleaseNumber.h"

namespace vx {

CandidateMatcher::CandidateMatcher(const PackageInfo& filter, const QStringList& allowedFileTypes)
    : m_name(filter.name)
    , m_status(filter.status)
    , m_platforms(filter.platforms)
    , m_fileTypes(allowedFileTypes)
{
    if (!filter.release.isEmpty()) {
        m_release = releaseNumber(filter.release);
    }
}

CandidateRefusal CandidateMatcher::refusal(const PackageInfo& package) const
{
    if (!m_name.isEmpty() && m_name != package.name) {
        return CandidateRefusal::Name;
    }
    if (m_release && releaseNumber(package.release) <= *m_release) {
        return CandidateRefusal::Release;
    }
    if (!m_status.isEmpty() && m_status != package.status) {
        return CandidateRefusal::Status;
    }
    if (!m_platforms.isEmpty() &&
        !StringUtils::intersectsOnBeginning(m_platforms, package.platforms)) {
        return CandidateRefusal::Platforms;
    }
    if (!m_fileTypes.isEmpty() && !m_fileTypes.contains(package.packageType)) {
        return CandidateRefusal::FileType;
    }
    return CandidateRefusal::None;
}

bool CandidateMatcher::accepts(const PackageInfo& package) const
{
    return refusal(package) == CandidateRefusal::None;
}

} // namespace vx
