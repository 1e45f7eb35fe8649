#include "cliprompter.h"
#include "commandline.h"
#include "commands.h"
#include "exchange/addressbookimport.h"
#include "exchange/desktopaddressbooks.h"
#include "exchange/vcardreader.h"
#include "output.h"
#include "session.h"

#include <QJsonArray>

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

} // namespace

QList<Command> importCommands()
{
    return addressBookCommands();
}

} // namespace corvanta::cli
