#include "documents/documenttypes.h"
#include "documents/numberformat.h"
#include "documenttestsupport.h"

using namespace corvanta;
using namespace corvanta::documents;
using namespace corvanta::documents::testing;

// Number formats, the types they belong to, and the next number of a type's yearly sequence
// with the question for its start number.
class tst_Numbering : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void render_data();
    void render();
    void sampleUsesWeekYear_data();
    void sampleUsesWeekYear();
    void startNumberAnswer_data();
    void startNumberAnswer();
    void everyTypeHasItsNamesAndFormat_data();
    void everyTypeHasItsNamesAndFormat();
    void sequencesCountStoredNonDraftsPerTypeAndYear();
};

void tst_Numbering::render_data()
{
    QTest::addColumn<QString>("format");
    QTest::addColumn<qint64>("number");
    QTest::addColumn<QString>("expected");
    QTest::newRow("default invoice format")
        << s("INVOICE/,YYYY,-,NNNN") << qint64(7) << s("INVOICE/2024-0007");
    QTest::newRow("wider than the padding")
        << s("INVOICE/,YYYY,-,NNNN") << qint64(12345) << s("INVOICE/2024-12345");
    QTest::newRow("six digits") << s("A,NNNNNN") << qint64(42) << s("A000042");
    QTest::newRow("five digits, short year") << s("YY,/,NNNNN") << qint64(3) << s("24/00003");
    QTest::newRow("empty piece") << s("X,,NNNN") << qint64(5) << s("X0005");
    QTest::newRow("token letters inside text are replaced") << s("NNNNX,NNNN") << qint64(1) << s("0001X0001");
    QTest::newRow("no tokens") << s("FIXED") << qint64(9) << s("FIXED");
    QTest::newRow("five Y") << s("YYYYY") << qint64(1) << s("2024Y");
}

void tst_Numbering::render()
{
    QFETCH(QString, format);
    QFETCH(qint64, number);
    QTEST(NumberFormat::render(format, QDate(2024, 6, 1), number), "expected");
}

void tst_Numbering::sampleUsesWeekYear_data()
{
    QTest::addColumn<QDate>("today");
    QTest::addColumn<QString>("expected");
    QTest::newRow("mid year") << QDate(2024, 6, 1) << s("INVOICE/2024-0123 24 00123 000123");
    QTest::newRow("30 December in the next year's first week")
        << QDate(2024, 12, 30) << s("INVOICE/2025-0123 25 00123 000123");
    QTest::newRow("1 January in the last year's last week")
        << QDate(2021, 1, 1) << s("INVOICE/2020-0123 20 00123 000123");
}

void tst_Numbering::sampleUsesWeekYear()
{
    QFETCH(QDate, today);
    QTEST(NumberFormat::sample(s("INVOICE/,YYYY,-,NNNN, ,YY, ,NNNNN, ,NNNNNN"), today), "expected");
}

void tst_Numbering::startNumberAnswer_data()
{
    QTest::addColumn<std::optional<QString>>("answer");
    QTest::addColumn<qint64>("expected");
    for (const auto& [answer, expected] :
         QList<std::pair<const char*, qint64>>{{"500", 500},
                                               {"99999", 99999},
                                               {"100000", 1},
                                               {"0", 1},
                                               {"-7", 1},
                                               {"abc", 1},
                                               {" 42 pieces", 42},
                                               {"99999999999999999999999", 1}})
        QTest::newRow(answer) << std::optional<QString>(s(answer)) << expected;
    QTest::newRow("cancelled") << std::optional<QString>() << qint64(1);
}

void tst_Numbering::startNumberAnswer()
{
    QFETCH(std::optional<QString>, answer);
    QTEST(DocumentNumbering::startNumberFrom(answer), "expected");
}

