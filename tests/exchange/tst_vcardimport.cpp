#include "../documents/documenttestsupport.h"
#include "exchange/addressbookimport.h"
#include "exchange/desktopaddressbooks.h"
#include "exchange/vcardreader.h"

#include <QProcess>
#include <QStringEncoder>
#include <QTemporaryDir>

using namespace corvanta;
using documents::testing::ForcedFailure;
using documents::testing::s;
using documents::testing::TestCompany;
using exchange::AddressBookPerson;
using exchange::VCardReader;

namespace {

// A card written one property a line; "\n" becomes the line end given.
QByteArray card(const char* lines, const char* lineEnd = "\r\n")
{
    return QByteArray(lines).replace("\n", lineEnd);
}

// A person as one line: uid | kind | organisation | first | last | phones | e-mails | addresses.
QString summary(const AddressBookPerson& person)
{
    QStringList addresses;
    for (const AddressBookPerson::PostalAddress& a : person.addresses)
        addresses << QStringList{a.street, a.city, a.state, a.zipCode, a.country}.join(QLatin1Char('/'));
    return QStringList{person.uid,
                       person.company ? s("company") : s("person"),
                       person.organization,
                       person.firstName,
                       person.lastName,
                       person.phones.join(QLatin1Char(';')),
                       person.emails.join(QLatin1Char(';')),
                       addresses.join(QLatin1Char(';'))}
        .join(s(" | "));
}

// A client as one line: type | company name | first | last | phones | e-mails | tags | the
// default address's street | every address's street.
QString clientText(const store::Record* client)
{
    QStringList tags;
    for (const store::Record* tag : client->relatedList(s("tags")))
        tags << tag->value(s("name")).toString();
    QStringList streets;
    for (const store::Record* address : client->relatedList(s("addresses")))
        streets << address->value(s("street")).toString() +
                       (address->value(s("address_note")).isNull() ? s("(no note)") : QString());
    const store::Record* standard = client->related(s("default_address"));
    return QStringList{client->value(s("type")).toString(),
                       client->value(s("company_name")).toString(),
                       client->value(s("first_name")).toString(),
                       client->value(s("last_name")).toString(),
                       client->value(s("phones")).toString(),
                       client->value(s("emails")).toString(),
                       tags.join(QLatin1Char(',')),
                       standard ? standard->value(s("street")).toString() : s("-"),
                       streets.join(QLatin1Char(';'))}
        .join(s(" | "));
}

} // namespace

class tst_VCardImport : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void readCard_data();
    void readCard();
    void cardWithoutUid();
    void splitCards_data();
    void splitCards();
    void readFileRefusals_data();
    void readFileRefusals();
    void importPersons_data();
    void importPersons();
    void secondImportAddsNothing();
    void refusedSaveStoresNothing();
    void desktopBooksUnreachable_data();
    void desktopBooksUnreachable();
};

