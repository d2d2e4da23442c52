#include <QCoreApplication>
#include <QJsonObject>

#include "tools/update-catalogue/AddressText.h"
#include "tools/update-catalogue/Commands.h"
#include "tools/update-catalogue/OutputFile.h"
#include "tools/update-catalogue/lint/LintOptions.h"
#include "tools/update-catalogue/lint/Linter.h"
#include "tools/update-catalogue/report/CommandText.h"
#include "tools/update-catalogue/report/ReportPage.h"

namespace vx {

namespace {

void declare(QCommandLineParser& parser)
{
    parser.addPositionalArgument("catalogue", "A file, a URL, or - for standard input.");
    parser.addOption({"installations", "What is in the field, as comma-separated values.", "FILE"});
    parser.addOption({"out", "The page to write.", "FILE", "report.html"});
    declareLint(parser);
}

ExitCode run(const QCommandLineParser& parser, Terminal& terminal)
{
    if (parser.positionalArguments().size() != 1 || !parser.isSet("installations")) {
        throw CommandFailure(ExitUsage, "report takes one catalogue and --installations");
    }
    const CatalogueSource source = readCatalogue(parser.positionalArguments().first());
    ReportContent content;
    content.catalogueName = withoutPassword(source.name);
    content.catalogueDate = source.date;
    content.command = commandLine(QCoreApplication::arguments());
    content.installations = readInstallations(parser.value("installations"));
    content.catalogue = parseCatalogue(source);
    LintOptions options = lintOptionsFrom(parser);
    options.installations = content.installations;
    content.findings = lintCatalogue(source, options);
    const QString path = parser.value("out");
    writeOutput(path, reportPage(content).toUtf8());

    if (parser.isSet("json")) {
        terminal.json(
            QJsonDocument(QJsonObject{{"page", path}, {"findings", content.findings.size()}}));
    } else {
        terminal.line(path);
        terminal.line(findingCount(content.findings) + '.');
        terminal.line(QString("Kinds of installation: %1.").arg(content.installations.size()));
    }
    return holdsAtLeast(content.findings, options.failOn) ? ExitFindings : ExitFine;
}

} // namespace

const Command reportCommand{
    "report",
    "Writes findings, matrix and explanations as one page.",
    "update-catalogue report examples/camera_manager/catalogue.xml --installations "
    "examples/camera_manager/field.csv --out build/report.html",
    false,
    declare,
    run};

} // namespace vx
