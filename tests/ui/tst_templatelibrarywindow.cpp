#include "companies/databasemanager.h"
#include "model/companyrecord.h"
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

class TemplateLibraryWindowTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<UiCompany> m_company;
    std::unique_ptr<TemplateLibraryWindow> m_window;

    Record* named(const QString& name) { return m_company->named("Templates", s("name"), name); }
    Record* defaultOf(const QString& key)
    {
        return model::CompanyRecord::of(m_company->main())->related(key);
    }
    // The selected rows as "type group / name".
    QStringList selectedRows() const
    {
        QStringList rows;
        for (const QTreeWidgetItem* item : m_window->tree()->selectedItems())
            rows << (item->parent() ? item->parent()->text(0) : QString()) + s(" / ") + item->text(0);
        return rows;
    }
    void trigger(QMenu* menu, const QString& objectName)
    {
        auto* action = menu->findChild<QAction*>(objectName);
        QVERIFY2(action && action->isEnabled(), qPrintable(objectName));
        action->trigger();
    }

private Q_SLOTS:
    void init()
    {
        m_company = std::make_unique<UiCompany>();
        m_window = std::make_unique<TemplateLibraryWindow>(
            m_company->store(), m_company->prompter(),
            m_company->core().databaseManager()->templateFilesDirectory());
        m_window->show();
        m_company->prompter().clear();
    }
    void cleanup()
    {
        m_window.reset();
        m_company.reset();
    }

    // A grouped report, named in place under its own group; the name is stored on Return.
    void newTemplateIsRenamedInPlace()
    {
        trigger(m_window->addMenu(), s("add_report_documents_grouped"));
        QCOMPARE(m_window->property("selectedRowCount").toInt(), 1);
        auto* editor = m_window->tree()->viewport()->findChild<QLineEdit*>();
        QVERIFY(editor && editor->isVisible());
        editor->selectAll();
        QTest::keyClicks(editor, s("Zebra"));
        QTest::keyClick(editor, Qt::Key_Return);
        QTRY_COMPARE(selectedRows(), QStringList{s("Document Grouped Report / Zebra")});
        QVERIFY(named(s("Zebra")));
        QCOMPARE(named(s("Zebra"))->value(s("type")).toLongLong(), qint64(110));
    }

    // A report is copied only as a report.
    void reportIsNotDuplicatedAsADocument()
    {
        QVERIFY(m_window->selectTemplate(defaultOf(s("default_template_report_documents"))->ref()));
        QVERIFY(!m_window->duplicateMenu()->findChild<QAction*>(s("duplicateAs_quotation"))->isEnabled());
        QVERIFY(m_window->findChild<QToolButton*>(s("duplicateButton"))->isEnabled());
    }

    void deleteRow_data()
    {
        QTest::addColumn<QString>("defaultKey"); // empty: a copy of the default invoice template
        QTest::addColumn<QString>("text");       // the refusal, empty when the template goes
        QTest::newRow("default") << s("default_template_invoice")
                                 << s("The chosen design template cannot be deleted, because it is a default "
                                      "design template.");
        QTest::newRow("a copy") << QString() << QString();
    }

    // Refused, the reason is told and the row stays chosen; allowed, the row below is chosen.
    void deleteRow()
    {
        QFETCH(QString, defaultKey);
        QFETCH(QString, text);
        QVERIFY(m_window->selectTemplate(
            defaultOf(defaultKey.isEmpty() ? s("default_template_invoice") : defaultKey)->ref()));
        if (defaultKey.isEmpty())
            m_window->duplicateRow();
        const predicate::RecordRef ref = m_window->selectedTemplate()->ref();
        m_window->findChild<QToolButton*>(s("deleteButton"))->click();
        const bool kept = !text.isEmpty();
        QCOMPARE(askedLines(m_company->prompter()),
                 kept ? QStringList{s("Design Template cannot be deleted | ") + text + s(" | OK")}
                      : QStringList());
        QCOMPARE(m_window->itemOf(ref) != nullptr, kept);
        QCOMPARE(m_company->main().fetchRecord(s("Templates"), ref) != nullptr, kept);
        QCOMPARE(m_window->property("selectedRowCount").toInt(), 1);
        QCOMPARE(m_window->selectedTemplate()->ref() == ref, kept);
    }

    void defaultMoves_data()
    {
        QTest::addColumn<bool>("byButton");
        QTest::newRow("tick") << false;
        QTest::newRow("Make Default") << true;
    }

    void defaultMoves()
    {
        QFETCH(bool, byButton);
        Record* before = defaultOf(s("default_template_invoice"));
        QTreeWidgetItem* beforeItem = m_window->itemOf(before->ref());
        QTreeWidgetItem* other =
            beforeItem->parent()->child(beforeItem->parent()->indexOfChild(beforeItem) == 0);
        const QString otherName = other->text(0);
        QCOMPARE(other->checkState(1), Qt::Unchecked);
        if (byButton) {
            auto* button = m_window->findChild<QPushButton*>(s("defaultButton"));
            QVERIFY(!button->isEnabled());
            m_window->tree()->setCurrentItem(other);
            QVERIFY(button->isEnabled());
            button->click();
        } else {
            other->setCheckState(1, Qt::Checked);
        }
        QCOMPARE(defaultOf(s("default_template_invoice")), named(otherName));
        // The tree is drawn anew: the tick follows the default.
        QTRY_COMPARE(m_window->itemOf(before->ref())->checkState(1), Qt::Unchecked);
        QCOMPARE(m_window->itemOf(named(otherName)->ref())->checkState(1), Qt::Checked);
    }

    void exportedTemplateImportsAgain()
    {
        QTemporaryDir folder;
        QVERIFY(m_window->selectTemplate(defaultOf(s("default_template_estimate"))->ref()));
        m_company->prompter().addAnswer(folder.path());
        m_window->findChild<QPushButton*>(s("exportButton"))->click();
        const QString file = QDir(folder.path()).filePath(s("Estimate.corvanta"));
        QVERIFY(QFileInfo::exists(file));
        QCOMPARE(
            m_company->prompter().titles(),
            QStringList({s("Export Design Template"), s("Design Template export completed successfully")}));
        m_window->importFiles({file, file});
        // Both copies are selected, under their type.
        QCOMPARE(selectedRows(), QStringList(2, s("Estimate / Import Estimate")));
        QCOMPARE(m_company->prompter().titles().last(), s("Import successfully"));
    }

    void previewFollowsTheTemplate_data()
    {
        QTest::addColumn<QString>("defaultKey");
        QTest::newRow("invoice") << s("default_template_invoice");
        QTest::newRow("client report") << s("default_template_report_summary_client");
    }

    // Nothing chosen, nothing shown; a template chosen shows the demo document, drawn again when
    // a text of it changes elsewhere.
    void previewFollowsTheTemplate()
    {
        QFETCH(QString, defaultKey);
        m_window->tree()->clearSelection();
        m_window->tree()->setCurrentItem(nullptr);
        QTRY_COMPARE(m_window->previewDocument()->pageCount(), 0);
        Record* templ = defaultOf(defaultKey);
        QVERIFY(m_window->selectTemplate(templ->ref()));
        QTRY_VERIFY(m_window->previewDocument()->pageCount() >= 1);
        QCOMPARE(m_window->previewDocument()->status(), QPdfDocument::Status::Ready);
        Record* text = nullptr;
        for (Record* element : templ->relatedList(s("template_elements"))) {
            if (element->value(s("type")).toString() == s("text") &&
                element->value(s("page_side")).toInt() == 0)
                text = element;
        }
        QVERIFY(text);
        text->setValue(s("format"), s("Zanzibar Trading"));
        m_company->save();
        QTRY_VERIFY(m_window->previewDocument()->getAllText(0).text().contains(s("Zanzibar Trading")));
    }
};

CORVANTA_UI_TEST_MAIN(TemplateLibraryWindowTest)
#include "tst_templatelibrarywindow.moc"
