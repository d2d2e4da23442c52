#include "tools/update-catalogue/Commands.h"

namespace vx {

const QList<Command>& allCommands()
{
    static const QList<Command> commands{lintCommand,  explainCommand, matrixCommand, diffCommand,
                                         serveCommand, previewCommand, reportCommand, hashCommand,
                                         sealCommand,  unsealCommand,  verifyCommand};
    return commands;
}

} // namespace vx
