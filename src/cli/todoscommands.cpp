#include "commands.h"

namespace corvanta::cli {

QList<Command> todosCommands()
{
    return {};
}

} // namespace corvanta::cli
