#include "browse/categorycounts.h"
#include "browse/categoryquestions.h"
#include "browse/categorytree.h"
#include "browse/listkind.h"
#include "cliprompter.h"
#include "commandline.h"
#include "commands.h"
#include "output.h"
#include "predicate/literal.h"
#include "predicate/parser.h"
#include "recordjson.h"
#include "session.h"
#include "store/editingcontext.h"
#include "store/record.h"

#include <QColor>
#include <QJsonArray>
#include <QRegularExpression>

namespace corvanta::cli {

using browse::CategoryTree;
using store::Record;

namespace {

QString s(const char* text)
{
    return QString::fromLatin1(text);
}

QString nameOf(const Record* node)
{
    return node->value(s("name")).toString();
}

QString pathOf(const Record* node)
{
    return node->value(s("indexpath")).toString();
}

// What `folders` prints: each node's place, name and count, its children indented below it.
void writeTree(QTextStream& out, const QList<Record*>& nodes, int level)
{
    for (const Record* node : nodes) {
        const QString count = node->value(s("count")).toString();
        out << pathOf(node).leftJustified(12) << QString(level * 2, QLatin1Char(' ')) << nameOf(node)
            << (count.isEmpty() ? QString() : QStringLiteral(" (%1)").arg(count)) << '\n';
        writeTree(out, CategoryTree::children(node), level + 1);
    }
}

// The count is given as a number (null for a folder or group), though the node keeps it as text.
QJsonArray treeJson(const QList<Record*>& nodes)
{
    QJsonArray array;
    for (const Record* node : nodes) {
        const QVariant subtype = node->value(s("subtype"));
        const QString count = node->value(s("count")).toString();
        QJsonObject object{{s("name"), nameOf(node)},
                           {s("type"), node->value(s("type")).toLongLong()},
                           {s("subtype"), subtype.isNull() ? QJsonValue() : QJsonValue(subtype.toLongLong())},
                           {s("indexpath"), pathOf(node)},
                           {s("count"), count.isEmpty() ? QJsonValue() : QJsonValue(count.toLongLong())},
                           {s("children"), treeJson(CategoryTree::children(node))}};
        const QString foreground = CategoryTree::colourText(node->value(s("foreground_color")));
        if (!foreground.isEmpty())
            object.insert(s("foreground_color"), foreground);
        const QString background = CategoryTree::colourText(node->value(s("background_color")));
        if (!background.isEmpty())
            object.insert(s("background_color"), background);
        array << object;
    }
    return array;
}

// One node as the commands that made or changed it print it.
void printNode(Invocation& invocation, const Record* node)
{
    if (invocation.output.isJson()) {
        QJsonObject object = treeJson({const_cast<Record*>(node)}).first().toObject();
        object.remove(s("children"));
        object.insert(s("predicate"), node->value(s("predicate")).isNull()
                                          ? QJsonValue()
                                          : QJsonValue(node->value(s("predicate")).toString()));
        invocation.output.json(object);
    } else {
        invocation.output.text() << pathOf(node) << ' ' << nameOf(node) << '\n';
    }
}

bool save(Invocation& invocation)
{
    store::StoreError error;
    if (invocation.session.context().save(&error))
        return true;
    invocation.refuse(error.message());
    return false;
}

// The --parent of a new node: where the sidebar puts a node made while that one is selected
// (a folder or group takes it, anything else places it beside itself). False when the option
// names nothing; the top level when it is absent and `required` is false.
bool parentOf(Invocation& invocation, bool required, Record** parent)
{
    *parent = nullptr;
    if (!invocation.arguments.has(s("parent")))
        return !required || invocation.require(s("parent")) == Success;
    Record* named = namedFolder(invocation, invocation.arguments.value(s("parent")));
    *parent = CategoryTree::placementParent(named);
    return named != nullptr;
}

// The --kind option as a list kind (1 to 4); 0 after a usage error.
int kindOption(Invocation& invocation)
{
    static const QStringList kinds{s("clients"), s("items"), s("documents"), s("todos")};
    if (invocation.require(s("kind")) != Success)
        return 0;
    const int kind = int(kinds.indexOf(invocation.arguments.value(s("kind")).toLower())) + 1;
    if (kind == 0)
        invocation.usageError(
            CommandLine::tr("--kind must be clients, items, documents or todos, not \"%1\".")
                .arg(invocation.arguments.value(s("kind"))));
    return kind;
}

QColor colourOf(const QString& text)
{
    static const QRegularExpression bareHex(s("^[0-9A-Fa-f]{6}$"));
    return QColor::fromString(bareHex.match(text).hasMatch() ? QLatin1Char('#') + text : text);
}

int showTree(Invocation& invocation)
{
    store::EditingContext& context = invocation.session.context();
    browse::CategoryCounts::update(context);
    const QList<Record*> top = CategoryTree(context).topLevel();
    if (invocation.output.isJson())
        invocation.output.json(treeJson(top));
    else
        writeTree(invocation.output.text(), top, 0);
    return Success;
}

QString recordLine(const Record* record, browse::ListKind kind)
{
    switch (kind) {
    case browse::ListKind::Clients:
        return record->value(s("full_name")).toString();
    case browse::ListKind::Items:
        return record->value(s("name")).toString();
    case browse::ListKind::Documents:
        return QStringList{record->value(s("number_formatted")).toString(),
                           record->valueForKeyPath(s("client.full_name")).toString(),
                           record->value(s("date_creation")).toDateTime().date().toString(Qt::ISODate)}
            .join(QLatin1Char('\t'));
    case browse::ListKind::ToDos:
        return record->value(s("title")).toString();
    case browse::ListKind::None:
        break;
    }
    return {};
}

QJsonObject recordJson(const Record* record, browse::ListKind kind)
{
    switch (kind) {
    case browse::ListKind::Clients:
        return RecordJson::client(record);
    case browse::ListKind::Items:
        return RecordJson::item(record);
    case browse::ListKind::Documents:
        return RecordJson::document(record);
    default:
        return RecordJson::attributes(record);
    }
}

int listFolder(Invocation& invocation)
{
    Record* node = namedFolder(invocation, invocation.arguments.words().first());
    if (!node)
        return Refused;
    QString why;
    const std::optional<store::FetchRequest> request =
        browse::CategoryFetch::of(node, QDateTime::currentDateTime(), &why);
    if (!request && !why.isEmpty())
        return invocation.refuse(
            CommandLine::tr("The condition of \"%1\" cannot be read: %2").arg(nameOf(node), why));
    const browse::ListKind kind = browse::ListKinds::ofCategory(node);
    store::StoreError error;
    const QList<Record*> records =
        request ? invocation.session.context().fetch(*request, &error) : QList<Record*>();
    if (error.isError())
        return invocation.refuse(error.message());
    if (invocation.output.isJson()) {
        QJsonArray array;
        for (const Record* record : records)
            array << recordJson(record, kind);
        invocation.output.json(array);
    } else {
        for (const Record* record : records)
            invocation.output.text() << recordLine(record, kind) << '\n';
    }
    return Success;
}

int newGroup(Invocation& invocation)
{
    Record* group = CategoryTree(invocation.session.context()).newGroup();
    group->setValue(s("name"), invocation.arguments.words().first());
    if (!save(invocation))
        return Refused;
    printNode(invocation, group);
    return Success;
}

int newFolder(Invocation& invocation)
{
    Record* parent = nullptr;
    if (!parentOf(invocation, true, &parent))
        return invocation.prompter.hasMessages() ? Refused : UsageError;
    Record* folder =
        CategoryTree(invocation.session.context()).newFolder(invocation.arguments.words().first(), parent);
    if (!save(invocation))
        return Refused;
    printNode(invocation, folder);
    return Success;
}

int newTag(Invocation& invocation)
{
    const QStringList words = invocation.arguments.words();
    QString name = words.first();
    QList<QColor> colours;
    if (invocation.arguments.has(s("colors"))) {
        // "--colors FG BG": the option takes the first, the second stands among the words.
        if (words.size() != 2)
            return invocation.usageError(
                CommandLine::tr("--colors needs two colours: the text's and the fill's."));
        const bool nameFirst = colourOf(words.at(1)).isValid();
        name = nameFirst ? words.at(0) : words.at(1);
        for (const QString& text : {invocation.arguments.value(s("colors")), words.at(nameFirst ? 1 : 0)}) {
            const QColor colour = colourOf(text);
            if (!colour.isValid())
                return invocation.usageError(
                    CommandLine::tr("\"%1\" is not a colour; write it as #RRGGBB.").arg(text));
            colours << colour;
        }
    } else if (words.size() > 1) {
        return invocation.usageError(CommandLine::tr("Unexpected argument \"%1\".").arg(words.at(1)));
    }
    const int kind = kindOption(invocation);
    if (kind == 0)
        return UsageError;
    Record* parent = nullptr;
    if (!parentOf(invocation, true, &parent))
        return invocation.prompter.hasMessages() ? Refused : UsageError;
    Record* tag = CategoryTree(invocation.session.context()).newTag(name, kind, parent);
    if (!colours.isEmpty()) {
        tag->setValue(s("foreground_color"), colours.at(0));
        tag->setValue(s("background_color"), colours.at(1));
    }
    if (!save(invocation))
        return Refused;
    printNode(invocation, tag);
    return Success;
}

int newSmartFolder(Invocation& invocation)
{
    const int kind = kindOption(invocation);
    if (kind == 0)
        return UsageError;
    if (const int status = invocation.require(s("where")); status != Success)
        return status;
    const QString condition = invocation.arguments.value(s("where")).trimmed();
    predicate::ParseError error;
    if (!predicate::Parser::parse(condition, {}, &error))
        return invocation.refuse(error.message());
    Record* parent = nullptr;
    if (!parentOf(invocation, false, &parent))
        return Refused;
    Record* folder = CategoryTree(invocation.session.context())
                         .newSmartFolder(invocation.arguments.words().first(), kind, condition, parent);
    if (!save(invocation))
        return Refused;
    printNode(invocation, folder);
    return Success;
}

int renameFolder(Invocation& invocation)
{
    Record* node = namedFolder(invocation, invocation.arguments.words().at(0));
    if (!node)
        return Refused;
    const QString name = invocation.arguments.words().at(1);
    if (name.trimmed().isEmpty())
        return invocation.usageError(CommandLine::tr("A name cannot be empty."));
    node->setValue(s("name"), name);
    if (!save(invocation))
        return Refused;
    printNode(invocation, node);
    return Success;
}

int deleteFolder(Invocation& invocation)
{
    Record* node = namedFolder(invocation, invocation.arguments.words().first());
    if (!node)
        return Refused;
    const QString name = nameOf(node);
    const QString path = pathOf(node);
    if (!browse::CategoryDeletion::canDelete(node))
        return invocation.refuse(
            CommandLine::tr("Cannot be deleted: \"%1\" is a system node, which the program itself assigns.")
                .arg(name));
    CategoryTree tree(invocation.session.context());
    browse::CategoryDeletion deletion(tree, invocation.prompter);
    if (deletion.deleteCategory(node) != browse::CategoryDeletion::Result::Deleted) {
        invocation.session.context().rollback();
        return Refused;
    }
    if (!save(invocation))
        return Refused;
    if (invocation.output.isJson())
        invocation.output.json(QJsonObject{{s("name"), name}, {s("indexpath"), path}, {s("deleted"), true}});
    else
        invocation.output.text() << CommandLine::tr("Deleted %1 (%2)").arg(name, path) << '\n';
    return Success;
}

int moveFolder(Invocation& invocation)
{
    if (const int status = invocation.require(s("to")); status != Success)
        return status;
    double position = -1;
    if (const int status = invocation.number(s("position"), &position); status != Success)
        return status;
    if (position != -1 && (position < 0 || position != double(qint64(position))))
        return invocation.usageError(CommandLine::tr("--position must be a whole number from 0."));
    Record* node = namedFolder(invocation, invocation.arguments.words().first());
    if (!node)
        return Refused;
    Record* target = namedFolder(invocation, invocation.arguments.value(s("to")));
    if (!target)
        return Refused;
    CategoryTree tree(invocation.session.context());
    const CategoryTree::DropRefusal refusal = CategoryTree::dropRefusal({node}, target);
    if (refusal != CategoryTree::DropRefusal::None)
        return invocation.refuse(CategoryTree::refusalMessage(refusal));
    if (!tree.move({node}, target, int(position)) || !save(invocation))
        return Refused;
    printNode(invocation, node);
    return Success;
}

Command folderCommand(const char* word, const QString& synopsis, const QString& summary, const QString& help,
                      int minWords, int maxWords, int (*run)(Invocation&))
{
    Command command;
    command.words = QStringList{s("folders")};
    if (*word)
        command.words << s(word);
    command.synopsis = synopsis;
    command.summary = summary;
    command.help = help;
    command.minWords = minWords;
    command.maxWords = maxWords;
    command.run = run;
    return command;
}

} // namespace

Record* namedFolder(Invocation& invocation, const QString& key)
{
    store::EditingContext& context = invocation.session.context();
    static const QRegularExpression indexPath(s("^([0-9]{3})+$"));
    if (indexPath.match(key).hasMatch()) {
        if (Record* node = context.fetchFirst(
                store::FetchRequest(s("Categories"), predicate::literal("indexpath == %@", {key}))))
            return node;
    }
    const QList<Record*> found = context.fetch(store::FetchRequest(
        s("Categories"), predicate::literal("name == %@", {key}), {store::SortDescriptor{s("indexpath")}}));
    if (found.size() == 1)
        return found.first();
    if (found.isEmpty()) {
        invocation.refuse(
            CommandLine::tr("No folder, smart folder or tag is named \"%1\" (folders shows them all).")
                .arg(key));
        return nullptr;
    }
    QStringList paths;
    for (const Record* node : found)
        paths << pathOf(node);
    invocation.refuse(CommandLine::tr("%1 entries are named \"%2\"; name one by its indexpath: %3.")
                          .arg(QString::number(found.size()), key, paths.join(s(", "))));
    return nullptr;
}

QList<Command> foldersCommands()
{
    const QString folderArgument = CommandLine::tr(
        "FOLDER names a node by its name, or by its indexpath (as \"folders\" prints it) where names\n"
        "repeat.");
    Command tree = folderCommand(
        "", s("folders"),
        CommandLine::tr("show the sidebar's folders, smart folders and tags with their counts"),
        CommandLine::tr(
            "Prints the sidebar's tree: each node's indexpath, its name indented by its depth and,\n"
            "for a smart folder or tag, the number of records it selects now. With --json an\n"
            "array of nodes with name, type, subtype, indexpath, count and children.\n"
            "Types: 0 folder or group, 1 to 4 a tag of clients, items, documents or to-dos,\n"
            "-1 to -4 a smart folder of those.\n"
            "\n"
            "Example:\n"
            "  corvanta-cli folders"),
        0, 0, showTree);
    Command list = folderCommand(
        "list", s("folders list FOLDER"),
        CommandLine::tr("list the records a folder, smart folder or tag selects"),
        CommandLine::tr("Lists what the sidebar lists when FOLDER is selected, in the list's default order:\n"
                        "clients and items by name, documents newest first, to-dos by start, newest first.\n"
                        "A folder or group without a kind lists nothing.\n") +
            folderArgument +
            CommandLine::tr("\n\nExamples:\n"
                            "  corvanta-cli folders list \"Unpaid Invoices\"\n"
                            "  corvanta-cli folders list 002004"),
        1, 1, listFolder);
    Command group = folderCommand(
        "new-group", s("folders new-group NAME"), CommandLine::tr("add a group at the end of the sidebar"),
        CommandLine::tr(
            "Adds a top-level group named NAME after the last one. Prints its indexpath and name.\n"
            "\n"
            "Example:\n"
            "  corvanta-cli folders new-group Projects"),
        1, 1, newGroup);
    Command folder = folderCommand(
        "new-folder", s("folders new-folder NAME --parent FOLDER"), CommandLine::tr("add a folder"),
        CommandLine::tr("Adds a folder named NAME as the last child of FOLDER (a group or folder; a tag or\n"
                        "smart folder places it beside itself, as in the sidebar).\n") +
            folderArgument +
            CommandLine::tr("\n\nExample:\n"
                            "  corvanta-cli folders new-folder Regions --parent \"My Group\""),
        1, 1, newFolder);
    folder.options = {{s("parent"), true, false}};
    Command tag = folderCommand(
        "new-tag",
        s("folders new-tag NAME --kind clients|items|documents|todos --parent FOLDER [--colors FG BG]"),
        CommandLine::tr("add a tag"),
        CommandLine::tr(
            "Adds a tag named NAME for records of the kind given, as the last child of FOLDER (placed\n"
            "as new-folder places a folder). A new tag is white on orange unless --colors gives the\n"
            "text's and the fill's colour (#RRGGBB).\n") +
            folderArgument +
            CommandLine::tr(
                "\n\nExample:\n"
                "  corvanta-cli folders new-tag VIP --kind clients --parent Clients --colors \"#FFFFFF\" "
                "\"#AA0000\""),
        1, 2, newTag);
    tag.options = {{s("kind"), true, false}, {s("parent"), true, false}, {s("colors"), true, false}};
    Command smart = folderCommand(
        "new-smart",
        s("folders new-smart NAME --kind clients|items|documents|todos --where PREDICATE [--parent FOLDER]"),
        CommandLine::tr("add a smart folder"),
        CommandLine::tr(
            "Adds a smart folder named NAME that lists the records of the kind the condition selects,\n"
            "written in the language of the smart folders. Documents' conditions may compare dates\n"
            "with \"@today\", \"@this_month\" and the other relative dates, taken afresh at each\n"
            "count. It goes under FOLDER as new-folder places a folder, else at the top level.\n") +
            folderArgument +
            CommandLine::tr("\n\nExample:\n"
                            "  corvanta-cli folders new-smart \"This Month\" --kind documents \\\n"
                            "      --where 'date_creation >= \"@this_month\"' --parent Documents"),
        1, 1, newSmartFolder);
    smart.options = {{s("kind"), true, false}, {s("where"), true, false}, {s("parent"), true, false}};
    Command rename = folderCommand("rename", s("folders rename FOLDER NAME"),
                                   CommandLine::tr("rename a group, folder, smart folder or tag"),
                                   CommandLine::tr("Gives FOLDER the name NAME.\n") + folderArgument +
                                       CommandLine::tr("\n\nExample:\n"
                                                       "  corvanta-cli folders rename \"My Group\" Archive"),
                                   2, 2, renameFolder);
    Command remove = folderCommand(
        "delete", s("folders delete FOLDER"), CommandLine::tr("delete a node with everything inside it"),
        CommandLine::tr(
            "Deletes FOLDER and every folder, smart folder and tag inside it, as the sidebar's\n"
            "Delete does once its question is answered. The records themselves stay. Refused when\n"
            "FOLDER is or holds a system tag or system smart folder (one the program assigns\n"
            "itself): move those elsewhere first with \"folders move\".\n") +
            folderArgument +
            CommandLine::tr("\n\nExample:\n"
                            "  corvanta-cli folders delete \"My Folder\""),
        1, 1, deleteFolder);
    Command move = folderCommand(
        "move", s("folders move FOLDER --to FOLDER [--position N]"),
        CommandLine::tr("move a node under another, as dragging it in the sidebar"),
        CommandLine::tr("Moves FOLDER under the --to node, before its child at position N (counted from 0\n"
                        "among its children now; default: after the last), and numbers every indexpath\n"
                        "afresh. Nothing goes into a tag, into a smart folder inside another node, or into\n"
                        "the moved node itself or anything inside it. Prints the new indexpath.\n") +
            folderArgument +
            CommandLine::tr("\n\nExample:\n"
                            "  corvanta-cli folders move Cancellation --to \"My Group\" --position 0"),
        1, 1, moveFolder);
    move.options = {{s("to"), true, false}, {s("position"), true, false}};
    return {tree, list, group, folder, tag, smart, rename, remove, move};
}

} // namespace corvanta::cli
