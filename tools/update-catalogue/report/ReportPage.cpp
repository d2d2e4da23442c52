#include "tools/update-catalogue/report/ReportPage.h"

#include <QFile>
#include <QSet>

#include "tools/update-catalogue/explain/Explanation.h"
#include "tools/update-catalogue/matrix/OfferCount.h"

namespace vx {

namespace {

/** Explanations are long; beyond this many kinds of installation a page is no help any more. */
constexpr int mostExplanations = 200;

QString escaped(const QString& text)
{
    return text.toHtmlEscaped();
}

/** One row that the search looks through. */
QString row(const QStringList& cells, const QString& kind = QString())
{
    QString html = kind.isEmpty() ? QString("<tr>") : QString("<tr class=\"%1\">").arg(kind);
    for (const QString& cell : cells) {
        html += "<td>" + escaped(cell) + "</td>";
    }
    return html + "</tr>\n";
}

QString table(const QString& caption, const QStringList& titles, const QString& rows)
{
    QString head;
    for (const QString& title : titles) {
        head += "<th scope=\"col\">" + escaped(title) + "</th>";
    }
    return QString("<table><caption>%1</caption><thead><tr>%2</tr></thead><tbody>\n%3"
                   "</tbody></table>\n")
        .arg(escaped(caption), head, rows);
}

QString section(const QString& id, const QString& title, const QString& content)
{
    return QString("<section aria-labelledby=\"%1\"><h2 id=\"%1\">%2</h2>\n%3</section>\n")
        .arg(id, escaped(title), content);
}

QString findingsSection(const FindingList& findings)
{
    QString rows;
    for (const Finding& finding : findings) {
        rows +=
            row({QString("%1:%2").arg(finding.position.line).arg(finding.position.column),
                 severityName(finding.severity), finding.rule, finding.package, finding.sentence},
                severityName(finding.severity));
    }
    const QString content =
        findings.isEmpty()
            ? QString("<p>No findings.</p>\n")
            : table(findingCount(findings),
                    {"Place", "Severity", "Rule", "Package", "What users see"}, rows);
    return section("findings", "Findings", content);
}

QString matrixSection(const ReportContent& content)
{
    const OfferTable offers(content.catalogue.packages, content.installations);
    const OfferCount count = countOffers(offers, content.installations);
    QString rows;
    for (auto target = count.targets.begin(); target != count.targets.end(); ++target) {
        for (auto offer = target->begin(); offer != target->end(); ++offer) {
            const bool nothing = offer.key().isEmpty();
            rows += row(
                {target.key(), nothing ? QString("nothing") : offer.key(), QString::number(*offer)},
                nothing ? "warning" : "offered");
        }
    }
    return section("matrix", "Who is offered what",
                   table(QString("%1 installations, %2 of them offered nothing")
                             .arg(count.installations)
                             .arg(count.withoutOffer),
                         {"Target", "Offer", "Installations"}, rows));
}

QString outcomeText(const Verdict& verdict)
{
    return verdict.outcome == Verdict::Offered ? QString("offered") : verdict.sentence;
}

QString explanationRows(const Explanation& explanation, const ParsedCatalogue& catalogue)
{
    QString rows;
    for (const TargetExplanation& target : explanation.targets) {
        for (const Verdict& verdict : target.verdicts) {
            rows += row({QString("%1 %2").arg(target.name, target.installedVersion),
                         QString("%1 (line %2)")
                             .arg(packageLabel(catalogue.packages.at(verdict.package)))
                             .arg(catalogue.positions.at(verdict.package).line),
                         outcomeText(verdict)},
                        verdict.outcome == Verdict::Offered ? "offered" : "refused");
        }
    }
    return rows;
}

QString explanationsSection(const ReportContent& content)
{
    QString html;
    QSet<QString> seen;
    for (const Installation& installation : content.installations) {
        if (seen.contains(installation.label) || seen.size() == mostExplanations) {
            continue;
        }
        seen.insert(installation.label);
        const Explanation explanation = explain(content.catalogue.packages, installation.criteria);
        html += QString("<details><summary>%1: %2 offered</summary>\n%3</details>\n")
                    .arg(escaped(installation.label))
                    .arg(explanation.rows.size())
                    .arg(table("Every package", {"Target", "Package", "Outcome"},
                               explanationRows(explanation, content.catalogue)));
    }
    return section("explanations", "Why", html);
}

QString resourceText(const QString& name)
{
    QFile file(":/update-catalogue/" + name);
    file.open(QIODevice::ReadOnly);
    return QString::fromUtf8(file.readAll());
}

} // namespace

QString reportPage(const ReportContent& content)
{
    QString page = resourceText("report.html");
    // One pass: what is filled in is never looked through for further places.
    const QStringList pieces = page.split("<!--CONTENT-->");
    const QString title = escaped(content.catalogueName);
    return QString(pieces.value(0)).replace("<!--TITLE-->", title) +
           findingsSection(content.findings) + matrixSection(content) +
           explanationsSection(content) + pieces.value(1);
}

} // namespace vx
