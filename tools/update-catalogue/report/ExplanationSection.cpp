#include "tools/update-catalogue/report/ExplanationSection.h"

#include <QMap>

#include "base/ReleaseNumber.h"
#include "tools/update-catalogue/explain/Explanation.h"
#include "tools/update-catalogue/report/Html.h"
#include "tools/update-catalogue/report/TwinDetails.h"

namespace vx {

namespace {

/** Explanations are long; beyond this many kinds of installation a page is no help any more. */
constexpr int mostExplanations = 200;

/** Installations that are called alike and are offered the same. */
struct Kind
{
    QString label;
    /** What they are, in words. */
    QString description;
    OfferCriteria criteria;
    int count = 0;
};

QString counted(int count, const QString& noun)
{
    return QString(count == 1 ? "%1 %2" : "%1 %2s").arg(count).arg(noun);
}

QString described(const OfferCriteria& criteria)
{
    QStringList cameras;
    for (const auto& camera : criteria.currentCameraVersions) {
        cameras.append(camera.first + ' ' + releaseText(camera.second));
    }
    return QString("%1 %2 for %3 with %4; lists %5%6")
        .arg(criteria.applicationName, releaseText(criteria.versionNumber),
             criteria.supportedPlatforms.join(", "),
             cameras.isEmpty() ? QString("no camera") : cameras.join(", "),
             criteria.supportedPackageTypes.join(", "),
             criteria.checkForBeta ? "; wants beta versions" : "");
}

/** In the order of the list. */
QList<Kind> kindsOf(const InstallationList& installations)
{
    QMap<QPair<QString, QString>, int> places;
    QList<Kind> kinds;
    for (const Installation& installation : installations) {
        const QString description = described(installation.criteria);
        const QPair<QString, QString> key(installation.label, description);
        if (!places.contains(key)) {
            places.insert(key, kinds.size());
            kinds.append(Kind{installation.label, description, installation.criteria, 0});
        }
        kinds[places.value(key)].count += installation.count;
    }
    return kinds;
}

QString packageText(const ReportContent& content, int place, const QString& twinDetail)
{
    const PackageInfo& package = content.catalogue.packages.at(place);
    const QString detail =
        twinDetail.isEmpty() ? QString() : ", " + package.packageType + ", " + twinDetail;
    return QString("%1 (line %2%3)")
        .arg(packageLabel(package), QString::number(content.catalogue.positions.at(place).line),
             detail);
}

QString rowsOf(const Explanation& explanation, const ReportContent& content,
               const QStringList& details)
{
    QString rows;
    for (const TargetExplanation& target : explanation.targets) {
        for (const Verdict& verdict : target.verdicts) {
            const bool offered = verdict.outcome == Verdict::Offered;
            rows += htmlRow(
                htmlCells({QString("%1 %2").arg(target.name, target.installedVersion),
                           packageText(content, verdict.package, details.at(verdict.package)),
                           offered ? QString("offered") : verdict.sentence}),
                offered ? "offered" : "refused");
        }
    }
    return rows;
}

QString explanationOf(const Kind& kind, const ReportContent& content, const QStringList& details)
{
    const Explanation explanation = explain(content.catalogue.packages, kind.criteria);
    return QString("<details><summary>%1: %2 offered</summary>\n<p>%3</p>\n%4</details>\n")
        .arg(kind.label.toHtmlEscaped(), QString::number(explanation.rows.size()),
             QString("%1: %2.")
                 .arg(counted(kind.count, "installation"), kind.description)
                 .toHtmlEscaped(),
             htmlTable("Every package", {"Target", "Package", "Outcome"},
                       rowsOf(explanation, content, details)));
}

} // namespace

QString explanationSection(const ReportContent& content)
{
    const QList<Kind> kinds = kindsOf(content.installations);
    const QStringList details = twinDetails(content.catalogue.packages);
    QString html;
    if (kinds.size() > mostExplanations) {
        html +=
            QString("<p class=\"warning\">These are the first %1 of %2 kinds of installation in "
                    "the list; the table above counts all of them. <code>update-catalogue "
                    "explain</code> tells of any other.</p>\n")
                .arg(mostExplanations)
                .arg(kinds.size());
    }
    for (const Kind& kind : kinds.mid(0, mostExplanations)) {
        html += explanationOf(kind, content, details);
    }
    return htmlSection("explanations", "Why", html);
}

} // namespace vx
