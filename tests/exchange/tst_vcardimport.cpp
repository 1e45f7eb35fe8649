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

// Text written a property a line; "\n" becomes the line end given.
QByteArray lines(const char* text, const char* lineEnd = "\r\n")
{
    return QByteArray(text).replace("\n", lineEnd);
}

// A card of that version around the properties.
QByteArray card(const char* version, const char* properties, const char* lineEnd = "\r\n")
{
    return lines(QByteArray("BEGIN:VCARD\nVERSION:") + version + "\n" + properties + "END:VCARD\n", lineEnd);
}

// The stored clients, sorted, each as: identifier ("derived" for one made from the card's
// fields) | type | company name | first | last | phones | e-mails | tags | the addresses in
// order, "*" before the default, each as street/city/state/zip code/country.
QStringList clients(TestCompany& company)
{
    QStringList result;
    for (const store::Record* client : company.main().fetch(store::FetchRequest(s("Clients")))) {
        QStringList values;
        for (const QString& key :
             s("identifier type company_name first_name last_name phones emails tags.name")
                 .split(QLatin1Char(' ')))
            values << TestCompany::text(client, key).section(QLatin1Char('='), 1);
        if (!QUuid::fromString(values.first()).isNull())
            values.first() = s("derived");
        QStringList addresses;
        for (const store::Record* address : client->relatedList(s("addresses"))) {
            QStringList parts;
            for (const char* key : {"street", "city", "state", "zip_code", "country"})
                parts << address->value(s(key)).toString();
            // The address note is set, if empty, as for an address made by hand.
            addresses << (address == client->related(s("default_address")) ? s("*") : QString()) +
                             parts.join(QLatin1Char('/')) +
                             (address->value(s("address_note")).isNull() ? s(" (no note)") : QString());
        }
        result << (values << addresses.join(QLatin1Char(';'))).join(QLatin1Char('|'));
    }
    result.sort();
    return result;
}

} // namespace

class tst_VCardImport : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void importing_data();
    void importing();
    void splitCards_data();
    void splitCards();
    void refusedSaveStoresNothing();
    void cancelStoresNothing_data();
    void cancelStoresNothing();
    void desktopBooksUnreachable_data();
    void desktopBooksUnreachable();
};

