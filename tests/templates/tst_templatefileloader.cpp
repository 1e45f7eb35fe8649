#include "../model/modeltestsupport.h"
#include "model/defaultrecords.h"
#include "support/propertylist.h"
#include "support/zipwriter.h"
#include "templates/shippedtemplates.h"
#include "templates/templatefileloader.h"

#include <QColor>
#include <QDir>
#include <QRegularExpression>

using namespace corvanta;
using namespace corvanta::model;
using namespace corvanta::store;
using namespace corvanta::model::testing;
using support::PropertyList;
using support::ZipWriter;
using templates::ShippedTemplates;
using templates::TemplateFileLoader;

namespace {

using Entries = QList<std::pair<QString, QByteArray>>;

void writeArchive(const QString& path, const Entries& entries)
{
    ZipWriter zip;
    QString error;
    QVERIFY(zip.open(path, &error));
    for (const auto& [name, data] : entries)
        QVERIFY(zip.addData(name, data, &error));
    QVERIFY2(zip.close(&error), qPrintable(error));
}

QVariantMap elements(const QString& name, int type, const QVariantList& elementList)
{
    return {{s("name"), name},
            {s("type"), qint64(type)},
            {s("identifier"), s("STORED-ID")},
            {s("margin_left"), 20.5},
            {s("sections_height_first"), s("100,100,100,100,100")},
            {s("show_grid"), true},
            {s("no_such_attribute"), s("ignored")},
            {s("template_elements"), elementList}};
}

// A template file of two elements: a text in red on half-transparent blue, and a picture.
Entries sampleTemplate(const QString& name, int type)
{
    const QVariantMap text{{s("type"), s("text")},
                           {s("identifier"), s("OLD-1")},
                           {s("text"), s("Invoice {number_formatted}")},
                           {s("position_y"), qint64(-4)},
                           {s("font_size"), 12.5},
                           {s("font_color"), s("#ffff00000000ffff")},
                           {s("background_color"), QByteArray("#00008000ffff8000")}};
    const QVariantMap picture{{s("type"), s("shape_image")}, {s("format"), s("logo.png")}};
    return {{name + s("/template_elements"), PropertyList::toXml(elements(name, type, {text, picture}))},
            {name + s("/logo.png"), QByteArray("\x89PNG picture bytes", 18)}};
}

} // namespace

class tst_TemplateFileLoader : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void loadsTemplateAndElements();
    void badFilesLeaveNothing_data();
    void badFilesLeaveNothing();
    void shippedTemplatesBecomeDefaults();
};

void tst_TemplateFileLoader::loadsTemplateAndElements()
{
    QTemporaryDir dir;
    const QString file = dir.filePath(s("Invoice.corvanta"));
    writeArchive(file, sampleTemplate(s("Invoice"), 0));
    ScratchCompany st;
    const QString pictures = dir.filePath(s("templates"));
    TemplateFileLoader loader(st.main(), pictures);
    QString error;
    Record* loaded = loader.load(file, &error);
    QVERIFY2(loaded, qPrintable(error));
    saveOrFail(st.main());

    QCOMPARE(loaded->value(s("name")).toString(), s("Invoice"));
    QCOMPARE(loaded->value(s("type")).toInt(), 0);
    QCOMPARE(loaded->value(s("margin_left")).toDouble(), 20.5);
    QCOMPARE(loaded->value(s("show_grid")).toBool(), true);
    QCOMPARE(loaded->value(s("sections_height_first")).toString(), s("100,100,100,100,100"));
    const QRegularExpression uuid(s("\\A[0-9A-F]{8}(-[0-9A-F]{4}){3}-[0-9A-F]{12}\\z"));
    QVERIFY(uuid.match(loaded->value(s("identifier")).toString()).hasMatch());

    const QList<Record*> elements = loaded->relatedList(s("template_elements"));
    QCOMPARE(elements.size(), 2);
    const bool textFirst = elements.at(0)->value(s("type")).toString() == s("text");
    const Record* text = elements.at(textFirst ? 0 : 1);
    const Record* picture = elements.at(textFirst ? 1 : 0);
    QVERIFY(uuid.match(text->value(s("identifier")).toString()).hasMatch());
    QVERIFY(text->value(s("identifier")) != picture->value(s("identifier")));
    QCOMPARE(text->value(s("text")).toString(), s("Invoice {number_formatted}"));
    QCOMPARE(text->value(s("position_y")).toDouble(), -4.0);
    QCOMPARE(text->value(s("font_size")).toDouble(), 12.5);
    QCOMPARE(text->value(s("font_color")).value<QColor>(), QColor(255, 0, 0));
    const QColor background = text->value(s("background_color")).value<QColor>();
    QCOMPARE(background.rgba64(), QRgba64::fromRgba64(0, 0x8000, 0xffff, 0x8000));
    QVERIFY(text->value(s("border_color")).isNull());

    // The picture is copied under a name made from the element's new identifier.
    const QString pictureName = picture->value(s("identifier")).toString() + s(".png");
    QCOMPARE(picture->value(s("format")).toString(), pictureName);
    QFile copied(QDir(pictures).filePath(pictureName));
    QVERIFY(copied.open(QIODevice::ReadOnly));
    QCOMPARE(copied.readAll(), QByteArray("\x89PNG picture bytes", 18));

    // The same file twice gives two templates.
    QVERIFY(loader.load(file, &error));
    QCOMPARE(st.main().count(FetchRequest(s("Templates"))), 2);
}