void tst_VCardImport::readCard_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QString>("expected");

    QTest::newRow("3.0 person")
        << card("BEGIN:VCARD\nVERSION:3.0\nUID:p-1\nN:Smith;John;Q;Dr.;\n"
                "FN:Dr. John Q Smith\nORG:Acme Ltd;Sales\nTEL;TYPE=WORK:+1 555 0100\n"
                "TEL;TYPE=CELL:+1 555 0101\nEMAIL;TYPE=INTERNET:john@acme.example\n"
                "ADR;TYPE=WORK:PO Box 7;Suite 5;1 Main St;Springfield;IL;62701;USA\n"
                "END:VCARD\n")
        << s("p-1 | person | Acme Ltd | John | Smith | +1 555 0100;+1 555 0101 | "
             "john@acme.example | 1 Main St\nSuite 5\nPO Box 7/Springfield/IL/62701/USA");
    QTest::newRow("2.1 quoted-printable UTF-8 with a soft break")
        << card("BEGIN:VCARD\nVERSION:2.1\nUID:p-2\n"
                "N;CHARSET=UTF-8;ENCODING=QUOTED-PRINTABLE:M=C3=BCller;J=C3=\n=BCrgen\n"
                "TEL;WORK;VOICE:+49 30 1234\n"
                "ADR;HOME;CHARSET=UTF-8;ENCODING=QUOTED-PRINTABLE:;;Stra=C3=9Fe "
                "1;K=C3=B6ln;;50667;Deutschland\n"
                "END:VCARD\n")
        << s("p-2 | person |  | Jürgen | Müller | +49 30 1234 |  | Straße 1/Köln//50667/Deutschland");
    QTest::newRow("2.1 quoted-printable Latin-1")
        << card("BEGIN:VCARD\nVERSION:2.1\nUID:p-3\n"
                "N;CHARSET=ISO-8859-1;ENCODING=QUOTED-PRINTABLE:Gr=FCn;Ren=E9\nEND:VCARD\n")
        << s("p-3 | person |  | René | Grün |  |  | ");
    QTest::newRow("2.1 eight-bit text without a character set")
        << card("BEGIN:VCARD\nVERSION:2.1\nUID:p-4\nN:Gr\xfcn;Ana\nEND:VCARD\n")
        << s("p-4 | person |  | Ana | Grün |  |  | ");
    QTest::newRow("4.0 company by KIND:org, tel URI")
        << card("BEGIN:VCARD\nVERSION:4.0\nUID:urn:uuid:org-1\nKIND:org\nFN:Globex\nORG:Globex Corporation\n"
                "TEL;VALUE=uri;TYPE=work:tel:+44-20-7946-0000\nTEL;VALUE=uri:tel:+1-555-0100;ext=12\n"
                "EMAIL:info@globex.example\nEND:VCARD\n")
        << s("urn:uuid:org-1 | company | Globex Corporation |  |  | +44-20-7946-0000;+1-555-0100;ext=12 | "
             "info@globex.example | ");
    QTest::newRow("3.0 company by X-ABShowAs, grouped properties")
        << card("BEGIN:VCARD\nVERSION:3.0\nUID:org-2\nN:;;;;\nFN:Initech\nORG:Initech;\nX-ABShowAs:COMPANY\n"
                "item1.TEL;type=pref:555 0199\nitem2.EMAIL;type=INTERNET:a@initech.example\n"
                "item2.EMAIL;type=INTERNET:b@initech.example\nEND:VCARD\n",
                "\n")
        << s("org-2 | company | Initech |  |  | 555 0199 | a@initech.example;b@initech.example | ");
    QTest::newRow("4.0 company named by FN alone")
        << card("BEGIN:VCARD\nVERSION:4.0\nUID:org-3\nKIND:org\nFN:Hooli\nEND:VCARD\n")
        << s("org-3 | company | Hooli |  |  |  |  | ");
    QTest::newRow("full name when N names no one")
        << card("BEGIN:VCARD\nVERSION:3.0\nUID:p-5\nFN:Ann Lee\nEND:VCARD\n")
        << s("p-5 | person |  | Ann | Lee |  |  | ");
    QTest::newRow("folded lines and escapes")
        << card("BEGIN:VCARD\nVERSION:3.0\nUID:p-6\nN:O'Brien;Pat\nEMAIL:pat.obrien@exa\n mple.org\n"
                "ADR:;;1 Main St\\, Apt 2;Dublin;;;Ire\n\tland\nNOTE:a\\nb\nEND:VCARD\n")
        << s("p-6 | person |  | Pat | O'Brien |  | pat.obrien@example.org | 1 Main St, Apt "
             "2/Dublin///Ireland");
    QTest::newRow("several addresses in order, empty ones left out")
        << card("BEGIN:VCARD\nVERSION:3.0\nUID:p-7\nN:Roe;Jane\nADR;TYPE=HOME:;;2 Elm St;Shelbyville;;;\n"
                "ADR:;;;;;;\nADR;TYPE=WORK:;;1 Main St;Springfield;;;\nEND:VCARD\n")
        << s("p-7 | person |  | Jane | Roe |  |  | 2 Elm St/Shelbyville///;1 Main St/Springfield///");
}

