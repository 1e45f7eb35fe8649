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
#include <QButtonGroup>
#include <QColorDialog>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
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
    return QStringList{node->value(s("type")).toString(),
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

PredicateRow compare(const char* key, RowValueType type, Op op, const QVariant& value)
{
    return PredicateRow::comparison(s(key), type, op, value);
}

PredicateRow all(const QList<PredicateRow>& children)
{
    return PredicateRow::compound(PredicateRow::Kind::All, children);
}

void clickSave(QWidget& window)
{
    QTest::mouseClick(window.findChild<QPushButton*>(s("saveButton")), Qt::LeftButton);
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
    QString storedCondition(const QString& name)
    {
        // The context that read it must outlive the read.
        const auto context = fresh();
        const Record* folder = category(*context, name);
        return folder ? folder->value(s("predicate")).toString() : s("(none)");
    }
    // The condition `root` as the rows of `kind` write it.
    QString text(browse::ListKind kind, const PredicateRow& root)
    {
        const auto written =
            browse::PredicateRows(browse::PredicateRowTemplates::forKind(kind, m_store->mainContext()))
                .toText(root);
        return written ? *written : s("(not written)");
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

    // The title and the line under it name the kind and the parent; the node is saved under the
    // parent chosen in the pop-up, and a tag without a type is refused with the sheet left open.
    void folderOrTagSheet_data()
    {
        QTest::addColumn<Mode>("mode");
        QTest::addColumn<QString>("name"); // the edited node's, else typed
        QTest::addColumn<QString>("openedIn");
        QTest::addColumn<QString>("texts");
        QTest::addColumn<QString>("checkedType");
        QTest::addColumn<QString>("chosenParent");
        QTest::addColumn<QString>("typeButton");
        QTest::addColumn<QString>("asked");
        QTest::addColumn<QString>("expected"); // type | colours | parent

        QTest::newRow("new folder, made in the group chosen")
            << Mode::NewFolder << s("Archive") << s("Clients")
            << s("New Folder | Enter name for new folder to be created inside \"Clients\".") << QString()
            << s("My Group") << QString() << QString() << s("0 |  |  | My Group");
        QTest::newRow("new tag without a type: refused")
            << Mode::NewTag << s("Waiting") << s("My Folder")
            << s("New Tag | Enter name for new tag to be created inside \"My Folder\". Select Tag Type, "
                 "background color and font color.")
            << QString() << s("My Folder") << QString()
            << s("There is no \"Tag Type\" chosen | For saving, please choose a \"Tag Type\".")
            << s("(none)");
        QTest::newRow("documents tag, made in the folder chosen")
            << Mode::NewTag << s("Urgent") << s("Clients")
            << s("New Tag | Enter name for new tag to be created inside \"Clients\". Select Tag Type, "
                 "background color and font color.")
            << QString() << s("My Folder") << s("tagTypeDocuments") << QString()
            << s("3 | #FFFFFF | #FF8000 | My Folder");
        QTest::newRow("edited tag, shown where it is")
            << Mode::EditTag << s("Company") << s("My Folder")
            << s("New Tag | For tag to be edited inside \"Clients\", enter name, choose background color and "
                 "font color.")
            << s("tagTypeClients") << s("Clients") << QString() << QString()
            << s("1 | #FFFFFF | #0055A5 | Clients");
    }
    void folderOrTagSheet()
    {
        QFETCH(Mode, mode);
        QFETCH(QString, name);
        QFETCH(QString, openedIn);
        QFETCH(QString, chosenParent);
        QFETCH(QString, typeButton);
        QFETCH(QString, asked);

        auto scratch = m_store->newContext();
        Record* edited = mode == Mode::EditTag ? category(*scratch, name) : nullptr;
        ui::FolderOrTagWindow window(*scratch, mode, edited, category(*scratch, openedIn), m_prompter);
        window.show();
        auto* informative = window.findChild<QLabel*>(s("informativeLabel"));
        QTEST(window.findChild<QLabel*>(s("titleLabel"))->text() + s(" | ") + informative->text(), "texts");
        auto* types = window.findChild<QButtonGroup*>();
        QTEST(types && types->checkedButton() ? types->checkedButton()->objectName() : QString(),
              "checkedType");

        auto* nameEdit = window.findChild<QLineEdit*>(s("nameEdit"));
        auto* preview = window.findChild<ui::TagLabelWidget*>(s("tagPreview"));
        if (!edited) {
            if (preview)
                QCOMPARE(preview->text(), s("No Name"));
            QTest::keyClicks(nameEdit, name);
        }
        QCOMPARE(nameEdit->text(), name);
        if (preview)
            QCOMPARE(preview->text(), name);

        // The pop-up lists the containers by name, without the tabs that indent them; the line
        // under the title follows the parent chosen.
        auto* parents = window.findChild<QComboBox*>(s("parentPopup"));
        QVERIFY(!itemsOf(parents).join(QString()).contains(QLatin1Char('\t')));
        parents->setCurrentIndex(parents->findText(chosenParent));
        QVERIFY(informative->text().contains(s("inside \"%1\"").arg(chosenParent)));
        if (!typeButton.isEmpty())
            QTest::mouseClick(window.findChild<QToolButton*>(typeButton), Qt::LeftButton);
        clickSave(window);

        QStringList questions;
        for (const auto& question : m_prompter.questions())
            questions << question.title + s(" | ") + question.text;
        QCOMPARE(questions.join(s("\n")), asked);
        QCOMPARE(window.isVisible(), !asked.isEmpty());
        QCOMPARE(window.result(), int(asked.isEmpty() ? QDialog::Accepted : QDialog::Rejected));
        QTEST(stored(*fresh(), name), "expected");
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
        clickSave(window);

        QCOMPARE(window.result(), int(QDialog::Accepted));
        QCOMPARE(stored(*fresh(), s("Late")), s("3 | #FFFFFF | #2040A0 | Documents"));
        QCOMPARE(stored(*fresh(), s("Overdue")), s("(none)"));
    }

    // Document Type is Invoice, and Creation Date is this month: stored as the rows write it. Tab
    // walks the controls in reading order and Return saves.
    void buildCondition()
    {
        auto scratch = m_store->newContext();
        Record* folder = CategoryTree(*scratch).newSmartFolder(QString(), 3, QString(),
                                                               category(*scratch, s("Documents")));
        ui::PredicateEditorWindow window(folder, m_prompter);
        window.show();
        QVERIFY(QTest::qWaitForWindowActive(&window));
        auto* name = window.findChild<QLineEdit*>(s("nameEdit"));
        QCOMPARE(name->text(), s("Smart Folder"));
        name->setFocus();
        QStringList order{name->objectName()};
        for (int i = 0; i < 9; ++i) {
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
            order << QApplication::focusWidget()->objectName();
        }
        // "−" of the only condition is disabled and passed over.
        QCOMPARE(order.join(s(", ")), s("nameEdit, compoundPopup, addButton, fieldPopup, operatorPopup, "
                                        "valuePopup, addButton, cancelButton, saveButton, nameEdit"));

        choose(in<QComboBox>(window, 1, "fieldPopup"), s("Document Type"));
        choose(in<QComboBox>(window, 1, "valuePopup"), s("Invoice"));
        in<QToolButton>(window, 1, "addButton")->click(); // the button, not its menu arrow
        choose(in<QComboBox>(window, 2, "fieldPopup"), s("Creation Date"));
        // A date is compared with a fixed date or a named range, all offered under one field.
        QCOMPARE(itemsOf(in<QComboBox>(window, 2, "operatorPopup")),
                 (QStringList{s("is the date"), s("is after the date"), s("is before the date"), s("is")}));
        choose(in<QComboBox>(window, 2, "operatorPopup"), s("is"));
        choose(in<QComboBox>(window, 2, "valuePopup"), s("this month"));
        name->setText(s("Invoices This Month"));
        QTest::keyClick(name, Qt::Key_Return);

        QCOMPARE(window.result(), int(QDialog::Accepted));
        QCOMPARE(storedCondition(s("Invoices This Month")),
                 text(browse::ListKind::Documents, all({compare("type", RowValueType::Choice, Op::Equal, 0),
                                                        compare("date_creation", RowValueType::RelativeDate,
                                                                Op::Equal, s("@this_month"))})));
    }

    // A nested group is shown indented under its own pop-up, and saved as it was read.
    void nestedGroupRoundTrip()
    {
        const auto condition = [&](PredicateRow::Kind nested) {
            return text(browse::ListKind::Clients,
                        all({compare("company_name", RowValueType::Text, Op::Like, s("*smith*")),
                             PredicateRow::compound(
                                 nested, {compare("status", RowValueType::Choice, Op::Equal, 2),
                                          compare("rating", RowValueType::Choice, Op::GreaterOrEqual, 5)})}));
        };
        addSmartFolder(s("Smiths"), 1, condition(PredicateRow::Kind::Any));

        auto scratch = m_store->newContext();
        ui::PredicateEditorWindow window(category(*scratch, s("Smiths")), m_prompter);
        QStringList shown;
        for (int i = 0; i < window.rowWidgets().size(); ++i) {
            auto* kind = in<QComboBox>(window, i, "compoundPopup");
            shown << QString(window.rowWidgets()[i]->path().size(), QLatin1Char('>')) +
                         (kind ? kind : in<QComboBox>(window, i, "fieldPopup"))->currentText();
        }
        QCOMPARE(shown.join(s(", ")), s("All, >Company Name, >Any, >>Status, >>Rating"));
        QCOMPARE(in<QComboBox>(window, 4, "operatorPopup")->currentText(), s("is greater than or equal to"));
        QCOMPARE(in<QComboBox>(window, 4, "valuePopup")->currentText(), s("5"));
        choose(in<QComboBox>(window, 2, "compoundPopup"), s("All"));
        clickSave(window);
        QCOMPARE(storedCondition(s("Smiths")), condition(PredicateRow::Kind::All));
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

    // The condition of a folder the program keeps is shown, never written; the name still is.
    void systemFolderConditionKept()
    {
        auto scratch = m_store->newContext();
        Record* folder = category(*scratch, s("Paid Invoices"));
        const QString before = folder->value(s("predicate")).toString();
        ui::PredicateEditorWindow window(folder, m_prompter);
        QVERIFY(!window.findChild<QLabel*>(s("noteLabel"))->isHidden());
        QCOMPARE(window.findChild<QLabel*>(s("conditionLabel"))->text(), before);
        window.findChild<QLineEdit*>(s("nameEdit"))->setText(s("Paid"));
        clickSave(window);

        QCOMPARE(window.result(), int(QDialog::Accepted));
        QCOMPARE(storedCondition(s("Paid")), before);
    }

    // Cancel leaves the stored folder as it was.
    void cancelStoresNothing()
    {
        const QString before =
            text(browse::ListKind::Documents,
                 all({compare("client_full_name", RowValueType::Text, Op::Contains, s("acme"))}));
        addSmartFolder(s("Acme Documents"), 3, before);
        auto scratch = m_store->newContext();
        ui::PredicateEditorWindow window(category(*scratch, s("Acme Documents")), m_prompter);
        window.findChild<QLineEdit*>(s("nameEdit"))->setText(s("Changed"));
        QTest::keyClicks(in<QLineEdit>(window, 1, "valueEdit"), s(" ltd"));
        QTest::mouseClick(window.findChild<QPushButton*>(s("cancelButton")), Qt::LeftButton);
        QCOMPARE(window.result(), int(QDialog::Rejected));
        QCOMPARE(storedCondition(s("Acme Documents")), before);
    }
};

QTEST_MAIN(tst_Sheets)
#include "tst_sheets.moc"
