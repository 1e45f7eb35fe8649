#include "editors/documentcontroller.h"
#include "model/companyrecord.h"
#include "support/uuid.h"
#include "ui/clienteditorwindow.h"
#include "ui/documenteditorwindow.h"
#include "ui/documentrowsmodel.h"
#include "ui/documentrowsview.h"
#include "ui/itemeditorwindow.h"
#include "ui/openeditors.h"
#include "uitestsupport.h"

#include <QLineEdit>
#include <QPointer>
#include <QRegularExpression>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <functional>

using namespace corvanta;
using namespace corvanta::ui::testing;
using store::Record;

// The three editor windows whose edits must survive a failed save and a closing window.
enum class Editor { Document, Client, Item };
Q_DECLARE_METATYPE(Editor)

namespace {

// A second connection to the company database that holds its write lock, as another program
// writing to the file would: every save of the store waits for it, then fails.
class WriteLock
{
public:
    explicit WriteLock(const QString& file)
    {
        QSqlDatabase database = QSqlDatabase::addDatabase(s("QSQLITE"), connectionName());
        database.setDatabaseName(file);
        if (!database.open())
            qFatal("cannot open the second connection: %s", qPrintable(database.lastError().text()));
        QSqlQuery begin(database);
        if (!begin.exec(s("BEGIN IMMEDIATE")))
            qFatal("cannot lock the database: %s", qPrintable(begin.lastError().text()));
    }
    ~WriteLock()
    {
        QSqlDatabase::database(connectionName()).close();
        QSqlDatabase::removeDatabase(connectionName());
    }

private:
    static QString connectionName() { return s("tst_editorsafety_lock"); }
};

} // namespace

class tst_EditorSafety : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void failedSaveKeepsEdits_data();
    void failedSaveKeepsEdits();
    void closingAnEditedWindowAsks_data();
    void closingAnEditedWindowAsks();

private:
    // An open editor window on a stored record: `type` enters `typed` into one field, `shown` is
    // that field's text and `stored` the value in the database, read afresh.
    struct Opened
    {
        QPointer<QWidget> window;
        QString original, typed;
        std::function<void()> type;
        std::function<QString()> shown, stored;
    };
    Opened open(Editor editor);

    std::unique_ptr<UiCompany> m_company;
    std::unique_ptr<ui::OpenEditors> m_openEditors;
    QList<QPointer<QWidget>> m_windows;
};

void tst_EditorSafety::init()
{
    m_company = std::make_unique<UiCompany>();
    m_openEditors = std::make_unique<ui::OpenEditors>();
}

void tst_EditorSafety::cleanup()
{
    qDeleteAll(m_windows);
    m_windows.clear();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    m_openEditors.reset();
    m_company.reset();
}

tst_EditorSafety::Opened tst_EditorSafety::open(Editor editor)
{
    store::EditingContext& main = m_company->main();
    Opened opened;
    predicate::RecordRef ref;
    QString key;
    QLineEdit* field = nullptr; // where the client and item windows are typed into
    switch (editor) {
    case Editor::Document: {
        // The quantity is typed and its cell left open: the save or the close must take it from there.
        Record* document = m_company->addInvoice(s("INVOICE/2026-0007"), 0.0);
        document->setValue(s("client_full_name"), s("Acme Ltd"));
        document->setRelated(s("client"), m_company->addClient(s("Acme Ltd")));
        document->setRelated(s("currency"), model::CompanyRecord::defaultRecord(main, s("default_currency")));
        Record* row = main.insertRecord(
            s("DocumentRows"),
            {{s("order"), qint64(1)}, {s("name"), s("Bolt")}, {s("unit_price"), 10.0}, {s("quantity"), 2.0}});
        row->setRelated(s("document"), document);
        row->setRelated(s("tax"), model::CompanyRecord::defaultRecord(main, s("default_tax")));
        m_company->save();
        ref = row->ref();
        key = s("quantity");
        auto* window =
            new ui::DocumentEditorWindow(m_company->store(), m_company->prompter(), *m_openEditors);
        window->openDocument(document->ref());
        auto* view = window->findChild<ui::DocumentRowsView*>(s("rowsView"));
        const QModelIndex quantity = view->model()->index(0, ui::DocumentRowsModel::Quantity);
        opened.window = window;
        opened.typed = s("7");
        opened.type = [view, quantity] {
            view->setCurrentIndex(quantity);
            view->edit(quantity);
            auto* cell = qobject_cast<QLineEdit*>(QApplication::focusWidget());
            QVERIFY(cell);
            cell->selectAll();
            QTest::keyClicks(cell, s("7"));
        };
        opened.shown = [quantity] { return quantity.data().toString(); };
        break;
    }
    case Editor::Client: {
        ref = m_company->addClient(s("Acme Ltd"))->ref();
        key = s("emails");
        auto* window = new ui::ClientEditorWindow(m_company->store(), m_company->prompter(), *m_openEditors);
        window->openClient(ref);
        field = window->findChild<QLineEdit*>(s("emailsField"));
        opened.window = window;
        opened.typed = s("ann@acme.example");
        break;
    }
    case Editor::Item: {
        ref = main.insertRecord(
                      s("Items"),
                      {{s("name"), s("Bolt")}, {s("code"), s("B-8")}, {s("identifier"), support::UUID()}})
                  ->ref();
        m_company->save();
        key = s("code");
        auto* window = new ui::ItemEditorWindow(m_company->store(), m_company->prompter(), *m_openEditors);
        window->openItem(ref);
        field = window->findChild<QLineEdit*>(s("codeEdit"));
        opened.window = window;
        opened.typed = s("B-12");
        break;
    }
    }
    if (field) {
        opened.type = [field, typed = opened.typed] {
            field->selectAll();
            QTest::keyClicks(field, typed);
        };
        opened.shown = [field] { return field->text(); };
    }
    opened.stored = [this, ref, key] {
        const std::unique_ptr<store::EditingContext> context = m_company->store().newContext();
        const Record* record = context->record(ref);
        return record ? record->value(key).toString() : s("(gone)");
    };
    m_windows << opened.window;
    opened.window->show();
    opened.window->activateWindow();
    if (!QTest::qWaitForWindowActive(opened.window))
        qFatal("the editor window does not become active");
    opened.original = opened.stored();
    return opened;
}

