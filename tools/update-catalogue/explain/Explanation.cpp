#include "tools/update-catalogue/explain/Explanation.h"

#include <QHash>

#include "base/ReleaseNumber.h"
#include "tools/update-catalogue/ParsedCatalogue.h"
#include "tools/update-catalogue/Selection.h"

namespace vx {

namespace {

QString sortedWords(const QStringSet& words)
{
    QStringList list = words.values();
    list.sort();
    return list.join(' ');
}

void describeRefusal(Verdict& verdict, const PackageInfo& package, const PackageInfo& filter,
                     const QStringList& fileTypes)
{
    switch (verdict.refusal) {
    case CandidateRefusal::Name:
        verdict.actual = package.name;
        verdict.required = filter.name;
        verdict.sentence = QString("is named \"%1\", and must be named \"%2\"");
        break;
    case CandidateRefusal::Release:
        verdict.actual = package.release;
        verdict.required = filter.release;
        verdict.sentence = QString("release \"%1\" is not above the installed \"%2\"");
        break;
    case CandidateRefusal::Status:
        verdict.actual = package.status;
        verdict.required = filter.status;
        verdict.sentence = QString("status is \"%1\", and must be \"%2\"");
        break;
    case CandidateRefusal::Platforms:
        verdict.actual = sortedWords(package.platforms);
        verdict.required = sortedWords(filter.platforms);
        verdict.sentence = QString("is for \"%1\", which fits none of \"%2\"");
        break;
    case CandidateRefusal::FileType:
        verdict.actual = package.packageType;
        verdict.required = fileTypes.join(' ');
        verdict.sentence = QString("file type is \"%1\", and must be one of \"%2\"");
        break;
    case CandidateRefusal::None:
        return;
    }
    verdict.sentence = verdict.sentence.arg(verdict.actual, verdict.required);
}

void describeSuperseded(Verdict& verdict, const PackageInfo& package, const QString& highest)
{
    verdict.outcome = Verdict::Superseded;
    verdict.actual = package.release;
    verdict.required = highest;
    const bool equal = releaseNumber(package.release) == releaseNumber(highest);
    verdict.sentence =
        (equal
             ? QString("release \"%1\" equals \"%2\", which stands first and is spelt differently")
             : QString("release \"%1\" is below \"%2\", the highest that is offered"))
            .arg(package.release, highest);
}

/** The verdicts of one search; duplicates are found later, among all cameras. */
QList<Verdict> verdictsOf(const PackageInfoList& catalogue, const PackageInfo& filter,
                          const QStringList& fileTypes, const Selection& selection)
{
    const CandidateMatcher matcher(filter, fileTypes);
    QList<Verdict> verdicts;
    for (int i = 0; i < catalogue.size(); ++i) {
        Verdict verdict;
        verdict.package = i;
        verdict.refusal = matcher.refusal(catalogue.at(i));
        if (verdict.refusal != CandidateRefusal::None) {
            verdict.outcome = Verdict::Refused;
            describeRefusal(verdict, catalogue.at(i), filter, fileTypes);
        } else if (!selection.kept.contains(i)) {
            describeSuperseded(verdict, catalogue.at(i), selection.highestRelease);
        }
        verdicts.append(verdict);
    }
    return verdicts;
}

TargetExplanation explainApplication(const PackageInfoList& catalogue,
                                     const OfferCriteria& criteria)
{
    return {"application", criteria.applicationName, releaseText(criteria.versionNumber),
            verdictsOf(catalogue, applicationFilter(criteria), criteria.supportedPackageTypes,
                       selectForApplication(catalogue, criteria))};
}

TargetExplanation explainCamera(const PackageInfoList& catalogue,
                                const QPair<QString, VersionNumber>& camera,
                                const OfferCriteria& criteria)
{
    return {"camera", camera.first, releaseText(camera.second),
            verdictsOf(catalogue, cameraFilter(camera, criteria), QStringList(),
                       selectForCamera(catalogue, camera, criteria))};
}

/** Of packages with one identity the first that any camera is offered stays. */
void markDuplicates(QList<TargetExplanation>& cameras, const PackageInfoList& catalogue)
{
    QHash<QString, int> firstOf;
    for (TargetExplanation& camera : cameras) {
        for (Verdict& verdict : camera.verdicts) {
            if (verdict.outcome != Verdict::Offered) {
                continue;
            }
            const QString identity = catalogue.at(verdict.package).stringID();
            if (!firstOf.contains(identity)) {
                firstOf.insert(identity, verdict.package);
                continue;
            }
            const int first = firstOf.value(identity);
            verdict.outcome = Verdict::Duplicate;
            verdict.actual = identity;
            verdict.required = packageLabel(catalogue.at(first));
            verdict.sentence =
                first == verdict.package
                    ? QString("is offered already, for another camera")
                    : QString("has date and size of \"%1\", which is offered in its place")
                          .arg(verdict.required);
        }
    }
}

} // namespace

QString refusalName(CandidateRefusal refusal)
{
    switch (refusal) {
    case CandidateRefusal::Name:
        return "name";
    case CandidateRefusal::Release:
        return "release";
    case CandidateRefusal::Status:
        return "status";
    case CandidateRefusal::Platforms:
        return "platforms";
    case CandidateRefusal::FileType:
        return "file type";
    case CandidateRefusal::None:
        break;
    }
    return QString();
}

Explanation explain(const PackageInfoList& catalogue, const OfferCriteria& criteria)
{
    QList<TargetExplanation> cameras;
    for (const auto& camera : criteria.currentCameraVersions) {
        cameras.append(explainCamera(catalogue, camera, criteria));
    }
    markDuplicates(cameras, catalogue);

    Explanation explanation;
    explanation.targets.append(explainApplication(catalogue, criteria));
    explanation.targets += cameras;
    PackageInfoList searched = catalogue;
    explanation.rows = selectOffers(searched, criteria);
    return explanation;
}

} // namespace vx
