#include "../model/modeltestsupport.h"
#include "support/scriptedprompter.h"
#include "templates/elementtransformers.h"
#include "templates/templatefilewriter.h"
#include "templates/templatelibrary.h"

#include <QDir>
#include <QImage>

using namespace corvanta;
using namespace corvanta::model::testing;
using namespace corvanta::store;
using templates::TemplateLibrary;

namespace {

// Every alert asked so far as "title | text | buttons".
QStringList alerts(const support::ScriptedPrompter& prompter)
{
    QStringList asked;
    for (const auto& question : prompter.questions())
        asked << question.title + s(" | ") + question.text + s(" | ") + question.buttons.join(s(","));
    return asked;
}

const QString kNotDeleted = s("Design Template cannot be deleted | ");

// A scratch company with its company record, a template files folder and a library over both.
class Fixture
{
public:
    Fixture()
        : library(st.main(), prompter, folder.path())
    {
        company = st.main().insertRecord(s("MyCompany"));
        saveOrFail(st.main());
    }

    // A template of `type` named `name` with a text and, when `picture` is given, an image
    // element whose picture is a small PNG of that name in the template files folder.
    Record* addTemplate(int type, const QString& name, const QString& picture = {})
    {
        Record* templ = st.main().insertRecord(
            s("Templates"), {{s("name"), name}, {s("type"), type}, {s("identifier"), name + s("-ID")}});
        st.main().insertRecord(s("TemplateElements"), {{s("type"), s("text")},
                                                       {s("identifier"), name + s("-T")},
                                                       {s("zorder"), 1},
                                                       {s("format"), s("%@ text")},
                                                       {s("template"), QVariant::fromValue(templ)}});
        if (!picture.isEmpty()) {
            QImage image(3, 2, QImage::Format_RGB32);
            image.fill(Qt::red);
            image.save(pathOf(picture));
            st.main().insertRecord(s("TemplateElements"), {{s("type"), s("shape_image")},
                                                           {s("identifier"), name + s("-I")},
                                                           {s("zorder"), 2},
                                                           {s("format"), picture},
                                                           {s("template"), QVariant::fromValue(templ)}});
        }
        saveOrFail(st.main());
        return templ;
    }

    QString pathOf(const QString& picture) const { return QDir(folder.path()).filePath(picture); }
    int count(const char* entity) { return st.main().count(FetchRequest(s(entity))); }

    ScratchCompany st;
    QTemporaryDir folder;
    support::ScriptedPrompter prompter;
    TemplateLibrary library;
    Record* company = nullptr;
};

// The elements of a template as "type:format" in drawing order, with their identifiers.
QStringList elementsOf(Record* templ, QStringList* identifiers = nullptr)
{
    QStringList texts;
    QList<Record*> elements = templ->relatedList(s("template_elements"));
    std::sort(elements.begin(), elements.end(), [](Record* a, Record* b) {
        return a->value(s("zorder")).toInt() < b->value(s("zorder")).toInt();
    });
    for (const Record* element : elements) {
        texts << element->value(s("type")).toString() + s(":") + element->value(s("format")).toString();
        if (identifiers)
            *identifiers << element->value(s("identifier")).toString();
    }
    return texts;
}

} // namespace

class tst_TemplateLibrary : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void addRowStartsWithTheTypesSections_data();
    void addRowStartsWithTheTypesSections();
    void templatesSortByTypeThenName();
    void duplicateIntoAnotherType();
    void deleteGuardsInOrder_data();
    void deleteGuardsInOrder();
    void defaultIsPerType();
    void exportThenImport();
    void failedSaveLeavesNoCopy();
};

void tst_TemplateLibrary::addRowStartsWithTheTypesSections_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<QString>("heights");
    QTest::newRow("invoice") << 0 << s("100,100,100,100,100");
    QTest::newRow("document report") << 100 << s("100,100,100,100,100");
    QTest::newRow("grouped report") << 110 << s("100,100,50,50,50,100,100");
}

void tst_TemplateLibrary::addRowStartsWithTheTypesSections()
{
    QFETCH(int, type);
    QFETCH(QString, heights);
    Fixture f;
    Record* made = f.library.addRow(type);
    QVERIFY(made);
    f.st.reopen();
    const Record* stored = f.st.main().fetchFirst(FetchRequest(s("Templates")));
    QCOMPARE(valuesOf(stored, {"name", "type", "sections_height_first", "sections_height_following"}),
             s(" New  | %1 | %2 | %2").arg(type).arg(heights));
    QCOMPARE(stored->value(s("identifier")).toString().size(), 36);
}

void tst_TemplateLibrary::templatesSortByTypeThenName()
{
    Fixture f;
    f.addTemplate(3, s("b"));
    f.addTemplate(0, s("Zeta"));
    f.addTemplate(3, s("A"));
    f.addTemplate(0, s("alpha"));
    QStringList names;
    for (const Record* templ : f.library.templates())
        names << templ->value(s("name")).toString();
    QCOMPARE(names, (QStringList{s("alpha"), s("Zeta"), s("A"), s("b")}));
}