void tst_EditorSafety::failedSaveKeepsEdits_data()
{
    QTest::addColumn<Editor>("editor");
    QTest::newRow("document, quantity typed into a row") << Editor::Document;
    QTest::newRow("client, e-mail typed") << Editor::Client;
    QTest::newRow("item, code typed") << Editor::Item;
}

// The database is locked by another connection while the user saves: the user is told why, the
// window stays open with the typed value, nothing is stored, and once the lock is gone the same
// window saves what was typed.
void tst_EditorSafety::failedSaveKeepsEdits()
{
    QFETCH(Editor, editor);
    Opened opened = open(editor);
    opened.type();
    auto lock = std::make_unique<WriteLock>(m_company->store().path());

    m_company->prompter().clear();
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(s("^Saving .* failed: database is locked")));
    QVERIFY(QMetaObject::invokeMethod(opened.window, "save"));
    QCOMPARE(m_company->prompter().titles(),
             QStringList{s("The company database \"%1\" is in use by another program: it could not be saved.")
                             .arg(m_company->store().path())});
    QCOMPARE(m_company->prompter().questions().first().text,
             s("Your changes are kept. Save again when the other program has finished with the file."));
    QVERIFY(opened.window->isVisible());
    QVERIFY(opened.window->isWindowModified());
    QCOMPARE(opened.shown(), opened.typed);
    lock.reset();
    QCOMPARE(opened.stored(), opened.original);

    m_company->prompter().clear();
    QVERIFY(QMetaObject::invokeMethod(opened.window, "save"));
    QCOMPARE(m_company->prompter().titles(), QStringList{});
    QCOMPARE(opened.stored(), opened.typed);
    QVERIFY(!opened.window || !opened.window->isVisible());
}

void tst_EditorSafety::closingAnEditedWindowAsks_data()
{
    QTest::addColumn<Editor>("editor");
    QTest::addColumn<QString>("noun");
    QTest::newRow("document") << Editor::Document << s("document");
    QTest::newRow("client") << Editor::Client << s("client");
    QTest::newRow("item") << Editor::Item << s("item");
}

// Opening and looking does not count as an edit; one typed value does, and the window then asks
// at every close until it is answered: "Cancel" keeps it with the value, "Don't Save" closes it
// and stores nothing, "Save" closes it and stores the value.
void tst_EditorSafety::closingAnEditedWindowAsks()
{
    QFETCH(Editor, editor);
    QFETCH(QString, noun);
    const QString title = s("Save this %1?").arg(noun);

    Opened untouched = open(editor);
    m_company->prompter().clear();
    QVERIFY(untouched.window->close());
    QCOMPARE(m_company->prompter().titles(), QStringList{});

    Opened opened = open(editor);
    opened.type();
    for (int attempt = 0; attempt < 2; ++attempt) {
        m_company->prompter().clear();
        m_company->prompter().addAnswer(s("Cancel"));
        QVERIFY(!opened.window->close());
        QCOMPARE(m_company->prompter().titles(), QStringList{title});
        const support::ScriptedPrompter::Question asked = m_company->prompter().questions().first();
        QCOMPARE(asked.text,
                 s("This %1 has not been saved and contains unsaved changes. Would you like to save now?")
                     .arg(noun));
        QCOMPARE(asked.buttons, (QStringList{s("Save"), s("Don't Save"), s("Cancel")}));
        QVERIFY(opened.window->isVisible());
        QCOMPARE(opened.shown(), opened.typed);
    }

    m_company->prompter().clear();
    m_company->prompter().addAnswer(s("Don't Save"));
    QVERIFY(opened.window->close());
    QCOMPARE(m_company->prompter().titles(), QStringList{title});
    QCOMPARE(opened.stored(), opened.original);

    Opened saved = open(editor);
    saved.type();
    m_company->prompter().addAnswer(s("Save"));
    QVERIFY(saved.window->close());
    QCOMPARE(saved.stored(), saved.typed);
}

CORVANTA_UI_TEST_MAIN(tst_EditorSafety)
#include "tst_editorsafety.moc"
