#include "../model/modeltestsupport.h"
#include "model/defaultrecords.h"
#include "support/propertylist.h"
#include "support/zipwriter.h"
#include "templates/shippedtemplates.h"
#include "templates/templatefileloader.h"
#include "templates/templatefilewriter.h"

#include <QColor>
#include <QDir>
#include <QImage>
#include <QRegularExpression>

using namespace corvanta;
using namespace corvanta::model;
using namespace corvanta::store;
using namespace corvanta::model::testing;

namespace {

using Entries = QList<std::pair<QString, QByteArray>>;

void writeArchive(const QString& path, const Entries& entries)
{
    support::ZipWriter zip;
    QString error;
    QVERIFY(zip.open(path, &error));
    for (const auto& [name, data] : entries)
        QVERIFY(zip.addData(name, data, &error));
    QVERIFY2(zip.close(&error), qPrintable(error));
}

// A template's dictionary: its attributes, one that no template has, and its elements.
QByteArray templateFile(const QString& name, const QVariantList& elements)
{
    return support::PropertyList::toXml(QVariantMap{{s("name"), name},
                                                    {s("identifier"), s("STORED-ID")},
                                                    {s("no_such_attribute"), s("ignored")},
                                                    {s("template_elements"), elements}});
}

// A template file of two elements: a text in red on half-transparent blue, and a picture.
Entries sampleTemplate(const QString& name)
{
    const QVariantMap text{{s("type"), s("text")},
                           {s("identifier"), s("OLD-1")},
                           {s("font_color"), s("#ffff00000000ffff")},
                           {s("background_color"), QByteArray("#00008000ffff8000")}};
    const QVariantMap picture{{s("type"), s("shape_image")}, {s("format"), s("logo.png")}};
    return {{name + s("/template_elements"), templateFile(name, {text, picture})},
            {name + s("/logo.png"), QByteArray("\x89PNG picture bytes", 18)}};
}

} // namespace

class tst_TemplateFileLoader : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void shippedTemplatesLoadAndBecomeDefaults();
    void badFilesLeaveNothing_data();
    void badFilesLeaveNothing();
    void writtenFileReadsBackEqual();
};

void tst_TemplateFileLoader::shippedTemplatesLoadAndBecomeDefaults()
{
    QTemporaryDir shipped;
    writeArchive(shipped.filePath(s("invoice1.corvanta")), sampleTemplate(s("First Invoice")));
    writeArchive(shipped.filePath(s("invoice2.corvanta")), sampleTemplate(s("Second Invoice")));
    writeArchive(shipped.filePath(s("quotation.corvanta")), {{s("Q/template_elements"), "damaged"}});
    QTemporaryDir pictures;
    ScratchCompany st;
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(s("quotation.corvanta is skipped")));
    DefaultRecords defaults(st.main(), [&](EditingContext& context, Record* company, QString*) {
        return templates::ShippedTemplates(shipped.path(), pictures.path()).install(context, company) == 2;
    });
    StoreError error;
    QVERIFY2(defaults.initDatabaseRecords(&error), qPrintable(error.message()));
    st.reopen();

    // The later invoice file is the default invoice template; the damaged file left nothing.
    const Record* company = st.main().fetchFirst(FetchRequest(s("MyCompany")));
    QCOMPARE(st.main().count(FetchRequest(s("Templates"))), 2);
    const Record* loaded = company->related(s("default_template_invoice"));
    QVERIFY(loaded);

    // The stored attributes are taken, the identifiers are new; unknown keys are ignored.
    QCOMPARE(loaded->value(s("name")).toString(), s("Second Invoice"));
    const QRegularExpression uuid(s("\\A[0-9A-F]{8}(-[0-9A-F]{4}){3}-[0-9A-F]{12}\\z"));
    QVERIFY(uuid.match(loaded->value(s("identifier")).toString()).hasMatch());
    QList<Record*> elements = loaded->relatedList(s("template_elements"));
    QCOMPARE(elements.size(), 2);
    if (elements.at(0)->value(s("type")).toString() != s("text"))
        elements.swapItemsAt(0, 1);
    QVERIFY(uuid.match(elements.at(0)->value(s("identifier")).toString()).hasMatch());
    // Colours come as text or as data.
    QCOMPARE(elements.at(0)->value(s("font_color")).value<QColor>(), QColor(255, 0, 0));
    const QColor background = elements.at(0)->value(s("background_color")).value<QColor>();
    QCOMPARE(background.rgba64(), QRgba64::fromRgba64(0, 0x8000, 0xffff, 0x8000));

    // The picture is copied under a name made from the element's new identifier.
    const QString pictureName = elements.at(1)->value(s("identifier")).toString() + s(".png");
    QCOMPARE(elements.at(1)->value(s("format")).toString(), pictureName);
    QFile copied(QDir(pictures.path()).filePath(pictureName));
    QVERIFY(copied.open(QIODevice::ReadOnly));
    QCOMPARE(copied.readAll(), QByteArray("\x89PNG picture bytes", 18));
}

