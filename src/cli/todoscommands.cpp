#include "browse/recordcommands.h"
#include "cliprompter.h"
#include "commandline.h"
#include "commands.h"
#include "documents/savefailure.h"
#include "output.h"
#include "predicate/literal.h"
#include "recordjson.h"
#include "recordlookup.h"
#include "session.h"
#include "store/editingcontext.h"
#include "store/storeerror.h"
#include "tasks/icalendarexport.h"
#include "tasks/repeatevents.h"
#include "tasks/tododone.h"
#include "tasks/todosaving.h"
#include "texttable.h"

#include <QColor>
#include <QJsonArray>
#include <QRegularExpression>

namespace corvanta::cli {

using store::Record;

namespace {

QString s(const char* text)
{
    return QString::fromLatin1(text);
}

// A moment of the command line in local time: "YYYY-MM-DD" (the start of that day) or
// "YYYY-MM-DDTHH:MM". Nothing for any other text or a time the clocks skip.
std::optional<QDateTime> dateTime(const QString& text)
{
    static const QRegularExpression form(s("^\\d{4}-\\d{2}-\\d{2}(T\\d{2}:\\d{2})?$"));
    if (!form.match(text).hasMatch())
        return std::nullopt;
    if (text.size() == 10) {
        const QDate day = QDate::fromString(text, Qt::ISODate);
        return day.isValid() ? std::optional(day.startOfDay()) : std::nullopt;
    }
    const QDateTime moment = QDateTime::fromString(text, s("yyyy-MM-dd'T'HH:mm"));
    if (!moment.isValid() || moment.toString(s("yyyy-MM-dd'T'HH:mm")) != text)
        return std::nullopt;
    return moment;
}

// A DATETIME option; a usage error for a malformed one, Success otherwise (also when absent).
int readDateTime(const Invocation& invocation, const char* option, std::optional<QDateTime>* value)
{
    if (!invocation.arguments.has(s(option)))
        return Success;
    const QString text = invocation.arguments.value(s(option));
    *value = dateTime(text);
    if (*value)
        return Success;
    // A well-formed day and time that is still no moment lies in the hour the clocks skip.
    const bool skipped = QDate::fromString(text.left(10), Qt::ISODate).isValid() &&
                         QTime::fromString(text.mid(11), s("HH:mm")).isValid();
    if (skipped)
        return invocation.usageError(
            CommandLine::tr("--%1 \"%2\" does not exist in the local time zone: the clocks skip that time.")
                .arg(s(option), text));
    return invocation.usageError(
        CommandLine::tr("--%1 \"%2\" is not a moment: write YYYY-MM-DD or YYYY-MM-DDTHH:MM (local time).")
            .arg(s(option), text));
}

// A whole-number option, taken as it is (negative numbers and zero included).
int readInteger(const Invocation& invocation, const char* option, std::optional<qint64>* value)
{
    if (!invocation.arguments.has(s(option)))
        return Success;
    const QString text = invocation.arguments.value(s(option));
    bool ok = false;
    const qint64 number = text.trimmed().toLongLong(&ok);
    if (!ok)
        return invocation.usageError(
            CommandLine::tr("--%1 \"%2\" is not a whole number.").arg(s(option), text));
    *value = number;
    return Success;
}

QString momentText(const QVariant& moment)
{
    return moment.isNull() ? QString() : moment.toDateTime().toLocalTime().toString(s("yyyy-MM-dd HH:mm"));
}

QString colourText(const QVariant& colour)
{
    return colour.isNull() ? QString() : colour.value<QColor>().name(QColor::HexRgb).toUpper();
}

QStringList tagNames(const Record* todo)
{
    QStringList names;
    for (const Record* tag : todo->relatedList(s("tags")))
        names << tag->value(s("name")).toString();
    return names;
}

// Every attribute of a to-do; its colours as #RRGGBB, as the command line takes them, and its
// client, item and tags by name.
QJsonObject todoJson(const Record* todo)
{
    QJsonObject json = RecordJson::attributes(todo);
    for (const char* key : {"foreground_color", "background_color"}) {
        const QString colour = colourText(todo->value(s(key)));
        json[s(key)] = colour.isEmpty() ? QJsonValue(QJsonValue::Null) : QJsonValue(colour);
    }
    const Record* client = todo->related(s("client"));
    json[s("client")] = client ? QJsonValue(client->value(s("full_name")).toString()) : QJsonValue();
    const Record* item = todo->related(s("item"));
    json[s("item")] = item ? QJsonValue(item->value(s("name")).toString()) : QJsonValue();
    json[s("tags")] = QJsonArray::fromStringList(tagNames(todo));
    return json;
}

// The one to-do that `key` (an identifier or a title) names; null after reporting why not.
Record* namedToDo(Invocation& invocation, const QString& key)
{
    QString error;
    Record* todo = RecordLookup(invocation.session.context()).todo(key, &error);
    if (!todo)
        invocation.refuse(error);
    return todo;
}

int addToDo(Invocation& invocation)
{
    const Arguments& arguments = invocation.arguments;
    if (const int status = invocation.require(s("start")); status != Success)
        return status;
    std::optional<QDateTime> start;
    std::optional<QDateTime> end;
    std::optional<QDateTime> endDate;
    for (const auto& [option, value] :
         {std::pair{"start", &start}, {"end", &end}, {"repeat-end-date", &endDate}}) {
        if (const int status = readDateTime(invocation, option, value); status != Success)
            return status;
    }
    const bool allDay = arguments.has(s("all-day"));
    // Without an end a to-do lasts an hour; an all-day one its one day.
    if (!end)
        end = allDay ? *start : start->addSecs(3600);
    if (*end < *start)
        return invocation.usageError(CommandLine::tr("--end comes before --start."));

    QVariantMap values{{s("title"), arguments.words().first()},
                       {s("date_start"), *start},
                       {s("date_end"), *end},
                       {s("all_day"), allDay},
                       {s("done"), false}};
    if (arguments.has(s("desc")))
        values[s("desc")] = arguments.value(s("desc"));
    if (arguments.has(s("colors"))) {
        static const QRegularExpression hex(s("^#[0-9A-Fa-f]{6}$"));
        const QStringList colours = arguments.values(s("colors"));
        for (const QString& colour : colours) {
            if (!hex.match(colour).hasMatch())
                return invocation.usageError(
                    CommandLine::tr("\"%1\" is not a colour; write it as #RRGGBB.").arg(colour));
        }
        values[s("foreground_color")] = QColor(colours.at(0));
        values[s("background_color")] = QColor(colours.at(1));
    }
    for (const auto& [option, key] : {std::pair{"repeat-type", "repeat_type"},
                                      {"repeat-frequency", "repeat_frequency"},
                                      {"repeat-monthly-day-of", "repeat_monthly_day_of"},
                                      {"repeat-end-type", "repeat_end_type"},
                                      {"repeat-occurrences", "repeat_occurrences"}}) {
        std::optional<qint64> number;
        if (const int status = readInteger(invocation, option, &number); status != Success)
            return status;
        if (number)
            values[s(key)] = *number;
    }
    if (arguments.has(s("repeat-weekdays"))) {
        QVariantList weekdays;
        const QString text = arguments.value(s("repeat-weekdays"));
        for (const QString& part : text.split(QLatin1Char(','), Qt::SkipEmptyParts)) {
            bool ok = false;
            const int number = part.trimmed().toInt(&ok);
            if (!ok)
                return invocation.usageError(
                    CommandLine::tr("--repeat-weekdays \"%1\" is not a list of numbers such as 2,4,6.")
                        .arg(text));
            weekdays << number;
        }
        values[s("repeat_weekdays")] = weekdays;
    }
    if (endDate)
        values[s("repeat_end_date")] = *endDate;

    store::EditingContext& context = invocation.session.context();
    RecordLookup lookup(context);
    QString error;
    for (const auto& [option, kind] :
         {std::pair{"client", RecordLookup::Kind::Client}, {"item", RecordLookup::Kind::Item}}) {
        if (!arguments.has(s(option)))
            continue;
        Record* linked = lookup.find(kind, arguments.value(s(option)), &error);
        if (!linked)
            return invocation.refuse(error);
        values[s(option)] = QVariant::fromValue(linked);
    }

    Record* todo = context.insertRecord(s("ToDos"), values);
    store::StoreError saveError;
    if (!tasks::ToDoSaving().save(todo, &saveError)) {
        documents::SaveFailure::show(invocation.prompter, saveError);
        return Refused;
    }
    if (invocation.output.isJson())
        invocation.output.json(todoJson(todo));
    else
        invocation.output.text() << todo->value(s("identifier")).toString() << '\n';
    return Success;
}

int listToDos(Invocation& invocation)
{
    predicate::Predicate condition;
    if (const int status = invocation.where(&condition); status != Success)
        return status;
    store::StoreError error;
    const QList<Record*> todos = invocation.session.context().fetch(
        store::FetchRequest(s("ToDos"), condition, {store::SortDescriptor(s("date_start"), false)}), &error);
    if (error.isError())
        return invocation.refuse(error.message());
    if (invocation.output.isJson()) {
        QJsonArray array;
        for (const Record* todo : todos)
            array << todoJson(todo);
        invocation.output.json(array);
        return Success;
    }
    TextTable table({{CommandLine::tr("Identifier")},
                     {CommandLine::tr("Title")},
                     {CommandLine::tr("Start")},
                     {CommandLine::tr("End")},
                     {CommandLine::tr("Done")},
                     {CommandLine::tr("Repeat")}});
    for (const Record* todo : todos) {
        table.addRow({todo->value(s("identifier")).toString(), todo->value(s("title")).toString(),
                      momentText(todo->value(s("date_start"))), momentText(todo->value(s("date_end"))),
                      todo->value(s("done")).toBool() ? CommandLine::tr("yes") : CommandLine::tr("no"),
                      todo->value(s("repeat_summary")).toString()});
    }
    table.write(invocation.output.text());
    return Success;
}

int showToDo(Invocation& invocation)
{
    const Record* todo = namedToDo(invocation, invocation.arguments.words().first());
    if (!todo)
        return Refused;
    if (invocation.output.isJson()) {
        invocation.output.json(todoJson(todo));
        return Success;
    }
    // Labelled by attribute name, so that a script finds each one; empty ones are left out.
    const auto yesNo = [todo](const char* key) { return todo->value(s(key)).toBool() ? s("YES") : s("NO"); };
    const auto number = [todo](const char* key) {
        const QVariant value = todo->value(s(key));
        return value.isNull() ? QString() : QString::number(value.toLongLong());
    };
    QStringList weekdays;
    for (const QVariant& weekday : todo->value(s("repeat_weekdays")).toList())
        weekdays << QString::number(weekday.toInt());
    const Record* client = todo->related(s("client"));
    const Record* item = todo->related(s("item"));
    FieldList fields;
    fields.add(s("title"), todo->value(s("title")).toString());
    fields.add(s("identifier"), todo->value(s("identifier")).toString());
    fields.add(s("date_start"), momentText(todo->value(s("date_start"))));
    fields.add(s("date_end"), momentText(todo->value(s("date_end"))));
    fields.add(s("all_day"), yesNo("all_day"));
    fields.add(s("done"), yesNo("done"));
    fields.add(s("client"), client ? client->value(s("full_name")).toString() : QString());
    fields.add(s("item"), item ? item->value(s("name")).toString() : QString());
    fields.add(s("desc"), todo->value(s("desc")).toString());
    fields.add(s("foreground_color"), colourText(todo->value(s("foreground_color"))));
    fields.add(s("background_color"), colourText(todo->value(s("background_color"))));
    fields.add(s("repeat_type"), number("repeat_type"));
    fields.add(s("repeat_frequency"), number("repeat_frequency"));
    fields.add(s("repeat_weekdays"), weekdays.join(QLatin1Char(',')));
    fields.add(s("repeat_monthly_day_of"), number("repeat_monthly_day_of"));
    fields.add(s("repeat_end_type"), number("repeat_end_type"));
    fields.add(s("repeat_occurrences"), number("repeat_occurrences"));
    fields.add(s("repeat_end_date"), momentText(todo->value(s("repeat_end_date"))));
    fields.add(s("repeat_summary"), todo->value(s("repeat_summary")).toString());
    fields.add(s("created"), momentText(todo->value(s("created"))));
    fields.add(s("tags"), tagNames(todo).join(s(", ")));
    fields.write(invocation.output.text());
    return Success;
}

int toggleDone(Invocation& invocation)
{
    Record* todo = namedToDo(invocation, invocation.arguments.words().first());
    if (!todo)
        return Refused;
    const bool done = tasks::ToDoDone::toggle(todo);
    if (!documents::SaveFailure::save(invocation.session.context(), invocation.prompter))
        return Refused;
    if (invocation.output.isJson())
        invocation.output.json(todoJson(todo));
    else
        invocation.output.text() << (done ? CommandLine::tr("Done: %1") : CommandLine::tr("Pending: %1"))
                                        .arg(todo->value(s("title")).toString())
                                 << '\n';
    return Success;
}

int deleteToDo(Invocation& invocation)
{
    const Record* todo = namedToDo(invocation, invocation.arguments.words().first());
    if (!todo)
        return Refused;
    const QString title = todo->value(s("title")).toString();
    const QString identifier = todo->value(s("identifier")).toString();
    browse::RecordCommands commands(invocation.session.store(), invocation.prompter);
    if (!commands.deleteRecord(todo->ref()))
        return Refused;
    if (invocation.output.isJson())
        invocation.output.json(
            QJsonObject{{s("title"), title}, {s("identifier"), identifier}, {s("deleted"), true}});
    else
        invocation.output.text() << CommandLine::tr("Deleted %1 (%2)").arg(title, identifier) << '\n';
    return Success;
}

QList<const Record*> allToDos(Invocation& invocation, store::StoreError* error)
{
    QList<const Record*> todos;
    for (const Record* todo :
         invocation.session.context().fetch(store::FetchRequest(s("ToDos"), predicate::Predicate(),
                                                                {store::SortDescriptor(s("date_start"))}),
                                            error))
        todos << todo;
    return todos;
}

int exportToDos(Invocation& invocation)
{
    const QString path = invocation.arguments.words().first();
    store::StoreError readError;
    const QList<const Record*> todos = allToDos(invocation, &readError);
    if (readError.isError())
        return invocation.refuse(readError.message());
    QString error;
    if (!tasks::ICalendarExport().write(todos, path, &error))
        return invocation.refuse(error);
    if (invocation.output.isJson())
        invocation.output.json(QJsonObject{{s("path"), path}, {s("todos"), todos.size()}});
    else
        invocation.output.text() << CommandLine::tr("%1 (%2 to-dos)").arg(path).arg(todos.size()) << '\n';
    return Success;
}

int showCalendar(Invocation& invocation)
{
    if (const int status = invocation.require(s("around")); status != Success)
        return status;
    QDate around;
    if (const int status = invocation.date(s("around"), &around); status != Success)
        return status;
    store::StoreError error;
    const QList<const Record*> todos = allToDos(invocation, &error);
    if (error.isError())
        return invocation.refuse(error.message());
    QJsonArray array;
    for (const Record* todo : todos) {
        const QString identifier = todo->value(s("identifier")).toString();
        const QString events = tasks::repeatEvents(todo, around);
        if (invocation.output.isJson())
            array << QJsonObject{{s("identifier"), identifier}, {s("events"), events}};
        else
            invocation.output.text() << identifier << '\t' << events << '\n';
    }
    if (invocation.output.isJson())
        invocation.output.json(array);
    return Success;
}

Command todoCommand(const char* word, const QString& synopsis, const QString& summary, const QString& help,
                    int words, int (*run)(Invocation&))
{
    Command command;
    command.words = QStringList{s("todos"), s(word)};
    command.synopsis = synopsis;
    command.summary = summary;
    command.help = help;
    command.minWords = words;
    command.maxWords = words;
    command.run = run;
    return command;
}

} // namespace

QList<Command> todosCommands()
{
    const QString todoArgument =
        CommandLine::tr("TODO is a to-do's identifier or its title; a title that several to-dos share is\n"
                        "refused with their identifiers.");
    Command add = todoCommand(
        "add",
        s("todos add TITLE --start DATETIME [--end DATETIME] [--all-day] [--client NAME] [--item NAME] "
          "[--desc TEXT] [--colors FG BG] [--repeat-type N] [--repeat-frequency N] [--repeat-weekdays "
          "N,N...] "
          "[--repeat-monthly-day-of N] [--repeat-end-type N] [--repeat-occurrences N] "
          "[--repeat-end-date DATETIME]"),
        CommandLine::tr("add a to-do, possibly recurring"),
        CommandLine::tr(
            "Adds a to-do as the to-do editor saves one: \"No Name\" for an empty title, its creation\n"
            "date, a frequency of 1 when none is given, and the tag Pending. Prints its identifier.\n"
            "DATETIME is local time, YYYY-MM-DD (the start of that day) or YYYY-MM-DDTHH:MM.\n"
            "The recurrence options store their numbers as they are given.\n"
            "\n"
            "Options:\n"
            "  --start DATETIME            when it begins (required)\n"
            "  --end DATETIME              when it ends (default: an hour after the start; with\n"
            "                              --all-day, the start)\n"
            "  --all-day                   an all-day to-do\n"
            "  --client NAME, --item NAME  the client (full name) or item it belongs to\n"
            "  --desc TEXT                 its description\n"
            "  --colors FG BG              its text and fill colours, #RRGGBB each\n"
            "  --repeat-type N             1 daily, 2 weekly, 3 monthly, 4 yearly; else no recurrence\n"
            "  --repeat-frequency N        every N days, weeks, months or years\n"
            "  --repeat-weekdays N,N...    weekly on these days, 1 Sunday ... 7 Saturday\n"
            "  --repeat-monthly-day-of N   0: monthly on the start's day of the month; else on its\n"
            "                              weekday of the same week of the month (the fifth: the last)\n"
            "  --repeat-end-type N         1: after --repeat-occurrences; 2: at --repeat-end-date\n"
            "  --repeat-occurrences N      how many times\n"
            "  --repeat-end-date DATETIME  no occurrence at or after it, whatever the end type\n"
            "\n"
            "Example:\n"
            "  corvanta-cli todos add \"Team call\" --start 2026-11-23T09:00 --repeat-type 2 \\\n"
            "      --repeat-weekdays 2,4 --colors \"#FFFFFF\" \"#3A87AD\""),
        1, addToDo);
    add.options = {{s("start"), true},
                   {s("end"), true},
                   {s("all-day"), false},
                   {s("client"), true},
                   {s("item"), true},
                   {s("desc"), true},
                   {s("colors"), true, false, 2},
                   {s("repeat-type"), true},
                   {s("repeat-frequency"), true},
                   {s("repeat-weekdays"), true},
                   {s("repeat-monthly-day-of"), true},
                   {s("repeat-end-type"), true},
                   {s("repeat-occurrences"), true},
                   {s("repeat-end-date"), true}};

    Command list = todoCommand(
        "list", s("todos list [--where PREDICATE]"),
        CommandLine::tr("list to-dos, optionally those a condition selects"),
        CommandLine::tr(
            "Lists the to-dos, latest start first, with their identifier, title, start, end, state\n"
            "and recurrence summary.\n"
            "\n"
            "Options:\n"
            "  --where PREDICATE  only the to-dos the condition selects, in the language of the\n"
            "                     smart folders (title, desc, done, date_start, repeat_type ...).\n"
            "\n"
            "Examples:\n"
            "  corvanta-cli todos list --where 'done == NO'\n"
            "  corvanta-cli --json todos list --where 'title CONTAINS[c] \"call\"'"),
        0, listToDos);
    list.options = {{s("where"), true}};

    const Command show = todoCommand(
        "show", s("todos show TODO"), CommandLine::tr("show one to-do with every attribute"),
        CommandLine::tr("Shows every attribute of a to-do that has a value, each after its attribute name,\n"
                        "repeat_summary among them.\n") +
            todoArgument + CommandLine::tr("\n\nExample:\n  corvanta-cli todos show \"Team call\""),
        1, showToDo);
    const Command done = todoCommand(
        "done", s("todos done TODO"), CommandLine::tr("mark a to-do done, or pending again"),
        CommandLine::tr(
            "Marks a pending to-do done and a done one pending, as its detail page's Done does:\n"
            "it then carries the tag of its new state (Done or Pending) instead of the other.\n") +
            todoArgument + CommandLine::tr("\n\nExample:\n  corvanta-cli todos done \"Team call\""),
        1, toggleDone);
    const Command remove = todoCommand(
        "delete", s("todos delete TODO"), CommandLine::tr("delete a to-do"),
        CommandLine::tr("Deletes a to-do, as the browser's Delete does once its question is answered.\n") +
            todoArgument + CommandLine::tr("\n\nExample:\n  corvanta-cli todos delete \"Team call\""),
        1, deleteToDo);
    const Command exportCommand = todoCommand(
        "export", s("todos export FILE.ics"), CommandLine::tr("write every to-do to an iCalendar file"),
        CommandLine::tr(
            "Writes every to-do to FILE.ics, whole or not at all, as an iCalendar file that calendar\n"
            "programs import: one task each with its start, end (as its due time), description,\n"
            "state and recurrence rule. Timed to-dos are written in UTC, as their recurrence steps\n"
            "by whole days of 86400 seconds; all-day ones as dates.\n"
            "\n"
            "Example:\n"
            "  corvanta-cli todos export ~/todos.ics"),
        1, exportToDos);

    Command calendar;
    calendar.words = QStringList{s("calendar")};
    calendar.synopsis = s("calendar --around YYYY-MM-DD");
    calendar.summary = CommandLine::tr("the calendar's event entries of every to-do around a day");
    calendar.help = CommandLine::tr(
        "Writes for every to-do, earliest start first, its identifier, a tab and the calendar's event\n"
        "entries of its recurrence for the 101 days around the date: from the to-do's start up to\n"
        "50 days after the date. A to-do that does not recur (or has no occurrence there) is listed\n"
        "with no entries. With --json: an array of objects with \"identifier\" and \"events\".\n"
        "\n"
        "Example:\n"
        "  corvanta-cli calendar --around 2026-11-23");
    calendar.options = {{s("around"), true}};
    calendar.run = showCalendar;
    return {add, list, show, done, remove, exportCommand, calendar};
}

} // namespace corvanta::cli
