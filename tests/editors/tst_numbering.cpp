#include "documents/documentnumbering.h"
#include "documents/numberformat.h"
#include "documenttestsupport.h"
#include "editors/documentcontroller.h"
#include "editors/numberformatpreferences.h"
#include "store/editingcontext.h"

using namespace corvanta;
using namespace corvanta::documents;
using namespace corvanta::editors;
using namespace corvanta::documents::testing;
using store::Record;
using support::ScriptedPrompter;

// Number formats, the search for the next number with its start-number question, and the
// moment a document receives its number.
class tst_Numbering : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void render_data();
    void render();
    void sampleUsesWeekYearAndNumber123_data();
    void sampleUsesWeekYearAndNumber123();
    void startNumberAnswer_data();
    void startNumberAnswer();
    void sequencesCountStoredNonDraftsPerTypeAndYear();
    void typeChangeRenumbersOnlyNewDocuments();
    void preferences();

private:
    // Stores a document of `type` dated `date` with `number`, as a final one unless `draft`.
    void storeDocument(TestCompany& company, int type, const QDateTime& date, qint64 number,
                       bool draft = false);
};

void tst_Numbering::storeDocument(TestCompany& company, int type, const QDateTime& date, qint64 number,
                                  bool draft)
{
    company.add("Documents", {{s("type"), type},
                              {s("date_creation"), date},
                              {s("number"), number},
                              {s("draft"), draft},
                              {s("created"), date}});
}

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

void tst_Numbering::sampleUsesWeekYearAndNumber123_data()
{
    QTest::addColumn<QDate>("today");
    QTest::addColumn<QString>("expected");
    QTest::newRow("mid year") << QDate(2024, 6, 1) << s("INVOICE/2024-0123 24 00123 000123");
    QTest::newRow("30 December in the next year's first week")
        << QDate(2024, 12, 30) << s("INVOICE/2025-0123 25 00123 000123");
    QTest::newRow("1 January in the last year's last week")
        << QDate(2021, 1, 1) << s("INVOICE/2020-0123 20 00123 000123");
}

void tst_Numbering::sampleUsesWeekYearAndNumber123()
{
    QFETCH(QDate, today);
    QTEST(NumberFormat::sample(s("INVOICE/,YYYY,-,NNNN, ,YY, ,NNNNN, ,NNNNNN"), today), "expected");
}

void tst_Numbering::startNumberAnswer_data()
{
    QTest::addColumn<std::optional<QString>>("answer");
    QTest::addColumn<qint64>("expected");
    QTest::newRow("500") << std::optional<QString>(s("500")) << qint64(500);
    QTest::newRow("99999") << std::optional<QString>(s("99999")) << qint64(99999);
    QTest::newRow("100000") << std::optional<QString>(s("100000")) << qint64(1);
    QTest::newRow("0") << std::optional<QString>(s("0")) << qint64(1);
    QTest::newRow("negative") << std::optional<QString>(s("-7")) << qint64(1);
    QTest::newRow("text") << std::optional<QString>(s("abc")) << qint64(1);
    QTest::newRow("leading number") << std::optional<QString>(s(" 42 pieces")) << qint64(42);
    QTest::newRow("huge") << std::optional<QString>(s("99999999999999999999999")) << qint64(1);
    QTest::newRow("cancelled") << std::optional<QString>() << qint64(1);
}

void tst_Numbering::startNumberAnswer()
{
    QFETCH(std::optional<QString>, answer);
    QTEST(DocumentNumbering::startNumberFrom(answer), "expected");
}

