#include "../model/modeltestsupport.h"
#include "model/corvantamodel.h"
#include "templates/elementtransformers.h"
#include "templates/newelement.h"
#include "templates/templatepage.h"
#include "templates/templatetypes.h"

using namespace corvanta;
using namespace corvanta::model::testing;
using templates::NewElement;
using templates::TemplatePage;
using templates::TemplateTypes;

namespace {

QString bandsText(const QList<TemplatePage::Band>& bands)
{
    QStringList texts;
    for (const TemplatePage::Band& band : bands)
        texts << s("%1@%2+%3").arg(band.section).arg(band.top).arg(band.height);
    return texts.join(s(" "));
}

} // namespace

class tst_TemplateModel : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void units_data();
    void units();
    void types_data();
    void types();
    void defaultTemplateKeysExist();
    void layout_data();
    void layout();
    void newElements_data();
    void newElements();
};

void tst_TemplateModel::units_data()
{
    QTest::addColumn<qint64>("unit");
    QTest::addColumn<double>("factor");
    QTest::addColumn<QString>("label");
    QTest::addColumn<QString>("margins"); // of margins 1, 2, 1.5 and 0: left top right bottom

    QTest::newRow("centimetres, rounded factor") << qint64(0) << 28.35 << s("cm") << s("28.35 56.7 42.525 0");
    QTest::newRow("picas") << qint64(3) << 12.0 << s("pc") << s("12 24 18 0");
    QTest::newRow("unknown code counts as points") << qint64(7) << 1.0 << s("pt") << s("1 2 1.5 0");
    QTest::newRow("negative code counts as points") << qint64(-1) << 1.0 << s("pt") << s("1 2 1.5 0");
}

void tst_TemplateModel::units()
{
    QFETCH(qint64, unit);
    QFETCH(double, factor);
    QFETCH(QString, label);
    QFETCH(QString, margins);
    QCOMPARE(TemplatePage::pointsPerUnit(unit), factor);
    QCOMPARE(TemplatePage::unitLabel(unit), label);

    ScratchCompany company;
    const store::Record* templ = company.main().insertRecord(s("Templates"), {{s("unit"), unit},
                                                                              {s("margin_left"), 1.0},
                                                                              {s("margin_top"), 2.0},
                                                                              {s("margin_right"), 1.5},
                                                                              {s("margin_bottom"), 0.0}});
    const QMarginsF m = TemplatePage::calculatedMargins(*templ);
    QCOMPARE(s("%1 %2 %3 %4").arg(m.left()).arg(m.top()).arg(m.right()).arg(m.bottom()), margins);
    QCOMPARE(TemplatePage::sectionWidth(TemplatePage::FirstPage, m), 595 - m.left() - m.right());
    QCOMPARE(TemplatePage::sectionWidth(TemplatePage::Background, m), 595.0);
}

void tst_TemplateModel::types_data()
{
    QTest::addColumn<qint64>("type");
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("report");
    QTest::addColumn<bool>("grouped");

    QTest::newRow("invoice") << qint64(0) << s("Invoice") << false << false;
    QTest::newRow("purchase order, the last document type")
        << qint64(7) << s("Purchase Order") << false << false;
    QTest::newRow("document report") << qint64(100) << s("Document Report") << true << false;
    QTest::newRow("grouped report") << qint64(110) << s("Document Grouped Report") << true << true;
    QTest::newRow("no type 8") << qint64(8) << QString() << false << false;
    QTest::newRow("no type 105") << qint64(105) << QString() << false << false;
}

void tst_TemplateModel::types()
{
    QFETCH(qint64, type);
    QFETCH(QString, name);
    QFETCH(bool, report);
    QFETCH(bool, grouped);
    QCOMPARE(TemplateTypes::displayName(type), name);
    QCOMPARE(TemplateTypes::isReportTemplate(type), report);
    QCOMPARE(TemplateTypes::isDocumentsGroupedReportTemplate(type), grouped);
    QCOMPARE(TemplateTypes::isValid(type), !name.isEmpty());
    QCOMPARE(TemplateTypes::defaultTemplateKey(type).isEmpty(), name.isEmpty());
    // The template list shows the same name, and nothing for an unknown code.
    const templates::TemplateTypeValueTransformer listColumn;
    QCOMPARE(listColumn.transformedValue(type), name.isEmpty() ? QVariant() : QVariant(name));
    if (type == 0) // text that reads as the code 0 is no code
        QCOMPARE(listColumn.transformedValue(s("invoice")), QVariant());
}

// Every type's default template is a relationship of the company in the data model.
void tst_TemplateModel::defaultTemplateKeysExist()
{
    for (const qint64 type : TemplateTypes::all()) {
        const QString key = TemplateTypes::defaultTemplateKey(type);
        QVERIFY2(model::corvantaDataModel().entity(s("MyCompany"))->relationship(key), qPrintable(key));
    }
}

