#pragma once

#include <QDateTime>
#include <QString>

#include "tools/update-catalogue/CatalogueSource.h"
#include "tools/update-catalogue/Installation.h"
#include "tools/update-catalogue/ParsedCatalogue.h"
#include "tools/update-catalogue/lint/Finding.h"

namespace vx {

/** What a report tells of. */
struct ReportContent
{
    QString catalogueName;
    /** When the catalogue was last changed; null if that is not known. */
    QDateTime catalogueDate;
    /** The command line that makes the page. */
    QString command;
    ParsedCatalogue catalogue;
    FindingList findings;
    InstallationList installations;
};

/**
 * A page with lint, matrix and explanations that needs nothing from outside: style, script and data
 * are in it. Everything that comes from the catalogue or the list of installations is escaped.
 */
QString reportPage(const ReportContent& content);

} // namespace vx
