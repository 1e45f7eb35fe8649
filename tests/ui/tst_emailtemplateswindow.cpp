#include "model/companyrecord.h"
#include "ui/emailtemplateswindow.h"
#include "uitestsupport.h"

#include <QLineEdit>
#include <QMenu>
#include <QPlainTextEdit>
#include <QPointer>
#include <QTableWidget>

using namespace corvanta;
using namespace corvanta::ui::testing;
using store::Record;
using ui::EmailTemplatesWindow;

namespace {

// Every stored template as "name | subject | body", by name, the default marked "*".
QStringList storedTemplates(store::Store& store)
{
    const auto context = store.newContext();
    const Record* defaultTemplate =
        model::CompanyRecord::defaultRecord(*context, s("default_email_template"));
    QStringList result;
    for (const Record* record :
         context->fetch(store::FetchRequest(s("EmailTemplates"), {}, {store::SortDescriptor(s("name"))})))
        result << (record == defaultTemplate ? s("*") : QString()) +
                      QStringList{record->value(s("name")).toString(), record->value(s("subject")).toString(),
                                  record->value(s("body")).toString()}
                          .join(s(" | "));
    return result;
}

} // namespace

class tst_EmailTemplatesWindow : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<UiCompany> m_company;
    QPointer<EmailTemplatesWindow> m_window;

    QTableWidget* table() { return m_window->findChild<QTableWidget*>(s("templatesTable")); }

