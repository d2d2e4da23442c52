#include "tools/update-catalogue/explain/FactList.h"

#include "tools/update-catalogue/lint/Finding.h"

namespace vx {

void printFacts(const QString& title, const FactList& facts, Terminal& terminal)
{
    terminal.line(terminal.coloured(oneLine(title), Terminal::Bold));
    for (const auto& fact : facts) {
        terminal.line(QString("  %1 %2").arg(fact.first, -14).arg(oneLine(fact.second)));
    }
}

} // namespace vx