void tst_VCardImport::importing_data()
{
    QTest::addColumn<QByteArray>("cards");
    QTest::addColumn<QStringList>("clients");

    QTest::newRow("3.0 person")
        << card(
               "3.0",
               "UID:p-1\nN:Smith;John;Q;Dr.;\nFN:Dr. John Q Smith\nORG:Acme Ltd;Sales\n"
               "TEL;TYPE=WORK:+1 555 0100\nTEL;TYPE=CELL:+1 555 0101\nEMAIL;TYPE=INTERNET:john@acme.example\n"
               "ADR;TYPE=WORK:PO Box 7;Suite 5;1 Main St;Springfield;IL;62701;USA\n")
        << QStringList{s("p-1|2||John|Smith|+1 555 0100,+1 555 0101|john@acme.example|Individual|"
                         "*1 Main St\nSuite 5\nPO Box 7/Springfield/IL/62701/USA")};
    QTest::newRow("2.1 quoted-printable UTF-8 with a soft break")
        << card("2.1",
                "UID:p-2\nN;CHARSET=UTF-8;ENCODING=QUOTED-PRINTABLE:M=C3=BCller;J=C3=\n=BCrgen\n"
                "TEL;WORK;VOICE:+49 30 1234\n"
                "ADR;HOME;CHARSET=UTF-8;ENCODING=QUOTED-PRINTABLE:;;Stra=C3=9Fe 1;K=C3=B6ln;;50667;DE\n")
        << QStringList{s("p-2|2||Jürgen|Müller|+49 30 1234||Individual|*Straße 1/Köln//50667/DE")};
    QTest::newRow("2.1 quoted-printable Latin-1, eight-bit text without a character set")
        << card("2.1", "UID:p-3\nN;CHARSET=ISO-8859-1;ENCODING=QUOTED-PRINTABLE:Gr=FCn;Ren=E9\n") +
               card("2.1", "UID:p-4\nN:Gr\xfcn;Ana\n")
        << QStringList{s("p-3|2||René|Grün|||Individual|"), s("p-4|2||Ana|Grün|||Individual|")};
    QTest::newRow("4.0 company by KIND:org, organisation before the names, tel URI")
        << card("4.0", "UID:urn:uuid:org-1\nKIND:org\nN:Doe;Jane;;;\nFN:Globex\nORG:Globex Corporation\n"
                       "TEL;VALUE=uri;TYPE=work:tel:+44-20-7946-0000\nTEL;VALUE=uri:tel:+1-555-0100;ext=12\n"
                       "EMAIL:info@globex.example\n")
        << QStringList{s("urn:uuid:org-1|0|Globex Corporation|||+44-20-7946-0000,+1-555-0100;ext=12|"
                         "info@globex.example|Company|")};
    QTest::newRow("3.0 company by X-ABShowAs, grouped properties")
        << card("3.0",
                "UID:org-2\nN:;;;;\nFN:Initech\nORG:Initech;\nX-ABShowAs:COMPANY\n"
                "item1.TEL;type=pref:555 0199\nitem2.EMAIL;type=INTERNET:a@initech.example\n"
                "item2.EMAIL;type=INTERNET:b@initech.example\n",
                "\n")
        << QStringList{s("org-2|0|Initech|||555 0199|a@initech.example,b@initech.example|Company|")};
    QTest::newRow("company named by FN, else by the names")
        << card("4.0", "UID:org-3\nKIND:org\nFN:Hooli\n") +
               card("3.0", "UID:org-4\nN:Doe;Jane\nX-ABShowAs:COMPANY\n") +
               card("3.0", "UID:org-5\nN:Doe;\nX-ABShowAs:COMPANY\n")
        << QStringList{s("org-3|0|Hooli|||||Company|"), s("org-4|0|Jane Doe|||||Company|"),
                       s("org-5|0|Doe|||||Company|")};
    QTest::newRow("person named by FN when N names no one, and one without a name")
        << card("3.0", "UID:p-5\nFN:Ann Lee\n") + card("3.0", "UID:p-6\nTEL:555\n")
        << QStringList{s("p-5|2||Ann|Lee|||Individual|"), s("p-6|2||||555||Individual|")};
    QTest::newRow("folded lines and escapes")
        << card("3.0", "UID:p-7\nN:O'Brien;Pat\nEMAIL:pat.obrien@exa\n mple.org\n"
                       "ADR:;;1 Main St\\, Apt 2;Dublin;;;Ire\n\tland\nNOTE:a\\nb\n")
        << QStringList{
               s("p-7|2||Pat|O'Brien||pat.obrien@example.org|Individual|*1 Main St, Apt 2/Dublin///Ireland")};
    QTest::newRow("addresses in order, the first the default, empty ones left out")
        << card("3.0", "UID:p-8\nN:Roe;Jane\nADR;TYPE=HOME:;;2 Elm St;Shelbyville;;;\nADR:;;;;;;\n"
                       "ADR;TYPE=WORK:;;1 Main St;Springfield;;;\nADR:;;3 Oak Rd;;;;\n")
        << QStringList{s("p-8|2||Jane|Roe|||Individual|"
                         "*2 Elm St/Shelbyville///;1 Main St/Springfield///;3 Oak Rd////")};
    QTest::newRow("the same person twice is added once")
        << card("3.0", "UID:p-9\nN:Twin;A\n") + card("3.0", "UID:p-9\nN:Twin;B\n")
        << QStringList{s("p-9|2||A|Twin|||Individual|")};
    // The same card refolded with other line ends is the same entry; another phone makes another.
    QTest::newRow("without a UID, identified by the fields")
        << card("3.0", "N:Lee;Ann\nTEL:555 0100\n") + card("3.0", "N:Lee;A\n nn\nTEL:555 0100\n", "\n") +
               card("3.0", "N:Lee;Ann\nTEL:555 0101\n")
        << QStringList{s("derived|2||Ann|Lee|555 0100||Individual|"),
                       s("derived|2||Ann|Lee|555 0101||Individual|")};
    QTest::newRow("nothing to make a client from")
        << card("3.0", "UID:x\nNOTE:just a note\n") << QStringList();
}

