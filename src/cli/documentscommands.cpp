#include "cliprompter.h"
#include "commandline.h"
#include "commands.h"
#include "documents/documenttypes.h"
#include "documents/pricelevels.h"
#include "documentstatus.h"
#include "documenttext.h"
#include "editors/documentcontroller.h"
#include "format/relativedatepredicates.h"
#include "output.h"
#include "predicate/parser.h"
#include "recordjson.h"
#include "recordlookup.h"
#include "session.h"
#include "store/editingcontext.h"
#include "store/store.h"
#include "texttable.h"
#include "valuetext.h"

#include <QJsonArray>

namespace corvanta::cli {

using documents::DocumentTypes;
using editors::DocumentController;
using store::Record;

namespace {

QString s(const char* text)
{
    return QString::fromLatin1(text);
}

// The type keys, by code: invoice, proforma ... purchase_order.
QStringList typeKeys()
{
    QStringList keys;
    for (int type = 0; type < DocumentTypes::kCount; ++type)
        keys << DocumentTypes::typeNameByNumber(type);
    return keys;
}

int readType(Invocation& invocation, qint64* type)
{
    const QString text = invocation.arguments.value(s("type"));
    *type = typeKeys().indexOf(text);
    if (*type >= 0)
        return Success;
    return invocation.usageError(
        CommandLine::tr("--type must be one of %1, not \"%2\".").arg(typeKeys().join(s(", ")), text));
}

// One --row: "NAME;QTY[;PRICE[;TAX]]".
struct RowSpec
{
    QString name;
    double quantity = 0;
    std::optional<double> price;
    QString tax;
};

std::optional<RowSpec> readRow(const QString& text, QString* error)
{
    const QStringList fields = text.split(QLatin1Char(';'));
    if (fields.size() < 2 || fields.size() > 4 || fields.first().trimmed().isEmpty()) {
        *error = CommandLine::tr("--row \"%1\": write a row as \"NAME;QUANTITY\", \"NAME;QUANTITY;PRICE\" or "
                                 "\"NAME;QUANTITY;PRICE;TAX\".")
                     .arg(text);
        return std::nullopt;
    }
    RowSpec row;
    row.name = fields.at(0).trimmed();
    const std::optional<double> quantity = ValueText::number(fields.at(1));
    if (!quantity) {
        *error = ValueText::notANumber(CommandLine::tr("--row \"%1\": the quantity").arg(text), fields.at(1));
        return std::nullopt;
    }
    row.quantity = *quantity;
    if (fields.size() > 2 && !fields.at(2).trimmed().isEmpty()) {
        row.price = ValueText::number(fields.at(2));
        if (!row.price) {
            *error =
                ValueText::notANumber(CommandLine::tr("--row \"%1\": the price").arg(text), fields.at(2));
            return std::nullopt;
        }
    }
    if (fields.size() > 3)
        row.tax = fields.at(3).trimmed();
    return row;
}

int newDocument(Invocation& invocation)
{
    const Arguments& arguments = invocation.arguments;
    for (const char* option : {"type", "client"}) {
        if (const int status = invocation.require(s(option)); status != Success)
            return status;
    }
    qint64 type = 0;
    if (const int status = readType(invocation, &type); status != Success)
        return status;
    QDate date;
    double rate = 1;
    if (const int status = invocation.date(s("date"), &date); status != Success)
        return status;
    if (const int status = invocation.number(s("rate"), &rate); status != Success)
        return status;
    if (arguments.has(s("rate")) && !arguments.has(s("currency")))
        return invocation.usageError(
            CommandLine::tr("--rate needs --currency: it is the document currency's rate."));
    int level = 1;
    if (arguments.has(s("level"))) {
        bool ok = false;
        level = arguments.value(s("level")).toInt(&ok);
        if (!ok || level < 1 || level > documents::PriceLevels::kCount)
            return invocation.usageError(
                CommandLine::tr("--level must be a price level from 1 to 5, not \"%1\".")
                    .arg(arguments.value(s("level"))));
    }
    if (arguments.has(s("draft")) && type != DocumentTypes::Invoice)
        return invocation.usageError(
            CommandLine::tr("Only an invoice can be a draft; other documents are numbered when "
                            "they are saved."));
    if (arguments.has(s("start-number"))) {
        bool ok = false;
        arguments.value(s("start-number")).toLongLong(&ok);
        if (!ok)
            return invocation.usageError(CommandLine::tr("--start-number must be a whole number, not \"%1\".")
                                             .arg(arguments.value(s("start-number"))));
    }
    QList<RowSpec> rows;
    for (const QString& text : arguments.values(s("row"))) {
        QString error;
        const std::optional<RowSpec> row = readRow(text, &error);
        if (!row)
            return invocation.usageError(error);
        rows << *row;
    }

    DocumentController editor(invocation.session.store(), invocation.prompter);
    Record* document = editor.newDocument(type);
    RecordLookup lookup(editor.context());
    QString error;
    // The client field takes a client only when exactly one has the name; say which it was.
    if (!lookup.find(RecordLookup::Kind::Client, arguments.value(s("client")), &error))
        return invocation.refuse(error);
    if (!editor.clientEntered(arguments.value(s("client"))))
        return Refused;
    if (date.isValid()) {
        document->setValue(s("date_creation"), ValueText::midday(date));
        document->setValue(s("date_completion"), ValueText::midday(date));
        editor.markEdited();
    }
    if (arguments.has(s("currency"))) {
        Record* currency = lookup.find(RecordLookup::Kind::Currency, arguments.value(s("currency")), &error);
        if (!currency)
            return invocation.refuse(error);
        editor.currencyChanged(currency);
        if (arguments.has(s("rate")) && !editor.setExchangeRate(rate))
            return Refused;
    }
    editor.defaultPriceChanged(level);
    for (const RowSpec& spec : std::as_const(rows)) {
        Record* row = editor.addRow();
        // Exactly one item of that name fills the row at the price level; otherwise it is typed.
        editor.itemNameEntered(row, spec.name);
        if (!editor.setQuantity(row, spec.quantity))
            return Refused;
        if (spec.price && !editor.setUnitPrice(row, *spec.price))
            return Refused;
        if (!spec.tax.isEmpty()) {
            Record* tax = lookup.find(RecordLookup::Kind::Tax, spec.tax, &error);
            if (!tax)
                return invocation.refuse(error);
            editor.setRowTax(row, tax);
        }
    }

    if (type == DocumentTypes::Invoice && !arguments.has(s("draft"))) {
        // As printing does: the invoice is finalised on its way and saved with its number.
        if (!editor.canSave() || !editor.finalizeIfNeeded() || !editor.save(DocumentController::Sender::None))
            return Refused;
    } else if (!editor.save(DocumentController::Sender::Control)) {
        return Refused;
    }
    printDocumentMade(invocation, document);
    return Success;
}

int listDocuments(Invocation& invocation)
{
    const Arguments& arguments = invocation.arguments;
    std::vector<predicate::Predicate> conditions;
    if (arguments.has(s("type"))) {
        qint64 type = 0;
        if (const int status = readType(invocation, &type); status != Success)
            return status;
        conditions.push_back(
            predicate::Predicate::compare(s("type"), predicate::Predicate::Operator::Equal, type));
    }
    predicate::Predicate where;
    if (const int status = invocation.where(&where); status != Success)
        return status;
    // Documents lists read relative dates ("@this_month" ...) as the browser does.
    conditions.push_back(*format::replaceRelativeDates(where));

    QList<store::SortDescriptor> sort = {{s("date_creation"), false}, {s("created"), false}};
    if (arguments.has(s("sort"))) {
        const QString text = arguments.value(s("sort"));
        const QString key = text.section(QLatin1Char(':'), 0, 0);
        const QString direction = text.section(QLatin1Char(':'), 1);
        if (key.isEmpty() ||
            (!direction.isEmpty() && direction != QLatin1String("asc") &&
             direction != QLatin1String("desc")) ||
            text.count(QLatin1Char(':')) > 1)
            return invocation.usageError(
                CommandLine::tr("--sort \"%1\": write KEY, KEY:asc or KEY:desc, like date_creation:desc.")
                    .arg(text));
        const store::EntityDescription* documents = invocation.session.store().model().entity(s("Documents"));
        if (!key.contains(QLatin1Char('.')) && documents && !documents->attribute(key))
            return invocation.refuse(
                CommandLine::tr("Documents have no attribute \"%1\" to sort by.").arg(key));
        const bool ascending = direction != QLatin1String("desc");
        sort = {{key, ascending}};
        // Equal dates are ordered by number, as the browser orders them.
        if (key.startsWith(QLatin1String("date_")))
            sort << store::SortDescriptor{s("number"), ascending};
    }

    store::StoreError error;
    const QList<Record*> documents = invocation.session.context().fetch(
        store::FetchRequest(s("Documents"), predicate::Predicate::andOf(std::move(conditions)), sort),
        &error);
    if (error.isError())
        return invocation.refuse(error.message());
    if (invocation.output.isJson()) {
        QJsonArray array;
        for (const Record* document : documents)
            array << RecordJson::document(document);
        invocation.output.json(array);
        return Success;
    }
    using Align = TextTable::Align;
    TextTable table({{CommandLine::tr("Number")},
                     {CommandLine::tr("Type")},
                     {CommandLine::tr("Date")},
                     {CommandLine::tr("Client")},
                     {CommandLine::tr("Total"), Align::Right},
                     {CommandLine::tr("Status")}});
    for (const Record* document : documents)
        table.addRow({document->value(s("number_formatted")).toString(), DocumentText::typeName(document),
                      ValueText::day(document->value(s("date_creation"))),
                      document->value(s("client_full_name")).toString(),
                      DocumentText::amount(document, document->value(s("sum_total")).toDouble()),
                      DocumentStatus::of(document)});
    table.write(invocation.output.text());
    return Success;
}

int showDocument(Invocation& invocation)
{
    QString error;
    const Record* document =
        RecordLookup(invocation.session.context()).document(invocation.arguments.words().first(), &error);
    if (!document)
        return invocation.refuse(error);
    if (invocation.output.isJson())
        invocation.output.json(RecordJson::document(document));
    else
        DocumentText::write(invocation.output.text(), document);
    return Success;
}

} // namespace

QList<Command> documentsCommands()
{
    Command add;
    add.words = QStringList{s("documents"), s("new")};
    add.synopsis = s("documents new --type TYPE --client NAME [--date YYYY-MM-DD] [--currency CODE --rate R] "
                     "[--level 1-5] [--row \"NAME;QTY[;PRICE[;TAX]]\"]... [--draft] [--start-number N]");
    add.summary = CommandLine::tr("write a new invoice, quotation or other document");
    add.help = CommandLine::tr(
        "Writes a new document as the document editor does and saves it: the client's payment\n"
        "type, bank and due date (or the company's), rows with their taxes, the tax summary and\n"
        "the sums. An invoice is finalised: it gets the next number of its type and year and\n"
        "counts for stock and payments, unless --draft keeps it a draft without a number. Every\n"
        "other type is numbered when it is saved. Prints the document's number (a draft's text\n"
        "\"DRAFT - ...\") and its identifier, one per line.\n"
        "\n"
        "Options:\n"
        "  --type TYPE          invoice, proforma, estimate, quotation, delivery_note,\n"
        "                       credit_note, credit_memo or purchase_order (required)\n"
        "  --client NAME        the client's full name (required)\n"
        "  --date YYYY-MM-DD    the document's date (default: today); it picks the year whose\n"
        "                       numbers the document takes\n"
        "  --currency CODE      the document's currency, by ISO code (default: the company's)\n"
        "  --rate R             how much one unit of that currency is worth in the company's\n"
        "                       currency (default 1); it converts the tax summary\n"
        "  --level N            the price level (1 to 5) the item rows take their prices from\n"
        "  --row \"NAME;QTY[;PRICE[;TAX]]\"\n"
        "                       a row; repeat for more. When NAME is the name of an item, the\n"
        "                       row takes that item with its code, unit, tax and price (PRICE, if\n"
        "                       given, replaces the price). Otherwise it is a typed row with the\n"
        "                       company's default tax and unit and PRICE (0 without it). TAX names\n"
        "                       a tax for the row. Amounts are written like 1234.5.\n"
        "  --draft              keep an invoice a draft (finalise it later with documents finalize)\n"
        "  --start-number N     the number to start with when this is the first document of its\n"
        "                       type in the year (1 to 99999; default 1)\n"
        "\n"
        "Examples:\n"
        "  corvanta-cli documents new --type invoice --client \"Acme Ltd\" --row \"Bolt;20\" \\\n"
        "      --row \"Installation;2;45;10%\"\n"
        "  corvanta-cli documents new --type quotation --client \"Jane Doe\" --currency EUR --rate 1.08 \\\n"
        "      --row \"Consulting;8\"");
    add.options = {
        {s("type"), true, false},     {s("client"), true, false}, {s("date"), true, false},
        {s("currency"), true, false}, {s("rate"), true, false},   {s("level"), true, false},
        {s("row"), true, true},       {s("draft"), false, false}, {s("start-number"), true, false}};
    add.textAnswer = [](const Arguments& arguments) {
        return arguments.has(s("start-number")) ? std::optional<QString>(arguments.value(s("start-number")))
                                                : std::nullopt;
    };
    add.run = newDocument;

    Command list;
    list.words = QStringList{s("documents"), s("list")};
    list.synopsis = s("documents list [--type TYPE] [--where PREDICATE] [--sort KEY[:asc|:desc]]");
    list.summary = CommandLine::tr("list documents with their totals and status");
    list.help = CommandLine::tr(
        "Lists documents, newest first, with their number, type, date, client, total in the\n"
        "document's currency and status: draft, paid, unpaid, cancelled, or nothing for the\n"
        "types that are not paid (only final invoices are).\n"
        "\n"
        "Options:\n"
        "  --type TYPE          only documents of this type (invoice, quotation ...)\n"
        "  --where PREDICATE    only the documents the condition selects, in the language of the\n"
        "                       smart folders; relative dates such as \"@this_month\" may be used\n"
        "  --sort KEY[:asc|:desc]\n"
        "                       order by an attribute (number_formatted, date_creation, date_due,\n"
        "                       sum_total, client_full_name ...); ascending unless :desc\n"
        "\n"
        "Examples:\n"
        "  corvanta-cli documents list --type invoice\n"
        "  corvanta-cli documents list --where 'sum_total != payments.@sum.amount && type == 0 && \\\n"
        "      draft == NO && cancel_reference == NULL' --sort date_due\n"
        "  corvanta-cli documents list --where 'date_creation >= \"@this_month\"' --sort sum_total:desc");
    list.options = {{s("type"), true, false}, {s("where"), true, false}, {s("sort"), true, false}};
    list.run = listDocuments;

    Command show;
    show.words = QStringList{s("documents"), s("show")};
    show.synopsis = s("documents show NUMBER|IDENTIFIER");
    show.summary = CommandLine::tr("show one document with its rows, taxes, sums and payments");
    show.help = CommandLine::tr(
        "Shows the document whose number (number_formatted, like INVOICE/2024-0001) or identifier\n"
        "is given: its client, dates, currency, rows, tax summary, sums and payments, amounts in\n"
        "the document's currency. A draft is named by its identifier.\n"
        "\n"
        "Examples:\n"
        "  corvanta-cli documents show INVOICE/2024-0001\n"
        "  corvanta-cli --json documents show INVOICE/2024-0001");
    show.minWords = 1;
    show.maxWords = 1;
    show.run = showDocument;
    return {add, list, show};
}

void printDocumentMade(Invocation& invocation, const Record* document)
{
    if (invocation.output.isJson()) {
        invocation.output.json(RecordJson::document(document));
        return;
    }
    invocation.output.text() << document->value(QStringLiteral("number_formatted")).toString() << '\n'
                             << document->value(QStringLiteral("identifier")).toString() << '\n';
}

} // namespace corvanta::cli
