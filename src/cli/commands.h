#pragma once

#include "command.h"

namespace corvanta::store {
class Record;
}

// The commands of corvanta-cli, by group; each group's file holds their usage, help and work.
namespace corvanta::cli {

QList<Command> generalCommands();   // info, help
QList<Command> databasesCommands(); // databases, backup
QList<Command> clientsCommands();
QList<Command> itemsCommands();
QList<Command> documentsCommands();       // new, list, show
QList<Command> documentActionsCommands(); // finalize, cancel, duplicate, pay, settle, delete
QList<Command> demoCommands();

// What a command that made or changed a document prints: its number (or draft text) and its
// identifier, or the whole document with --json.
void printDocumentMade(Invocation& invocation, const store::Record* document);

} // namespace corvanta::cli