// Each file imported twice: the second time adds nothing.
void tst_VCardImport::importing()
{
    QFETCH(QByteArray, cards);
    QFETCH(QStringList, clients);
    TestCompany company;
    exchange::AddressBookImport import(company.store(), company.prompter());
    const auto imported = [&](int added) {
        return QStringList{s("Import Address Book | %1 clients successfully added. | OK").arg(added)};
    };
    QCOMPARE(import.importPersons(VCardReader::read(cards)), std::optional<int>(int(clients.size())));
    QCOMPARE(company.asked(), imported(clients.size()));
    QCOMPARE(::clients(company), clients);

    const int addresses = company.count("Addresses");
    company.prompter().clear();
    QCOMPARE(import.importPersons(VCardReader::read(cards)), std::optional<int>(0));
    QCOMPARE(company.asked(), imported(0));
    QCOMPARE(company.count("Clients"), clients.size());
    QCOMPARE(company.count("Addresses"), addresses);
}

void tst_VCardImport::splitCards_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<int>("cards");
    QTest::addColumn<QString>("names"); // the last names read, in order

    QTest::newRow("old Mac line ends, lower case, text between cards")
        << lines("Exported contacts\nbegin:vcard\nversion:3.0\nn:One;A\nend:vcard\n\nnoise\n"
                 "BEGIN:VCARD\nVERSION:3.0\nN:Two;B\nEND:VCARD",
                 "\r")
        << 2 << s("One,Two");
    QTest::newRow("a card nested in AGENT stays inside its card")
        << card("2.1", "N:Boss;A\nAGENT:\nBEGIN:VCARD\nVERSION:2.1\nN:Assistant;B\nEND:VCARD\n") +
               card("2.1", "N:Next;C\n")
        << 2 << s("Boss,Next");
    QTest::newRow("a soft break before a line that reads END:VCARD")
        << card("2.1", "N:Soft;A\nNOTE;ENCODING=QUOTED-PRINTABLE:x=\nEND:VCARD\nTEL:555\n") << 1 << s("Soft");
    QTest::newRow("a folded line that reads END:VCARD")
        << card("3.0", "N:Fold;A\nNOTE:x\n END:VCARD\nTEL:555\n") << 1 << s("Fold");
    QTest::newRow("blanks around BEGIN and END")
        << lines("\vBEGIN:VCARD \nVERSION:3.0\nN:Blank;A\nEND:VCARD\v\n") << 1 << s("Blank");
    QTest::newRow("a card cut off at the end of the file")
        << card("3.0", "N:Whole;A\n") + lines("BEGIN:VCARD\nVERSION:3.0\nN:Cut;B\n") << 2 << s("Whole,Cut");
    QTest::newRow("lines that name no property")
        << card("3.0", "item1.\nN\nitem2.:x\nN;TYPE=\n:y\nVr. Jo:x\n\nN:Kept;A\n") << 1 << s("Kept");
    QTest::newRow("group cards are no persons")
        << card("4.0", "KIND:group\nFN:Team\nMEMBER:urn:uuid:p-1\n") + card("3.0", "N:Member;A\n") +
               card("3.0", "FN:Friends\nX-ADDRESSBOOKSERVER-KIND:group\n") +
               card("3.0", "FN:List\nX-EVOLUTION-LIST:TRUE\nEMAIL:a@b.example\n")
        << 4 << s("Member");
    QTest::newRow("UTF-8 with a byte order mark")
        << "\xEF\xBB\xBF" + card("3.0", "N:Bom;A\n") << 1 << s("Bom");
    QTest::newRow("UTF-16 little-endian")
        << "\xFF\xFE" + QByteArray(QStringEncoder(QStringConverter::Utf16LE)
                                       .encode(QString::fromUtf8(card("3.0", "N:Gr\xc3\xbcn;A\n"))))
        << 1 << s("Grün");
    QTest::newRow("no card") << QByteArray("N:Lonely;A\nEND:VCARD\n") << 0 << QString();
}

