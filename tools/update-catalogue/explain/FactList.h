#pragma once

#include <QList>
#include <QPair>
#include <QString>

#include "tools/update-catalogue/Terminal.h"

namespace vx {

/** Facts and what is said of each, in the order in which they are told. */
using FactList = QList<QPair<QString, QString>>;

/** Prints @p facts below @p title, each in a line of its own. */
void printFacts(const QString& title, const FactList& facts, Terminal& terminal);

} // namespace vx
