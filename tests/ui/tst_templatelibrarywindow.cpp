#include "companies/databasemanager.h"
#include "model/companyrecord.h"
#include "templates/templatelibrary.h"
#include "ui/templatelibrarywindow.h"
#include "uitestsupport.h"

#include <QAction>
#include <QDir>
#include <QLineEdit>
#include <QMenu>
#include <QPdfDocument>
#include <QPushButton>
#include <QTemporaryDir>
#include <QToolButton>
#include <QTreeWidget>

using namespace corvanta;
using namespace corvanta::ui::testing;
using store::Record;
using ui::TemplateLibraryWindow;

namespace {

class Library
{
public:
    Library()
        : window(company.store(), company.prompter(),
                 company.core().databaseManager()->templateFilesDirectory())
    {
        window.show();
        company.prompter().clear();
    }

    Record* named(const QString& name) { return company.named("Templates", s("name"), name); }
    Record* defaultOf(const char* key) { return model::CompanyRecord::of(company.main())->related(s(key)); }
    // The selected row's name and the type group it stands in.
    QString selectedRow() const
    {
        const QList<QTreeWidgetItem*> selected = window.tree()->selectedItems();
        if (selected.size() != 1 || !selected.first()->parent())
            return {};
        return selected.first()->parent()->text(0) + s(" / ") + selected.first()->text(0);
    }

    UiCompany company;
    TemplateLibraryWindow window;
};

void trigger(QMenu* menu, const QString& objectName)
{
    auto* action = menu->findChild<QAction*>(objectName);
    QVERIFY2(action, qPrintable(objectName));
    QVERIFY2(action->isEnabled(), qPrintable(objectName + s(" is disabled")));
    action->trigger();
}

} // namespace

class TemplateLibraryWindowTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void newTemplateIsRenamedInPlace_data();
    void newTemplateIsRenamedInPlace();
    void duplicateAsQuotation();
    void deleteIsRefused_data();
    void deleteIsRefused();
    void deleteTakesTheRowBelow();
    void defaultMoves_data();
    void defaultMoves();
    void exportedTemplateImportsAgain();
    void previewShowsTheDemoDocument_data();
    void previewShowsTheDemoDocument();
    void previewFollowsTheTemplate();
};

void TemplateLibraryWindowTest::newTemplateIsRenamedInPlace_data()
{
    QTest::addColumn<QString>("action");
    QTest::addColumn<QString>("group");
    QTest::addColumn<qint64>("type");
    QTest::newRow("invoice") << s("add_invoice") << s("Invoice") << qint64(0);
    QTest::newRow("purchase order") << s("add_purchase_order") << s("Purchase Order") << qint64(7);
    QTest::newRow("grouped report") << s("add_report_documents_grouped") << s("Document Grouped Report")
                                    << qint64(110);
}

void TemplateLibraryWindowTest::newTemplateIsRenamedInPlace()
{
    QFETCH(QString, action);
    QFETCH(QString, group);
    QFETCH(qint64, type);
    Library library;
    trigger(library.window.addMenu(), action);
    QCOMPARE(library.selectedRow(), group + s(" /  New "));

    // The name is open for editing: typing replaces it.
    auto* editor = library.window.tree()->viewport()->findChild<QLineEdit*>();
    QVERIFY(editor && editor->isVisible());
    editor->selectAll();
    QTest::keyClicks(editor, s("Zebra"));
    QTest::keyClick(editor, Qt::Key_Return);
    QTRY_COMPARE(library.selectedRow(), group + s(" / Zebra"));
    Record* stored = library.named(s("Zebra"));
    QVERIFY(stored);
    QCOMPARE(stored->value(s("type")).toLongLong(), type);
    QCOMPARE(library.window.property("selectedRowCount").toInt(), 1);
}

void TemplateLibraryWindowTest::duplicateAsQuotation()
{
    Library library;
    Record* invoice = library.defaultOf("default_template_invoice");
    const QString name = invoice->value(s("name")).toString();
    QVERIFY(library.window.selectTemplate(invoice->ref()));
    trigger(library.window.duplicateMenu(), s("duplicateAs_quotation"));
    QCOMPARE(library.selectedRow(), s("Quotation / ") + name + s(" Copy"));
    QCOMPARE(library.window.selectedTemplate()->value(s("type")).toLongLong(), qint64(3));

    // A report template is copied only as a report.
    QVERIFY(library.window.selectTemplate(library.defaultOf("default_template_report_documents")->ref()));
    auto* asQuotation = library.window.duplicateMenu()->findChild<QAction*>(s("duplicateAs_quotation"));
    QVERIFY(!asQuotation->isEnabled());
    QVERIFY(library.window.findChild<QToolButton*>(s("duplicateButton"))->isEnabled());
}

void TemplateLibraryWindowTest::deleteIsRefused_data()
{
    QTest::addColumn<QString>("defaultKey");
    QTest::addColumn<QString>("text");
    QTest::newRow("last of its type")
        << s("default_template_estimate")
        << s("The chosen design template cannot be deleted. At least one design "
             "template is required from this type.");
    QTest::newRow("default") << s("default_template_invoice")
                             << s("The chosen design template cannot be deleted, because it is a default "
                                  "design template.");
}

