#include "cliprompter.h"
#include "commandline.h"
#include "commands.h"
#include "exchange/addressbookimport.h"
#include "exchange/clientsimport.h"
#include "exchange/csvpreview.h"
#include "exchange/csvsplitter.h"
#include "exchange/desktopaddressbooks.h"
#include "exchange/importfields.h"
#include "exchange/itemsimport.h"
#include "exchange/textdecoder.h"
#include "exchange/vcardreader.h"
#include "model/companycache.h"
#include "output.h"
#include "recordlookup.h"
#include "session.h"
#include "store/record.h"

#include <QJsonArray>
#include <tuple>

namespace corvanta::cli {

namespace {

QString s(const char* text)
{
    return QString::fromLatin1(text);
}

// Adds the persons as clients and prints the closing report, or with --json the number added.
int addPersons(Invocation& invocation, const QList<exchange::AddressBookPerson>& persons)
{
    exchange::AddressBookImport import(invocation.session.store(), invocation.prompter);
    const std::optional<int> added = import.importPersons(persons);
    if (!added)
        return Refused;
    const QStringList report = invocation.prompter.takeMessages(); // the closing report is the result
    if (invocation.output.isJson())
        invocation.output.json(QJsonObject{{s("added"), *added}});
    else
        invocation.output.text() << report.join(QLatin1Char('\n')) << '\n';
    return Success;
}

int importVCards(Invocation& invocation)
{
    // Every file is read before anything is added, so that a bad one adds nothing.
    QList<exchange::AddressBookPerson> persons;
    for (const QString& file : invocation.arguments.words()) {
        QList<exchange::AddressBookPerson> read;
        QString error;
        if (!exchange::VCardReader::readFile(file, &read, &error))
            return invocation.refuse(error);
        persons += read;
    }
    return addPersons(invocation, persons);
}

int listAddressBooks(Invocation& invocation)
{
    QString reason;
    const QList<exchange::DesktopAddressBooks::Book> books = exchange::DesktopAddressBooks().books(&reason);
    if (!reason.isEmpty())
        return invocation.refuse(reason);
    QJsonArray list;
    for (const exchange::DesktopAddressBooks::Book& book : books) {
        if (invocation.output.isJson())
            list << QJsonObject{{s("uid"), book.uid}, {s("name"), book.name}};
        else
            invocation.output.text() << book.name << '\t' << book.uid << '\n';
    }
    if (invocation.output.isJson())
        invocation.output.json(list);
    return Success;
}

int importAddressBook(Invocation& invocation)
{
    QString reason;
    const QList<exchange::AddressBookPerson> persons =
        exchange::DesktopAddressBooks().persons(invocation.arguments.words().first(), &reason);
    if (!reason.isEmpty())
        return invocation.refuse(reason);
    return addPersons(invocation, persons);
}

QList<Command> addressBookCommands()
{
    const QString rules = CommandLine::tr(
        "A person whose unique identifier (a vCard's UID) a client already carries is left out, so\n"
        "that importing again adds nothing; a card without a UID is known by an identifier made\n"
        "from its fields. An entry marked as a company (KIND:org, X-ABShowAs:COMPANY) becomes a\n"
        "company named by its organisation (or its person's names), any other a client of type 2\n"
        "with its first and last name; every phone and e-mail is kept, joined by \",\", and every\n"
        "postal address, the first one the default. Prints the closing report; with --json\n"
        "{\"added\": N}.");

    Command vcard;
    vcard.words = QStringList{s("import"), s("vcard")};
    vcard.synopsis = s("import vcard FILE...");
    vcard.summary = CommandLine::tr("add the persons of vCard files as clients");
    vcard.help =
        CommandLine::tr("Adds every person of the vCard files (versions 2.1, 3.0 and 4.0; a file may hold\n"
                        "many cards) as a client, in one save. A file that cannot be read or holds no\n"
                        "vCard is refused and nothing is added.\n") +
        rules +
        CommandLine::tr("\n\nExample:\n"
                        "  corvanta-cli import vcard contacts.vcf");
    vcard.minWords = 1;
    vcard.maxWords = 1000;
    vcard.run = importVCards;

    Command books;
    books.words = QStringList{s("import"), s("address-books")};
    books.synopsis = s("import address-books");
    books.summary = CommandLine::tr("list the desktop's address books");
    books.help = CommandLine::tr(
        "Lists the address books of the desktop's contacts service (evolution-data-server), each\n"
        "name with its uid; with --json [{\"name\", \"uid\"}]. Refused, with the reason, where\n"
        "there is no session bus or no such service.\n\n"
        "Example:\n"
        "  corvanta-cli import address-books");
    books.database = Command::Database::None;
    books.run = listAddressBooks;

    Command book;
    book.words = QStringList{s("import"), s("address-book")};
    book.synopsis = s("import address-book BOOK");
    book.summary = CommandLine::tr("add the persons of a desktop address book as clients");
    book.help = CommandLine::tr("Adds every person of the desktop's address book BOOK (its name or uid, as\n"
                                "\"import address-books\" lists them) as a client, in one save.\n") +
                rules +
                CommandLine::tr("\n\nExample:\n"
                                "  corvanta-cli import address-book Personal");
    book.minWords = 1;
    book.maxWords = 1;
    book.run = importAddressBook;
    return {vcard, books, book};
}

// The settings both CSV imports share: the file read with --encoding and --separator into rows,
// and the --fields keys in column order, each one the compose pop-up offers.
struct CsvSource
{
    QList<QStringList> rows;
    QStringList keys;
};

int readCsv(Invocation& invocation, const exchange::ImportFields& offered, CsvSource* source)
{
    const Arguments& arguments = invocation.arguments;
    if (const int status = invocation.require(s("fields")); status != Success)
        return status;
    QString separator = arguments.value(s("separator"), exchange::CsvSplitter::kDefaultSeparator);
    if (separator == s("\\t") || separator == s("tab"))
        separator = s("\t");
    if (separator.isEmpty())
        return invocation.usageError(
            CommandLine::tr("--separator needs the text that separates the fields."));

    const QStringList keys = arguments.value(s("fields")).split(QLatin1Char(','));
    for (qsizetype index = 0; index < keys.size(); ++index) {
        if (!offered.keys().contains(keys.at(index)))
            return invocation.refuse(
                CommandLine::tr("There is no field \"%1\" to import into; the fields are: %2.")
                    .arg(keys.at(index), offered.keys().join(s(", "))));
        if (keys.indexOf(keys.at(index)) != index)
            return invocation.refuse(
                CommandLine::tr("The field \"%1\" is given twice in --fields.").arg(keys.at(index)));
    }

    exchange::CsvPreview preview(invocation.prompter);
    preview.setSeparator(separator);
    preview.setEncoding(arguments.value(s("encoding"), exchange::TextDecoder::kDefaultEncoding));
    if (!preview.setPath(arguments.words().first()))
        return Refused; // the "Warning" alert says why
    *source = {preview.rows(), keys};
    return Success;
}

// The position chosen on one of the import window's pop-ups: --NAME, from 0 to `last`.
int position(Invocation& invocation, const QString& option, int last, int* value)
{
    if (!invocation.arguments.has(option))
        return Success;
    bool ok = false;
    const int chosen = invocation.arguments.value(option).toInt(&ok);
    if (!ok || chosen < 0 || chosen > last)
        return invocation.usageError(CommandLine::tr("--%1 must be a number from 0 to %2, not \"%3\".")
                                         .arg(option)
                                         .arg(last)
                                         .arg(invocation.arguments.value(option)));
    *value = chosen;
    return Success;
}

// The closing report of an import as the result, or with --json the number added.
int reportAdded(Invocation& invocation, const std::optional<int>& added)
{
    if (!added)
        return Refused;
    const QStringList report = invocation.prompter.takeMessages();
    if (invocation.output.isJson())
        invocation.output.json(QJsonObject{{s("added"), *added}});
    else
        invocation.output.text() << report.join(QLatin1Char('\n')) << '\n';
    return Success;
}

int importClients(Invocation& invocation)
{
    store::Store& store = invocation.session.store();
    exchange::ClientsImport::Options options;
    options.clientType = int(model::CompanyCache::of(store).value(s("default_client_type")).toLongLong());
    if (const int status = position(invocation, s("type"), 2, &options.clientType); status != Success)
        return status;
    options.tag = options.clientType;
    if (const int status = position(invocation, s("tag"), 2, &options.tag); status != Success)
        return status;
    CsvSource source;
    if (const int status =
            readCsv(invocation, exchange::ImportFields::clients(invocation.session.context()), &source);
        status != Success)
        return status;
    options.columnKeys = source.keys;
    return reportAdded(invocation,
                       exchange::ClientsImport(store, invocation.prompter).run(source.rows, options));
}

int importItems(Invocation& invocation)
{
    store::Store& store = invocation.session.store();
    exchange::ItemsImport::Options options;
    options.itemType = int(model::CompanyCache::of(store).value(s("default_item_type")).toLongLong());
    if (const int status = position(invocation, s("type"), 1, &options.itemType); status != Success)
        return status;
    options.tag = options.itemType;
    if (const int status = position(invocation, s("tag"), 1, &options.tag); status != Success)
        return status;
    RecordLookup lookup(invocation.session.context());
    for (const auto& [option, kind, ref] : {std::tuple{s("tax"), RecordLookup::Kind::Tax, &options.tax},
                                            std::tuple{s("unit"), RecordLookup::Kind::Unit, &options.unit}}) {
        if (!invocation.arguments.has(option))
            continue;
        QString error;
        const store::Record* record = lookup.find(kind, invocation.arguments.value(option), &error);
        if (!record)
            return invocation.refuse(error);
        *ref = record->ref();
    }
    CsvSource source;
    if (const int status =
            readCsv(invocation, exchange::ImportFields::items(invocation.session.context()), &source);
        status != Success)
        return status;
    options.columnKeys = source.keys;
    return reportAdded(invocation,
                       exchange::ItemsImport(store, invocation.prompter).run(source.rows, options));
}

QList<Command> csvCommands()
{
    const QString dialect = CommandLine::tr(
        "The file is read whole in its encoding; bytes that are not valid in it refuse the import\n"
        "with \"Warning: \" and the reason, as does a file that cannot be read. Lines end at every\n"
        "line break (LF, CR, CR LF, VT, FF, U+0085, U+2028, U+2029); empty lines are left out.\n"
        "Every line is cut at every occurrence of the separator, quotes or not, and every double\n"
        "quote is removed from the fields: a quoted field that holds the separator is cut too. The\n"
        "first line sets the number of columns: a shorter line leaves the rest empty, a longer one\n"
        "loses its extra fields. There is no header line: the first line is imported like the\n"
        "others. The keys of --fields take the columns in order, the first key the first column;\n"
        "columns beyond the keys are left out. All records are stored in one save. Prints the\n"
        "closing report; with --json {\"added\": N}.\n");
    const QString common = CommandLine::tr(
        "  --fields KEY,...   the fields of the columns, in column order (required)\n"
        "  --separator SEP    the text between fields (default \";\"); \"tab\" or \"\\t\" for a tab\n"
        "  --encoding NAME    the file's text encoding, an ICU name or alias (default UTF-8), as\n"
        "                     ISO-8859-1, ISO-8859-15, windows-1252, windows-1250, macintosh,\n"
        "                     UTF-16 (with a byte order mark), UTF-16LE, UTF-16BE\n");
    const QList<OptionSpec> options = {{s("fields"), true, false},
                                       {s("separator"), true, false},
                                       {s("encoding"), true, false},
                                       {s("type"), true, false},
                                       {s("tag"), true, false}};

    Command clients;
    clients.words = QStringList{s("import"), s("clients")};
    clients.synopsis = s("import clients FILE --fields KEY,KEY,... [--separator SEP] [--encoding NAME] "
                         "[--type N] [--tag N]");
    clients.summary = CommandLine::tr("add clients from a delimited text file");
    clients.help =
        CommandLine::tr(
            "Adds a client, with one address, for every line of FILE whose name is not taken: for\n"
            "--type 0 or 1 a line whose first column is the full name of a client is left out; for\n"
            "--type 2 one whose first two columns, joined by a blank in either order, are.\n") +
        dialect +
        CommandLine::tr("\n"
                        "Options:\n") +
        common +
        CommandLine::tr(
            "  --type N           0 company, 1 individual named by its company name, 2 person named\n"
            "                     by first and last name (default: the database's default client kind)\n"
            "  --tag N            the kind tag: 0 Company, 1 Supplier, 2 Individual (default: --type)\n"
            "\n"
            "Keys: company_name, first_name, last_name, tax_number, desc, emails, phones, the\n"
            "address's street, city, state, zip_code and country, and the custom fields that are not\n"
            "hidden, client_custom01 to client_custom10, stored without \"client_\".\n"
            "\n"
            "Example:\n"
            "  corvanta-cli import clients clients.csv --fields company_name,street,zip_code,city \\\n"
            "      --separator , --encoding windows-1252");
    clients.options = options;
    clients.minWords = 1;
    clients.maxWords = 1;
    clients.run = importClients;

    Command items;
    items.words = QStringList{s("import"), s("items")};
    items.synopsis = s("import items FILE --fields KEY,KEY,... [--separator SEP] [--encoding NAME] "
                       "[--type N] [--tax NAME] [--unit NAME] [--tag N]");
    items.summary = CommandLine::tr("add items from a delimited text file");
    items.help =
        CommandLine::tr(
            "Adds an item for every line of FILE whose first column is not the name of an item.\n"
            "The price fields (unit_price, item_custom_price01 ...) are numbers: \",\" is read as\n"
            "the decimal mark, blanks are dropped and the leading number is kept in single precision\n"
            "(\"1 234,50\" is 1234.5, \"12.5EUR\" 12.5, text 0).\n") +
        dialect +
        CommandLine::tr("\n"
                        "Options:\n") +
        common +
        CommandLine::tr(
            "  --type N           0 service, 1 product (default: the database's default item kind)\n"
            "  --tag N            the kind tag: 0 Service, 1 Product (default: --type)\n"
            "  --tax NAME         the tax of every item (default: the company's default tax)\n"
            "  --unit NAME        the unit of every item (default: the company's default unit)\n"
            "\n"
            "Keys: name, code, desc, unit_price, and the custom fields that are not hidden: the\n"
            "price levels item_custom_price01 to item_custom_price05 and item_custom01 to\n"
            "item_custom05, stored without \"item_\".\n"
            "\n"
            "Example:\n"
            "  corvanta-cli import items items.csv --fields name,code,unit_price --tax 10% --unit Each");
    items.options = options + QList<OptionSpec>{{s("tax"), true, false}, {s("unit"), true, false}};
    items.minWords = 1;
    items.maxWords = 1;
    items.run = importItems;
    return {clients, items};
}

} // namespace

QList<Command> importCommands()
{
    return addressBookCommands() + csvCommands();
}

} // namespace corvanta::cli