void tst_Numbering::sequencesCountStoredNonDraftsPerTypeAndYear()
{
    TestCompany company;
    storeDocument(company, 0, at(2023, 12, 31, 23, 59), 41);
    storeDocument(company, 0, at(2024, 1, 1, 0, 1), 3);
    storeDocument(company, 0, at(2024, 5, 1), 9, true); // a draft takes no number
    storeDocument(company, 3, at(2024, 5, 1), 77);      // another type
    storeDocument(company, 0, at(2024, 12, 30), 2);     // dated last, numbered low
    company.add("Documents",
                {{s("type"), 0}, {s("date_creation"), at(2024, 2, 1)}, {s("number"), 5}}); // draft never set

    DocumentNumbering numbering(company.main(), company.prompter());
    QCOMPARE(numbering.nextNumberByType(0, at(2023, 6, 1), true).nextNumber, 42);
    QCOMPARE(numbering.nextNumberByType(0, at(2024, 12, 31), true).nextNumber, 6);
    QCOMPARE(numbering.nextNumberByType(0, at(2024, 12, 31), true).formattedNumber, s("INVOICE/2024-0006"));
    QCOMPARE(numbering.nextNumberByType(3, at(2024, 1, 1), true).formattedNumber, s("QUOTATION/2024-0078"));
    // Without the question a new year starts at 1.
    QCOMPARE(numbering.nextNumberByType(0, at(2025, 1, 1), false).nextNumber, 1);
    QVERIFY(company.prompter().questions().isEmpty());
}

void tst_Numbering::typeChangeRenumbersOnlyNewDocuments()
{
    TestCompany company;
    const auto client = company.addClient(s("Acme"));
    storeDocument(company, 3, at(2024, 2, 1), 11);

    DocumentController editor(company.store(), company.prompter(), company.clock());
    editor.newDocument(0);
    QVERIFY(editor.addClient(client));
    editor.typeChanged(3);
    QCOMPARE(editor.document()->value(s("number_formatted")).toString(), s("QUOTATION/2024-0012"));
    QVERIFY(company.prompter().questions().isEmpty());
    QVERIFY(editor.save(DocumentController::Sender::Control));
    QCOMPARE(company.stored(editor.document()->ref(), "number").toLongLong(), 12);
    QCOMPARE(company.stored(editor.document()->ref(), "draft").toBool(), false);

    // A saved document keeps its number but moves to its new type's folder.
    editor.typeChanged(5);
    QVERIFY(editor.save(DocumentController::Sender::Control));
    QCOMPARE(company.stored(editor.document()->ref(), "number_formatted").toString(),
             s("QUOTATION/2024-0012"));
    QCOMPARE(company.stored(editor.document()->ref(), "tags.@count").toInt(), 1);
    QCOMPARE(company.stored(editor.document()->ref(), "tags.name").toList().value(0).toString(),
             s("Credit Note"));
}

void tst_Numbering::preferences()
{
    TestCompany company(at(2024, 12, 30));
    NumberFormatPreferences preferences(company.main(), company.clock());
    QStringList labels;
    for (int type : NumberFormatPreferences::listedTypes())
        labels << NumberFormatPreferences::label(type);
    QCOMPARE(labels,
             (QStringList{s("Invoice"), s("Pro Forma"), s("Estimate"), s("Quotation"), s("Delivery Note"),
                          s("Credit Note"), s("Purchase Order"), s("Credit Memo")}));

    QCOMPARE(preferences.tokens(0), (QStringList{s("INVOICE/"), s("YYYY"), s("-"), s("NNNN")}));
    QCOMPARE(NumberFormat::menuEntries(s("YYYY")), (QStringList{s("YY"), s("YYYY")}));
    QCOMPARE(NumberFormat::menuEntries(s("INVOICE/")), QStringList());
    QVERIFY(preferences.chooseToken(0, 3, s("NNNNNN")));
    QVERIFY(preferences.chooseToken(0, 1, s("YY")));
    QVERIFY(!preferences.chooseToken(0, 0, s("YY")));
    QCOMPARE(preferences.format(0), s("INVOICE/,YY,-,NNNNNN"));
    QCOMPARE(preferences.sample(preferences.format(0)), s("INVOICE/25-000123"));

    DocumentNumbering numbering(company.main(), company.prompter());
    QCOMPARE(numbering.nextNumberByType(0, company.now(), false).formattedNumber, s("INVOICE/24-000001"));

    QVERIFY(preferences.setFormat(4, s("DN-,NNNN")));
    QCOMPARE(numbering.nextNumberByType(4, company.now(), false).formattedNumber, s("DN-0001"));
    QVERIFY(preferences.reset(4));
    QCOMPARE(preferences.format(4), s("DELIVERY NOTE/,YYYY,-,NNNN"));
}

QTEST_GUILESS_MAIN(tst_Numbering)
#include "tst_numbering.moc"
