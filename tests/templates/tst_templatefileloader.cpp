#include "../model/modeltestsupport.h"
#include "model/defaultrecords.h"
#include "support/propertylist.h"
#include "support/zipwriter.h"
#include "templates/shippedtemplates.h"
#include "templates/templatefileloader.h"

#include <QBuffer>
#include <QColor>
#include <QDataStream>
#include <QDir>
#include <QImage>
#include <QRandomGenerator>
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

quint32 crc32(const QByteArray& data)
{
    quint32 crc = 0xffffffff;
    for (const char byte : data) {
        crc ^= quint8(byte);
        for (int bit = 0; bit < 8; ++bit)
            crc = (crc >> 1) ^ (0xedb88320 & (0u - (crc & 1)));
    }
    return ~crc;
}

// An archive of stored entries written byte by byte, for what the writer never makes: each
// entry with its Unix file mode.
QByteArray rawArchive(const QList<std::tuple<QString, QByteArray, quint32>>& entries)
{
    QByteArray archive, directory;
    QDataStream out(&archive, QIODevice::WriteOnly), dir(&directory, QIODevice::WriteOnly);
    out.setByteOrder(QDataStream::LittleEndian);
    dir.setByteOrder(QDataStream::LittleEndian);
    for (const auto& [name, data, mode] : entries) {
        const QByteArray fileName = name.toUtf8();
        const quint32 offset = quint32(archive.size()), crc = crc32(data), size = quint32(data.size());
        out << quint32(0x04034b50) << quint16(20) << quint16(0) << quint16(0) << quint32(0) << crc << size
            << size << quint16(fileName.size()) << quint16(0);
        out.writeRawData(fileName.constData(), int(fileName.size()));
        out.writeRawData(data.constData(), int(data.size()));
        // Made on Unix (3), so that the high half of the external attributes is the file mode.
        dir << quint32(0x02014b50) << quint16(0x0314) << quint16(20) << quint16(0) << quint16(0) << quint32(0)
            << crc << size << size << quint16(fileName.size()) << quint16(0) << quint16(0) << quint16(0)
            << quint16(0) << quint32(mode << 16) << offset;
        dir.writeRawData(fileName.constData(), int(fileName.size()));
    }
    const quint32 directoryOffset = quint32(archive.size());
    out.writeRawData(directory.constData(), int(directory.size()));
    out << quint32(0x06054b50) << quint16(0) << quint16(0) << quint16(entries.size())
        << quint16(entries.size()) << quint32(directory.size()) << directoryOffset << quint16(0);
    return archive;
}

QByteArray pngPicture()
{
    QImage image(4, 4, QImage::Format_RGB32);
    image.fill(Qt::darkCyan);
    QByteArray data;
    QBuffer buffer(&data);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "PNG");
    return data;
}

// The picture with a header that claims `side` × `side` pixels.
QByteArray pngClaiming(quint32 side)
{
    QByteArray png = pngPicture();
    QByteArray header;
    QDataStream out(&header, QIODevice::WriteOnly);
    out << side << side;
    png.replace(16, 8, header); // width and height of the IHDR chunk
    QByteArray crc;
    QDataStream(&crc, QIODevice::WriteOnly) << crc32(png.mid(12, 17));
    return png.replace(29, 4, crc);
}

const QByteArray kPlistDocumentType = "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
                                      "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">";

// A template's dictionary: its attributes, one that no template has, and its elements; `changes`
// replace or add attributes.
QByteArray templateFile(const QString& name, const QVariantList& elements, const QVariantMap& changes = {})
{
    QVariantMap values{{s("name"), name},
                       {s("type"), 0},
                       {s("identifier"), s("STORED-ID")},
                       {s("no_such_attribute"), s("ignored")},
                       {s("template_elements"), elements}};
    values.insert(changes);
    return support::PropertyList::toXml(values);
}

// A template of one text element with `changes` to the element, in an archive's entries.
Entries withText(const QVariantMap& changes, const QVariantMap& templateChanges = {})
{
    QVariantMap text{{s("type"), s("text")}, {s("format"), s("Hello")}, {s("font_size"), 12.0}};
    text.insert(changes);
    return {{s("T/template_elements"), templateFile(s("T"), {text}, templateChanges)}};
}