void TemplateLibraryWindowTest::deleteIsRefused()
{
    QFETCH(QString, defaultKey);
    QFETCH(QString, text);
    Library library;
    Record* templ = library.defaultOf(defaultKey.toLatin1().constData());
    QVERIFY(library.window.selectTemplate(templ->ref()));
    library.window.findChild<QToolButton*>(s("deleteButton"))->click();

    QCOMPARE(library.company.prompter().questions().size(), 1);
    QCOMPARE(library.company.prompter().questions().first().title, s("Design Template cannot be deleted"));
    QCOMPARE(library.company.prompter().questions().first().text, text);
    QVERIFY(library.window.itemOf(templ->ref()));
    QCOMPARE(library.window.selectedTemplate()->ref(), templ->ref());
}

void TemplateLibraryWindowTest::deleteTakesTheRowBelow()
{
    Library library;
    Record* invoice = library.defaultOf("default_template_invoice");
    QVERIFY(library.window.selectTemplate(invoice->ref()));
    library.window.duplicateRow();
    Record* copy = library.window.selectedTemplate();
    QVERIFY(copy && copy != invoice);
    const predicate::RecordRef ref = copy->ref();
    library.window.deleteRow();
    QVERIFY(library.company.prompter().questions().isEmpty());
    QVERIFY(!library.window.itemOf(ref));
    QVERIFY(!library.company.main().fetchRecord(s("Templates"), ref));
    QCOMPARE(library.window.property("selectedRowCount").toInt(), 1);
}

void TemplateLibraryWindowTest::defaultMoves_data()
{
    QTest::addColumn<bool>("byButton");
    QTest::newRow("tick") << false;
    QTest::newRow("Make Default") << true;
}

void TemplateLibraryWindowTest::defaultMoves()
{
    QFETCH(bool, byButton);
    Library library;
    Record* before = library.defaultOf("default_template_invoice");
    QTreeWidgetItem* beforeItem = library.window.itemOf(before->ref());
    QTreeWidgetItem* other =
        beforeItem->parent()->child(beforeItem->parent()->indexOfChild(beforeItem) == 0 ? 1 : 0);
    const QString otherName = other->text(0);
    QCOMPARE(other->checkState(1), Qt::Unchecked);

    if (byButton) {
        auto* button = library.window.findChild<QPushButton*>(s("defaultButton"));
        QVERIFY(!button->isEnabled());
        library.window.tree()->setCurrentItem(other);
        QVERIFY(button->isEnabled());
        button->click();
    } else {
        other->setCheckState(1, Qt::Checked);
    }
    QCOMPARE(library.defaultOf("default_template_invoice"), library.named(otherName));
    // The tree is drawn anew: the tick follows the default.
    QTRY_COMPARE(library.window.itemOf(before->ref())->checkState(1), Qt::Unchecked);
    QCOMPARE(library.window.itemOf(library.named(otherName)->ref())->checkState(1), Qt::Checked);
}

void TemplateLibraryWindowTest::exportedTemplateImportsAgain()
{
    Library library;
    QTemporaryDir folder;
    Record* estimate = library.defaultOf("default_template_estimate");
    QVERIFY(library.window.selectTemplate(estimate->ref()));
    library.company.prompter().addAnswer(folder.path());
    library.window.findChild<QPushButton*>(s("exportButton"))->click();
    const QString file = QDir(folder.path()).filePath(s("Estimate.corvanta"));
    QVERIFY(QFileInfo::exists(file));
    QCOMPARE(library.company.prompter().titles(),
             QStringList({s("Export Design Template"), s("Design Template export completed successfully")}));

    library.window.importFiles({file, file});
    // Both copies are selected, under their type.
    const QList<QTreeWidgetItem*> selected = library.window.tree()->selectedItems();
    QCOMPARE(selected.size(), 2);
    for (const QTreeWidgetItem* item : selected) {
        QCOMPARE(item->parent()->text(0), s("Estimate"));
        QCOMPARE(item->text(0), s("Import Estimate"));
    }
    QCOMPARE(library.company.prompter().titles().last(), s("Import successfully"));
}

void TemplateLibraryWindowTest::previewShowsTheDemoDocument_data()
{
    QTest::addColumn<QString>("defaultKey");
    QTest::newRow("invoice") << s("default_template_invoice");
    QTest::newRow("client report") << s("default_template_report_summary_client");
}

void TemplateLibraryWindowTest::previewShowsTheDemoDocument()
{
    QFETCH(QString, defaultKey);
    Library library;
    library.window.tree()->clearSelection();
    library.window.tree()->setCurrentItem(nullptr);
    QTRY_COMPARE(library.window.previewDocument()->pageCount(), 0);
    QVERIFY(library.window.selectTemplate(library.defaultOf(defaultKey.toLatin1().constData())->ref()));
    QTRY_VERIFY(library.window.previewDocument()->pageCount() >= 1);
    QCOMPARE(library.window.previewDocument()->status(), QPdfDocument::Status::Ready);
}

void TemplateLibraryWindowTest::previewFollowsTheTemplate()
{
    Library library;
    Record* invoice = library.defaultOf("default_template_invoice");
    QVERIFY(library.window.selectTemplate(invoice->ref()));
    QTRY_VERIFY(library.window.previewDocument()->pageCount() >= 1);

    // A text changed elsewhere is drawn in the preview.
    Record* text = nullptr;
    for (Record* element : invoice->relatedList(s("template_elements"))) {
        if (element->value(s("type")).toString() == s("text") && element->value(s("page_side")).toInt() == 0)
            text = element;
    }
    QVERIFY(text);
    text->setValue(s("format"), s("Zanzibar Trading"));
    library.company.save();
    QTRY_VERIFY(library.window.previewDocument()->getAllText(0).text().contains(s("Zanzibar Trading")));
}

CORVANTA_UI_TEST_MAIN(TemplateLibraryWindowTest)
#include "tst_templatelibrarywindow.moc"
