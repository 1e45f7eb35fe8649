#include "app/applicationcore.h"
#include "app/companiesmenu.h"
#include "app/databasenamewindow.h"
#include "cliprompter.h"
#include "commandline.h"
#include "commands.h"
#include "companies/databasemanager.h"
#include "output.h"
#include "session.h"
#include "store/store.h"
#include "support/zipwriter.h"
#include "texttable.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonArray>
#include <QTemporaryDir>

namespace corvanta::cli {

using companies::DatabaseEntry;

namespace {

QString s(const char* text)
{
    return QString::fromLatin1(text);
}

QJsonObject entryJson(const DatabaseEntry& entry)
{
    return {{s("name"), entry.name},
            {s("path"), entry.path},
            {s("directory"), entry.directory},
            {s("filename"), entry.filename},
            {s("selected"), entry.selected}};
}

QList<DatabaseEntry> listed(Invocation& invocation)
{
    return invocation.session.databaseManager()->databases().value_or(QList<DatabaseEntry>());
}

int listDatabases(Invocation& invocation)
{
    const QList<DatabaseEntry> entries = listed(invocation);
    if (invocation.output.isJson()) {
        QJsonArray array;
        for (const DatabaseEntry& entry : entries)
            array << entryJson(entry);
        invocation.output.json(array);
        return Success;
    }
    TextTable table({{CommandLine::tr("Selected")}, {CommandLine::tr("Name")}, {CommandLine::tr("Path")}});
    for (const DatabaseEntry& entry : entries)
        table.addRow({entry.selected ? s("*") : QString(), entry.name, entry.path});
    table.write(invocation.output.text());
    return Success;
}

int newDatabase(Invocation& invocation)
{
    QStringList before;
    for (const DatabaseEntry& entry : listed(invocation))
        before << entry.path;
    // The company-name window takes the name from the command line.
    invocation.session.core()->databaseNameWindow()->newLocalDatabase();
    for (const DatabaseEntry& entry : listed(invocation)) {
        if (before.contains(entry.path))
            continue;
        if (invocation.output.isJson())
            invocation.output.json(entryJson(entry));
        else
            invocation.output.text() << entry.name << '\n' << entry.path << '\n';
        return Success;
    }
    return Refused;
}

int selectDatabase(Invocation& invocation)
{
    const QString name = invocation.arguments.words().first();
    QList<DatabaseEntry> matches;
    QStringList names;
    for (const DatabaseEntry& entry : listed(invocation)) {
        names << QStringLiteral("\"%1\"").arg(entry.name);
        if (entry.name == name)
            matches << entry;
    }
    if (matches.isEmpty())
        return invocation.refuse(CommandLine::tr("No company database is named \"%1\". Known: %2.")
                                     .arg(name, names.join(QStringLiteral(", "))));
    if (matches.size() > 1)
        return invocation.refuse(
            CommandLine::tr(
                "%n company databases are named \"%1\"; rename one of them in the desktop program.", nullptr,
                int(matches.size()))
                .arg(name));
    invocation.session.core()->companiesMenu()->myCompaniesMenuConnect(matches.first().path);
    if (!invocation.session.databaseManager()->isRestartRequested())
        return Refused;
    // The desktop program starts again on the database it connected to; so does this session.
    if (!invocation.session.restart())
        return Refused;
    if (invocation.output.isJson()) {
        DatabaseEntry selected = matches.first();
        selected.selected = true;
        invocation.output.json(entryJson(selected));
    } else {
        invocation.output.text() << matches.first().name << '\n' << invocation.session.store().path() << '\n';
    }
    return Success;
}

// The open database alone, as a consistent snapshot in a ZIP archive.
bool archiveDatabase(store::Store& store, const QString& destination, QString* error)
{
    QTemporaryDir scratch(QDir(QFileInfo(destination).absolutePath()).filePath(s(".corvanta-copy-XXXXXX")));
    if (!scratch.isValid()) {
        *error = scratch.errorString();
        return false;
    }
    const QString snapshot = scratch.filePath(s("snapshot.cvdb"));
    store::StoreError storeError;
    if (!store.writeSnapshot(snapshot, &storeError)) {
        *error = storeError.message();
        return false;
    }
    support::ZipWriter zip;
    return zip.open(destination, error) && zip.setComment(s("Corvanta copy"), error) &&
           zip.addFile(QFileInfo(store.path()).fileName(), snapshot, error) && zip.close(error);
}

int backup(Invocation& invocation)
{
    Session& session = invocation.session;
    companies::DatabaseFolders folders = session.folders();
    if (invocation.arguments.has(s("to")))
        folders.desktop = QFileInfo(invocation.arguments.value(s("to"))).absoluteFilePath();
    if (!QDir().mkpath(folders.desktop))
        return invocation.refuse(CommandLine::tr("The folder \"%1\" cannot be made.").arg(folders.desktop));
    const QDateTime now = QDateTime::currentDateTime();
    const QString archive =
        QDir(folders.desktop)
            .filePath(QStringLiteral("Corvanta %1.zip").arg(now.toString(QStringLiteral("yyyy-MM-dd HHmm"))));
    bool saved = false;
    QString why;
    if (session.databaseManager()) {
        // The desktop's copy of the whole application files folder: every local database and the
        // list. Its confirmation speaks of the desktop; the path printed below says where it is.
        companies::DatabaseManager manager(invocation.prompter, folders);
        manager.setStore(&session.store());
        saved = manager.saveDatabase(now);
        invocation.prompter.takeMessages();
    } else {
        saved = archiveDatabase(session.store(), archive, &why);
    }
    if (!saved) {
        QString message = CommandLine::tr("The copy \"%1\" could not be written.").arg(archive);
        if (!why.isEmpty())
            message += QLatin1Char(' ') + why;
        return invocation.refuse(message);
    }
    if (invocation.output.isJson())
        invocation.output.json(QJsonObject{{s("path"), archive}});
    else
        invocation.output.text() << archive << '\n';
    return Success;
}

} // namespace

QList<Command> databasesCommands()
{
    Command list;
    list.words = QStringList{s("databases")};
    list.synopsis = s("databases");
    list.summary = CommandLine::tr("list the company databases of the database list");
    list.help = CommandLine::tr(
        "Lists the company databases the desktop program knows: the name of each company, the\n"
        "path of its database file, and a \"*\" at the one that is opened (the selected one).\n"
        "The list and a first database \"My Company\" are made when they do not exist yet.\n"
        "With --json: an array of objects with name, path, directory, filename and selected.\n"
        "\n"
        "Example:\n"
        "  corvanta-cli databases");
    list.database = Command::Database::List;
    list.run = listDatabases;

    Command add;
    add.words = QStringList{s("databases"), s("new")};
    add.synopsis = s("databases new NAME");
    add.summary = CommandLine::tr("add a new company database to the list");
    add.help = CommandLine::tr(
        "Adds a new local company database named NAME to the database list, as \"New Local\n"
        "Database\" does in the desktop program. Its file is made, with the default records of a\n"
        "new company, when the database is first opened; it is not selected. Prints the name and\n"
        "the path of the new database file.\n"
        "\n"
        "Example:\n"
        "  corvanta-cli databases new \"Smith Carpentry\"\n"
        "  corvanta-cli databases select \"Smith Carpentry\"");
    add.minWords = 1;
    add.maxWords = 1;
    add.database = Command::Database::List;
    add.textAnswer = [](const Arguments& arguments) {
        return std::optional<QString>(arguments.words().first());
    };
    add.run = newDatabase;

    Command select;
    select.words = QStringList{s("databases"), s("select")};
    select.synopsis = s("databases select NAME");
    select.summary = CommandLine::tr("make a company database the one that is opened");
    select.help = CommandLine::tr(
        "Selects the company database named NAME in the database list, as \"Connect\" does in the\n"
        "desktop program: from now on corvanta-cli and the desktop program open it. A database\n"
        "whose file does not exist yet is made, with the default records of a new company. Prints\n"
        "the name and the path of the database file.\n"
        "\n"
        "Example:\n"
        "  corvanta-cli databases select \"My Company\"");
    select.minWords = 1;
    select.maxWords = 1;
    select.database = Command::Database::List;
    select.run = selectDatabase;

    Command copy;
    copy.words = QStringList{s("backup")};
    copy.synopsis = s("backup [--to DIR]");
    copy.summary = CommandLine::tr("write a ZIP copy of the company databases");
    copy.help = CommandLine::tr(
        "Writes the copy that \"Save Local Database to Desktop\" writes in the desktop program: a\n"
        "ZIP archive \"Corvanta YYYY-MM-DD HHMM.zip\" of the application files folder, with every\n"
        "local company database (each as a consistent snapshot) and the database list. With\n"
        "--database FILE the archive holds that database alone. Prints the archive's path.\n"
        "\n"
        "Options:\n"
        "  --to DIR   write the archive into DIR (made when missing) instead of the desktop folder\n"
        "\n"
        "Example:\n"
        "  corvanta-cli backup --to ~/backups");
    copy.options = {{s("to"), true, false}};
    copy.run = backup;
    return {list, add, select, copy};
}

} // namespace corvanta::cli
