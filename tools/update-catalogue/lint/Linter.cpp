#include "tools/update-catalogue/lint/Linter.h"

#include <QXmlStreamReader>

#include <algorithm>

#include "host/CoreQt/ParseException.h"

namespace vx {

namespace {

const char notWellFormed[] = "not-well-formed";

bool isSelected(const Rule& rule, const LintOptions& options)
{
    return (options.rules.isEmpty() || options.rules.contains(rule.name)) &&
           !options.withoutRules.contains(rule.name);
}

/** The line and column at which the XML reader stumbles; nowhere for a limit of the library. */
TextPosition whereItBreaks(const QByteArray& bytes)
{
    QXmlStreamReader reader(bytes);
    while (!reader.atEnd()) {
        reader.readNext();
    }
    return reader.hasError() ? TextPosition{static_cast<int>(reader.lineNumber()),
                                            static_cast<int>(reader.columnNumber()) + 1}
                             : TextPosition{1, 1};
}

Finding unreadableDocument(const CatalogueSource& source, const QString& reason)
{
    return {whereItBreaks(source.bytes), Severity::Error, notWellFormed, QString(),
            QString("The catalogue cannot be parsed (%1): everybody reads \"No update "
                    "available!\".")
                .arg(reason)};
}

FindingList applyRules(const CatalogueTree& tree, const LintOptions& options)
{
    FindingList findings;
    for (const Rule& rule : allRules()) {
        if (rule.check != nullptr && isSelected(rule, options)) {
            FindingSink sink(findings, rule.name, rule.severity);
            rule.check(tree, options, sink);
        }
    }
    std::stable_sort(findings.begin(), findings.end(), [](const Finding& a, const Finding& b) {
        return std::make_pair(a.position.line, a.position.column) <
               std::make_pair(b.position.line, b.position.column);
    });
    return findings;
}

} // namespace

FindingList lintCatalogue(const CatalogueSource& source, const LintOptions& options)
{
    try {
        return applyRules(CatalogueTree(source), options);
    } catch (const ParseException& exception) {
        return {unreadableDocument(source, exception.message())};
    }
}

} // namespace vx
