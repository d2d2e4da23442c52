#include "tools/update-catalogue/lint/FindingOutput.h"

#include <QJsonObject>

namespace vx {

namespace {

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

} // namespace

void printFindings(const QString& name, const FindingList& findings, Terminal& terminal)
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
    terminal.line(findingCount(findings) + '.');
}

QJsonArray findingsToJson(const FindingList& findings)
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
    return list;
}

} // namespace vx
