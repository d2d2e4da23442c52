#include <QJsonObject>
#include <QSaveFile>

#include "tools/update-catalogue/Commands.h"
#include "tools/update-catalogue/lint/LintOptions.h"
#include "tools/update-catalogue/lint/Linter.h"
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

void write(const QString& path, const QString& page)
{
    QSaveFile file(path);
    const QByteArray bytes = page.toUtf8();
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size() || !file.commit()) {
        throw CommandFailure(ExitUnreadable, QString("%1: %2").arg(path, file.errorString()));
    }
}

ExitCode run(const QCommandLineParser& parser, Terminal& terminal)
{
    if (parser.positionalArguments().size() != 1 || !parser.isSet("installations")) {
        throw CommandFailure(ExitUsage, "report takes one catalogue and --installations");
    }
    const CatalogueSource source = readCatalogue(parser.positionalArguments().first());
    ReportContent content;
    content.catalogueName = source.name;
    content.installations = readInstallations(parser.value("installations"));
    content.catalogue = parseCatalogue(source);
    content.findings = lintCatalogue(source, lintOptionsFrom(parser));
    const QString path = parser.value("out");
    write(path, reportPage(content));

    if (parser.isSet("json")) {
        terminal.json(
            QJsonDocument(QJsonObject{{"page", path}, {"findings", content.findings.size()}}));
    } else {
        terminal.line(path);
        terminal.line(QString("%1 findings, %2 kinds of installation")
                          .arg(content.findings.size())
                          .arg(content.installations.size()));
    }
    return content.findings.isEmpty() ? ExitFine : ExitFindings;
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
