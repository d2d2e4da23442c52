#include "tools/update-catalogue/explain/ExplanationOutput.h"

#include <QJsonArray>

#include "client/internal/ForeignLanguageRows.h"
#include "client/internal/PackageTable.h"

namespace vx {

namespace {

QString outcomeName(Verdict::Outcome outcome)
{
    switch (outcome) {
    case Verdict::Refused:
        return "refused";
    case Verdict::Superseded:
        return "superseded";
    case Verdict::Duplicate:
        return "duplicate";
    case Verdict::Offered:
        break;
    }
    return "offered";
}

void printTarget(const TargetExplanation& target, const ParsedCatalogue& catalogue,
                 Terminal& terminal)
{
    const QString title = QString("%1 %2 %3")
                              .arg(target.kind == "camera" ? "Camera" : "Application", target.name,
                                   target.installedVersion);
    terminal.line(terminal.coloured(title, Terminal::Bold));
    for (const Verdict& verdict : target.verdicts) {
        const bool offered = verdict.outcome == Verdict::Offered;
        const QString outcome = QString("%1").arg(outcomeName(verdict.outcome), -10);
        const QString label = QString("%1 (line %2)")
                                  .arg(packageLabel(catalogue.packages.at(verdict.package)))
                                  .arg(catalogue.positions.at(verdict.package).line);
        terminal.line(
            QString("  %1 %2%3")
                .arg(terminal.coloured(outcome, offered ? Terminal::Green : Terminal::Yellow),
                     label, offered ? QString() : ": " + verdict.sentence));
    }
    if (target.verdicts.isEmpty()) {
        terminal.line("  no package");
    }
}

void printRows(const PackageInfoList& rows, const QString& language, const SignedView& view,
               Terminal& terminal)
{
    terminal.line(terminal.coloured("Rows of the dialog", Terminal::Bold));
    const QList<int> hidden = foreignLanguageRows(rows, language);
    for (int row = 0; row < rows.size(); ++row) {
        const QString remark = view.remark(rows.at(row));
        const QString cells = packageTableRow(rows.at(row)).join(" | ") +
                              (remark.isEmpty() ? QString() : QString(" (%1)").arg(remark));
        terminal.line(
            hidden.contains(row)
                ? terminal.coloured(QString("  %1 (hidden in \"%2\")").arg(cells, language),
                                    Terminal::Dim)
                : "  " + cells);
    }
    if (!view.isAccepted()) {
        terminal.line(QString("  none: the user reads \"%1\"").arg(view.userText()));
    } else if (rows.isEmpty()) {
        terminal.line("  none: the user reads \"Congratulations! Your product is up-to-date!\"");
    }
}

QJsonObject toJson(const Verdict& verdict, const ParsedCatalogue& catalogue)
{
    const PackageInfo& package = catalogue.packages.at(verdict.package);
    return {{"package", verdict.package},
            {"label", packageLabel(package)},
            {"line", catalogue.positions.at(verdict.package).line},
            {"outcome", outcomeName(verdict.outcome)},
            {"test", refusalName(verdict.refusal)},
            {"actual", verdict.actual},
            {"required", verdict.required},
            {"message", verdict.sentence}};
}

QJsonArray rowsToJson(const PackageInfoList& rows, const QString& language, const SignedView& view)
{
    const QList<int> hidden = foreignLanguageRows(rows, language);
    QJsonArray list;
    for (int row = 0; row < rows.size(); ++row) {
        QJsonObject object{{"cells", QJsonArray::fromStringList(packageTableRow(rows.at(row)))},
                           {"url", rows.at(row).url.toString()},
                           {"type", rows.at(row).type},
                           {"hidden", hidden.contains(row)}};
        if (view.isRequired()) {
            object.insert("remark", view.remark(rows.at(row)));
        }
        list.append(object);
    }
    return list;
}

} // namespace

void printExplanation(const Explanation& explanation, const ParsedCatalogue& catalogue,
                      const QString& language, const SignedView& view, Terminal& terminal)
{
    view.printRefusal(terminal);
    for (const TargetExplanation& target : explanation.targets) {
        printTarget(target, catalogue, terminal);
    }
    printRows(explanation.rows, language, view, terminal);
}

void addExplanation(QJsonObject& object, const Explanation& explanation,
                    const ParsedCatalogue& catalogue, const QString& language,
                    const SignedView& view)
{
    QJsonArray targets;
    for (const TargetExplanation& target : explanation.targets) {
        QJsonArray verdicts;
        for (const Verdict& verdict : target.verdicts) {
            verdicts.append(toJson(verdict, catalogue));
        }
        targets.append(QJsonObject{{"kind", target.kind},
                                   {"name", target.name},
                                   {"installed", target.installedVersion},
                                   {"packages", verdicts}});
    }
    object.insert("targets", targets);
    object.insert("rows", rowsToJson(explanation.rows, language, view));
    view.addToJson(object);
}

} // namespace vx
