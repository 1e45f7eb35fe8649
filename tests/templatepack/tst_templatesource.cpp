#include "templatesource.h"

#include <QDir>
#include <QSet>
#include <QTest>

using corvanta::templatepack::TemplateSource;

namespace {

QString s(const char* text)
{
    return QString::fromUtf8(text);
}

// An invoice source, 2 cm margins (a section 481.6 points wide), a details section 20 points
// high, with `more` among the template's keys and `elements` as its elements.
QByteArray source(const QString& more, const QString& elements)
{
    return s(R"({"name": "T", "type": "invoice", "unit": 0, "margin_left": 2, "margin_top": 1,
                 "margin_right": 2, "margin_bottom": 1, "sections_height_first": "100,30,20,60,60",
                 "sections_height_following": "40,30,20,60,60", "show_grid": false, "grid_spacing": 5,
                 "zoom": 2, %1 "elements": [%2]})")
        .arg(more, elements)
        .toUtf8();
}

const char* const kText =
    R"({"type": "text", "section": "details", "position_width": 100, "position_height": 10})";

} // namespace

// The JSON source of a shipped template: what an element becomes, and the slips that stop the
// build instead of shipping a broken template.
class tst_TemplateSource : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void elementsTakeDefaultsStylesAndTheirOwnKeys();
    void slipsAreRefused_data();
    void slipsAreRefused();
};

void tst_TemplateSource::elementsTakeDefaultsStylesAndTheirOwnKeys()
{
    const QByteArray json =
        source(s(R"("styles": {"default": {"type": "text", "section": "details", "font_size": 9,
                                    "font_color": "#0f6674"},
                        "strong": {"font_member": "Bold", "font_size": 10}},)"),
               s(R"({"style": "strong", "font_size": 11, "position_width": 100, "position_height": 10},
             {"type": "shape_box", "position_width": 481.6, "position_height": 20,
              "background_color": "#ffffff00"},
             {"zorder": 7, "position_x": 400, "position_width": 81.6, "format": "@total"})"));
    TemplateSource templateSource;
    QString error;
    QVERIFY2(templateSource.read(json, QString(), &error), qPrintable(error));
    const QVariantMap dictionary = templateSource.dictionary();
    QCOMPARE(dictionary.value(s("type")).toLongLong(), 0);
    QVERIFY(!dictionary.value(s("identifier")).toString().isEmpty());

    const QVariantList elements = dictionary.value(s("template_elements")).toList();
    QCOMPARE(elements.size(), 3);
    const QVariantMap text = elements.at(0).toMap();
    QCOMPARE(text.value(s("font_size")).toDouble(), 11.0);
    QCOMPARE(text.value(s("font_name")).toString(), s("Helvetica-Bold"));
    QCOMPARE(text.value(s("font_color")).toByteArray(), QByteArray("#0f0f66667474ffff"));
    QCOMPARE(text.value(s("alignment")).toLongLong(), 0);
    const QVariantMap box = elements.at(1).toMap();
    QCOMPARE(box.value(s("type")).toString(), s("shape_box"));
    QCOMPARE(box.value(s("background_color")).toByteArray(), QByteArray("#ffffffffffff0000"));
    QCOMPARE(box.value(s("font_name")).toString(), s("Helvetica"));
    // Drawn in the order listed unless an element says otherwise; identifiers all differ.
    QList<qint64> zorders;
    QSet<QString> identifiers;
    for (const QVariant& element : elements) {
        zorders << element.toMap().value(s("zorder")).toLongLong();
        identifiers << element.toMap().value(s("identifier")).toString();
    }
    QCOMPARE(zorders, (QList<qint64>{1, 2, 7}));
    QCOMPARE(identifiers.size(), 3);

    // The same source gives the same file: identifiers do not change from build to build.
    TemplateSource again;
    QVERIFY(again.read(json, QString(), &error));
    QCOMPARE(again.dictionary(), dictionary);
}

void tst_TemplateSource::slipsAreRefused_data()
{
    QTest::addColumn<QString>("more");
    QTest::addColumn<QString>("elements");
    QTest::addColumn<QString>("error");

    const QString text = s(kText);
    QTest::newRow("misspelt template key")
        << s(R"("zoon": 2,)") << text << s("the template has no attribute \"zoon\"");
    QTest::newRow("no template type")
        << s(R"("type": "invoices",)") << text << s("\"type\" names no template type");
    QTest::newRow("heights of another type") << s(R"("sections_height_first": "100,30,50,20,50,60,60",)")
                                             << text << s("\"sections_height_first\" needs 5 heights");
    QTest::newRow("misspelt element key")
        << QString() << s(R"({"type": "text", "section": "details", "font_szie": 9})")
        << s("element 1: an element has no attribute \"font_szie\"");
    QTest::newRow("number as text") << QString()
                                    << s(R"({"type": "text", "section": "details", "font_size": "9"})")
                                    << s("element 1: \"font_size\" has a value of the wrong kind");
    QTest::newRow("colour without its hash")
        << QString() << s(R"({"type": "text", "section": "details", "font_color": "0f6674"})")
        << s("element 1: \"font_color\" has a value of the wrong kind");
    QTest::newRow("undefined style") << QString()
                                     << s(R"({"type": "text", "section": "details", "style": "heading"})")
                                     << s("element 1: the style [\"heading\"] is not defined");
    QTest::newRow("unknown element type")
        << QString() << s(R"({"type": "shape_circle", "section": "details"})")
        << s("element 1: an element's \"type\" is missing or unknown");
    QTest::newRow("section of the grouped report")
        << QString() << s(R"({"type": "text", "section": "details_header"})")
        << s("element 1: this template has no section \"details_header\" on page side 0");
    QTest::newRow("background on the first page")
        << QString() << s(R"({"type": "text", "section": "background"})")
        << s("element 1: this template has no section \"background\" on page side 0");
    QTest::newRow("wider than the page between the margins")
        << QString() << text + s(R"(, {"type": "text", "section": "details", "position_x": 400,
                                       "position_width": 82})")
        << s("element 2: an element at 400, 0 in \"details\" on page side 0 reaches beyond its section "
             "(481.6 x 20)");
    QTest::newRow("lower than its section")
        << QString()
        << s(R"({"type": "text", "section": "details", "position_y": 12, "position_height": 10})")
        << s("element 1: an element at 0, 12 in \"details\" on page side 0 reaches beyond its section "
             "(481.6 x 20)");
    QTest::newRow("picture that is not there")
        << QString() << s(R"({"type": "shape_image", "section": "details", "format": "logo.png"})")
        << s("the picture \"logo.png\" of element 1 is not beside the source");
}

void tst_TemplateSource::slipsAreRefused()
{
    QFETCH(QString, more);
    QFETCH(QString, elements);
    QFETCH(QString, error);

    TemplateSource templateSource;
    QString why;
    QVERIFY(!templateSource.read(source(more, elements), QDir::tempPath(), &why));
    QCOMPARE(why, error);
}

QTEST_GUILESS_MAIN(tst_TemplateSource)
#include "tst_templatesource.moc"
