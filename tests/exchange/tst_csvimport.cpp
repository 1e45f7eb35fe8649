#include "../documents/documenttestsupport.h"
#include "exchange/clientsimport.h"
#include "exchange/csvpreview.h"
#include "exchange/csvsplitter.h"
#include "exchange/importfields.h"
#include "exchange/importprice.h"
#include "exchange/itemsimport.h"
#include "exchange/textdecoder.h"

#include <QFile>

using namespace corvanta;
using documents::testing::s;
using documents::testing::TestCompany;
using exchange::CsvSplitter;
using store::Record;

namespace {

// The records of an entity, each as TestCompany::text gives it, sorted.
QStringList stored(TestCompany& company, const char* entity, const QString& keyPaths)
{
    std::unique_ptr<store::EditingContext> fresh = company.store().newContext();
    QStringList result;
    for (const Record* record : fresh->fetch(store::FetchRequest(s(entity))))
        result << TestCompany::text(record, keyPaths);
    result.sort();
    return result;
}

} // namespace

class tst_CsvImport : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void splitting_data();
    void splitting();
    void decoding_data();
    void decoding();
    void prices_data();
    void prices();
    void unreadableFileKeepsPreview_data();
    void unreadableFileKeepsPreview();
    void composeFields();
    void importClients_data();
    void importClients();
    void secondImportSkipsDuplicates_data();
    void secondImportSkipsDuplicates();
    void importItems_data();
    void importItems();
    void cancelledImportStoresNothing();

private:
    QString file(const QByteArray& bytes);
    QTemporaryDir m_dir;
    int m_files = 0;
};

QString tst_CsvImport::file(const QByteArray& bytes)
{
    const QString path = m_dir.filePath(QStringLiteral("import%1.csv").arg(++m_files));
    QFile out(path);
    if (!out.open(QIODevice::WriteOnly) || out.write(bytes) != bytes.size())
        qFatal("cannot write %s", qPrintable(path));
    return path;
}

void tst_CsvImport::splitting_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("separator");
    QTest::addColumn<QList<QStringList>>("rows");

    using R = QList<QStringList>;
    QTest::newRow("quoted separator is split, quotes vanish")
        << s("\"Acme; Ltd\";Main\n") << s(";") << R{{s("Acme"), s(" Ltd"), s("Main")}};
    QTest::newRow("escaped quotes are removed too")
        << s("\"say \"\"hi\"\"\";x") << s(";") << R{{s("say hi"), s("x")}};
    QTest::newRow("CR LF leaves no empty row")
        << s("a;b\r\nc;d\r\n\r\n") << s(";") << R{{s("a"), s("b")}, {s("c"), s("d")}};
    QTest::newRow("CR alone") << s("a;b\rc;d") << s(";") << R{{s("a"), s("b")}, {s("c"), s("d")}};
    QTest::newRow("Unicode separators, NEL, VT and FF")
        << QString::fromUtf16(u"a\u2028b\u2029c\u0085d\ve\ff") << s(";")
        << R{{s("a")}, {s("b")}, {s("c")}, {s("d")}, {s("e")}, {s("f")}};
    QTest::newRow("short line filled with empty fields")
        << s("a;b;c\nd\n") << s(";") << R{{s("a"), s("b"), s("c")}, {s("d"), QString(), QString()}};
    QTest::newRow("long line cut to the first line's count")
        << s("a;b\nc;d;e;f") << s(";") << R{{s("a"), s("b")}, {s("c"), s("d")}};
    QTest::newRow("multi-character separator")
        << s("a::b:c::\n") << s("::") << R{{s("a"), s("b:c"), QString()}};
    QTest::newRow("tab") << s("a\tb;c") << s("\t") << R{{s("a"), s("b;c")}};
    QTest::newRow("empty fields at both ends") << s(";a;") << s(";") << R{{QString(), s("a"), QString()}};
    QTest::newRow("blank line is not empty") << s(" \na") << s(";") << R{{s(" ")}, {s("a")}};
    QTest::newRow("only line ends") << s("\r\n\n\r") << s(";") << R{};
    QTest::newRow("no separator chosen") << s("a;b\nc") << QString() << R{{s("a;b")}, {s("c")}};
}

void tst_CsvImport::splitting()
{
    QFETCH(QString, text);
    QFETCH(QString, separator);
    QFETCH(QList<QStringList>, rows);
    QCOMPARE(CsvSplitter::rows(text, separator), rows);
}

