#include <QJsonArray>
#include <QJsonObject>

#include "client/internal/ForeignLanguageRows.h"
#include "client/internal/PackageTable.h"
#include "tools/update-catalogue/Commands.h"
#include "tools/update-catalogue/Installation.h"
#include "tools/update-catalogue/ParsedCatalogue.h"
#include "tools/update-catalogue/explain/Explanation.h"
#include "tools/update-catalogue/signing/SignedView.h"

namespace vx {

namespace {

void declare(QCommandLineParser& parser)
{
    parser.addPositionalArgument("catalogue", "A file, a URL, or - for standard input.");
    declareInstallation(parser);
    parser.addOption(
        {"language", "The system's language, for the rows that it hides.", "CODE", "en"});
    declareKeys(parser);
    parser.addOption({"package", "Only packages whose name or release holds this.", "TEXT"});
}

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

bool isWanted(const PackageInfo& package, const QString& text)
{
    return packageLabel(package).contains(text, Qt::CaseInsensitive) ||
           package.publicName.contains(text, Qt::CaseInsensitive);
}

/** Leaves the verdicts on packages that --package asks for. */
void narrow(Explanation& explanation, const ParsedCatalogue& catalogue, const QString& text)
{
    for (TargetExplanation& target : explanation.targets) {
        QList<Verdict> wanted;
        for (const Verdict& verdict : qAsConst(target.verdicts)) {
            if (isWanted(catalogue.packages.at(verdict.package), text)) {
                wanted.append(verdict);
            }
        }
        target.verdicts = wanted;
    }
}

bool offersAnything(const Explanation& explanation)
{
    for (const TargetExplanation& target : explanation.targets) {
        for (const Verdict& verdict : target.verdicts) {
            if (verdict.outcome == Verdict::Offered) {
                return true;
            }
        }
    }
    return false;
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

QJsonDocument toJson(const Explanation& explanation, const ParsedCatalogue& catalogue,
                     const QString& language, const SignedView& view)
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
    QJsonObject object{{"targets", targets},
                       {"rows", rowsToJson(explanation.rows, language, view)}};
    view.addToJson(object);
    return QJsonDocument(object);
}

ExitCode run(const QCommandLineParser& parser, Terminal& terminal)
{
    if (parser.positionalArguments().size() != 1) {
        throw CommandFailure(ExitUsage, "explain takes one catalogue");
    }
    const Installation installation = installationFrom(parser);
    const PublicKeys keys = keysFrom(parser);
    const CatalogueSource source = readCatalogue(parser.positionalArguments().first());
    const ParsedCatalogue catalogue = parseCatalogue(source);
    const SignedView view(source, catalogue, keys);
    Explanation explanation = explain(view.packages(), installation.criteria);
    narrow(explanation, catalogue, parser.value("package"));

    const QString language = parser.value("language");
    if (parser.isSet("json")) {
        terminal.json(toJson(explanation, catalogue, language, view));
    } else {
        view.printRefusal(terminal);
        for (const TargetExplanation& target : explanation.targets) {
            printTarget(target, catalogue, terminal);
        }
        printRows(explanation.rows, language, view, terminal);
    }
    return offersAnything(explanation) ? ExitFine : ExitFindings;
}

} // namespace

const Command explainCommand{
    "explain",
    "Tells for every package why an installation is or is not offered it.",
    "update-catalogue explain examples/camera_manager/catalogue.xml --application "
    "CameraManager --version 5.2.1 --camera Dome-24=4.1.9",
    false,
    declare,
    run};

} // namespace vx
