#include <QCommandLineParser>
#include <QJsonArray>
#include <QJsonObject>

#include "tools/update-catalogue/Commands.h"
#include "tools/update-catalogue/lint/FindingOutput.h"
#include "tools/update-catalogue/lint/LintOptions.h"
#include "tools/update-catalogue/lint/Linter.h"

namespace vx {

namespace {

void declare(QCommandLineParser& parser)
{
    parser.addPositionalArgument("catalogue", "A file, a URL, or - for standard input.");
    parser.addOption({"list", "List the rules."});
    parser.addOption({"installations",
                      "What is in the field, as comma-separated values: compare platforms, cameras "
                      "and applications with it.",
                      "FILE"});
    declareLint(parser);
}

void printRules(Terminal& terminal, bool asJson)
{
    if (asJson) {
        QJsonArray list;
        for (const Rule& rule : allRules()) {
            list.append(QJsonObject{{"rule", rule.name},
                                    {"severity", severityName(rule.severity)},
                                    {"description", rule.description}});
        }
        terminal.json(QJsonDocument(list));
        return;
    }
    for (const Rule& rule : allRules()) {
        terminal.line(QString("%1 %2 %3")
                          .arg(rule.name, -20)
                          .arg(severityName(rule.severity), -8)
                          .arg(rule.description));
    }
}

ExitCode run(const QCommandLineParser& parser, Terminal& terminal)
{
    if (parser.isSet("list")) {
        printRules(terminal, parser.isSet("json"));
        return ExitFine;
    }
    if (parser.positionalArguments().size() != 1) {
        throw CommandFailure(ExitUsage, "lint takes one catalogue");
    }
    const CatalogueSource source = readCatalogue(parser.positionalArguments().first());
    LintOptions options = lintOptionsFrom(parser);
    if (parser.isSet("installations")) {
        options.installations = readInstallations(parser.value("installations"));
    }
    if (source.name.startsWith("http://") || source.name.startsWith("https://")) {
        options.ownAddress = QUrl(source.name);
    }
    const FindingList findings = lintCatalogue(source, options);
    if (parser.isSet("json")) {
        terminal.json(QJsonDocument(
            QJsonObject{{"catalogue", source.name}, {"findings", findingsToJson(findings)}}));
    } else {
        printFindings(source.name, findings, terminal);
    }
    return holdsAtLeast(findings, options.failOn) ? ExitFindings : ExitFine;
}

} // namespace

const Command lintCommand{"lint",
                          "Finds what users of a catalogue will stumble over.",
                          "update-catalogue lint examples/camera_manager/catalogue.xml",
                          false,
                          declare,
                          run};

} // namespace vx
