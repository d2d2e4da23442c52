#include "tools/update-catalogue/lint/Linter.h"

#include <algorithm>

#include "host/CoreQt/ParseException.h"
#include "tools/update-catalogue/DocumentFault.h"

namespace vx {

namespace {

const char notWellFormed[] = "not-well-formed";

bool isSelected(const Rule& rule, const LintOptions& options)
{
    return (options.rules.isEmpty() || options.rules.contains(rule.name)) &&
           !options.withoutRules.contains(rule.name);
}

Finding unreadableDocument(const CatalogueSource& source, const QString& refusal)
{
    const DocumentFault fault = documentFault(source.bytes, refusal);
    const QString reason = fault.reason.endsWith('.') ? fault.reason : fault.reason + '.';
    return {fault.position, Severity::Error, notWellFormed, QString(),
            oneLine(reason + " The catalogue cannot be read: everybody is told \"No update "
                             "available!\".")};
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