void tst_VCardImport::readCard()
{
    QFETCH(QByteArray, text);
    QFETCH(QString, expected);
    const std::optional<AddressBookPerson> person = VCardReader::readCard(text);
    QVERIFY(person);
    QCOMPARE(summary(*person), expected);
}

void tst_VCardImport::cardWithoutUid()
{
    const QByteArray ann = card("BEGIN:VCARD\nVERSION:3.0\nN:Lee;Ann\nTEL:555 0100\nEND:VCARD\n");
    const std::optional<AddressBookPerson> first = VCardReader::readCard(ann);
    QVERIFY(first);
    QVERIFY(!QUuid::fromString(first->uid).isNull());
    // The same card in another file, with other line ends and folding, is the same entry.
    const std::optional<AddressBookPerson> again = VCardReader::readCard(
        card("BEGIN:VCARD\nVERSION:3.0\nN:Lee;A\n nn\nTEL:555 0100\nEND:VCARD\n", "\n"));
    QVERIFY(again);
    QCOMPARE(again->uid, first->uid);
    // Another phone makes another entry.
    const std::optional<AddressBookPerson> other =
        VCardReader::readCard(card("BEGIN:VCARD\nVERSION:3.0\nN:Lee;Ann\nTEL:555 0101\nEND:VCARD\n"));
    QVERIFY(other);
    QVERIFY(other->uid != first->uid);
    // A card with nothing to make a client from is no person.
    QVERIFY(!VCardReader::readCard(card("BEGIN:VCARD\nVERSION:3.0\nUID:x\nNOTE:just a note\nEND:VCARD\n")));
}

void tst_VCardImport::splitCards_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<int>("cards");
    QTest::addColumn<QString>("names"); // the last names read, in order

    QTest::newRow("three versions, CR LF")
        << card("BEGIN:VCARD\nVERSION:2.1\nN:One;A\nEND:VCARD\nBEGIN:VCARD\nVERSION:3.0\nN:Two;B\nEND:VCARD\n"
                "BEGIN:VCARD\nVERSION:4.0\nN:Three;C;;;\nEND:VCARD\n")
        << 3 << s("One,Two,Three");
    QTest::newRow("old Mac line ends, lower case, text between cards")
        << card("Exported contacts\nbegin:vcard\nversion:3.0\nn:One;A\nend:vcard\n\nnoise\n"
                "BEGIN:VCARD\nVERSION:3.0\nN:Two;B\nEND:VCARD",
                "\r")
        << 2 << s("One,Two");
    QTest::newRow("a card nested in AGENT stays inside its card")
        << card("BEGIN:VCARD\nVERSION:2.1\nN:Boss;A\nAGENT:\nBEGIN:VCARD\nVERSION:2.1\nN:Assistant;B\n"
                "END:VCARD\nEND:VCARD\nBEGIN:VCARD\nVERSION:2.1\nN:Next;C\nEND:VCARD\n")
        << 2 << s("Boss,Next");
    QTest::newRow("a soft break before a line that reads END:VCARD")
        << card("BEGIN:VCARD\nVERSION:2.1\nN:Soft;A\nNOTE;ENCODING=QUOTED-PRINTABLE:x=\nEND:VCARD\n"
                "TEL:555\nEND:VCARD\n")
        << 1 << s("Soft");
    QTest::newRow("a folded line that reads END:VCARD")
        << card("BEGIN:VCARD\nVERSION:3.0\nN:Fold;A\nNOTE:x\n END:VCARD\nTEL:555\nEND:VCARD\n") << 1
        << s("Fold");
    QTest::newRow("a card cut off at the end of the file")
        << card("BEGIN:VCARD\nVERSION:3.0\nN:Whole;A\nEND:VCARD\nBEGIN:VCARD\nVERSION:3.0\nN:Cut;B\n") << 2
        << s("Whole,Cut");
    QTest::newRow("lines that name no property") << card("BEGIN:VCARD\nVERSION:3.0\nitem1.\nN\nitem2.:x\nN;"
                                                         "TYPE=\n:y\nVr. Jo:x\n\nN:Kept;A\nEND:VCARD\n")
                                                 << 1 << s("Kept");
    QTest::newRow("group cards are no persons")
        << card("BEGIN:VCARD\nVERSION:4.0\nKIND:group\nFN:Team\nMEMBER:urn:uuid:p-1\nEND:VCARD\n"
                "BEGIN:VCARD\nVERSION:3.0\nN:Member;A\nEND:VCARD\n"
                "BEGIN:VCARD\nVERSION:3.0\nFN:Friends\nX-ADDRESSBOOKSERVER-KIND:group\nEND:VCARD\n"
                "BEGIN:VCARD\nVERSION:3.0\nFN:List\nX-EVOLUTION-LIST:TRUE\nEMAIL:a@b.example\nEND:VCARD\n")
        << 4 << s("Member");
    QTest::newRow("UTF-8 with a byte order mark") << card("\xEF\xBB\xBF"
                                                          "BEGIN:VCARD\nVERSION:3.0\nN:Bom;A\nEND:VCARD\n")
                                                  << 1 << s("Bom");
    const QString utf16 = s("BEGIN:VCARD\r\nVERSION:3.0\r\nN:Gr\u00fcn;A\r\nEND:VCARD\r\n");
    QTest::newRow("UTF-16 little-endian")
        << QByteArray("\xFF\xFE") + QByteArray(QStringEncoder(QStringConverter::Utf16LE).encode(utf16)) << 1
        << s("Grün");
    QTest::newRow("no card") << QByteArray("N:Lonely;A\nEND:VCARD\n") << 0 << QString();
}

