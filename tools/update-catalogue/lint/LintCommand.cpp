#include <QCommandLineParser>
#include <QJsonArray>
#include <QJsonObject>

#include "tools/update-catalogue/Commands.h"
#include "tools/update-catalogue/lint/LintOptions.h"
#include "tools/update-catalogue/lint/Linter.h"

namespace vx {

namespace {

void declare(QCommandLineParser& parser)
{
    parser.addPositionalArgument("catalogue", "A file, a URL, or - for standard input.");
    parser.addOption({"list", "List the rules."});
    declareLint(parser);
}

void printRules(Terminal& terminal)
{
    for (const Rule& rule : allRules()) {
        terminal.line(QString("%1 %2 %3")
                          .arg(rule.name, -20)
                          .arg(severityName(rule.severity), -8)
                          .arg(rule.description));
    }
}

Terminal::Colour colourOf(Severity severity)
{
    switch (severity) {
    case Severity::Error:
        return Terminal::Red;
    case Severity::Warning:
        return Terminal::Yellow;
    case Severity::Note:
        break;
    }
    return Terminal::Cyan;
}

QString place(const QString& name, const Finding& finding)
{
    return QString("%1:%2:%3").arg(name).arg(finding.position.line).arg(finding.position.column);
}

void print(const QString& name, const FindingList& findings, Terminal& terminal)
{
    for (const Finding& finding : findings) {
        const QString subject =
            finding.package.isEmpty() ? QString() : QString("\"%1\": ").arg(finding.package);
        terminal.line(
            QString("%1: %2: %3%4 [%5]")
                .arg(terminal.coloured(place(name, finding), Terminal::Bold),
                     terminal.coloured(severityName(finding.severity), colourOf(finding.severity)),
                     subject, finding.sentence, finding.rule));
    }
    terminal.line(findings.size() == 1 ? QString("1 finding.")
                                       : QString("%1 findings.").arg(findings.size()));
}

QJsonDocument toJson(const QString& name, const FindingList& findings)
{
    QJsonArray list;
    for (const Finding& finding : findings) {
        list.append(QJsonObject{{"line", finding.position.line},
                                {"column", finding.position.column},
                                {"severity", severityName(finding.severity)},
                                {"rule", finding.rule},
                                {"package", finding.package},
                                {"message", finding.sentence}});
    }
    return QJsonDocument(QJsonObject{{"catalogue", name}, {"findings", list}});
}

ExitCode run(const QCommandLineParser& parser, Terminal& terminal)
{
    if (parser.isSet("list")) {
        printRules(terminal);
        return ExitFine;
    }
    if (parser.positionalArguments().size() != 1) {
        throw CommandFailure(ExitUsage, "lint takes one catalogue");
    }
    const CatalogueSource source = readCatalogue(parser.positionalArguments().first());
    const FindingList findings = lintCatalogue(source, lintOptionsFrom(parser));
    if (parser.isSet("json")) {
        terminal.json(toJson(source.name, findings));
    } else {
        print(source.name, findings, terminal);
    }
    return findings.isEmpty() ? ExitFine : ExitFindings;
}

} // namespace

const Command lintCommand{"lint",
                          "Finds what users of a catalogue will stumble over.",
                          "update-catalogue lint examples/camera_manager/catalogue.xml",
                          false,
                          declare,
                          run};

} // namespace vx