void tst_TemplateModel::layout_data()
{
    QTest::addColumn<qint64>("type");
    QTest::addColumn<int>("pageSide");
    QTest::addColumn<QString>("heights");
    QTest::addColumn<QString>("bands");
    QTest::addColumn<QString>("label"); // the editor's name of the last section

    QTest::newRow("invoice, defaults")
        << qint64(0) << 0 << TemplatePage::defaultHeights(0)
        << "document_header@0+100 table_header@100+100 details@200+100 table_footer@300+100 "
           "document_footer@400+100"
        << " Section 5 - Document Footer";
    QTest::newRow("client report, following pages, own heights")
        << qint64(120) << 1 << "80.5,20,15,0,40"
        << "document_header@0+80.5 table_header@80.5+20 details@100.5+15 table_footer@115.5+0 "
           "document_footer@115.5+40"
        << " Following Page | Section 5 - Document Footer";
    QTest::newRow("grouped report, defaults")
        << qint64(110) << 0 << TemplatePage::defaultHeights(110)
        << "document_header@0+100 table_header@100+100 details_header@200+50 details@250+50 "
           "details_footer@300+50 table_footer@350+100 document_footer@450+100"
        << " Section 7 - Document Footer";
    QTest::newRow("too few heights, a piece that is no number")
        << qint64(3) << 0 << "100, x ,50"
        << "document_header@0+100 table_header@100+0 details@100+50 table_footer@150+0 "
           "document_footer@150+0"
        << " Section 5 - Document Footer";
    QTest::newRow("background, whatever is stored") << qint64(0) << 2 << "1,2,3"
                                                    << "background@0+842"
                                                    << " Section 1 - Background";
}

void tst_TemplateModel::layout()
{
    QFETCH(qint64, type);
    QFETCH(int, pageSide);
    QFETCH(QString, heights);
    QFETCH(QString, bands);
    const QList<TemplatePage::Band> laidOut = TemplatePage::layout(type, pageSide, heights);
    QCOMPARE(bandsText(laidOut), bands);
    // The editor names a section by its number and caption.
    QFETCH(QString, label);
    QCOMPARE(TemplatePage::editorLabel(pageSide, int(laidOut.size()), laidOut.last().section), label);
}

void tst_TemplateModel::newElements_data()
{
    QTest::addColumn<QString>("type");
    QTest::addColumn<bool>("clicked");
    QTest::addColumn<QString>("values"); // of the keys below

    QTest::newRow("text") << "text" << false
                          << "10 | 10 |  | Helvetica | Helvetica | Regular | 12 | - | - | - | -";
    QTest::newRow("box at a click") << "shape_box" << true
                                    << "33.5 | 7 | - | - | - | - | - | 1 | true | true | true";
    QTest::newRow("image") << "shape_image" << true << "33.5 | 7 | - | - | - | - | - | - | - | - | -";
}

void tst_TemplateModel::newElements()
{
    QFETCH(QString, type);
    QFETCH(bool, clicked);
    QFETCH(QString, values);

    ScratchCompany company;
    store::EditingContext& context = company.main();
    store::Record* templ = context.insertRecord(s("Templates"), {{s("type"), 0}});
    QVERIFY(!NewElement::insert(context, templ, s("shape_circle"), 0, s("details")));
    store::Record* first = NewElement::insert(context, templ, s("text"), 1, s("table_footer"));
    const std::optional<QPointF> at = clicked ? std::optional<QPointF>(QPointF(33.5, 7)) : std::nullopt;
    store::Record* element = NewElement::insert(context, templ, type, 0, s("details"), at);
    QVERIFY(element && first);

    QCOMPARE(valuesOf(element, {"position_x", "position_y", "format", "font_family", "font_name",
                                "font_member", "font_size", "border_line_width", "border_left_show",
                                "border_top_show", "border_bottom_show"}),
             values);
    // Where it was inserted, on top of the element before it, with an identifier of its own.
    QCOMPARE(valuesOf(element, {"type", "page_side", "section", "zorder"}), type + s(" | 0 | details | 2"));
    QCOMPARE(valuesOf(first, {"page_side", "section", "zorder"}), s("1 | table_footer | 1"));
    QCOMPARE(element->related(s("template")), templ);
    const QString identifier = element->value(s("identifier")).toString();
    QVERIFY(!identifier.isEmpty() && identifier != first->value(s("identifier")).toString());
    saveOrFail(context);
}

QTEST_GUILESS_MAIN(tst_TemplateModel)
#include "tst_templatemodel.moc"