void tst_VCardImport::splitCards()
{
    QFETCH(QByteArray, text);
    QFETCH(int, cards);
    QFETCH(QString, names);
    QCOMPARE(VCardReader::splitCards(text).size(), cards);
    QStringList read;
    for (const AddressBookPerson& person : VCardReader::read(text))
        read << person.lastName;
    QCOMPARE(read.join(QLatin1Char(',')), names);
}

void tst_VCardImport::readFileRefusals_data()
{
    QTest::addColumn<QByteArray>("content"); // none: the file is missing
    QTest::addColumn<QString>("error");

    QTest::newRow("missing file") << QByteArray() << s("cannot be read");
    QTest::newRow("a file without a card") << QByteArray("name;phone\nAnn;555\n") << s("holds no vCard");
    QTest::newRow("an empty file") << QByteArray("") << s("holds no vCard");
}

void tst_VCardImport::readFileRefusals()
{
    QFETCH(QByteArray, content);
    QFETCH(QString, error);
    QTemporaryDir dir;
    const QString path = dir.filePath(s("contacts.vcf"));
    if (!content.isNull()) {
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(content);
    }
    QList<AddressBookPerson> persons{AddressBookPerson{}};
    QString message;
    QVERIFY(!VCardReader::readFile(path, &persons, &message));
    QVERIFY2(message.contains(error) && message.contains(path), qPrintable(message));
    QCOMPARE(persons.size(), 1); // left as it was
}

