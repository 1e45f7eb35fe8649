#include "cliprompter.h"
#include "commandline.h"
#include "commands.h"
#include "documents/pricelevels.h"
#include "editors/itemcontroller.h"
#include "format/formattedcurrency.h"
#include "model/companycache.h"
#include "model/companyrecord.h"
#include "output.h"
#include "predicate/literal.h"
#include "recordjson.h"
#include "recordlookup.h"
#include "session.h"
#include "store/editingcontext.h"
#include "store/store.h"
#include "texttable.h"
#include "valuetext.h"

#include <QJsonArray>

namespace corvanta::cli {

using editors::ItemController;
using store::Record;

namespace {

QString s(const char* text)
{
    return QString::fromLatin1(text);
}

const QStringList kKinds = {s("service"), s("product")};

QString kindName(qint64 type)
{
    return type == 0 ? CommandLine::tr("Service") : type == 1 ? CommandLine::tr("Product") : QString();
}

// The current stock of a product; services keep none worth showing.
QString stockText(const Record* item)
{
    if (item->value(s("type")).toLongLong() == 0)
        return {};
    return ValueText::plain(item->value(s("stock_current")).toDouble());
}

// A reference list's record named by an option into the editor's context; null when the option
// is absent. False when the name is unknown (the reason is reported).
bool linkedRecord(Invocation& invocation, store::EditingContext& context, const char* option,
                  RecordLookup::Kind kind, Record** record)
{
    *record = nullptr;
    if (!invocation.arguments.has(s(option)))
        return true;
    QString error;
    *record = RecordLookup(context).find(kind, invocation.arguments.value(s(option)), &error);
    if (!*record)
        invocation.refuse(error);
    return *record != nullptr;
}

int addItem(Invocation& invocation)
{
    const Arguments& arguments = invocation.arguments;
    if (const int status = invocation.require(s("name")); status != Success)
        return status;
    qint64 type =
        model::CompanyCache::of(invocation.session.store()).value(s("default_item_type")).toLongLong();
    if (arguments.has(s("kind"))) {
        type = kKinds.indexOf(arguments.value(s("kind")));
        if (type < 0)
            return invocation.usageError(CommandLine::tr("--kind must be service or product, not \"%1\".")
                                             .arg(arguments.value(s("kind"))));
    }
    const QStringList prices = arguments.values(s("price"));
    if (prices.size() > documents::PriceLevels::kCount)
        return invocation.usageError(
            CommandLine::tr("An item has at most five prices; --price was given %1 times.")
                .arg(prices.size()));
    QList<double> levels;
    for (const QString& price : prices) {
        const std::optional<double> value = ValueText::number(price);
        if (!value)
            return invocation.usageError(ValueText::notANumber(s("--price"), price));
        levels << *value;
    }

    const QString name = arguments.value(s("name"));
    const bool taken = invocation.session.context().count(
                           store::FetchRequest(s("Items"), predicate::literal(s("name == %@"), {name}))) > 0;
    ItemController editor(invocation.session.store(), invocation.prompter);
    Record* item = editor.newItem(type);
    item->setValue(s("name"), name);
    if (arguments.has(s("code")))
        item->setValue(s("code"), arguments.value(s("code")));
    Record* tax = nullptr;
    Record* unit = nullptr;
    if (!linkedRecord(invocation, editor.context(), "tax", RecordLookup::Kind::Tax, &tax) ||
        !linkedRecord(invocation, editor.context(), "unit", RecordLookup::Kind::Unit, &unit))
        return Refused;
    item->setRelated(s("tax"), tax);
    item->setRelated(s("unit"), unit);
    for (qsizetype level = 0; level < levels.size(); ++level) {
        if (!editor.setPrice(int(level) + 1, levels.at(level)))
            return Refused;
    }
    // Gross prices lose the item's first tax rate.
    if (arguments.has(s("gross")))
        editor.pricesToNet();
    editor.markEdited();
    if (!editor.save(ItemController::Sender::None))
        return Refused;
    if (taken)
        invocation.prompter.report(
            CommandLine::tr(
                "Note: another item is named \"%1\" too; document rows and commands that name an item "
                "by its name cannot tell them apart.")
                .arg(name));
    if (invocation.output.isJson())
        invocation.output.json(RecordJson::item(item));
    else
        invocation.output.text() << item->value(s("name")).toString() << '\n';
    return Success;
}

int receiveItem(Invocation& invocation)
{
    const Arguments& arguments = invocation.arguments;
    if (const int status = invocation.require(s("quantity")); status != Success)
        return status;
    double quantity = 0;
    QDate date;
    if (const int status = invocation.number(s("quantity"), &quantity); status != Success)
        return status;
    if (const int status = invocation.date(s("date"), &date); status != Success)
        return status;

    QString error;
    const Record* item = RecordLookup(invocation.session.context())
                             .find(RecordLookup::Kind::Item, arguments.words().first(), &error);
    if (!item)
        return invocation.refuse(error);
    ItemController editor(invocation.session.store(), invocation.prompter);
    Record* own = editor.openItem(item->ref());
    Record* supplier = nullptr;
    if (!own ||
        !linkedRecord(invocation, editor.context(), "supplier", RecordLookup::Kind::Client, &supplier))
        return Refused;
    const QDateTime when = date.isValid() ? ValueText::midday(date) : QDateTime::currentDateTime();
    if (!editor.addIncoming(supplier, quantity, when) || !editor.save(ItemController::Sender::None))
        return Refused;
    if (invocation.output.isJson()) {
        invocation.output.json(RecordJson::item(own));
    } else {
        invocation.output.text() << CommandLine::tr("%1: %2 received, %3 in stock")
                                        .arg(own->value(s("name")).toString(), ValueText::plain(quantity),
                                             ValueText::plain(own->value(s("stock_current")).toDouble()))
                                 << '\n';
    }
    return Success;
}

int listItems(Invocation& invocation)
{
    predicate::Predicate condition;
    if (const int status = invocation.where(&condition); status != Success)
        return status;
    store::EditingContext& context = invocation.session.context();
    store::StoreError error;
    const QList<Record*> items = context.fetch(
        store::FetchRequest(s("Items"), condition, {store::SortDescriptor::localized(s("name"))}), &error);
    if (error.isError())
        return invocation.refuse(error.message());
    if (invocation.output.isJson()) {
        QJsonArray array;
        for (const Record* item : items)
            array << RecordJson::item(item);
        invocation.output.json(array);
        return Success;
    }
    const Record* currency = model::CompanyRecord::defaultRecord(context, s("default_currency"));
    using Align = TextTable::Align;
    TextTable table({{CommandLine::tr("Name")},
                     {CommandLine::tr("Code")},
                     {CommandLine::tr("Kind")},
                     {CommandLine::tr("Unit")},
                     {CommandLine::tr("Tax")},
                     {CommandLine::tr("Price"), Align::Right},
                     {CommandLine::tr("Stock"), Align::Right}});
    for (const Record* item : items) {
        const QVariant price = item->value(s("custom_price01"));
        table.addRow({item->value(s("name")).toString(), item->value(s("code")).toString(),
                      kindName(item->value(s("type")).toLongLong()),
                      item->valueForKeyPath(s("unit.name")).toString(),
                      item->valueForKeyPath(s("tax.name")).toString(),
                      price.isNull() ? QString() : format::formattedCurrency(price.toDouble(), currency),
                      stockText(item)});
    }
    table.write(invocation.output.text());
    return Success;
}

int showItem(Invocation& invocation)
{
    store::EditingContext& context = invocation.session.context();
    QString error;
    const Record* item =
        RecordLookup(context).find(RecordLookup::Kind::Item, invocation.arguments.words().first(), &error);
    if (!item)
        return invocation.refuse(error);
    if (invocation.output.isJson()) {
        invocation.output.json(RecordJson::item(item));
        return Success;
    }
    QTextStream& out = invocation.output.text();
    FieldList fields;
    const auto field = [&](const QString& label, const QString& value) { fields.add(label, value); };
    const Record* currency = model::CompanyRecord::defaultRecord(context, s("default_currency"));
    out << item->value(s("name")).toString() << '\n';
    field(CommandLine::tr("Code"), item->value(s("code")).toString());
    field(CommandLine::tr("Kind"), kindName(item->value(s("type")).toLongLong()));
    field(CommandLine::tr("Unit"), item->valueForKeyPath(s("unit.name")).toString());
    field(CommandLine::tr("Tax"), item->valueForKeyPath(s("tax.name")).toString());
    const QStringList labels = documents::PriceLevels::labels(context);
    for (int level = 1; level <= documents::PriceLevels::kCount; ++level) {
        const QVariant price = item->value(documents::PriceLevels::slotKey(level));
        if (!price.isNull())
            field(CommandLine::tr("%1 (%2)").arg(labels.value(level - 1), QString::number(level)),
                  format::formattedCurrency(price.toDouble(), currency));
    }
    field(CommandLine::tr("Stock"), stockText(item));
    field(CommandLine::tr("Identifier"), item->value(s("identifier")).toString());
    fields.write(out);

    ItemController view(invocation.session.store(), invocation.prompter);
    view.openItem(item->ref());
    TextTable in({{CommandLine::tr("Date")},
                  {CommandLine::tr("Quantity"), TextTable::Align::Right},
                  {CommandLine::tr("Supplier")}});
    for (const Record* delivery : view.movementsIn())
        in.addRow({ValueText::day(delivery->value(s("date"))),
                   ValueText::plain(delivery->value(s("quantity")).toDouble()),
                   delivery->valueForKeyPath(s("client.full_name")).toString()});
    if (!in.isEmpty()) {
        out << '\n' << CommandLine::tr("Received:") << '\n';
        in.write(out, 2);
    }
    TextTable outgoing({{CommandLine::tr("Date")},
                        {CommandLine::tr("Document")},
                        {CommandLine::tr("Quantity"), TextTable::Align::Right},
                        {CommandLine::tr("Client")}});
    for (const ItemController::MovementOut& movement : view.movementsOut())
        outgoing.addRow({ValueText::day(movement.date), movement.documentNumber,
                         ValueText::plain(movement.quantity),
                         movement.client ? movement.client->value(s("full_name")).toString() : QString()});
    if (!outgoing.isEmpty()) {
        out << '\n' << CommandLine::tr("In documents (only final invoices change the stock):") << '\n';
        outgoing.write(out, 2);
    }
    return Success;
}

} // namespace

QList<Command> itemsCommands()
{
    Command add;
    add.words = QStringList{s("items"), s("add")};
    add.synopsis = s("items add --name NAME [--code C] [--kind service|product] [--price P]... [--tax NAME] "
                     "[--unit NAME] [--gross]");
    add.summary = CommandLine::tr("add an item (a product or a service)");
    add.help = CommandLine::tr(
        "Adds an item to the catalogue, as the item editor saves one, filed under its kind.\n"
        "Documents take an item into a row by its name (documents new --row \"NAME;QTY\"), with its\n"
        "code, unit, tax and the price of the chosen price level. Prints the item's name.\n"
        "\n"
        "Options:\n"
        "  --name NAME    the item's name (required)\n"
        "  --code C       the item's code\n"
        "  --kind KIND    service or product (default: the database's default item kind, a\n"
        "                 product in a new database)\n"
        "  --price P      a price without tax; give it up to five times for the five price\n"
        "                 levels, in order (the first is the \"Unit Price\")\n"
        "  --tax NAME     the item's tax, by name (a new database has \"10%\" and \"GST / PST\");\n"
        "                 without it the item carries no tax\n"
        "  --unit NAME    the item's unit, by name (a new database has \"Each\" and \"Hours\")\n"
        "  --gross        the prices include the tax: each is divided by 1 + the first tax rate\n"
        "\n"
        "Examples:\n"
        "  corvanta-cli items add --name Bolt --code B-10 --kind product --price 10 --price 9 \\\n"
        "      --tax 10% --unit Each\n"
        "  corvanta-cli items add --name Consulting --kind service --price 80 --unit Hours");
    add.options = {{s("name"), true, false},  {s("code"), true, false}, {s("kind"), true, false},
                   {s("price"), true, true},  {s("tax"), true, false},  {s("unit"), true, false},
                   {s("gross"), false, false}};
    add.run = addItem;

    Command receive;
    receive.words = QStringList{s("items"), s("receive")};
    receive.synopsis = s("items receive NAME --quantity Q [--date YYYY-MM-DD] [--supplier NAME]");
    receive.summary = CommandLine::tr("record a delivery of an item into stock");
    receive.help = CommandLine::tr(
        "Records a delivery of Q pieces of the item NAME into the warehouse, as the item editor's\n"
        "delivery sheet does, and brings the item's current stock up to date. The stock is the\n"
        "deliveries less the quantities in final invoices. Prints the new stock.\n"
        "\n"
        "Options:\n"
        "  --quantity Q       how many were delivered (required; negative to take some out)\n"
        "  --date YYYY-MM-DD  the day of the delivery (default: now)\n"
        "  --supplier NAME    the client who delivered, by full name\n"
        "\n"
        "Example:\n"
        "  corvanta-cli items receive Bolt --quantity 100 --supplier \"Northwind Supplies\"");
    receive.options = {{s("quantity"), true, false}, {s("date"), true, false}, {s("supplier"), true, false}};
    receive.minWords = 1;
    receive.maxWords = 1;
    receive.run = receiveItem;

    Command list;
    list.words = QStringList{s("items"), s("list")};
    list.synopsis = s("items list [--where PREDICATE]");
    list.summary = CommandLine::tr("list items with their first price and stock");
    list.help = CommandLine::tr(
        "Lists the items by name with their code, kind, unit, tax, first price (in the company's\n"
        "currency) and current stock.\n"
        "\n"
        "Options:\n"
        "  --where PREDICATE  only the items the condition selects, in the language of the smart\n"
        "                     folders (type 0 service, 1 product; stock_current, stock_critical,\n"
        "                     custom_price01 ... custom_price05, name, code ...)\n"
        "\n"
        "Examples:\n"
        "  corvanta-cli items list\n"
        "  corvanta-cli items list --where 'type == 1 && stock_current < 10'");
    list.options = {{s("where"), true, false}};
    list.run = listItems;

    Command show;
    show.words = QStringList{s("items"), s("show")};
    show.synopsis = s("items show NAME");
    show.summary = CommandLine::tr("show one item with its prices, stock and movements");
    show.help =
        CommandLine::tr("Shows the item named NAME: its code, kind, unit, tax, price levels, current stock\n"
                        "(stock_current), its deliveries, and its rows in documents that are not drafts.\n"
                        "\n"
                        "Example:\n"
                        "  corvanta-cli items show Bolt");
    show.minWords = 1;
    show.maxWords = 1;
    show.run = showItem;
    return {add, receive, list, show};
}

} // namespace corvanta::cli