void tst_CsvImport::decoding_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("encoding");
    QTest::addColumn<QString>("text"); // empty: refused
    QTest::addColumn<QString>("error");

    QTest::newRow("UTF-8") << QByteArray("M\xc3\xbcller") << s("UTF-8") << s("Müller") << QString();
    QTest::newRow("UTF-8 byte order mark dropped") << QByteArray("\xef\xbb\xbf"
                                                                 "a;b")
                                                   << s("UTF-8") << s("a;b") << QString();
    QTest::newRow("Latin-1 read as UTF-8")
        << QByteArray("a;M\xfcller") << s("UTF-8") << QString() << s("offset 3");
    QTest::newRow("UTF-8 cut inside a character")
        << QByteArray("ab\xc3") << s("UTF-8") << QString() << s("offset 2");
    QTest::newRow("Latin-1") << QByteArray("M\xfcller") << s("ISO-8859-1") << s("Müller") << QString();
    QTest::newRow("Windows-1252 euro") << QByteArray("\x80 5") << s("windows-1252") << s("€ 5") << QString();
    QTest::newRow("Mac Roman") << QByteArray("\x8a") << s("macintosh") << s("ä") << QString();
    QTest::newRow("UTF-16 with byte order mark") << QByteArray("\xff\xfe"
                                                               "a\0;\0\xfc\0",
                                                               8)
                                                 << s("UTF-16") << s("a;ü") << QString();
    QTest::newRow("unknown encoding")
        << QByteArray("a") << s("no-such-encoding") << QString() << s("not known");
}

void tst_CsvImport::decoding()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QString, encoding);
    QFETCH(QString, text);
    QFETCH(QString, error);
    QString message;
    const std::optional<QString> decoded = exchange::TextDecoder::decode(bytes, encoding, &message);
    QCOMPARE(decoded.value_or(QString()), text);
    QCOMPARE(decoded.has_value(), error.isEmpty());
    QVERIFY2(message.contains(error), qPrintable(message));
}

void tst_CsvImport::prices_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<double>("price");

    QTest::newRow("blank thousands, comma decimals") << s("1 234,50") << 1234.5;
    QTest::newRow("no-break spaces") << QString::fromUtf16(u"1\u00a0000\u202f000,25") << 1000000.25;
    QTest::newRow("single precision kept") << s("1,1") << double(1.1f);
    QTest::newRow("beyond a float's digits") << s("16777217") << 16777216.0;
    QTest::newRow("leading number only") << s("12.5EUR") << 12.5;
    QTest::newRow("negative with exponent") << s("-2,5e2") << -250.0;
    QTest::newRow("text") << s("abc") << 0.0;
    QTest::newRow("empty") << QString() << 0.0;
    QTest::newRow("overflow is no price") << s("1e50") << 0.0;
    QTest::newRow("not a number") << s("nan") << 0.0;
}

void tst_CsvImport::prices()
{
    QFETCH(QString, text);
    QFETCH(double, price);
    QCOMPARE(exchange::ImportPrice::read(text), price);
}

void tst_CsvImport::unreadableFileKeepsPreview_data()
{
    QTest::addColumn<QString>("path");

    QTest::newRow("missing file") << s("missing.csv");
    QTest::newRow("folder") << s(".");
    QTest::newRow("wrong encoding") << s("latin1.csv");
}

void tst_CsvImport::unreadableFileKeepsPreview()
{
    QFETCH(QString, path);
    const QString good = file("a;b\n");
    QFile::copy(file("Jos\xe9;Caf\xe9\n"), m_dir.filePath(s("latin1.csv")));
    support::ScriptedPrompter prompter;
    exchange::CsvPreview preview(prompter);
    QVERIFY(preview.setPath(good));
    QVERIFY(!preview.setPath(m_dir.filePath(path)));
    QCOMPARE(preview.rows(), (QList<QStringList>{{s("a"), s("b")}}));
    QCOMPARE(prompter.titles(), QStringList{s("Warning")});
    QVERIFY(!prompter.questions().first().text.isEmpty());
    QCOMPARE(prompter.questions().first().buttons, QStringList{s("OK")});

    // The Latin-1 file read again in its own encoding.
    preview.setPath(m_dir.filePath(s("latin1.csv")));
    QVERIFY(preview.setEncoding(s("ISO-8859-1")));
    QCOMPARE(preview.row(0), (QVariantMap{{s("column0"), s("José")}, {s("column1"), s("Café")}}));
}