void tst_VCardImport::importPersons_data()
{
    QTest::addColumn<QByteArray>("cards");
    QTest::addColumn<int>("added");
    QTest::addColumn<QStringList>("clients"); // by identifier

    QTest::newRow("person with three phones")
        << card("BEGIN:VCARD\nVERSION:3.0\nUID:p-1\nN:Smith;John\nORG:Acme\nTEL:1\nTEL:2\nTEL:3\n"
                "EMAIL:j@acme.example\nEND:VCARD\n")
        << 1 << QStringList{s("2 |  | John | Smith | 1,2,3 | j@acme.example | Individual | - | ")};
    QTest::newRow("company by KIND:org")
        << card("BEGIN:VCARD\nVERSION:4.0\nUID:c-1\nKIND:org\nN:Doe;Jane;;;\nORG:Globex\nEMAIL:a@g.example\n"
                "EMAIL:b@g.example\nEND:VCARD\n")
        << 1 << QStringList{s("0 | Globex |  |  |  | a@g.example,b@g.example | Company | - | ")};
    QTest::newRow("company without organisation")
        << card("BEGIN:VCARD\nVERSION:3.0\nUID:c-2\nN:Doe;Jane\nX-ABShowAs:COMPANY\nEND:VCARD\n") << 1
        << QStringList{s("0 | Jane Doe |  |  |  |  | Company | - | ")};
    QTest::newRow("company without organisation or first name")
        << card("BEGIN:VCARD\nVERSION:3.0\nUID:c-3\nN:Doe;\nX-ABShowAs:COMPANY\nEND:VCARD\n") << 1
        << QStringList{s("0 | Doe |  |  |  |  | Company | - | ")};
    QTest::newRow("several addresses, the first the default")
        << card("BEGIN:VCARD\nVERSION:3.0\nUID:p-2\nN:Roe;Jane\nADR:;;2 Elm St;Shelbyville;;;\n"
                "ADR:;;1 Main St;Springfield;;;\nADR:;;3 Oak Rd;Ogdenville;;;\nEND:VCARD\n")
        << 1
        << QStringList{s("2 |  | Jane | Roe |  |  | Individual | 2 Elm St | 2 Elm St;1 Main St;3 Oak Rd")};
    QTest::newRow("the same person twice is added once")
        << card("BEGIN:VCARD\nVERSION:3.0\nUID:p-3\nN:Twin;A\nEND:VCARD\n"
                "BEGIN:VCARD\nVERSION:3.0\nUID:p-3\nN:Twin;B\nEND:VCARD\n")
        << 1 << QStringList{s("2 |  | A | Twin |  |  | Individual | - | ")};
    QTest::newRow("a person with no names") << card("BEGIN:VCARD\nVERSION:3.0\nUID:p-4\nTEL:555\nEND:VCARD\n")
                                            << 1 << QStringList{s("2 |  |  |  | 555 |  | Individual | - | ")};
}

void tst_VCardImport::importPersons()
{
    QFETCH(QByteArray, cards);
    QFETCH(int, added);
    QFETCH(QStringList, clients);

    TestCompany company;
    exchange::AddressBookImport import(company.store(), company.prompter());
    QCOMPARE(import.importPersons(VCardReader::read(cards)), std::optional<int>(added));
    QCOMPARE(company.asked(),
             QStringList{s("Import Address Book | %1 clients successfully added. | OK").arg(added)});

    QStringList stored;
    for (const store::Record* client :
         company.main().fetch(store::FetchRequest(s("Clients"), {}, {{s("identifier")}})))
        stored << clientText(client);
    QCOMPARE(stored, clients);
}

void tst_VCardImport::secondImportAddsNothing()
{
    TestCompany company;
    const QByteArray cards = card("BEGIN:VCARD\nVERSION:3.0\nUID:p-1\nN:Smith;John\nEND:VCARD\n"
                                  "BEGIN:VCARD\nVERSION:3.0\nN:Lee;Ann\nADR:;;1 Main St;;;;\nEND:VCARD\n");
    exchange::AddressBookImport import(company.store(), company.prompter());
    QCOMPARE(import.importPersons(VCardReader::read(cards)), std::optional<int>(2));
    QCOMPARE(company.count("Clients"), 2);
    QCOMPARE(company.count("Addresses"), 1);
    company.prompter().clear();
    QCOMPARE(import.importPersons(VCardReader::read(cards)), std::optional<int>(0));
    QCOMPARE(company.count("Clients"), 2);
    QCOMPARE(company.count("Addresses"), 1);
    QCOMPARE(company.asked(), QStringList{s("Import Address Book | 0 clients successfully added. | OK")});
}

