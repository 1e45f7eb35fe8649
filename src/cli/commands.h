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
QList<Command> templatesCommands(); // list, new, rename, duplicate, delete, default, export, import, preview
QList<Command> printCommands();     // documents pdf
QList<Command> reportsCommands();   // reports show, reports pdf
QList<Command> foldersCommands();   // the sidebar's tree: show, list, new-*, rename, delete, move
QList<Command> tagsCommands();      // add, remove
QList<Command> emailCommands();     // email document, email client, email-templates …
QList<Command> importCommands();    // import clients, import items, import vcard
QList<Command> todosCommands();     // todos …, calendar

// What a command that made or changed a document prints: its number (or draft text) and its
// identifier, or the whole document with --json.
void printDocumentMade(Invocation& invocation, const store::Record* document);

// The one design template that `key` (an identifier or a name) names; null after reporting why
// there is none.
store::Record* namedTemplate(Invocation& invocation, const QString& key);

// The one sidebar node that `key` (an indexpath, or a name) names; null after reporting why
// there is none.
store::Record* namedFolder(Invocation& invocation, const QString& key);

// What a command that wrote a PDF prints: its path and page count.
void printPdfWritten(Invocation& invocation, const QString& path, int pages);

} // namespace corvanta::cli
