#pragma once

#include "command.h"

// The commands of corvanta-cli, by group; each group's file holds their usage, help and work.
namespace corvanta::cli {

QList<Command> generalCommands();   // info, help
QList<Command> databasesCommands(); // databases, backup
QList<Command> clientsCommands();
QList<Command> itemsCommands();
QList<Command> documentsCommands();       // new, list, show
QList<Command> documentActionsCommands(); // finalize, cancel, duplicate, pay, settle, delete
QList<Command> demoCommands();

} // namespace corvanta::cli