void tst_VCardImport::splitCards()
{
    QFETCH(QByteArray, text);
    QFETCH(int, cards);
    QFETCH(QString, names);
    const QList<QByteArray> split = VCardReader::splitCards(text);
    QCOMPARE(split.size(), cards);
    for (const QByteArray& card : split)
        QVERIFY2(card.startsWith("BEGIN:VCARD\n") && card.endsWith("END:VCARD\n"), card.constData());
    QStringList read;
    for (const AddressBookPerson& person : VCardReader::read(text))
        read << person.lastName;
    QCOMPARE(read.join(QLatin1Char(',')), names);
}

void tst_VCardImport::refusedSaveStoresNothing()
{
    TestCompany company;
    exchange::AddressBookImport import(company.store(), company.prompter());
    const QList<AddressBookPerson> persons =
        VCardReader::read(card("3.0", "UID:p-1\nN:Smith;John\nADR:;;1 Main St;;;;\n"));
    {
        ForcedFailure failure(company.path(), s("Addresses"), s("INSERT"));
        QCOMPARE(import.importPersons(persons), std::nullopt);
    }
    QCOMPARE(company.count("Clients"), 0);
    QCOMPARE(company.prompter().questions().size(), 1);
    QVERIFY(!company.prompter().titles().contains(s("Import Address Book")));
    // Nothing half-done is left in the way of a later import.
    QCOMPARE(import.importPersons(persons), std::optional<int>(1));
    QCOMPARE(company.count("Addresses"), 1);
}

void tst_VCardImport::cancelStoresNothing_data()
{
    QTest::addColumn<int>("cancelAt");
    QTest::newRow("after the first person") << 1;
    QTest::newRow("after the last person") << 3;
}

// A cancel leaves no client and no report, even for the persons gone through before it.
void tst_VCardImport::cancelStoresNothing()
{
    QFETCH(int, cancelAt);
    TestCompany company;
    exchange::AddressBookImport import(company.store(), company.prompter());
    const QList<AddressBookPerson> persons =
        VCardReader::read(card("3.0", "UID:a\nN:Lee;Ann\nADR:;;1 Main St;;;;\n") +
                          card("3.0", "UID:b\nORG:Acme\n") + card("3.0", "UID:c\nN:Roe;Bo\n"));
    QList<qsizetype> told;
    const auto progress = [&](qsizetype done, qsizetype total) {
        told << done;
        return total == 3 && done < cancelAt;
    };
    QCOMPARE(import.importPersons(persons, progress), std::nullopt);
    QCOMPARE(told.last(), qsizetype(cancelAt));
    QCOMPARE(company.count("Clients"), 0);
    QCOMPARE(company.count("Addresses"), 0);
    QVERIFY(company.prompter().questions().isEmpty());
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
    QString readReason;
    const bool none =
        books.books(&listReason).isEmpty() && books.persons(s("Personal"), &readReason).isEmpty();

    qputenv("DBUS_SESSION_BUS_ADDRESS", savedAddress);
    qputenv("XDG_RUNTIME_DIR", savedRuntime);
    daemon.terminate();
    daemon.waitForFinished();
    QVERIFY(none);
    QVERIFY2(listReason.startsWith(reason), qPrintable(listReason));
    QCOMPARE(readReason, listReason);
}

QTEST_GUILESS_MAIN(tst_VCardImport)
#include "tst_vcardimport.moc"
