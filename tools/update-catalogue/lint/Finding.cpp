#include "tools/update-catalogue/lint/Finding.h"

#include <QStringList>

#include <algorithm>

namespace vx {

namespace {

const Severity severities[] = {Severity::Error, Severity::Warning, Severity::Note};

QString counted(int count, const QString& noun)
{
    return QString(count == 1 ? "%1 %2" : "%1 %2s").arg(count).arg(noun);
}

QString escapeOf(QChar control)
{
    switch (control.unicode()) {
    case '\n':
        return "\\n";
    case '\r':
        return "\\r";
    case '\t':
        return "\\t";
    default:
        return QString("\\u%1").arg(control.unicode(), 4, 16, QChar('0'));
    }
}

} // namespace

QString severityName(Severity severity)
{
    switch (severity) {
    case Severity::Error:
        return "error";
    case Severity::Warning:
        return "warning";
    case Severity::Note:
        break;
    }
    return "note";
}

std::optional<Severity> severityFromName(const QString& name)
{
    for (const Severity severity : severities) {
        if (severityName(severity) == name) {
            return severity;
        }
    }
    return std::nullopt;
}

bool holdsAtLeast(const FindingList& findings, Severity severity)
{
    return std::any_of(findings.begin(), findings.end(),
                       [severity](const Finding& f) { return f.severity <= severity; });
}

QString findingCount(const FindingList& findings)
{
    QStringList parts;
    for (const Severity severity : severities) {
        const auto count =
            std::count_if(findings.begin(), findings.end(),
                          [severity](const Finding& f) { return f.severity == severity; });
        if (count > 0) {
            parts.append(counted(static_cast<int>(count), severityName(severity)));
        }
    }
    const QString total = counted(findings.size(), "finding");
    return parts.isEmpty() ? total : total + ": " + parts.join(", ");
}

QString oneLine(const QString& text)
{
    QString line;
    for (const QChar character : text) {
        const bool splits = character == QChar::LineSeparator ||
                            character == QChar::ParagraphSeparator ||
                            character.category() == QChar::Other_Control;
        line += splits ? escapeOf(character) : QString(character);
    }
    return line;
}

} // namespace vx