void tst_Numbering::everyTypeHasItsNamesAndFormat_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<QString>("key");
    QTest::addColumn<QString>("shown");
    QTest::addColumn<QString>("firstNumber");
    QTest::newRow("0") << 0 << s("invoice") << s("Invoice") << s("INVOICE/2024-0001");
    QTest::newRow("1") << 1 << s("proforma") << s("Pro Forma") << s("PROFORMA/2024-0001");
    QTest::newRow("2") << 2 << s("estimate") << s("Estimate") << s("ESTIMATE/2024-0001");
    QTest::newRow("3") << 3 << s("quotation") << s("Quotation") << s("QUOTATION/2024-0001");
    QTest::newRow("4") << 4 << s("delivery_note") << s("Delivery Note") << s("DELIVERY NOTE/2024-0001");
    QTest::newRow("5") << 5 << s("credit_note") << s("Credit Note") << s("CREDIT NOTE/2024-0001");
    QTest::newRow("6") << 6 << s("credit_memo") << s("Credit Memo") << s("CREDIT MEMO/2024-0001");
    QTest::newRow("7") << 7 << s("purchase_order") << s("Purchase Order") << s("PURCHASE ORDER/2024-0001");
}

void tst_Numbering::everyTypeHasItsNamesAndFormat()
{
    QFETCH(int, type);
    QTEST(DocumentTypes::typeNameByNumber(type), "key");
    QTEST(DocumentTypes::displayName(type), "shown");
    // A new database starts with the format that a reset restores, and files the type in its folder.
    TestCompany company;
    QTEST(DocumentNumbering(company.main(), company.prompter())
              .nextNumberByType(type, company.now(), false)
              .formattedNumber,
          "firstNumber");
    QTEST(NumberFormat::render(NumberFormat::defaultFormat(type), QDate(2024, 1, 1), 1), "firstNumber");
    Record* document = company.main().insertRecord(s("Documents"), {{s("type"), type}});
    QTEST(DocumentTags::typeCategory(document, type)->value(s("name")).toString(), "shown");
}

void tst_Numbering::sequencesCountStoredNonDraftsPerTypeAndYear()
{
    QVERIFY(!DocumentTypes::isValid(8) && DocumentTypes::displayName(-1).isEmpty());
    QVERIFY_THROWS_EXCEPTION(std::out_of_range, DocumentTypes::typeNameByNumber(8));

    TestCompany company;
    const auto document = [&](int type, const QDateTime& date, qint64 number, const QVariant& draft) {
        company.add(
            "Documents",
            {{s("type"), type}, {s("date_creation"), date}, {s("number"), number}, {s("draft"), draft}});
    };
    document(0, at(2023, 12, 31, 23, 59), 41, false);
    document(0, at(2024, 1, 1, 0, 1), 3, false);
    document(0, at(2024, 5, 1), 9, true);       // a draft takes no number
    document(3, at(2024, 5, 1), 77, false);     // another type
    document(0, at(2024, 12, 30), 2, false);    // dated last, numbered low
    document(0, at(2024, 2, 1), 5, QVariant()); // draft never set

    DocumentNumbering numbering(company.main(), company.prompter());
    QCOMPARE(numbering.nextNumberByType(0, at(2023, 6, 1), true).nextNumber, 42);
    QCOMPARE(numbering.nextNumberByType(0, at(2024, 12, 31), true).formattedNumber, s("INVOICE/2024-0006"));
    QCOMPARE(numbering.nextNumberByType(3, at(2024, 1, 1), true).formattedNumber, s("QUOTATION/2024-0078"));
    // Without the question a new year starts at 1; with it, the first number is the user's.
    QCOMPARE(numbering.nextNumberByType(0, at(2025, 1, 1), false).nextNumber, 1);
    QVERIFY(company.prompter().questions().isEmpty());
    company.prompter().addAnswer(s("1001"));
    QCOMPARE(numbering.nextNumberByType(0, at(2025, 1, 2), true).formattedNumber, s("INVOICE/2025-1001"));
    const auto& question = company.prompter().questions().first();
    QCOMPARE(question.kind, support::ScriptedPrompter::Question::Kind::AskText);
    QCOMPARE(question.title, s("Start Number"));
    QCOMPARE(question.text,
             s("This is the first document of its type in 2025. Enter the number it starts with:"));
    QCOMPARE(question.initial, s("1"));
}

QTEST_GUILESS_MAIN(tst_Numbering)
#include "tst_numbering.moc"