// A template whose property list begins with `documentType` instead of the standard one.
Entries withDocumentType(const QByteArray& documentType)
{
    QByteArray list = templateFile(s("T"), {});
    if (!list.contains(kPlistDocumentType))
        qFatal("the property-list writer no longer writes the standard document type");
    list.replace(kPlistDocumentType, documentType);
    return {{s("T/template_elements"), list}};
}

// A template of one image element whose picture is `picture`.
Entries withPicture(const QByteArray& picture)
{
    const QVariantMap image{{s("type"), s("shape_image")}, {s("format"), s("logo.png")}};
    return {{s("T/template_elements"), templateFile(s("T"), {image})}, {s("T/logo.png"), picture}};
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
            {name + s("/logo.png"), pngPicture()}};
}

} // namespace

class tst_TemplateFileLoader : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void shippedTemplatesLoadAndBecomeDefaults();
    void badFilesLeaveNothing_data();
    void badFilesLeaveNothing();
    void standardDocumentTypeIsAccepted();
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
    QCOMPARE(copied.readAll(), pngPicture());
}

void tst_TemplateFileLoader::badFilesLeaveNothing_data()
{
    QTest::addColumn<Entries>("entries");    // none: a text file
    QTest::addColumn<QString>("error");      // FILE stands for the file's path, DIR for its folder
    QTest::addColumn<bool>("folderIsAFile"); // a file stands where the pictures' folder goes
    QTest::addColumn<QByteArray>("raw");     // the archive's bytes, in place of the entries
    const auto row = [](const char* name, const Entries& entries, const char* error,
                        bool folderIsAFile = false, const QByteArray& raw = {}) {
        const QString why = folderIsAFile ? s(error) : s("The file format is wrong. ") + s(error);
        QTest::newRow(name) << entries << why << folderIsAFile << raw;
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

    // Hostile archives.
    row("an absolute entry", {{s("/T/template_elements"), good.first().second}},
        "The archive \"FILE\" holds an entry with an unsafe name (\"/T/template_elements\").");
    row("an entry that walks up", {good.first(), {s("T/../../logo.png"), "x"}},
        "The archive \"FILE\" holds an entry with an unsafe name (\"T/../../logo.png\").");
    row("a symbolic link as the picture", {}, "The archive \"FILE\" holds a symbolic link (\"T/logo.png\").",
        false,
        rawArchive({{s("T/template_elements"), good.first().second, 0100644},
                    {s("T/logo.png"), "/etc/passwd", 0120777}}));
    Entries many{good.first()};
    for (int i = 0; i < templates::TemplateFileLoader::kMaxEntries; ++i)
        many.append({s("T/%1.txt").arg(i), "x"});
    row("too many entries", many, "The archive \"FILE\" holds too many entries.");
    QList<quint32> noise(templates::TemplateFileLoader::kMaxEntrySize / 4 + 1);
    QRandomGenerator::global()->fillRange(noise.data(), noise.size());
    row("an entry too large",
        {good.first(),
         {s("T/big"), QByteArray(reinterpret_cast<const char*>(noise.constData()), noise.size() * 4)}},
        "The entry \"T/big\" of the archive \"FILE\" is too large.");
    row("a bomb", {good.first(), {s("T/zeros"), QByteArray(2 * 1024 * 1024, '\0')}},
        "Its entry \"T/zeros\" is packed too densely.");

    // Property lists with document types of their own.
    const char* ownType = "Its \"template_elements\" declares its own document type.";
    row("an external entity",
        withDocumentType("<!DOCTYPE plist [<!ENTITY x SYSTEM \"file:///etc/passwd\">]>"), ownType);
    row("the standard type with a subset", withDocumentType(kPlistDocumentType.chopped(1) + " [ ]>"),
        ownType);
    row("another document type", withDocumentType("<!DOCTYPE html>"),
        "Its \"template_elements\" has a document type other than a property list's.");
    row("the plist type from elsewhere", withDocumentType("<!DOCTYPE plist SYSTEM \"file:///etc/passwd\">"),
        "Its \"template_elements\" has a document type other than a property list's.");

    // Values of the wrong kind.
    row("a number for the name", withText({}, {{s("name"), 5}}),
        "The value of \"name\" is of the wrong kind.");
    row("text for a margin", withText({}, {{s("margin_left"), s("2cm")}}),
        "The value of \"margin_left\" is of the wrong kind.");
    row("an unknown template type", withText({}, {{s("type"), 55}}), "It is of no known template type.");
    row("a number for a colour", withText({{s("font_color"), 255}}),
        "The value of \"font_color\" is of the wrong kind.");
    row("a colour that is no colour", withText({{s("border_color"), QByteArray("no colour")}}),
        "The value of \"border_color\" is of the wrong kind.");
    row("a fraction for a position in the order", withText({{s("zorder"), 1.5}}),
        "The value of \"zorder\" is of the wrong kind.");
    row("an unknown element kind", withText({{s("type"), s("script")}}),
        "One of its elements is of no known kind.");
    row("an unknown page side", withText({{s("page_side"), 7}}),
        "One of its elements is on no known page side.");

    // Pictures that are none.
    row("text as a picture", withPicture("Dear Sir,"), "The picture \"logo.png\" is not a picture.");
    row("a cut-off picture", withPicture(pngPicture().left(40)),
        "The picture \"logo.png\" is not a picture.");
    row("a picture of a billion pixels", withPicture(pngClaiming(32000)),
        "The picture \"logo.png\" is too large.");
    row("a vector picture",
        withPicture("<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"4\" height=\"4\"/>"),
        "The picture \"logo.png\" is not a picture.");
}

void tst_TemplateFileLoader::badFilesLeaveNothing()
{
    QFETCH(Entries, entries);
    QFETCH(QString, error);
    QFETCH(bool, folderIsAFile);
    QFETCH(QByteArray, raw);
    QTemporaryDir dir;
    const QString file = dir.filePath(s("T.corvanta"));
    QFile text(file);
    if (!raw.isEmpty())
        QVERIFY(text.open(QIODevice::WriteOnly) && text.write(raw) && text.flush());
    else if (entries.isEmpty())
        QVERIFY(text.open(QIODevice::WriteOnly) && text.write("A letter.") && text.flush());
    else
        writeArchive(file, entries);
    QFile blocker(dir.filePath(s("templates")));
    QVERIFY(!folderIsAFile || blocker.open(QIODevice::WriteOnly));
    // A picture of another template is there before and stays alone.
    QFile existing(dir.filePath(s("templates/old.png")));
    QVERIFY(folderIsAFile ||
            (QDir().mkpath(dir.filePath(s("templates"))) && existing.open(QIODevice::WriteOnly)));
    existing.close();
    ScratchCompany st;
    QString why;
    QVERIFY(!templates::TemplateFileLoader(st.main(), dir.filePath(s("templates"))).load(file, &why));
    QCOMPARE(why, error.replace(s("FILE"), file).replace(s("DIR"), dir.path()));
    QCOMPARE(st.main().count(FetchRequest(s("Templates"))), 0);
    QCOMPARE(st.main().count(FetchRequest(s("TemplateElements"))), 0);
    QCOMPARE(QDir(dir.filePath(s("templates"))).entryList(QDir::NoDotAndDotDot | QDir::AllEntries),
             folderIsAFile ? QStringList() : QStringList{s("old.png")});
}

void tst_TemplateFileLoader::standardDocumentTypeIsAccepted()
{
    QTemporaryDir dir;
    const QByteArray list = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n" + kPlistDocumentType +
                            "\n<plist version=\"1.0\"><dict><key>name</key><string>Plain</string>"
                            "<key>type</key><integer>5</integer><key>template_elements</key><array><dict>"
                            "<key>type</key><string>text</string><key>font_size</key><real>9</real>"
                            "<key>zorder</key><real>3</real><key>border_top_show</key><integer>1</integer>"
                            "</dict></array></dict></plist>\n";
    writeArchive(dir.filePath(s("T.corvanta")), {{s("Plain/template_elements"), list}});
    ScratchCompany st;
    QString why;
    const Record* loaded = templates::TemplateFileLoader(st.main(), dir.filePath(s("templates")))
                               .load(dir.filePath(s("T.corvanta")), &why);
    QVERIFY2(loaded, qPrintable(why));
    QCOMPARE(valuesOf(loaded, {"name", "type", "template_elements.@count"}), s("Plain | 5 | 1"));
    const Record* element = loaded->relatedList(s("template_elements")).first();
    QCOMPARE(valuesOf(element, {"font_size", "zorder", "border_top_show"}), s("9 | 3 | true"));
}

QTEST_GUILESS_MAIN(tst_TemplateFileLoader)
#include "tst_templatefileloader.moc"
