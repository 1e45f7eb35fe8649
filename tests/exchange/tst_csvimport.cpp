#include "../documents/documenttestsupport.h"
#include "exchange/clientsimport.h"
#include "exchange/csvpreview.h"
#include "exchange/csvsplitter.h"
#include "exchange/importfields.h"
#include "exchange/importprice.h"
#include "exchange/itemsimport.h"

#include <QFile>

using namespace corvanta;
using documents::testing::s;
using documents::testing::TestCompany;
using exchange::CsvSplitter;

namespace {

// The stored records of an entity, each as the values of the key paths joined by blanks, sorted.
QStringList stored(TestCompany& company, const char* entity, const char* keyPaths)
{
    std::unique_ptr<store::EditingContext> fresh = company.store().newContext();
    QStringList result;
    for (const store::Record* record : fresh->fetch(store::FetchRequest(s(entity)))) {
        QStringList values;
        for (const QString& key : s(keyPaths).split(QLatin1Char(' ')))
            values << TestCompany::text(record, key).section(QLatin1Char('='), 1);
        result << values.join(QLatin1Char(' '));
    }
    result.sort();
    return result;
}

const char* const kClientPaths =
    "full_name type tags.name addresses.street default_address.city custom01 tax_number";
const char* const kItemPaths =
    "name type tags.name unit_price custom_price02 code custom01 tax.name unit.name";

} // namespace

class tst_CsvImport : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void reading_data();
    void reading();
    void prices_data();
    void prices();
    void composeFields();
    void importing_data();
    void importing();
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

void tst_CsvImport::reading_data()
{
    QTest::addColumn<QByteArray>("bytes"); // none: the file is missing
    QTest::addColumn<QString>("encoding"); // none: UTF-8
    QTest::addColumn<QString>("separator");
    QTest::addColumn<QString>("result"); // fields joined by "|", rows by "/"; or "! " and the warning

    const auto utf8 = [](const char16_t* text) { return QString::fromUtf16(text).toUtf8(); };
    QTest::newRow("quotes vanish, a quoted separator still splits")
        << QByteArray("\"Acme; Ltd\";\"say \"\"hi\"\"\"\n") << QString() << s(";") << s("Acme| Ltd|say hi");
    QTest::newRow("CR LF and CR alone leave no empty row")
        << QByteArray("a;b\r\nc;d\re;f\r\n\r\n") << QString() << s(";") << s("a|b/c|d/e|f");
    QTest::newRow("U+2028, U+2029, NEL, VT and FF")
        << utf8(u"a\u2028b\u2029c\u0085d\ve\ff") << QString() << s(";") << s("a/b/c/d/e/f");
    QTest::newRow("short line filled, long line cut")
        << QByteArray("a;b\nc\nd;e;f") << QString() << s(";") << s("a|b/c|/d|e");
    QTest::newRow("multi-character separator")
        << QByteArray("a::b:c::\n") << QString() << s("::") << s("a|b:c|");
    QTest::newRow("blank line is not empty") << QByteArray(" \na") << QString() << s(";") << s(" /a");
    QTest::newRow("no separator chosen") << QByteArray("a;b\nc") << QString() << QString() << s("a;b/c");

    QTest::newRow("UTF-8, byte order mark dropped")
        << QByteArray("\xef\xbb\xbfM\xc3\xbcller;x") << QString() << s(";") << s("Müller|x");
    QTest::newRow("Latin-1 read as UTF-8")
        << QByteArray("a;M\xfcller") << QString() << s(";") << s("! offset 3");
    QTest::newRow("UTF-8 cut inside a character")
        << QByteArray("ab\xc3") << QString() << s(";") << s("! offset 2");
    QTest::newRow("Latin-1") << QByteArray("Jos\xe9;Caf\xe9\n") << s("ISO-8859-1") << s(";")
                             << s("José|Café");
    QTest::newRow("Windows-1252 euro") << QByteArray("\x80 5") << s("windows-1252") << s(";") << s("€ 5");
    QTest::newRow("UTF-16 with byte order mark")
        << QByteArray::fromHex("fffe61003b00fc00") << s("UTF-16") << s(";") << s("a|ü");
    QTest::newRow("unknown encoding")
        << QByteArray("a") << s("no-such-encoding") << s(";") << s("! not known");
    QTest::newRow("missing file") << QByteArray() << QString() << s(";") << s("! couldn't be opened");
}

