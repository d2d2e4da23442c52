#pragma once

#include <QString>
#include <QStringList>

#include "package/PackageInfo.h"
#include "package/internal/CandidateMatcher.h"

namespace vx {

/** Which packages of a list are offered. DownloadManager describes the first three operations. */
namespace CandidateSelection {

PackageInfoList findPackageCandidates(PackageInfoList& allPackages, const PackageInfo& filter,
                                      const QString& categoryTag,
                                      const QStringList& allowedFileTypes);

void eliminateDuplicatePackages(PackageInfoList& list);

int countNew(const PackageInfoList& list);

/** @name The steps of findPackageCandidates()
 * For tools that explain what it chooses. In this order they are the whole of it. @{ */

/**
 * Sets the type of every package of @p allPackages that passes @p matcher to @p categoryTag, in
 * that list itself.
 *
 * @return copies of these packages, in list order.
 */
PackageInfoList tagAccepted(PackageInfoList& allPackages, const CandidateMatcher& matcher,
                            const QString& categoryTag);

/**
 * The release text of the highest version in @p candidates; of several equal versions, the first.
 *
 * @return "0" if no version is above that.
 */
QString highestRelease(const PackageInfoList& candidates);

/**
 * Removes from @p candidates every package whose release is another text than @p release, even one
 * of equal value.
 */
void keepRelease(PackageInfoList& candidates, const QString& release);
/** @} */

} // namespace CandidateSelection

} // namespace vx
