#pragma once

#include <QString>
#include <QStringList>

#include <optional>

#include "host/Core/VersionNumber.h"
#include "package/PackageInfo.h"

namespace vx {

/**
 * One filter, prepared for testing many packages: what PackageInfo::candidateRefusal answers, with
 * the filter's release read only once.
 *
 * A value; it keeps copies of what it was given.
 */
class CandidateMatcher
{
public:
    /**
     * @param filter empty fields are not tested.
     * @param allowedFileTypes package types to accept; empty accepts all.
     */
    CandidateMatcher(const PackageInfo& filter, const QStringList& allowedFileTypes);

    /** The first test that @p package does not pass, in the order of CandidateRefusal. */
    CandidateRefusal refusal(const PackageInfo& package) const;

    /** Whether @p package passes every test. */
    bool accepts(const PackageInfo& package) const;

private:
    QString m_name;
    std::optional<VersionNumber> m_release; ///< none if the release is not tested
    QString m_status;
    QStringSet m_platforms;
    QStringList m_fileTypes;
};

} // namespace vx