// Through the preview, as the import window reads a file; a file that cannot be read leaves the
// preview as it was and says why.
void tst_CsvImport::reading()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QString, encoding);
    QFETCH(QString, separator);
    QFETCH(QString, result);
    support::ScriptedPrompter prompter;
    exchange::CsvPreview preview(prompter);
    QVERIFY(preview.setPath(file("x;y\n")));
    QVERIFY(preview.setSeparator(separator));
    const QList<QStringList> before = preview.rows();
    const QString path = bytes.isNull() ? m_dir.filePath(s("missing.csv")) : file(bytes);
    const bool read = (encoding.isEmpty() || preview.setEncoding(encoding)) && preview.setPath(path);
    QCOMPARE(read, !result.startsWith(s("! ")));
    if (!read) {
        QCOMPARE(preview.rows(), before);
        QCOMPARE(prompter.titles(), QStringList{s("Warning")});
        QVERIFY2(prompter.questions().first().text.contains(result.mid(2)),
                 qPrintable(prompter.questions().first().text));
        return;
    }
    QStringList lines;
    for (qsizetype row = 0; row < preview.rows().size(); ++row)
        lines << QVariant(preview.row(row).values()).toStringList().join(QLatin1Char('|'));
    QCOMPARE(lines.join(QLatin1Char('/')), result);
    QVERIFY(prompter.questions().isEmpty());
}

void tst_CsvImport::prices_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<double>("price");

    QTest::newRow("blank thousands, comma decimals") << s("1 234,50") << 1234.5;
    QTest::newRow("no-break spaces") << QString::fromUtf16(u"1\u00a0000\u202f000,25") << 1000000.25;
    QTest::newRow("single precision kept") << s("1,1") << double(1.1f);
    QTest::newRow("leading number only") << s("-2,5e2EUR") << -250.0;
    QTest::newRow("text") << s("abc") << 0.0;
    QTest::newRow("overflow is no price") << s("1e50") << 0.0;
}

void tst_CsvImport::prices()
{
    QFETCH(QString, text);
    QFETCH(double, price);
    QCOMPARE(exchange::ImportPrice::read(text), price);
}

void tst_CsvImport::composeFields()
{
    TestCompany company;
    exchange::ImportFields clients = exchange::ImportFields::clients(company.main());
    const QStringList keys = clients.keys();
    QVERIFY(keys.contains(s("client_custom05")));
    QVERIFY2(!keys.contains(s("client_custom06")), "a hidden field is not offered");
    QCOMPARE(clients.tickedKeys(), QStringList{s("company_name")});
    clients.clientTypeChanged(2);
    clients.toggle(keys.indexOf(s("city")));
    QCOMPARE(clients.tickedKeys(), (QStringList{s("first_name"), s("last_name"), s("city")}));
    QCOMPARE(clients.header().last().identifier, s("column%1").arg(keys.indexOf(s("city"))));
}

void tst_CsvImport::importing_data()
{
    QTest::addColumn<QByteArray>("csv"); // ";"-separated, or "|" when it holds one
    QTest::addColumn<QString>("fields"); // "items:" first for items
    QTest::addColumn<int>("type");
    QTest::addColumn<int>("tag");
    QTest::addColumn<QStringList>("records"); // the values of kClientPaths or kItemPaths
    QTest::addColumn<QByteArray>("again");    // imported next
    QTest::addColumn<int>("againAdded");

    // Beta's line is short: its empty street replaces "New Address". Again, only the first
    // column names a duplicate.
    QTest::newRow("companies with address, Windows line ends")
        << QByteArray("Acme;1 Main St;Springfield;T-1\r\nBeta\r\n")
        << s("company_name,street,city,tax_number") << 0 << 0
        << QStringList{s("Acme 0 Company 1 Main St Springfield  T-1"), s("Beta 0 Company    ")}
        << QByteArray("Acme;z\nx;Beta\n") << 1;
    QTest::newRow("custom field loses its prefix, more columns than fields")
        << QByteArray("Acme;gold;ignored\n") << s("company_name,client_custom01") << 1 << 1
        << QStringList{s("Acme 1 Supplier New Address  gold ")} << QByteArray("Acme\n") << 0;
    // A person is a duplicate in either order of the first two columns.
    QTest::newRow("person named by two columns, quoted, filed as a company")
        << QByteArray("\"Jane\";Doe;Paris\n") << s("first_name,last_name,city") << 2 << 0
        << QStringList{s("Jane Doe 2 Company New Address Paris  ")}
        << QByteArray("Jane;Doe\nDoe;Jane\nJohn;Doe\n") << 1;
    QTest::newRow("items: prices in single precision, company's tax and unit")
        << QByteArray("Bolt;1 234,50;1,1;B-1\nNut;abc;;N-1\n")
        << s("items:name,unit_price,item_custom_price02,code") << 1 << 1
        << QStringList{s("Bolt 1 Product 1234.5 1.1000000238418579 B-1  10% Each"),
                       s("Nut 1 Product 0 0 N-1  10% Each")}
        << QByteArray("Nut;5\nScrew;1\n") << 1;
    QTest::newRow("items: service with chosen tax, custom text loses its prefix")
        << QByteArray("Labour|12,5EUR|hourly\n") << s("items:name,item_custom_price01,item_custom01") << 0
        << 0 << QStringList{s("Labour 0 Service    hourly GST / PST Each")} << QByteArray("Labour|1\n") << 0;
}