void tst_TemplateFileLoader::badFilesLeaveNothing_data()
{
    QTest::addColumn<Entries>("entries"); // none: a text file
    QTest::addColumn<QString>("error");   // FILE stands for the file's path
    const auto row = [](const char* name, const Entries& entries, const char* error) {
        QTest::newRow(name) << entries << s("The file format is wrong. ") + s(error);
    };
    const auto plist = [](const QVariant& value) {
        return Entries{{s("T/template_elements"), PropertyList::toXml(value)}};
    };
    const Entries good = sampleTemplate(s("T"), 0);
    const QVariantMap picture{{s("type"), s("shape_image")}, {s("format"), s("../../etc/passwd")}};
    row("no template_elements", {{s("T/other"), "x"}}, "It holds no \"template_elements\".");
    row("garbage property list", {{s("T/template_elements"), "garbage"}},
        "Its \"template_elements\" cannot be read: it is not well-formed XML (line 1, column 1: Start tag "
        "expected.).");
    row("an array instead of a dictionary", plist(QVariantList{s("a")}),
        "Its \"template_elements\" is not a dictionary.");
    row("elements not a list, at the root",
        {{s("template_elements"), PropertyList::toXml(QVariantMap{{s("template_elements"), s("x")}})}},
        "Its elements are not a list.");
    row("an element not a dictionary", plist(elements(s("T"), 0, {s("x")})),
        "One of its elements is not a dictionary.");
    row("a picture name that walks up", plist(elements(s("T"), 0, {picture})),
        "The picture name \"../../etc/passwd\" is not allowed.");
    row("a picture that is missing", {good.first()}, "The picture \"logo.png\" is missing.");
    row("two templates", {good.first(), {s("U/template_elements"), good.first().second}},
        "It holds more than one template.");
    row("an entry outside the archive", {good.first(), good.last(), {s("../evil"), "x"}},
        "The archive \"FILE\" holds an entry with an unsafe name (\"../evil\").");
    row("not an archive", {}, "\"FILE\" is not a readable ZIP archive: Not a zip archive");
}

void tst_TemplateFileLoader::badFilesLeaveNothing()
{
    QFETCH(Entries, entries);
    QFETCH(QString, error);
    QTemporaryDir dir;
    const QString file = dir.filePath(s("T.corvanta"));
    if (entries.isEmpty()) {
        QFile text(file);
        QVERIFY(text.open(QIODevice::WriteOnly));
        text.write("This is a letter, not a template.");
    } else {
        writeArchive(file, entries);
    }
    ScratchCompany st;
    TemplateFileLoader loader(st.main(), dir.filePath(s("templates")));
    QString why;
    QVERIFY(!loader.load(file, &why));
    QCOMPARE(why, error.replace(s("FILE"), file));
    QCOMPARE(st.main().count(FetchRequest(s("Templates"))), 0);
    QCOMPARE(st.main().count(FetchRequest(s("TemplateElements"))), 0);
    QVERIFY(QDir(dir.filePath(s("templates"))).isEmpty());
}

void tst_TemplateFileLoader::shippedTemplatesBecomeDefaults()
{
    QTemporaryDir shipped;
    writeArchive(shipped.filePath(s("invoice1.corvanta")), sampleTemplate(s("First Invoice"), 0));
    writeArchive(shipped.filePath(s("invoice2.corvanta")), sampleTemplate(s("Second Invoice"), 0));
    writeArchive(shipped.filePath(s("report_summary_item.corvanta")), sampleTemplate(s("Items"), 130));
    writeArchive(shipped.filePath(s("quotation.corvanta")), {{s("Q/template_elements"), "damaged"}});
    QTemporaryDir pictures;
    ScratchCompany st;
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(s("quotation.corvanta is skipped")));
    DefaultRecords defaults(st.main(), [&](EditingContext& context, Record* company, QString*) {
        return ShippedTemplates(shipped.path(), pictures.path()).install(context, company) == 3;
    });
    StoreError error;
    QVERIFY2(defaults.initDatabaseRecords(&error), qPrintable(error.message()));
    st.reopen();
    const Record* company = st.main().fetchFirst(FetchRequest(s("MyCompany")));
    // The later invoice file is the default invoice template.
    QCOMPARE(company->valueForKeyPath(s("default_template_invoice.name")).toString(), s("Second Invoice"));
    QCOMPARE(company->valueForKeyPath(s("default_template_report_summary_item.name")).toString(), s("Items"));
    QVERIFY(company->valueForKeyPath(s("default_template_quotation")).isNull());
    QCOMPARE(st.main().count(FetchRequest(s("Templates"))), 3);
    QCOMPARE(st.main().count(FetchRequest(s("TemplateElements"))), 6);
}

QTEST_GUILESS_MAIN(tst_TemplateFileLoader)
#include "tst_templatefileloader.moc"
