#pragma once

#include <QJsonArray>

#include "tools/update-catalogue/Terminal.h"
#include "tools/update-catalogue/lint/Finding.h"

namespace vx {

/** Prints @p findings about the catalogue called @p name, one in a line, and then their number. */
void printFindings(const QString& name, const FindingList& findings, Terminal& terminal);

/** @p findings as the commands print them with "--json". */
QJsonArray findingsToJson(const FindingList& findings);

} // namespace vx