void tst_CsvImport::composeFields()
{
    TestCompany company;
    exchange::ImportFields clients = exchange::ImportFields::clients(company.main());
    const QStringList keys = clients.keys();
    QVERIFY(keys.contains(s("zip_code")));
    QVERIFY(keys.contains(s("client_custom05")));
    QVERIFY2(!keys.contains(s("client_custom06")), "a hidden field is not offered");
    QCOMPARE(clients.tickedKeys(), QStringList{s("company_name")});
    clients.clientTypeChanged(2);
    clients.toggle(keys.indexOf(s("city")));
    QCOMPARE(clients.tickedKeys(), (QStringList{s("first_name"), s("last_name"), s("city")}));
    QCOMPARE(clients.header().last().identifier, s("column%1").arg(keys.indexOf(s("city"))));

    const exchange::ImportFields items = exchange::ImportFields::items(company.main());
    const qsizetype level = items.keys().indexOf(s("item_custom_price01"));
    QVERIFY(level >= 0);
    QCOMPARE(items.fields().at(level).title, s("Unit Price"));
}

namespace {

const char* const kClientPaths =
    "full_name type tags.name addresses.street default_address.city custom01 tax_number";

} // namespace

void tst_CsvImport::importClients_data()
{
    QTest::addColumn<QByteArray>("csv");
    QTest::addColumn<QString>("fields");
    QTest::addColumn<int>("type");
    QTest::addColumn<int>("tag");
    QTest::addColumn<QStringList>("clients");

    // Beta's line is short: its empty street replaces "New Address".
    QTest::newRow("company with address, Windows line ends")
        << QByteArray("Acme;1 Main St;Springfield;T-1\r\nBeta\r\n")
        << s("company_name,street,city,tax_number") << 0 << 0
        << QStringList{s("full_name=Acme type=0 tags.name=Company addresses.street=1 Main St "
                         "default_address.city=Springfield custom01= tax_number=T-1"),
                       s("full_name=Beta type=0 tags.name=Company addresses.street= "
                         "default_address.city= custom01= tax_number=")};
    QTest::newRow("custom field loses its prefix, more columns than fields")
        << QByteArray("Acme;gold;ignored\n") << s("company_name,client_custom01") << 1 << 1
        << QStringList{s("full_name=Acme type=1 tags.name=Supplier addresses.street=New Address "
                         "default_address.city= custom01=gold tax_number=")};
    QTest::newRow("person named by two columns, quoted, filed as a company")
        << QByteArray("\"Jane\";Doe;Paris\n") << s("first_name,last_name,city") << 2 << 0
        << QStringList{s("full_name=Jane Doe type=2 tags.name=Company addresses.street=New Address "
                         "default_address.city=Paris custom01= tax_number=")};
}

void tst_CsvImport::importClients()
{
    QFETCH(QByteArray, csv);
    QFETCH(QString, fields);
    QFETCH(int, type);
    QFETCH(int, tag);
    QFETCH(QStringList, clients);
    TestCompany company;
    const QStringList before = stored(company, "Clients", s("full_name"));
    exchange::CsvPreview preview(company.prompter());
    QVERIFY(preview.setPath(file(csv)));
    const auto added = exchange::ClientsImport(company.store(), company.prompter())
                           .run(preview.rows(), {fields.split(QLatin1Char(',')), type, tag});
    QCOMPARE(added, std::optional<int>(int(clients.size())));
    QCOMPARE(company.asked(),
             QStringList{s("Import Clients | %1 clients successfully added. | OK").arg(clients.size())});
    // The main context has the save merged.
    QCOMPARE(company.count("Clients"), before.size() + clients.size());
    QCOMPARE(company.count("Addresses"), clients.size());
    QCOMPARE(stored(company, "Clients", s(kClientPaths)), clients);
    const QStringList identifiers = stored(company, "Clients", s("identifier"));
    QCOMPARE(QSet<QString>(identifiers.begin(), identifiers.end()).size(), identifiers.size());
    for (const QString& identifier : identifiers)
        QVERIFY2(!QUuid::fromString(identifier.mid(11)).isNull(), qPrintable(identifier));
}

void tst_CsvImport::secondImportSkipsDuplicates_data()
{
    QTest::addColumn<QByteArray>("first");
    QTest::addColumn<QByteArray>("second");
    QTest::addColumn<QString>("fields");
    QTest::addColumn<int>("type");
    QTest::addColumn<int>("added");

    QTest::newRow("company by its first column")
        << QByteArray("Acme;x\nBeta;y\n") << QByteArray("Acme;z\nGamma;w\n") << s("company_name,city") << 0
        << 1;
    QTest::newRow("company matched on the first column only")
        << QByteArray("Acme;x\n") << QByteArray("x;Acme\n") << s("company_name,city") << 1 << 1;
    QTest::newRow("person in the same order")
        << QByteArray("Jane;Doe\n") << QByteArray("Jane;Doe\nJohn;Doe\n") << s("first_name,last_name") << 2
        << 1;
    QTest::newRow("person in the other order")
        << QByteArray("Jane;Doe\n") << QByteArray("Doe;Jane\n") << s("last_name,first_name") << 2 << 0;
}

