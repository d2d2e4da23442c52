#pragma once

#include <QVector>

#include "client/internal/OfferSelection.h"
#include "package/PackageInfo.h"
#include "package/internal/CandidateMatcher.h"

namespace vx {

/** What the library chooses of a catalogue for the application or for one camera. */
struct Selection
{
    /** Packages that pass every test, by their place in the catalogue. */
    QVector<int> accepted;
    /** The release that is kept; "0" if none is above that. */
    QString highestRelease;
    /** Of the accepted packages those of that release. */
    QVector<int> kept;
};

/** Chooses for the application. */
Selection selectForApplication(const PackageInfoList& catalogue, const OfferCriteria& criteria);

/** Chooses for one camera. */
Selection selectForCamera(const PackageInfoList& catalogue,
                          const QPair<QString, VersionNumber>& camera,
                          const OfferCriteria& criteria);

/** The tests that a package for the application must pass. */
CandidateMatcher applicationMatcher(const OfferCriteria& criteria);

/** The tests that firmware for @p camera must pass. */
CandidateMatcher cameraMatcher(const QPair<QString, VersionNumber>& camera,
                               const OfferCriteria& criteria);

} // namespace vx