void tst_VCardImport::refusedSaveStoresNothing()
{
    TestCompany company;
    exchange::AddressBookImport import(company.store(), company.prompter());
    const QList<AddressBookPerson> persons = VCardReader::read(
        card("BEGIN:VCARD\nVERSION:3.0\nUID:p-1\nN:Smith;John\nADR:;;1 Main St;;;;\nEND:VCARD\n"));
    {
        ForcedFailure failure(company.path(), s("Addresses"), s("INSERT"));
        QCOMPARE(import.importPersons(persons), std::nullopt);
    }
    QCOMPARE(company.count("Clients"), 0);
    QCOMPARE(company.prompter().questions().size(), 1);
    QVERIFY(!company.prompter().titles().contains(s("Import Address Book")));
    // Nothing half-done is left in the way of a later import.
    company.prompter().clear();
    QCOMPARE(import.importPersons(persons), std::optional<int>(1));
    QCOMPARE(company.count("Addresses"), 1);
}

void tst_VCardImport::desktopBooksUnreachable_data()
{
    QTest::addColumn<QString>("bus"); // the session bus's address; "private" for one of our own
    QTest::addColumn<QString>("reason");

    QTest::newRow("no session bus") << QString() << s("There is no desktop session bus");
    QTest::newRow("a bus that is not there")
        << s("unix:path=/nonexistent/corvanta/bus") << s("The desktop session bus cannot be reached");
    QTest::newRow("a bus without the contacts service")
        << s("private") << s("The desktop's contacts service (evolution-data-server) is not installed");
}

void tst_VCardImport::desktopBooksUnreachable()
{
    QFETCH(QString, bus);
    QFETCH(QString, reason);
    QTemporaryDir runtime; // holds no bus socket
    QProcess daemon;
    if (bus == s("private")) {
        // A session bus of our own that can start no service at all.
        QFile config(runtime.filePath(s("bus.conf")));
        QVERIFY(config.open(QIODevice::WriteOnly));
        config.write("<!DOCTYPE busconfig PUBLIC \"-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN\"\n"
                     " \"http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd\">\n"
                     "<busconfig><type>session</type><listen>unix:dir=" +
                     runtime.path().toUtf8() +
                     "</listen><auth>EXTERNAL</auth><policy context=\"default\">"
                     "<allow send_destination=\"*\" eavesdrop=\"true\"/><allow eavesdrop=\"true\"/>"
                     "<allow own=\"*\"/></policy></busconfig>\n");
        config.close();
        daemon.start(s("dbus-daemon"),
                     {s("--config-file=") + config.fileName(), s("--nofork"), s("--print-address")});
        if (!daemon.waitForStarted())
            QSKIP("dbus-daemon is not installed");
        QVERIFY(daemon.waitForReadyRead(10000));
        bus = QString::fromUtf8(daemon.readLine()).trimmed();
    }
    const QByteArray savedAddress = qgetenv("DBUS_SESSION_BUS_ADDRESS");
    const QByteArray savedRuntime = qgetenv("XDG_RUNTIME_DIR");
    qputenv("DBUS_SESSION_BUS_ADDRESS", bus.toUtf8());
    qputenv("XDG_RUNTIME_DIR", runtime.path().toUtf8());

    const exchange::DesktopAddressBooks books(std::chrono::seconds(5));
    QString listReason;
    QVERIFY(books.books(&listReason).isEmpty());
    QString readReason;
    QVERIFY(books.persons(s("Personal"), &readReason).isEmpty());

    qputenv("DBUS_SESSION_BUS_ADDRESS", savedAddress);
    qputenv("XDG_RUNTIME_DIR", savedRuntime);
    if (daemon.state() != QProcess::NotRunning) {
        daemon.terminate();
        daemon.waitForFinished();
    }
    QVERIFY2(listReason.startsWith(reason), qPrintable(listReason));
    QCOMPARE(readReason, listReason);
}

QTEST_GUILESS_MAIN(tst_VCardImport)
#include "tst_vcardimport.moc"