void tst_TemplateFileLoader::badFilesLeaveNothing_data()
{
    QTest::addColumn<Entries>("entries");    // none: a text file
    QTest::addColumn<QString>("error");      // FILE stands for the file's path, DIR for its folder
    QTest::addColumn<bool>("folderIsAFile"); // a file stands where the pictures' folder goes
    const auto row = [](const char* name, const Entries& entries, const char* error,
                        bool folderIsAFile = false) {
        const QString why = folderIsAFile ? s(error) : s("The file format is wrong. ") + s(error);
        QTest::newRow(name) << entries << why << folderIsAFile;
    };
    const Entries good = sampleTemplate(s("T"));
    const QVariantMap picture{{s("type"), s("shape_image")}, {s("format"), s("../../etc/passwd")}};
    row("not an archive", {}, "\"FILE\" is not a readable ZIP archive: Not a zip archive");
    row("no template_elements", {{s("T/other"), "x"}}, "It holds no \"template_elements\".");
    row("two templates", {good.first(), {s("U/template_elements"), good.first().second}},
        "It holds more than one template.");
    row("garbage property list", {{s("T/template_elements"), "garbage"}},
        "Its \"template_elements\" cannot be read: it is not well-formed XML (line 1, column 1: Start tag "
        "expected.).");
    row("not a dictionary, at the top", {{s("template_elements"), templateFile(s("T"), {s("x")})}},
        "One of its elements is not a dictionary.");
    row("a picture name that walks up", {{s("T/template_elements"), templateFile(s("T"), {picture})}},
        "The picture name \"../../etc/passwd\" is not allowed.");
    row("a picture that is missing", {good.first()}, "The picture \"logo.png\" is missing.");
    // Found only after the elements were inserted: they are taken out again.
    row("no folder for the pictures", good, "The folder \"DIR/templates\" cannot be created.", true);
}

void tst_TemplateFileLoader::badFilesLeaveNothing()
{
    QFETCH(Entries, entries);
    QFETCH(QString, error);
    QFETCH(bool, folderIsAFile);
    QTemporaryDir dir;
    const QString file = dir.filePath(s("T.corvanta"));
    QFile text(file);
    if (entries.isEmpty())
        QVERIFY(text.open(QIODevice::WriteOnly) && text.write("A letter.") && text.flush());
    else
        writeArchive(file, entries);
    QFile blocker(dir.filePath(s("templates")));
    QVERIFY(!folderIsAFile || blocker.open(QIODevice::WriteOnly));
    ScratchCompany st;
    QString why;
    QVERIFY(!templates::TemplateFileLoader(st.main(), dir.filePath(s("templates"))).load(file, &why));
    QCOMPARE(why, error.replace(s("FILE"), file).replace(s("DIR"), dir.path()));
    QCOMPARE(st.main().count(FetchRequest(s("Templates"))), 0);
    QCOMPARE(st.main().count(FetchRequest(s("TemplateElements"))), 0);
    QVERIFY(QDir(dir.filePath(s("templates"))).isEmpty());
}

void tst_TemplateFileLoader::writtenFileReadsBackEqual()
{
    QTemporaryDir dir;
    const QString pictures = dir.filePath(s("pictures"));
    QVERIFY(QDir().mkpath(pictures));
    QImage logo(4, 3, QImage::Format_ARGB32);
    logo.fill(QColor(10, 20, 30, 40));
    QVERIFY(logo.save(QDir(pictures).filePath(s("ABC.png"))));

    ScratchCompany st;
    Record* source =
        st.main().insertRecord(s("Templates"), {{s("name"), s("Dear/Sir ..")},
                                                {s("type"), 3},
                                                {s("margin_left"), 12.5},
                                                {s("show_grid"), true},
                                                {s("sections_height_first"), s("100,90,80,70,60")}});
    st.main().insertRecord(s("TemplateElements"), {{s("type"), s("text")},
                                                   {s("zorder"), 1},
                                                   {s("format"), s("Hello\n%@")},
                                                   {s("font_color"), QColor(255, 0, 0, 128)},
                                                   {s("border_color"), QColor(0, 0, 1)},
                                                   {s("font_size"), 9.5},
                                                   {s("template"), QVariant::fromValue(source)}});
    st.main().insertRecord(s("TemplateElements"), {{s("type"), s("shape_image")},
                                                   {s("zorder"), 2},
                                                   {s("format"), s("ABC.png")},
                                                   {s("template"), QVariant::fromValue(source)}});
    saveOrFail(st.main());

    const QString file = dir.filePath(s("out.corvanta"));
    QString why;
    QVERIFY2(templates::TemplateFileWriter::write(source, pictures, file, &why), qPrintable(why));
    Record* loaded = templates::TemplateFileLoader(st.main(), pictures).load(file, &why);
    QVERIFY2(loaded, qPrintable(why));

    // Every value comes back but the identifiers and the picture's name.
    const auto withoutNames = [](QVariantMap values) {
        values.remove(s("identifier"));
        QVariantList elements = values.take(s("template_elements")).toList();
        for (QVariant& element : elements) {
            QVariantMap map = element.toMap();
            map.remove(s("identifier"));
            map.remove(s("format"));
            element = map;
        }
        values.insert(s("template_elements"), elements);
        return values;
    };
    const QVariantMap written = templates::TemplateFileWriter::dictionaryOf(source);
    QCOMPARE(written.value(s("template_elements")).toList().first().toMap().value(s("font_color")),
             QVariant(QByteArray("#ffff000000008080")));
    QCOMPARE(withoutNames(templates::TemplateFileWriter::dictionaryOf(loaded)), withoutNames(written));

    const QList<Record*> elements = loaded->relatedList(s("template_elements"));
    QCOMPARE(elements.size(), 2);
    for (const Record* element : elements) {
        if (element->value(s("type")).toString() != s("shape_image"))
            continue;
        const QString copied = QDir(pictures).filePath(element->value(s("format")).toString());
        QCOMPARE(QImage(copied), QImage(QDir(pictures).filePath(s("ABC.png"))));
        QVERIFY(copied != QDir(pictures).filePath(s("ABC.png")));
    }
}

QTEST_GUILESS_MAIN(tst_TemplateFileLoader)
#include "tst_templatefileloader.moc"
