#pragma once

#include <QList>
#include <QString>

#include <optional>

#include "tools/update-catalogue/CatalogueText.h"

namespace vx {

/** How bad a finding is for those who use the catalogue; worst first. */
enum class Severity {
    Error,   ///< somebody does not get what the catalogue means to give
    Warning, ///< probably not what was meant
    Note     ///< works, and may surprise
};

/** "error", "warning" or "note". */
QString severityName(Severity severity);

/** The severity that severityName() calls @p name, or nothing. */
std::optional<Severity> severityFromName(const QString& name);

/** One thing that a release manager should look at. */
struct Finding
{
    TextPosition position;
    Severity severity = Severity::Warning;
    /** The rule's name, as --rule takes it. */
    QString rule;
    /** Name and release of the package concerned, in one line; empty for the whole document. */
    QString package;
    /** What users will see, or what to do, in one line. */
    QString sentence;
};

using FindingList = QList<Finding>;

/** Whether one of @p findings is as bad as @p severity, or worse. */
bool holdsAtLeast(const FindingList& findings, Severity severity);

/** How many there are of each kind, as in "3 findings: 1 error, 2 notes". */
QString findingCount(const FindingList& findings);

/** @p text as it can stand within a line: control characters are written as "\n" and the like. */
QString oneLine(const QString& text);

} // namespace vx