void tst_CsvImport::importing()
{
    QFETCH(QByteArray, csv);
    QFETCH(QString, fields);
    QFETCH(int, type);
    QFETCH(int, tag);
    QFETCH(QStringList, records);
    QFETCH(QByteArray, again);
    QFETCH(int, againAdded);
    TestCompany company;
    const bool items = fields.startsWith(s("items:"));
    const char* const entity = items ? "Items" : "Clients";
    const QStringList keys = fields.section(QLatin1Char(':'), -1).split(QLatin1Char(','));
    exchange::CsvPreview preview(company.prompter());
    QVERIFY(preview.setSeparator(csv.contains('|') ? s("|") : s(";")));
    const auto import = [&](const QByteArray& bytes) {
        if (!preview.setPath(file(bytes)))
            return std::optional<int>();
        if (!items)
            return exchange::ClientsImport(company.store(), company.prompter())
                .run(preview.rows(), {keys, type, tag});
        exchange::ItemsImport::Options options{keys, type, tag, {}, {}};
        if (type == 0) // a service: the tax chosen on the window instead of the company's
            options.tax = company.named("Taxes", s("GST / PST"))->ref();
        return exchange::ItemsImport(company.store(), company.prompter()).run(preview.rows(), options);
    };
    QCOMPARE(import(csv), std::optional<int>(int(records.size())));
    QCOMPARE(company.question(),
             items ? s("Import Items | %1 items successfully added. | OK").arg(records.size())
                   : s("Import Clients | %1 clients successfully added. | OK").arg(records.size()));
    // What the import's own context saved has reached the main one.
    QCOMPARE(company.count(entity), records.size());
    QCOMPARE(stored(company, entity, items ? kItemPaths : kClientPaths), records);
    if (!items) {
        QCOMPARE(company.count("Addresses"), records.size());
        const QStringList identifiers = stored(company, "Clients", "identifier");
        QCOMPARE(QSet<QString>(identifiers.begin(), identifiers.end()).size(), identifiers.size());
        QVERIFY2(!QUuid::fromString(identifiers.first()).isNull(), qPrintable(identifiers.first()));
    }

    QCOMPARE(import(again), std::optional<int>(againAdded));
    QCOMPARE(company.count(entity), records.size() + againAdded);
}

void tst_CsvImport::cancelledImportStoresNothing()
{
    TestCompany company;
    const auto counts = [&] {
        return QList<int>{company.count("Clients"), company.count("Addresses"), company.count("Items")};
    };
    const QList<int> before = counts();
    QList<qsizetype> told;
    const auto cancelAtSecond = [&](qsizetype done, qsizetype total) {
        told << done << total;
        return done < 2;
    };
    QCOMPARE(exchange::ClientsImport(company.store(), company.prompter())
                 .run(CsvSplitter::rows(s("A\nB\nC\n"), s(";")), {{s("company_name")}, 0, 0}, cancelAtSecond),
             std::nullopt);
    QCOMPARE(told, (QList<qsizetype>{1, 3, 2, 3}));
    QCOMPARE(exchange::ItemsImport(company.store(), company.prompter())
                 .run(QList<QStringList>{{s("A")}}, {{s("name")}, 1, 1, {}, {}},
                      [](qsizetype, qsizetype) { return false; }),
             std::nullopt);
    QCOMPARE(counts(), before);
    QVERIFY(company.asked().isEmpty());
}

QTEST_GUILESS_MAIN(tst_CsvImport)
#include "tst_csvimport.moc"
