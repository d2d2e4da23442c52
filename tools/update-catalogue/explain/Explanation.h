#pragma once

#include <QList>
#include <QString>

#include "client/internal/OfferSelection.h"
#include "package/PackageInfo.h"

namespace vx {

/** What became of one package for the application or for one camera. */
struct Verdict
{
    enum Outcome {
        Offered,    ///< stands in the dialog
        Refused,    ///< a test refused it, see refusal
        Superseded, ///< passes, and another package of its kind has the highest release
        Duplicate   ///< passes, and equals an earlier one by date and size
    };

    /** Place in the catalogue. */
    int package = 0;
    Outcome outcome = Offered;
    /** The first test that refused it. */
    CandidateRefusal refusal = CandidateRefusal::None;
    /** What the package has there, and what it would have to have. */
    QString actual;
    QString required;
    /** In one sentence. */
    QString sentence;
};

/** The verdicts for the application or for one camera. */
struct TargetExplanation
{
    /** "application" or "camera". */
    QString kind;
    QString name;
    QString installedVersion;
    QList<Verdict> verdicts;
};

/** Why an installation is offered what it is offered. */
struct Explanation
{
    /** The application first, then the cameras in their order. */
    QList<TargetExplanation> targets;
    /** What the check leaves for the dialog, row by row. */
    PackageInfoList rows;
};

/** Explains what an installation with @p criteria is offered of @p catalogue. */
Explanation explain(const PackageInfoList& catalogue, const OfferCriteria& criteria);

/** "name", "release", "status", "platforms" or "file type". */
QString refusalName(CandidateRefusal refusal);

} // namespace vx