void tst_CsvImport::secondImportSkipsDuplicates()
{
    QFETCH(QByteArray, first);
    QFETCH(QByteArray, second);
    QFETCH(QString, fields);
    QFETCH(int, type);
    QFETCH(int, added);
    TestCompany company;
    exchange::ClientsImport import(company.store(), company.prompter());
    const exchange::ClientsImport::Options options{fields.split(QLatin1Char(',')), type, 0};
    const auto rows = [](const QByteArray& csv) { return CsvSplitter::rows(QString::fromUtf8(csv), s(";")); };
    QCOMPARE(import.run(rows(first), options), std::optional<int>(int(rows(first).size())));
    const int before = company.count("Clients");
    QCOMPARE(import.run(rows(second), options), std::optional<int>(added));
    QCOMPARE(company.count("Clients"), before + added);
}

void tst_CsvImport::importItems_data()
{
    QTest::addColumn<QByteArray>("csv");
    QTest::addColumn<QString>("fields");
    QTest::addColumn<int>("type");
    QTest::addColumn<QString>("tax");
    QTest::addColumn<QStringList>("items");

    QTest::newRow("prices in single precision, company's tax and unit")
        << QByteArray("Bolt;1 234,50;1,1;B-1\nNut;abc;;N-1\n")
        << s("name,unit_price,item_custom_price02,code") << 1 << QString()
        << QStringList{
               s("name=Bolt type=1 tags.name=Product unit_price=1234.5 custom_price02=1.1000000238418579 "
                 "code=B-1 custom01= tax.name=10% unit.name=Each"),
               s("name=Nut type=1 tags.name=Product unit_price=0 custom_price02=0 code=N-1 "
                 "custom01= tax.name=10% unit.name=Each")};
    QTest::newRow("service with chosen tax, custom text loses its prefix")
        << QByteArray("Labour|12.5EUR|hourly\n") << s("name,item_custom_price01,item_custom01") << 0
        << s("GST / PST")
        << QStringList{
               s("name=Labour type=0 tags.name=Service unit_price= custom_price02= code= custom01=hourly "
                 "tax.name=GST / PST unit.name=Each")};
}

void tst_CsvImport::importItems()
{
    QFETCH(QByteArray, csv);
    QFETCH(QString, fields);
    QFETCH(int, type);
    QFETCH(QString, tax);
    QFETCH(QStringList, items);
    TestCompany company;
    exchange::CsvPreview preview(company.prompter());
    QVERIFY(preview.setSeparator(csv.contains('|') ? s("|") : s(";")));
    QVERIFY(preview.setPath(file(csv)));
    exchange::ItemsImport::Options options{fields.split(QLatin1Char(',')), type, type, {}, {}};
    if (!tax.isEmpty())
        options.tax = company.named("Taxes", tax)->ref();
    exchange::ItemsImport import(company.store(), company.prompter());
    QCOMPARE(import.run(preview.rows(), options), std::optional<int>(int(items.size())));
    const QString paths = s("name type tags.name unit_price custom_price02 code custom01 tax.name unit.name");
    QCOMPARE(stored(company, "Items", paths), items);
    QCOMPARE(company.question(), s("Import Items | %1 items successfully added. | OK").arg(items.size()));

    // The same file again adds nothing: every name is taken now.
    QCOMPARE(import.run(preview.rows(), options), std::optional<int>(0));
    QCOMPARE(company.count("Items"), items.size());
}

void tst_CsvImport::cancelledImportStoresNothing()
{
    TestCompany company;
    const auto counts = [&] {
        return QList<int>{company.count("Clients"), company.count("Addresses"), company.count("Items")};
    };
    const QList<int> before = counts();
    const QList<QStringList> rows = CsvSplitter::rows(s("A\nB\nC\n"), s(";"));
    QList<qsizetype> told;
    const auto cancelAtSecond = [&](qsizetype done, qsizetype total) {
        told << done << total;
        return done < 2;
    };
    const auto clients = exchange::ClientsImport(company.store(), company.prompter())
                             .run(rows, {{s("company_name")}, 0, 0}, cancelAtSecond);
    QCOMPARE(clients, std::nullopt);
    QCOMPARE(told, (QList<qsizetype>{1, 3, 2, 3}));
    const auto items =
        exchange::ItemsImport(company.store(), company.prompter())
            .run(rows, {{s("name")}, 1, 1, {}, {}}, [](qsizetype, qsizetype) { return false; });
    QCOMPARE(items, std::nullopt);
    QCOMPARE(counts(), before);
    QVERIFY(company.asked().isEmpty());
}

QTEST_GUILESS_MAIN(tst_CsvImport)
#include "tst_csvimport.moc"
