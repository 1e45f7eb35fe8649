#include "commands.h"

namespace corvanta::cli {

QList<Command> importCommands()
{
    return {};
}

} // namespace corvanta::cli
