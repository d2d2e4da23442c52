#include "tools/update-catalogue/report/ReportPage.h"

#include <QFile>

#include <algorithm>

#include "tools/update-catalogue/Command.h"
#include "tools/update-catalogue/report/ExplanationSection.h"
#include "tools/update-catalogue/report/Html.h"
#include "tools/update-catalogue/report/MatrixSection.h"

namespace vx {

namespace {

const char dateFormat[] = "yyyy-MM-dd hh:mm:ss";

QString findingsSection(const FindingList& findings)
{
    QString rows;
    for (const Finding& finding : findings) {
        rows += htmlRow(
            htmlCells({QString("%1:%2").arg(finding.position.line).arg(finding.position.column),
                       severityName(finding.severity), finding.rule, finding.package,
                       finding.sentence}),
            severityName(finding.severity));
    }
    const QString content =
        findings.isEmpty()
            ? QString("<p>No findings.</p>\n")
            : htmlTable(findingCount(findings),
                        {"Place", "Severity", "Rule", "Package", "What users see"}, rows);
    return htmlSection("findings", "Findings", content);
}

/** The date of the package that was published last; null without any. */
QDateTime newestDate(const PackageInfoList& packages)
{
    QDateTime newest;
    for (const PackageInfo& package : packages) {
        newest = std::max(newest, package.date);
    }
    return newest;
}

QString foot(const ReportContent& content)
{
    const QDateTime newest = newestDate(content.catalogue.packages);
    QStringList sentences{"The catalogue: " + content.catalogueName + "."};
    if (content.catalogueDate.isValid()) {
        sentences.append("It was last changed on " +
                         content.catalogueDate.toLocalTime().toString(dateFormat) + ".");
    }
    if (newest.isValid()) {
        sentences.append("Its newest package is of " + newest.toString(dateFormat) + ".");
    }
    return QString("<footer><p>%1</p><p>This page was made by update-catalogue %2: "
                   "<code>%3</code></p></footer>\n")
        .arg(sentences.join(' ').toHtmlEscaped(), programVersion(),
             content.command.toHtmlEscaped());
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
    const QString page = resourceText("report.html");
    // One pass: what is filled in is never looked through for further places.
    const QStringList pieces = page.split("<!--CONTENT-->");
    const QString title = content.catalogueName.toHtmlEscaped();
    return QString(pieces.value(0)).replace("<!--TITLE-->", title) +
           findingsSection(content.findings) + matrixSection(content) +
           explanationSection(content) + foot(content) + pieces.value(1);
}

} // namespace vx
