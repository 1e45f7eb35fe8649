#include "commands.h"

namespace corvanta::cli {

QList<Command> emailCommands()
{
    return {};
}

} // namespace corvanta::cli