private Q_SLOTS:
    // The default "Empty Template" and a reminder.
    void init()
    {
        m_company = std::make_unique<UiCompany>();
        m_company->main().insertRecord(s("EmailTemplates"), {{s("name"), s("Reminder")},
                                                             {s("subject"), s("Open invoice")},
                                                             {s("body"), s("Dear @ClientName")}});
        m_company->save();
        m_window = new EmailTemplatesWindow(m_company->store(), m_company->prompter());
        m_window->show();
    }
    void cleanup()
    {
        delete m_window;
        m_company.reset();
    }

    void rowCommands_data()
    {
        QTest::addColumn<QString>("command");
        QTest::addColumn<QString>("answer");
        QTest::addColumn<QStringList>("stored");
        QTest::addColumn<QStringList>("questions");
        const QString empty = s("*Empty Template |  | ");
        const QString reminder = s("Reminder | Open invoice | Dear @ClientName");
        const QString question =
            s("Are you sure you want to delete the email template \"Reminder\"? | This action "
              "cannot be undone. | Delete Email Template/Cancel");
        QTest::newRow("new") << s("addRow") << QString() << QStringList{s(" New  |  | "), empty, reminder}
                             << QStringList();
        QTest::newRow("delete") << s("deleteRow") << s("Delete Email Template") << QStringList{empty}
                                << QStringList{question};
    }

    // The commands as the main window's Edit menu sends them, by slot name.
    void rowCommands()
    {
        QFETCH(QString, command);
        QFETCH(QString, answer);
        QFETCH(QStringList, stored);
        QFETCH(QStringList, questions);
        QVERIFY(m_window->selectTemplate(s("Reminder")));
        QCOMPARE(m_window->property("selectedRowCount").toInt(), 1);
        if (!answer.isEmpty())
            m_company->prompter().addAnswer(answer);
        QVERIFY(QMetaObject::invokeMethod(m_window, command.toLatin1().constData()));
        QCOMPARE(storedTemplates(m_company->store()), stored);
        QCOMPARE(askedLines(m_company->prompter()), questions);
        QCOMPARE(table()->rowCount(), stored.size());
        // A template stays chosen: the new one, or a neighbour of the deleted one.
        QVERIFY(m_window->selectedTemplate());
        if (command == s("addRow")) {
            const auto* nameEditor = table()->viewport()->findChild<QLineEdit*>();
            QVERIFY(nameEditor);
            QCOMPARE(nameEditor->text(), s(" New "));
        }
    }

    void typedIsStored_data()
    {
        QTest::addColumn<QString>("committedBy");
        QTest::newRow("Return in the subject") << s("return");
        QTest::newRow("another template chosen") << s("select");
        QTest::newRow("window closed") << s("close");
    }

    void typedIsStored()
    {
        QFETCH(QString, committedBy);
        QVERIFY(m_window->selectTemplate(s("Reminder")));
        auto* body = m_window->findChild<QPlainTextEdit*>(s("bodyEdit"));
        auto* subject = m_window->findChild<QLineEdit*>(s("subjectEdit"));
        body->clear();
        subject->clear();
        QTest::keyClicks(body, s("Hello @ClientName"));
        QTest::keyClicks(subject, s("Invoice"));
        if (committedBy == s("return"))
            QTest::keyClick(subject, Qt::Key_Return);
        else if (committedBy == s("select"))
            QVERIFY(m_window->selectTemplate(s("Empty Template")));
        else
            QVERIFY(m_window->close());
        QCOMPARE(storedTemplates(m_company->store()),
                 (QStringList{s("*Empty Template |  | "), s("Reminder | Invoice | Hello @ClientName")}));
    }

    void placeholderAtCursor_data()
    {
        QTest::addColumn<int>("start");
        QTest::addColumn<int>("end");
        QTest::addColumn<int>("placeholder");
        QTest::addColumn<QString>("body");
        QTest::newRow("date on the second line") << 7 << 7 << 3 << s("Dear ,\n@TodayDatethank you.");
        QTest::newRow("client name over a selection") << 0 << 4 << 1 << s("@ClientName ,\nthank you.");
    }

    // The placeholder replaces the selection, is stored, and typing goes on after it.
    void placeholderAtCursor()
    {
        QFETCH(int, start);
        QFETCH(int, end);
        QFETCH(int, placeholder);
        QFETCH(QString, body);
        QVERIFY(m_window->selectTemplate(s("Empty Template")));
        auto* bodyEdit = m_window->findChild<QPlainTextEdit*>(s("bodyEdit"));
        bodyEdit->setPlainText(s("Dear ,\nthank you."));
        QTextCursor cursor = bodyEdit->textCursor();
        cursor.setPosition(start);
        cursor.setPosition(end, QTextCursor::KeepAnchor);
        bodyEdit->setTextCursor(cursor);
        QAction* action = m_window->placeholderMenu()->actions().at(placeholder);
        action->trigger();
        QCOMPARE(bodyEdit->toPlainText(), body);
        QCOMPARE(storedTemplates(m_company->store()).constFirst(), s("*Empty Template |  | ") + body);
        QCOMPARE(bodyEdit->textCursor().position(), start + action->text().size());
    }

    // Another template's tick makes it the default and the default's own tick stays; renamed in
    // place, a template moves to its place by name and stays chosen.
    void inPlaceEdits()
    {
        QCOMPARE(table()->item(1, 0)->text(), s("Reminder"));
        table()->item(1, 1)->setCheckState(Qt::Checked);
        QCOMPARE(table()->item(0, 1)->checkState(), Qt::Unchecked);
        table()->item(1, 1)->setCheckState(Qt::Unchecked);
        QCOMPARE(table()->item(1, 1)->checkState(), Qt::Checked);
        QCOMPARE(storedTemplates(m_company->store()),
                 (QStringList{s("Empty Template |  | "), s("*Reminder | Open invoice | Dear @ClientName")}));
        QVERIFY(m_window->selectTemplate(s("Reminder")));
        table()->item(1, 0)->setText(s("A Reminder"));
        QCOMPARE(storedTemplates(m_company->store()).constFirst(),
                 s("*A Reminder | Open invoice | Dear @ClientName"));
        QTRY_COMPARE(table()->item(0, 0)->text(), s("A Reminder"));
        QCOMPARE(m_window->selectedTemplate()->value(s("name")).toString(), s("A Reminder"));
    }
};

CORVANTA_UI_TEST_MAIN(tst_EmailTemplatesWindow)
#include "tst_emailtemplateswindow.moc"
