#include "browse/categorytree.h"
#include "browse/listkind.h"
#include "browse/tagchoices.h"
#include "cliprompter.h"
#include "commandline.h"
#include "commands.h"
#include "output.h"
#include "predicate/evaluator.h"
#include "predicate/literal.h"
#include "recordlookup.h"
#include "session.h"
#include "store/editingcontext.h"
#include "store/record.h"

#include <QJsonArray>
#include <algorithm>

namespace corvanta::cli {

using browse::ListKind;
using store::Record;

namespace {

QString s(const char* text)
{
    return QString::fromLatin1(text);
}

// A to-do named by its title or identifier.
Record* namedToDo(store::EditingContext& context, const QString& key, QString* error)
{
    const QList<Record*> found = context.fetch(
        store::FetchRequest(s("ToDos"), predicate::literal("title == %@ || identifier == %@", {key, key})));
    if (found.size() == 1)
        return found.first();
    *error = found.isEmpty() ? CommandLine::tr("No to-do has the title or identifier \"%1\".").arg(key)
                             : CommandLine::tr("%1 to-dos have the title \"%2\"; name one by its identifier.")
                                   .arg(QString::number(found.size()), key);
    return nullptr;
}

Record* namedRecord(store::EditingContext& context, ListKind kind, const QString& key, QString* error)
{
    RecordLookup lookup(context);
    switch (kind) {
    case ListKind::Clients:
        return lookup.find(RecordLookup::Kind::Client, key, error);
    case ListKind::Items:
        return lookup.find(RecordLookup::Kind::Item, key, error);
    case ListKind::Documents:
        return lookup.document(key, error);
    case ListKind::ToDos:
        return namedToDo(context, key, error);
    case ListKind::None:
        break;
    }
    return nullptr;
}

QString labelOf(const Record* record, ListKind kind)
{
    switch (kind) {
    case ListKind::Clients:
        return record->value(s("full_name")).toString();
    case ListKind::Items:
        return record->value(s("name")).toString();
    case ListKind::Documents:
        return record->value(s("number_formatted")).toString();
    case ListKind::ToDos:
        return record->value(s("title")).toString();
    case ListKind::None:
        break;
    }
    return {};
}

// Every tag a record carries, system tags included, in the order of its row of labels.
QStringList tagNames(const Record* record)
{
    QList<Record*> tags = record->relatedList(s("tags"));
    std::stable_sort(tags.begin(), tags.end(), [](const Record* a, const Record* b) {
        const int bySubtype =
            predicate::Evaluator::compareValues(a->value(s("subtype")), b->value(s("subtype")));
        return bySubtype != 0
                   ? bySubtype < 0
                   : predicate::Evaluator::compareValues(a->value(s("name")), b->value(s("name"))) < 0;
    });
    QStringList names;
    for (const Record* tag : tags)
        names << tag->value(s("name")).toString();
    return names;
}

int changeTags(Invocation& invocation, bool add)
{
    const QStringList words = invocation.arguments.words();
    Record* tag = namedFolder(invocation, words.first());
    if (!tag)
        return Refused;
    const QString tagName = tag->value(s("name")).toString();
    const qint64 type = tag->value(s("type")).toLongLong();
    if (type < 1 || type > 4)
        return invocation.refuse(CommandLine::tr("\"%1\" is not a tag.").arg(tagName));
    if (browse::CategoryTree::isSystemNode(tag))
        return invocation.refuse(
            CommandLine::tr(
                "\"%1\" is a system tag, which the program assigns itself; it cannot be %2 by hand.")
                .arg(tagName, add ? CommandLine::tr("added") : CommandLine::tr("removed")));
    const ListKind kind = browse::ListKinds::ofType(type);
    store::EditingContext& context = invocation.session.context();
    // Every record is found before any is changed, so that a wrong name changes nothing.
    QList<Record*> records;
    for (const QString& key : words.mid(1)) {
        QString error;
        Record* record = namedRecord(context, kind, key, &error);
        if (!record)
            return invocation.refuse(error);
        if (!records.contains(record))
            records << record;
    }
    for (Record* record : records)
        browse::TagChoices(record).setSelected(tag, add);
    store::StoreError error;
    if (!context.save(&error))
        return invocation.refuse(error.message());
    QJsonArray array;
    for (const Record* record : records) {
        const QStringList names = tagNames(record);
        if (invocation.output.isJson())
            array << QJsonObject{{s("record"), labelOf(record, kind)},
                                 {s("tags"), QJsonArray::fromStringList(names)}};
        else
            invocation.output.text() << labelOf(record, kind) << ": " << names.join(s(", ")) << '\n';
    }
    if (invocation.output.isJson())
        invocation.output.json(array);
    return Success;
}

} // namespace

QList<Command> tagsCommands()
{
    const QString records = CommandLine::tr(
        "TAG names a tag by its name, or by its indexpath (folders shows both). Each RECORD is, by the\n"
        "tag's kind, a client's full name, an item's name, a document's number or identifier, or a\n"
        "to-do's title or identifier. System tags (a client's kind, a document's type, a to-do's\n"
        "state) are the program's own and are refused; a record keeps its system tags either way.\n"
        "Prints each record with all its tags.");
    Command add;
    add.words = QStringList{s("tags"), s("add")};
    add.synopsis = s("tags add TAG RECORD...");
    add.summary = CommandLine::tr("put a tag on records");
    add.help =
        CommandLine::tr("Puts the tag TAG on every RECORD, as ticking it in the record's tag list does.\n") +
        records +
        CommandLine::tr("\n\nExample:\n"
                        "  corvanta-cli tags add VIP \"Acme Ltd\" \"Northwind Supplies\"");
    add.minWords = 2;
    add.maxWords = 1000;
    add.run = [](Invocation& invocation) { return changeTags(invocation, true); };

    Command remove = add;
    remove.words = QStringList{s("tags"), s("remove")};
    remove.synopsis = s("tags remove TAG RECORD...");
    remove.summary = CommandLine::tr("take a tag off records");
    remove.help =
        CommandLine::tr("Takes the tag TAG off every RECORD, as unticking it in the record's tag list\n"
                        "does; the records' other tags stay.\n") +
        records +
        CommandLine::tr("\n\nExample:\n"
                        "  corvanta-cli tags remove VIP \"Acme Ltd\"");
    remove.run = [](Invocation& invocation) { return changeTags(invocation, false); };
    return {add, remove};
}

} // namespace corvanta::cli
