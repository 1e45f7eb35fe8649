#include "app/applicationcore.h"
#include "browse/categorytree.h"
#include "browse/predicaterows.h"
#include "predicate/literal.h"
#include "store/editingcontext.h"
#include "store/record.h"
#include "store/store.h"
#include "support/scriptedprompter.h"
#include "ui/folderortagwindow.h"
#include "ui/predicateeditorwindow.h"
#include "ui/predicaterowwidget.h"
#include "ui/taglabel.h"

#include <QApplication>
#include <QColorDialog>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QScrollArea>
#include <QTemporaryDir>
#include <QTest>
#include <QToolButton>

using namespace corvanta;
using browse::CategoryTree;
using browse::PredicateRow;
using browse::RowValueType;
using store::Record;
using Mode = browse::FolderOrTagSheet::Mode;
using Op = predicate::Predicate::Operator;

namespace {

QString s(const char* text)
{
    return QString::fromUtf8(text);
}

Record* category(store::EditingContext& context, const QString& name)
{
    return name.isEmpty() ? nullptr
                          : context.fetchFirst(store::FetchRequest(s("Categories"),
                                                                   predicate::literal("name == %@", {name})));
}

// The stored values of a node that the sheets write, as one line.
QString stored(store::EditingContext& context, const QString& name)
{
    const Record* node = category(context, name);
    if (!node)
        return s("(none)");
    const Record* parent = node->related(s("parent"));
    return QStringList{node->value(s("indexpath")).toString(), node->value(s("type")).toString(),
                       CategoryTree::colourText(node->value(s("foreground_color"))),
                       CategoryTree::colourText(node->value(s("background_color"))),
                       parent ? parent->value(s("name")).toString() : s("-")}
        .join(s(" | "));
}

// Picks an entry of a pop-up as a click on it does.
void choose(QComboBox* popup, const QString& text)
{
    QVERIFY2(popup, qPrintable(text));
    const int index = popup->findText(text);
    QVERIFY2(index >= 0, qPrintable(text + s(" is not offered")));
    popup->setCurrentIndex(index);
    Q_EMIT popup->activated(index);
}

QStringList itemsOf(const QComboBox* popup)
{
    QStringList items;
    for (int i = 0; i < popup->count(); ++i)
        items << popup->itemText(i);
    return items;
}

} // namespace

class tst_Sheets : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_dir;
    QTemporaryDir m_shipped;
    std::unique_ptr<store::Store> m_store;
    support::ScriptedPrompter m_prompter;

    // What is in the database now, read afresh.
    std::unique_ptr<store::EditingContext> fresh() { return m_store->newContext(); }
    browse::PredicateRows rowsOf(browse::ListKind kind)
    {
        return browse::PredicateRows(browse::PredicateRowTemplates::forKind(kind, m_store->mainContext()));
    }
    template <typename T>
    T* in(const ui::PredicateEditorWindow& window, int index, const char* name)
    {
        QWidget* shown = window.rowWidgets().value(index);
        return shown ? shown->findChild<T*>(s(name)) : nullptr;
    }
    // A smart folder saved with `predicate` under the section's header.
    void addSmartFolder(const QString& name, int kind, const QString& predicate)
    {
        store::EditingContext& main = m_store->mainContext();
        CategoryTree(main).newSmartFolder(name, kind, predicate, category(main, s("Documents")));
        QVERIFY(main.save());
    }