void tst_TemplateLibrary::duplicateIntoAnotherType()
{
    Fixture f;
    Record* source = f.addTemplate(0, s("Invoice"), s("logo.png"));
    QStringList sourceIds;
    const QStringList sourceElements = elementsOf(source, &sourceIds);

    Record* copy = f.library.duplicateRow(source, 3);
    QVERIFY(copy);
    QVERIFY(f.prompter.questions().isEmpty());
    QCOMPARE(valuesOf(copy, {"name", "type"}), s("Invoice Copy | 3"));
    QVERIFY(copy->value(s("identifier")) != source->value(s("identifier")));

    QStringList copyIds;
    const QStringList copyElements = elementsOf(copy, &copyIds);
    QCOMPARE(copyElements.first(), sourceElements.first());
    for (const QString& id : copyIds)
        QVERIFY(!sourceIds.contains(id));
    // The copy's picture is its own file, named after its element, with the same content.
    const QString copiedPicture = copyIds.last() + s(".png");
    QCOMPARE(copyElements.last(), s("shape_image:") + copiedPicture);
    QCOMPARE(QImage(f.pathOf(copiedPicture)), QImage(f.pathOf(s("logo.png"))));

    // A plain copy keeps the type; deleting the quotation copy leaves the source's picture.
    f.addTemplate(3, s("Other quotation"));
    QCOMPARE(valuesOf(f.library.duplicateRow(source, TemplateLibrary::kPlainCopy), {"name", "type"}),
             s("Invoice Copy | 0"));
    QVERIFY(f.library.deleteRow(copy));
    QVERIFY(!QFile::exists(f.pathOf(copiedPicture)));
    QVERIFY(QFile::exists(f.pathOf(s("logo.png"))));

    // A report is copied only as a report.
    Record* report = f.addTemplate(120, s("Clients"));
    const int before = f.count("Templates");
    QVERIFY(!f.library.duplicateRow(report, 0));
    QCOMPARE(f.count("Templates"), before);
    QCOMPARE(alerts(f.prompter),
             QStringList{s("Report templates cannot be duplicated | Report templates cannot "
                           "be duplicated as document types. | OK")});
    QCOMPARE(valuesOf(f.library.duplicateRow(report, TemplateLibrary::kPlainCopy), {"name", "type"}),
             s("Clients Copy | 120"));
}

void tst_TemplateLibrary::deleteGuardsInOrder_data()
{
    QTest::addColumn<int>("documents");  // documents made with the template
    QTest::addColumn<bool>("onlyOne");   // no other template of its type
    QTest::addColumn<bool>("isDefault"); // the company's default
    QTest::addColumn<QString>("alert");  // empty: deleted
    const QString used = kNotDeleted + s("The chosen design template cannot be deleted, because it is in "
                                         "use in 2 document(s). | OK");
    const QString only = kNotDeleted + s("The chosen design template cannot be deleted. At least one design "
                                         "template is required from this type. | OK");
    const QString byDefault = kNotDeleted + s("The chosen design template cannot be deleted, because it is a "
                                              "default design template. | OK");
    QTest::newRow("in use, also the only and default") << 2 << true << true << used;
    QTest::newRow("the only one, also default") << 0 << true << true << only;
    QTest::newRow("the default") << 0 << false << true << byDefault;
    QTest::newRow("free to go") << 0 << false << false << QString();
}

void tst_TemplateLibrary::deleteGuardsInOrder()
{
    QFETCH(int, documents);
    QFETCH(bool, onlyOne);
    QFETCH(bool, isDefault);
    QFETCH(QString, alert);
    Fixture f;
    Record* templ = f.addTemplate(2, s("Estimate"), s("logo.png"));
    if (!onlyOne)
        f.addTemplate(2, s("Other"));
    f.addTemplate(0, s("Invoice"));
    for (int i = 0; i < documents; ++i)
        f.st.main().insertRecord(s("Documents"),
                                 {{s("type"), 2}, {s("template"), QVariant::fromValue(templ)}});
    if (isDefault)
        f.company->setRelated(s("default_template_estimate"), templ);
    saveOrFail(f.st.main());
    const int before = f.count("Templates");

    QCOMPARE(f.library.deleteRow(templ), alert.isEmpty());
    QCOMPARE(alerts(f.prompter), alert.isEmpty() ? QStringList() : QStringList{alert});
    QCOMPARE(f.count("Templates"), before - (alert.isEmpty() ? 1 : 0));
    QCOMPARE(QFile::exists(f.pathOf(s("logo.png"))), !alert.isEmpty());
    QCOMPARE(f.count("TemplateElements"), alert.isEmpty() ? before - 1 : before + 1);
}

