#pragma once

#include <QList>
#include <QString>

#include "tools/update-catalogue/CatalogueText.h"

namespace vx {

/** How bad a finding is for those who use the catalogue. */
enum class Severity {
    Error,   ///< somebody does not get what the catalogue means to give
    Warning, ///< probably not what was meant
    Note     ///< works, and may surprise
};

/** "error", "warning" or "note". */
QString severityName(Severity severity);

/** One thing that a release manager should look at. */
struct Finding
{
    TextPosition position;
    Severity severity = Severity::Warning;
    /** The rule's name, as --rule takes it. */
    QString rule;
    /** Name and release of the package concerned; empty for the document as a whole. */
    QString package;
    /** What users will see, or what to do, in one sentence. */
    QString sentence;
};

using FindingList = QList<Finding>;

} // namespace vx
