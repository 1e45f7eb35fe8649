#include "../model/modeltestsupport.h"
#include "model/defaultrecords.h"
#include "predicate/literal.h"
#include "store/record.h"
#include "templates/demorecords.h"
#include "templates/printedoutput.h"
#include "templates/shippedtemplates.h"
#include "templates/templatetypes.h"

#include <QPdfDocument>
#include <QPdfSelection>
#include <QRegularExpression>

using namespace corvanta;
using namespace corvanta::model::testing;
using store::FetchRequest;
using store::Record;
using templates::TemplateTypes;

namespace {

// A new company database with the templates the build packed, as a new start makes one.
class ShippedCompany
{
public:
    ShippedCompany()
    {
        model::DefaultRecords defaults(
            m_company.main(), [this](store::EditingContext& context, Record* company, QString*) {
                m_installed = templates::ShippedTemplates(s(CORVANTA_SHIPPED_TEMPLATES_DIR), templateFiles())
                                  .install(context, company);
                return true;
            });
        store::StoreError error;
        if (!defaults.initDatabaseRecords(&error))
            qFatal("the default records cannot be made: %s", qPrintable(error.message()));
    }

    store::EditingContext& main() { return m_company.main(); }
    int installed() const { return m_installed; }
    QString templateFiles() const { return m_dir.filePath(s("templates")); }
    QString file(const QString& name) const { return m_dir.filePath(name); }

    Record* defaultTemplate(const QString& typeKey)
    {
        Record* company = main().fetchFirst(FetchRequest(s("MyCompany")));
        return company ? company->related(s("default_template_") + typeKey) : nullptr;
    }

private:
    ScratchCompany m_company;
    QTemporaryDir m_dir;
    int m_installed = 0;
};

// Points from the page's top-left corner, as the PDF reader measures them.
constexpr double kMillimetre = 72 / 25.4;

} // namespace

// The templates that come with the program: every one loads into a new database, the default of
// its type, prints every field it shows, and places the address for a window envelope.
class tst_ShippedTemplates : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void printsWhatItShows_data();
    void printsWhatItShows();
};

void tst_ShippedTemplates::printsWhatItShows_data()
{
    QTest::addColumn<QString>("typeKey");
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("byDefault"); // the default of its type in a new database
    QTest::addColumn<QString>("title");
    QTest::addColumn<bool>("prices"); // with amounts, and so with the exchange rate

    const auto row = [](const char* tag, const char* typeKey, const char* name, bool byDefault = true,
                        const char* title = nullptr, bool prices = true) {
        QTest::newRow(tag) << s(typeKey) << s(name) << byDefault << s(title ? title : name) << prices;
    };
    row("classic invoice", "invoice", "Invoice Classic", false, "INVOICE");
    row("modern invoice: the later file, the default", "invoice", "Invoice");
    row("pro forma", "proforma", "Pro Forma Invoice");
    row("estimate", "estimate", "Estimate");
    row("quotation", "quotation", "Quotation");
    row("delivery note: no prices", "delivery_note", "Delivery Note", true, nullptr, false);
    row("credit note", "credit_note", "Credit Note");
    row("credit memo", "credit_memo", "Credit Memo");
    row("purchase order", "purchase_order", "Purchase Order");
    row("document report", "report_documents", "Document Report");
    row("grouped report", "report_documents_grouped", "Document Report by Document");
    row("client report", "report_summary_client", "Client Report");
    row("item report", "report_summary_item", "Item Report");
}

// Filled with the demo values (a document in a foreign currency, so that its exchange rate
// shows), no field reference is left in the printed text: a misspelt field would print as it
// stands. A document's recipient lies in the address zone of a DIN 5008 window envelope.
void tst_ShippedTemplates::printsWhatItShows()
{
    QFETCH(QString, typeKey);
    QFETCH(QString, name);
    QFETCH(bool, byDefault);
    QFETCH(QString, title);
    QFETCH(bool, prices);

    ShippedCompany company;
    QCOMPARE(company.installed(), 13);
    QCOMPARE(company.main().count(FetchRequest(s("Templates"))), 13);
    Record* chosen =
        company.main().fetchFirst(FetchRequest(s("Templates"), predicate::literal("name == %@", {name})));
    QVERIFY(chosen);
    const qint64 type = chosen->value(s("type")).toLongLong();
    QCOMPARE(type, TemplateTypes::typeFromText(typeKey));
    QCOMPARE(company.defaultTemplate(typeKey) == chosen, byDefault);
    const templates::PrintedOutput output(company.templateFiles());
    const QString path = company.file(s("printed.pdf"));
    int pages = 0;
    QString error;
    if (TemplateTypes::isReportTemplate(type)) {
        QVERIFY2(output.writePreview(chosen, path, &pages, &error), qPrintable(error));
    } else {
        Record* document = templates::DemoRecords::testDocument(company.main());
        document->setValue(s("type"), type);
        document->setValue(s("exchange_rate"), 1.25);
        QVERIFY2(output.writeDocument(document, chosen, path, &pages, &error), qPrintable(error));
    }

    QPdfDocument pdf;
    QCOMPARE(pdf.load(path), QPdfDocument::Error::None);
    QCOMPARE(pdf.pageCount(), pages);
    // A field reference, not the "@" of an e-mail address.
    static const QRegularExpression reference(QStringLiteral("(?<!\\w)@\\w+"));
    QStringList unreplaced;
    for (int page = 0; page < pdf.pageCount(); ++page) {
        for (const QRegularExpressionMatch& match : reference.globalMatch(pdf.getAllText(page).text()))
            unreplaced << match.captured();
    }
    QCOMPARE(unreplaced.join(QLatin1Char(' ')), QString());

    const QString firstPage = pdf.getAllText(0).text();
    QVERIFY2(firstPage.contains(title), qPrintable(firstPage));
    if (TemplateTypes::isReportTemplate(type))
        return;
    QCOMPARE(firstPage.contains(s("Exchange rate")), prices);
    // Form B: the field 45 mm from the top and 20 mm from the left edge, 85 mm by 45 mm; the
    // recipient in its lower 27.3 mm.
    const QString recipient = s("Demo Client Company Name");
    const qsizetype at = firstPage.indexOf(recipient);
    QVERIFY(at >= 0);
    const QRectF box = pdf.getSelectionAtIndex(0, int(at), int(recipient.size())).boundingRectangle();
    const QRectF window(20 * kMillimetre, (45 + 17.7) * kMillimetre, 85 * kMillimetre, 27.3 * kMillimetre);
    QVERIFY2(window.contains(box), qPrintable(s("the recipient lies at %1, %2 - %3, %4")
                                                  .arg(box.left() / kMillimetre)
                                                  .arg(box.top() / kMillimetre)
                                                  .arg(box.right() / kMillimetre)
                                                  .arg(box.bottom() / kMillimetre)));
}

QTEST_MAIN(tst_ShippedTemplates)
#include "tst_shippedtemplates.moc"