void tst_TemplateLibrary::defaultIsPerType()
{
    Fixture f;
    Record* first = f.addTemplate(110, s("One"));
    Record* second = f.addTemplate(110, s("Two"));
    Record* invoice = f.addTemplate(0, s("Invoice"));
    QVERIFY(f.library.defaultChanged(first));
    QVERIFY(f.library.defaultChanged(invoice));
    QVERIFY(f.library.defaultChanged(second));
    QCOMPARE(f.company->related(s("default_template_report_documents_grouped")), second);
    QCOMPARE(
        QList<bool>({f.library.isDefault(first), f.library.isDefault(second), f.library.isDefault(invoice)}),
        QList<bool>({false, true, true}));
    QCOMPARE(templates::DefaultTemplateValueTransformer().transformedValue(QVariant::fromValue(second)),
             QVariant(true));
}

void tst_TemplateLibrary::exportThenImport()
{
    Fixture f;
    Record* source = f.addTemplate(0, s("Blue/Green"), s("logo.png"));
    source->setValue(s("margin_left"), 2.5);
    source->relatedList(s("template_elements")).first()->setValue(s("font_color"), QColor(1, 2, 3, 4));
    saveOrFail(f.st.main());
    QTemporaryDir out;
    // A colour goes into the file as data holding the store's colour text.
    QCOMPARE(templates::TemplateFileWriter::dictionaryOf(source)
                 .value(s("template_elements"))
                 .toList()
                 .first()
                 .toMap()
                 .value(s("font_color")),
             QVariant(QByteArray("#0101020203030404")));

    const QString path = f.library.exportTemplate(source, out.path());
    QCOMPARE(path, QDir(out.path()).filePath(s("Blue_Green.corvanta")));
    QCOMPARE(alerts(f.prompter),
             QStringList{s("Design Template export completed successfully | The "
                           "\"Blue_Green.corvanta\" file has been exported successfully to "
                           "the folder \"%1\". | OK")
                             .arg(out.path())});
    f.prompter.clear();

    const QList<Record*> imported = f.library.importFiles({path, path});
    QCOMPARE(imported.size(), 2);
    QCOMPARE(alerts(f.prompter), QStringList{s("Import successfully | Design Template(s) import completed "
                                               "successfully. | OK")});
    QCOMPARE(imported.at(0)->value(s("name")).toString(), s("Import Blue/Green"));
    QCOMPARE(imported.at(1)->value(s("name")).toString(), s("Import Blue/Green"));
    QVERIFY(imported.at(0)->value(s("identifier")) != imported.at(1)->value(s("identifier")));

    // Apart from names and identifiers, what comes back is what went out.
    const auto comparable = [](Record* templ) {
        QVariantMap values = templates::TemplateFileWriter::dictionaryOf(templ);
        values.remove(s("name"));
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
    QCOMPARE(comparable(imported.at(0)), comparable(source));
    const QString picture = elementsOf(imported.at(1)).last().section(QLatin1Char(':'), 1);
    QCOMPARE(QImage(f.pathOf(picture)), QImage(f.pathOf(s("logo.png"))));

    // An import stops at the first bad file and keeps what came before it.
    const QString bad = QDir(out.path()).filePath(s("bad.corvanta"));
    QFile file(bad);
    QVERIFY(file.open(QIODevice::WriteOnly) && file.write("not an archive") > 0);
    file.close();
    f.prompter.clear();
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(s("bad.corvanta\" is not imported")));
    QCOMPARE(f.library.importFiles({path, bad, path}).size(), 1);
    QCOMPARE(alerts(f.prompter), QStringList{s("Unsuccessful Import | The file format is wrong. | OK")});
    f.st.reopen();
    QCOMPARE(f.count("Templates"), 4);
}

void tst_TemplateLibrary::failedSaveLeavesNoCopy()
{
    Fixture f;
    Record* source = f.addTemplate(0, s("Invoice"), s("logo.png"));
    Record* cheque = f.st.main().insertRecord(s("PaymentTypes"), {{s("name"), s("Cheque")}});
    f.st.main().insertRecord(s("Documents"), {{s("type"), 0}})->setRelated(s("payment_type"), cheque);
    saveOrFail(f.st.main());
    f.st.main().deleteRecord(cheque); // refused by the save: a document uses it

    QVERIFY(!f.library.duplicateRow(source, TemplateLibrary::kPlainCopy));
    QCOMPARE(alerts(f.prompter),
             QStringList{s("The changes could not be saved. | A record of PaymentTypes cannot be "
                           "deleted while 1 record(s) of Documents use it. | OK")});
    QCOMPARE(f.count("Templates"), 1);
    QCOMPARE(f.count("PaymentTypes"), 1);
    QCOMPARE(QDir(f.folder.path()).entryList(QDir::Files), QStringList{s("logo.png")});
}

QTEST_GUILESS_MAIN(tst_TemplateLibrary)
#include "tst_templatelibrary.moc"