private Q_SLOTS:
    void initTestCase()
    {
        store::StoreError error;
        m_store = app::ApplicationCore::openCompanyDatabase(
            m_dir.filePath(s("company.cvdb")), m_shipped.path(), m_dir.filePath(s("files")), &error);
        QVERIFY2(m_store, qPrintable(error.message()));
    }
    void init() { m_prompter.clear(); }

    // The sheet's title and line under it name the kind and the parent; a tag shows its type.
    void folderOrTagTexts_data()
    {
        QTest::addColumn<Mode>("mode");
        QTest::addColumn<QString>("node");
        QTest::addColumn<QString>("parent");
        QTest::addColumn<QString>("texts");
        QTest::addColumn<QString>("checkedType");

        QTest::newRow("new folder") << Mode::NewFolder << QString() << s("My Group")
                                    << s("New Folder | Enter name for new folder to be created inside "
                                         "\"My Group\".")
                                    << QString();
        QTest::newRow("new tag") << Mode::NewTag << QString() << s("My Folder")
                                 << s("New Tag | Enter name for new tag to be created inside \"My Folder\". "
                                      "Select Tag Type, background color and font color.")
                                 << QString();
        QTest::newRow("edited tag, shown where it is")
            << Mode::EditTag << s("Company") << s("My Folder")
            << s("New Tag | For tag to be edited inside \"Clients\", enter name, choose background color and "
                 "font color.")
            << s("tagTypeClients");
    }
    void folderOrTagTexts()
    {
        QFETCH(Mode, mode);
        QFETCH(QString, node);
        QFETCH(QString, parent);
        QFETCH(QString, texts);
        QFETCH(QString, checkedType);

        auto scratch = m_store->newContext();
        ui::FolderOrTagWindow window(*scratch, mode, category(*scratch, node), category(*scratch, parent),
                                     m_prompter);
        auto* title = window.findChild<QLabel*>(s("titleLabel"));
        auto* informative = window.findChild<QLabel*>(s("informativeLabel"));
        QCOMPARE(title->text() + s(" | ") + informative->text(), texts);
        QCOMPARE(window.windowTitle(), title->text());
        QCOMPARE(window.findChild<QLineEdit*>(s("nameEdit"))->text(), node);

        QStringList checked;
        for (auto* button : window.findChildren<QToolButton*>()) {
            if (button->objectName().startsWith(s("tagType")) && button->isChecked())
                checked << button->objectName();
        }
        QCOMPARE(checked.join(s(",")), checkedType);
        const bool tag = mode != Mode::NewFolder;
        QCOMPARE(window.findChild<QWidget*>(s("tagTypeDocuments")) != nullptr, tag);
        QCOMPARE(window.findChild<QWidget*>(s("tagPreview")) != nullptr, tag);

        // The line under the title follows the parent chosen; the pop-up lists the containers
        // by name, without the tabs that indent them.
        auto* parents = window.findChild<QComboBox*>(s("parentPopup"));
        QCOMPARE(parents->count(), int(CategoryTree(*scratch).containers().size()));
        QVERIFY(!itemsOf(parents).join(QString()).contains(QLatin1Char('\t')));
        parents->setCurrentIndex(parents->findText(s("Items")));
        QVERIFY(informative->text().contains(s("inside \"Items\"")));
    }

    // A new tag needs a type: without one the user is told and the sheet stays open.
    void newTagNeedsType()
    {
        auto scratch = m_store->newContext();
        ui::FolderOrTagWindow window(*scratch, Mode::NewTag, nullptr, category(*scratch, s("My Folder")),
                                     m_prompter);
        window.show();
        auto* preview = window.findChild<ui::TagLabelWidget*>(s("tagPreview"));
        QCOMPARE(preview->text(), s("No Name"));
        QCOMPARE(preview->foreground().name() + preview->background().name(), s("#ffffff#ff8000"));
        QTest::keyClicks(window.findChild<QLineEdit*>(s("nameEdit")), s("Urgent"));
        QCOMPARE(preview->text(), s("Urgent"));

        QTest::mouseClick(window.findChild<QPushButton*>(s("saveButton")), Qt::LeftButton);
        QCOMPARE(m_prompter.titles(), QStringList{s("There is no \"Tag Type\" chosen")});
        QCOMPARE(m_prompter.questions().value(0).text, s("For saving, please choose a \"Tag Type\"."));
        QVERIFY(window.isVisible());
        QCOMPARE(window.result(), int(QDialog::Rejected));
        QCOMPARE(stored(*fresh(), s("Urgent")), s("(none)"));
    }

    // Made under the parent chosen in the pop-up, numbered after its children.
    void createFolderOrTag_data()
    {
        QTest::addColumn<Mode>("mode");
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("parent");
        QTest::addColumn<QString>("typeButton");
        QTest::addColumn<QString>("expected"); // type | colours | parent, after the indexpath

        QTest::newRow("folder in a group")
            << Mode::NewFolder << s("Archive") << s("My Group") << QString() << s("0 |  |  | My Group");
        QTest::newRow("documents tag in a folder")
            << Mode::NewTag << s("Urgent") << s("My Folder") << s("tagTypeDocuments")
            << s("3 | #FFFFFF | #FF8000 | My Folder");
    }
    void createFolderOrTag()
    {
        QFETCH(Mode, mode);
        QFETCH(QString, name);
        QFETCH(QString, parent);
        QFETCH(QString, typeButton);
        QFETCH(QString, expected);

        auto scratch = m_store->newContext();
        // Opened under the Clients header, the parent is chosen in the sheet.
        ui::FolderOrTagWindow window(*scratch, mode, nullptr, category(*scratch, s("Clients")), m_prompter);
        const Record* chosen = category(*scratch, parent);
        const QString path = chosen->value(s("indexpath")).toString() +
                             QString::asprintf("%03d", int(CategoryTree::children(chosen).size()));
        QTest::keyClicks(window.findChild<QLineEdit*>(s("nameEdit")), name);
        window.findChild<QComboBox*>(s("parentPopup"))
            ->setCurrentIndex(window.findChild<QComboBox*>(s("parentPopup"))->findText(parent));
        if (!typeButton.isEmpty())
            QTest::mouseClick(window.findChild<QToolButton*>(typeButton), Qt::LeftButton);
        QTest::mouseClick(window.findChild<QPushButton*>(s("saveButton")), Qt::LeftButton);

        QCOMPARE(window.result(), int(QDialog::Accepted));
        QVERIFY(m_prompter.questions().isEmpty());
        QCOMPARE(window.node()->value(s("name")).toString(), name);
        QCOMPARE(stored(*fresh(), name), path + s(" | ") + expected);
    }

    // An edited tag takes the colours chosen, keeps one whose choice was cancelled, and moves.
    void editTag()
    {
        store::EditingContext& main = m_store->mainContext();
        CategoryTree(main).newTag(s("Overdue"), 3, category(main, s("My Folder")));
        QVERIFY(main.save());

        auto scratch = m_store->newContext();
        Record* tag = category(*scratch, s("Overdue"));
        ui::FolderOrTagWindow window(*scratch, Mode::EditTag, tag, tag->related(s("parent")), m_prompter);
        auto* preview = window.findChild<ui::TagLabelWidget*>(s("tagPreview"));
        const auto pick = [&](const char* button, const QColor& colour, bool accept) {
            QTest::mouseClick(window.findChild<QPushButton*>(s(button)), Qt::LeftButton);
            auto* dialog = window.findChild<QColorDialog*>(s("colorDialog"));
            QVERIFY(dialog);
            dialog->setCurrentColor(colour);
            accept ? dialog->accept() : dialog->reject();
            delete dialog;
        };
        pick("backgroundColorButton", QColor(0x20, 0x40, 0xa0), true);
        pick("fontColorButton", QColor(0x10, 0x10, 0x10), false);
        QCOMPARE(preview->background().name() + preview->foreground().name(), s("#2040a0#ffffff"));
        window.findChild<QLineEdit*>(s("nameEdit"))->setText(s("Late"));
        auto* parents = window.findChild<QComboBox*>(s("parentPopup"));
        parents->setCurrentIndex(parents->findText(s("Documents")));
        QTest::mouseClick(window.findChild<QPushButton*>(s("saveButton")), Qt::LeftButton);

        QCOMPARE(window.result(), int(QDialog::Accepted));
        QCOMPARE(stored(*fresh(), s("Late")).section(s(" | "), 1), s("3 | #FFFFFF | #2040A0 | Documents"));
        QCOMPARE(stored(*fresh(), s("Overdue")), s("(none)"));
    }

    // Document Type is Invoice, and Creation Date is this month: stored as the rows write it.
    void buildCondition()
    {
        auto scratch = m_store->newContext();
        Record* folder = CategoryTree(*scratch).newSmartFolder(QString(), 3, QString(),
                                                               category(*scratch, s("Documents")));
        ui::PredicateEditorWindow window(folder, m_prompter);
        QCOMPARE(window.findChild<QLineEdit*>(s("nameEdit"))->text(), s("Smart Folder"));
        QCOMPARE(window.rowWidgets().size(), 2);
        choose(in<QComboBox>(window, 1, "fieldPopup"), s("Document Type"));
        choose(in<QComboBox>(window, 1, "valuePopup"), s("Invoice"));
        in<QToolButton>(window, 1, "addButton")->click(); // the button, not its menu arrow
        choose(in<QComboBox>(window, 2, "fieldPopup"), s("Creation Date"));
        // A date is compared with a fixed date or a named range, all offered under one field.
        QCOMPARE(itemsOf(in<QComboBox>(window, 2, "operatorPopup")),
                 (QStringList{s("is the date"), s("is after the date"), s("is before the date"), s("is")}));
        QVERIFY(in<QWidget>(window, 2, "valueDate"));
        choose(in<QComboBox>(window, 2, "operatorPopup"), s("is"));
        choose(in<QComboBox>(window, 2, "valuePopup"), s("this month"));
        window.findChild<QLineEdit*>(s("nameEdit"))->setText(s("Invoices This Month"));
        QTest::mouseClick(window.findChild<QPushButton*>(s("saveButton")), Qt::LeftButton);

        QCOMPARE(window.result(), int(QDialog::Accepted));
        const auto expected =
            rowsOf(browse::ListKind::Documents)
                .toText(PredicateRow::compound(
                    PredicateRow::Kind::All,
                    {PredicateRow::comparison(s("type"), RowValueType::Choice, Op::Equal, 0),
                     PredicateRow::comparison(s("date_creation"), RowValueType::RelativeDate, Op::Equal,
                                              s("@this_month"))}));
        QVERIFY(expected);
        QCOMPARE(category(*fresh(), s("Invoices This Month"))->value(s("predicate")).toString(), *expected);
    }

    // A nested group is shown indented under its own pop-up, and saved as it was read.
    void nestedGroupRoundTrip()
    {
        const auto rows = rowsOf(browse::ListKind::Clients);
        const auto condition = [&](PredicateRow::Kind nested) {
            return *rows.toText(PredicateRow::compound(
                PredicateRow::Kind::All,
                {PredicateRow::comparison(s("company_name"), RowValueType::Text, Op::Like, s("*smith*")),
                 PredicateRow::compound(
                     nested,
                     {PredicateRow::comparison(s("status"), RowValueType::Choice, Op::Equal, 2),
                      PredicateRow::comparison(s("rating"), RowValueType::Choice, Op::GreaterOrEqual, 5)})}));
        };
        addSmartFolder(s("Smiths"), 1, condition(PredicateRow::Kind::Any));

        auto scratch = m_store->newContext();
        ui::PredicateEditorWindow window(category(*scratch, s("Smiths")), m_prompter);
        QStringList shown;
        for (int i = 0; i < window.rowWidgets().size(); ++i) {
            auto* kind = in<QComboBox>(window, i, "compoundPopup");
            auto* field = in<QComboBox>(window, i, "fieldPopup");
            shown << QString(window.rowWidgets()[i]->path().size(), QLatin1Char('>')) +
                         (kind ? kind->currentText() : field->currentText());
        }
        QCOMPARE(shown.join(s(", ")), s("All, >Company Name, >Any, >>Status, >>Rating"));
        QCOMPARE(in<QComboBox>(window, 4, "operatorPopup")->currentText(), s("is greater than or equal to"));
        QCOMPARE(in<QComboBox>(window, 4, "valuePopup")->currentText(), s("5"));
        choose(in<QComboBox>(window, 2, "compoundPopup"), s("All"));
        QTest::mouseClick(window.findChild<QPushButton*>(s("saveButton")), Qt::LeftButton);
        QCOMPARE(category(*fresh(), s("Smiths"))->value(s("predicate")).toString(),
                 condition(PredicateRow::Kind::All));
    }

    // The last condition cannot go, and the rows area grows and shrinks with the rows.
    void rowsAddAndRemove()
    {
        auto scratch = m_store->newContext();
        Record* folder =
            CategoryTree(*scratch).newSmartFolder(QString(), 2, QString(), category(*scratch, s("Items")));
        ui::PredicateEditorWindow window(folder, m_prompter);
        window.show();
        auto* area = window.findChild<QScrollArea*>(s("rowsArea"));
        const auto heights = [&] {
            return QString::number(window.rowWidgets().size()) + s(" rows, ") +
                   QString::number(area->height() / window.rowHeight());
        };
        QVERIFY(window.rowHeight() > 0);
        QCOMPARE(heights(), s("2 rows, 2"));
        QVERIFY(!in<QToolButton>(window, 1, "removeButton")->isEnabled());
        const int before = window.sizeHint().height();

        window.findChild<QAction*>(s("addGroupAction"))->trigger();
        QCOMPARE(heights(), s("4 rows, 4"));
        QVERIFY(window.sizeHint().height() > before);
        QVERIFY(in<QToolButton>(window, 1, "removeButton")->isEnabled());
        QVERIFY(in<QComboBox>(window, 2, "compoundPopup"));

        QTest::mouseClick(in<QToolButton>(window, 1, "removeButton"), Qt::LeftButton);
        QCOMPARE(heights(), s("3 rows, 3"));
        QVERIFY(!in<QToolButton>(window, 2, "removeButton")->isEnabled());
        QCOMPARE(window.predicate().root().children.value(0).kind, PredicateRow::Kind::Any);
    }

    // A condition that is not the user's to change is shown, never written; the name still is.
    void conditionKept_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("predicate"); // empty: a system folder of the defaults

        QTest::newRow("system folder") << s("Paid Invoices") << QString();
        QTest::newRow("condition the rows cannot show") << s("Large") << s("sum_total > 1000");
    }
    void conditionKept()
    {
        QFETCH(QString, name);
        QFETCH(QString, predicate);
        if (!predicate.isEmpty())
            addSmartFolder(name, 3, predicate);

        auto scratch = m_store->newContext();
        Record* folder = category(*scratch, name);
        const QString before = folder->value(s("predicate")).toString();
        ui::PredicateEditorWindow window(folder, m_prompter);
        QVERIFY(!window.findChild<QLabel*>(s("noteLabel"))->isHidden());
        QCOMPARE(window.findChild<QLabel*>(s("conditionLabel"))->text(), before);
        window.findChild<QLineEdit*>(s("nameEdit"))->setText(name + s(" 2"));
        QTest::mouseClick(window.findChild<QPushButton*>(s("saveButton")), Qt::LeftButton);

        QCOMPARE(window.result(), int(QDialog::Accepted));
        QCOMPARE(category(*fresh(), name + s(" 2"))->value(s("predicate")).toString(), before);
    }

    // Cancel leaves the stored folder as it was; Tab walks the controls in reading order and
    // Return saves.
    void cancelAndKeys()
    {
        const auto condition = [&](const char* name) {
            return *rowsOf(browse::ListKind::Documents)
                        .toText(PredicateRow::compound(
                            PredicateRow::Kind::All,
                            {PredicateRow::comparison(s("client_full_name"), RowValueType::Text, Op::Contains,
                                                      s(name))}));
        };
        addSmartFolder(s("Acme Documents"), 3, condition("acme"));
        {
            auto scratch = m_store->newContext();
            ui::PredicateEditorWindow window(category(*scratch, s("Acme Documents")), m_prompter);
            window.findChild<QLineEdit*>(s("nameEdit"))->setText(s("Changed"));
            QTest::keyClicks(in<QLineEdit>(window, 1, "valueEdit"), s(" ltd"));
            QTest::mouseClick(window.findChild<QPushButton*>(s("cancelButton")), Qt::LeftButton);
            QCOMPARE(window.result(), int(QDialog::Rejected));
        }
        QCOMPARE(category(*fresh(), s("Acme Documents"))->value(s("predicate")).toString(),
                 condition("acme"));

        auto scratch = m_store->newContext();
        ui::PredicateEditorWindow window(category(*scratch, s("Acme Documents")), m_prompter);
        window.show();
        QVERIFY(QTest::qWaitForWindowActive(&window));
        auto* name = window.findChild<QLineEdit*>(s("nameEdit"));
        name->setFocus();
        QStringList order{name->objectName()};
        for (int i = 0; i < 9; ++i) {
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
            order << QApplication::focusWidget()->objectName();
        }
        // "−" of the only condition is disabled and passed over.
        QCOMPARE(order.join(s(", ")), s("nameEdit, compoundPopup, addButton, fieldPopup, operatorPopup, "
                                        "valueEdit, addButton, cancelButton, saveButton, nameEdit"));
        QTest::keyClicks(in<QLineEdit>(window, 1, "valueEdit"), s(" corp"));
        QTest::keyClick(in<QLineEdit>(window, 1, "valueEdit"), Qt::Key_Return);
        QCOMPARE(window.result(), int(QDialog::Accepted));
        QCOMPARE(category(*fresh(), s("Acme Documents"))->value(s("predicate")).toString(),
                 condition("acme corp"));
    }
};

QTEST_MAIN(tst_Sheets)
#include "tst_sheets.moc"
