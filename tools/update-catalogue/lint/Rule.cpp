#include "tools/update-catalogue/lint/Rule.h"

#include "host/CoreQt/StringUtils.h"

namespace vx {

FindingSink::FindingSink(FindingList& findings, const QString& rule, Severity severity)
    : m_findings(findings)
    , m_rule(rule)
    , m_severity(severity)
{}

void FindingSink::add(const TextPosition& position, const QString& sentence)
{
    m_findings.append({position, m_severity, m_rule, QString(), oneLine(sentence)});
}

void FindingSink::add(const CataloguePackage& package, const TextPosition& position,
                      const QString& sentence)
{
    m_findings.append({position, m_severity, m_rule, oneLine(package.label()), oneLine(sentence)});
}

void FindingSink::addAt(const CataloguePackage& package, const QString& tag,
                        const QString& sentence)
{
    const FieldOrigin origin = package.find(tag);
    add(package, origin ? origin.value.position : package.package->position, sentence);
}

bool isForApplication(const CataloguePackage& package, const LintOptions& options)
{
    const QStringSet own(options.platforms.begin(), options.platforms.end());
    return StringUtils::intersectsOnBeginning(own, package.info.platforms);
}

} // namespace vx
