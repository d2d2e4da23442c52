#pragma once

#include <QStringList>
#include <QUrl>

#include "tools/update-catalogue/CatalogueTree.h"
#include "tools/update-catalogue/Installation.h"
#include "tools/update-catalogue/lint/Finding.h"

namespace vx {

/** What lint is told beside the catalogue. */
struct LintOptions
{
    /** Rules to apply; empty for all. */
    QStringList rules;
    /** Rules to leave out. */
    QStringList withoutRules;
    /** A folder with the package files, by the last part of their addresses; empty for none. */
    QString files;
    /** Ask the servers for the sizes of the packages, and how they serve the catalogue. */
    bool checkUrls = false;
    /** Where the catalogue itself was read from; empty if from no server. */
    QUrl ownAddress;
    /** Look for digests even if the catalogue is not sealed yet. */
    bool isSigned = false;
    /** The application's platforms; what tells its packages from firmware. */
    QStringList platforms;
    /** File types that the application lists. */
    QStringList listedTypes;
    /** File types that the application installs. */
    QStringList installableTypes;
    /** What is in the field; empty if that is not known. */
    InstallationList installations;
    /** How bad a finding must be for the program to end with ExitFindings. */
    Severity failOn = Severity::Warning;
};

/** Takes the findings of one rule. */
class FindingSink
{
public:
    FindingSink(FindingList& findings, const QString& rule, Severity severity);

    /** Adds a finding about the document. */
    void add(const TextPosition& position, const QString& sentence);

    /** Adds a finding about @p package, at @p position. */
    void add(const CataloguePackage& package, const TextPosition& position,
             const QString& sentence);

    /** Adds a finding about @p package, at its field @p tag or, without one, at the package. */
    void addAt(const CataloguePackage& package, const QString& tag, const QString& sentence);

private:
    FindingList& m_findings;
    QString m_rule;
    Severity m_severity;
};

/** One thing that lint looks for. */
struct Rule
{
    QString name;
    Severity severity;
    /** One line for the list of rules. */
    QString description;
    /** Looks through the whole catalogue; null for what is found while it is read. */
    void (*check)(const CatalogueTree& tree, const LintOptions& options, FindingSink& sink);
};

/** Every rule, in the order in which they are documented. */
const QList<Rule>& allRules();

/** Whether @p package is meant for the application, and not for a camera. */
bool isForApplication(const CataloguePackage& package, const LintOptions& options);

} // namespace vx
