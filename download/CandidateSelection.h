#pragma once

#include <QString>

#include "SoftwareUpdateClientExport.h"
#include "package/CandidateMatcher.h"
#include "package/PackageInfo.h"

namespace vx {

/**
 * The steps of DownloadManager::findPackageCandidates, for tools that explain what it chooses. In
 * this order they are the whole of it.
 */
namespace CandidateSelection {

/**
 * Gives every package of @p allPackages that passes @p matcher the type @p categoryTag, in that
 * list itself.
 *
 * @return copies of these packages, in list order.
 */
SOFTWAREUPDATECLIENT_EXPORT PackageInfoList tagAccepted(PackageInfoList& allPackages,
                                                        const CandidateMatcher& matcher,
                                                        const QString& categoryTag);

/**
 * The release text of the highest version in @p candidates; of several equal versions, the first.
 *
 * @return "0" if no version is above that.
 */
SOFTWAREUPDATECLIENT_EXPORT QString highestRelease(const PackageInfoList& candidates);

/**
 * Removes from @p candidates every package whose release is another text than @p release, even one
 * of equal value.
 */
SOFTWAREUPDATECLIENT_EXPORT void keepRelease(PackageInfoList& candidates, const QString& release);

} // namespace CandidateSelection

} // namespace vx
