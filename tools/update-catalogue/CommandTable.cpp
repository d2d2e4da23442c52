#include "tools/update-catalogue/Command.h"

namespace vx {

const QList<Command>& allCommands()
{
    static const QList<Command> commands{};
    return commands;
}

} // namespace vx
