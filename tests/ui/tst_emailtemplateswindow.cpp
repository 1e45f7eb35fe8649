#include "model/companyrecord.h"
#include "ui/emailtemplateswindow.h"
#include "uitestsupport.h"

#include <QLineEdit>
#include <QMenu>
#include <QPlainTextEdit>
#include <QPointer>
#include <QTableWidget>

using namespace corvanta;
using corvanta::ui::testing::s;
using corvanta::ui::testing::UiCompany;
using store::Record;
using ui::EmailTemplatesWindow;

namespace {

// Every stored template as "name | subject | body", by name, the default marked "*".
QStringList storedTemplates(store::Store& store)
{
    const auto context = store.newContext();
    QStringList result;
    const Record* defaultTemplate =
        model::CompanyRecord::defaultRecord(*context, s("default_email_template"));
    for (const Record* emailTemplate :
         context->fetch(store::FetchRequest(s("EmailTemplates"), {}, {store::SortDescriptor(s("name"))})))
        result << (emailTemplate == defaultTemplate ? s("*") : QString()) +
                      QStringList{emailTemplate->value(s("name")).toString(),
                                  emailTemplate->value(s("subject")).toString(),
                                  emailTemplate->value(s("body")).toString()}
                          .join(s(" | "));
    return result;
}

QStringList asked(const support::ScriptedPrompter& prompter)
{
    QStringList result;
    for (const auto& question : prompter.questions())
        result << QStringList{question.title, question.text, question.buttons.join(s("/"))}.join(s(" | "));
    return result;
}

QTableWidget* table(EmailTemplatesWindow& window)
{
    return window.findChild<QTableWidget*>(s("templatesTable"));
}

} // namespace

class tst_EmailTemplatesWindow : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void rowCommands_data();
    void rowCommands();
    void typedIsStored_data();
    void typedIsStored();
    void placeholderAtCursor_data();
    void placeholderAtCursor();
    void inPlaceEdits();
};

void tst_EmailTemplatesWindow::rowCommands_data()
{
    QTest::addColumn<QString>("command");
    QTest::addColumn<QString>("selected");
    QTest::addColumn<QString>("answer");
    QTest::addColumn<QStringList>("stored");
    QTest::addColumn<QStringList>("questions");

    const QString reminder = s("Reminder | Open invoice | Dear @ClientName");
    QTest::newRow("new") << s("addRow") << s("Reminder") << QString()
                         << QStringList{s(" New  |  | "), s("*Empty Template |  | "), reminder}
                         << QStringList();
    QTest::newRow("duplicate") << s("duplicateRow") << s("Reminder") << QString()
                               << QStringList{s("*Empty Template |  | "), reminder,
                                              s("Reminder Copy | Open invoice | Dear @ClientName")}
                               << QStringList();
    QTest::newRow("delete the default: refused")
        << s("deleteRow") << s("Empty Template") << QString()
        << QStringList{s("*Empty Template |  | "), reminder}
        << QStringList{s("Email Template cannot be deleted | The chosen email template cannot be deleted, "
                         "because it is a default email template. | OK")};
    const QString question =
        s("Are you sure you want to delete the email template \"Reminder\"? | This action "
          "cannot be undone. | Delete Email Template/Cancel");
    QTest::newRow("delete confirmed") << s("deleteRow") << s("Reminder") << s("Delete Email Template")
                                      << QStringList{s("*Empty Template |  | ")} << QStringList{question};
    QTest::newRow("delete cancelled")
        << s("deleteRow") << s("Reminder") << s("Cancel") << QStringList{s("*Empty Template |  | "), reminder}
        << QStringList{question};
}

// The commands as the main window's Edit menu sends them, by slot name.
void tst_EmailTemplatesWindow::rowCommands()
{
    QFETCH(QString, command);
    QFETCH(QString, selected);
    QFETCH(QString, answer);
    QFETCH(QStringList, stored);
    QFETCH(QStringList, questions);
    UiCompany company;
    company.main().insertRecord(
        s("EmailTemplates"),
        {{s("name"), s("Reminder")}, {s("subject"), s("Open invoice")}, {s("body"), s("Dear @ClientName")}});
    company.save();

    EmailTemplatesWindow window(company.store(), company.prompter());
    QVERIFY(window.selectTemplate(selected));
    QCOMPARE(window.property("selectedRowCount").toInt(), 1);
    if (!answer.isEmpty())
        company.prompter().addAnswer(answer);
    QVERIFY(QMetaObject::invokeMethod(&window, command.toLatin1().constData()));

    QCOMPARE(storedTemplates(company.store()), stored);
    QCOMPARE(asked(company.prompter()), questions);
    QCOMPARE(table(window)->rowCount(), stored.size());
    // The window shows a template still: the new one, the copy, or a neighbour of the deleted one.
    QVERIFY(window.selectedTemplate());
    if (command == s("addRow")) {
        QCOMPARE(window.selectedTemplate()->value(s("name")).toString(), s(" New "));
        // The name is open for typing.
        const auto* nameEditor = table(window)->viewport()->findChild<QLineEdit*>();
        QVERIFY(nameEditor);
        QCOMPARE(nameEditor->text(), s(" New "));
    }
}

void tst_EmailTemplatesWindow::typedIsStored_data()
{
    QTest::addColumn<QString>("committedBy");
    QTest::newRow("Return in the subject") << s("return");
    QTest::newRow("another template chosen") << s("select");
    QTest::newRow("window closed") << s("close");
}

void tst_EmailTemplatesWindow::typedIsStored()
{
    QFETCH(QString, committedBy);
    UiCompany company;
    company.main().insertRecord(s("EmailTemplates"), {{s("name"), s("Reminder")}});
    company.save();
    QPointer window = new EmailTemplatesWindow(company.store(), company.prompter());
    window->show();
    QVERIFY(window->selectTemplate(s("Reminder")));

    auto* body = window->findChild<QPlainTextEdit*>(s("bodyEdit"));
    auto* subject = window->findChild<QLineEdit*>(s("subjectEdit"));
    QTest::keyClicks(body, s("Hello @ClientName"));
    QTest::keyClicks(subject, s("Invoice"));
    if (committedBy == s("return"))
        QTest::keyClick(subject, Qt::Key_Return);
    else if (committedBy == s("select"))
        QVERIFY(window->selectTemplate(s("Empty Template")));
    else
        QVERIFY(window->close());

    QCOMPARE(storedTemplates(company.store()),
             (QStringList{s("*Empty Template |  | "), s("Reminder | Invoice | Hello @ClientName")}));
    delete window;
}

void tst_EmailTemplatesWindow::placeholderAtCursor_data()
{
    QTest::addColumn<int>("start");
    QTest::addColumn<int>("end");
    QTest::addColumn<int>("placeholder");
    QTest::addColumn<QString>("body");

    QTest::newRow("company name after the greeting") << 5 << 5 << 0 << s("Dear @MyCompanyName,\nthank you.");
    QTest::newRow("date on the second line") << 7 << 7 << 3 << s("Dear ,\n@TodayDatethank you.");
    QTest::newRow("client name over a selection") << 0 << 4 << 1 << s("@ClientName ,\nthank you.");
}

void tst_EmailTemplatesWindow::placeholderAtCursor()
{
    QFETCH(int, start);
    QFETCH(int, end);
    QFETCH(int, placeholder);
    QFETCH(QString, body);
    UiCompany company;
    EmailTemplatesWindow window(company.store(), company.prompter());
    QVERIFY(window.selectTemplate(s("Empty Template")));
    auto* bodyEdit = window.findChild<QPlainTextEdit*>(s("bodyEdit"));
    bodyEdit->setPlainText(s("Dear ,\nthank you."));
    QTextCursor cursor = bodyEdit->textCursor();
    cursor.setPosition(start);
    cursor.setPosition(end, QTextCursor::KeepAnchor);
    bodyEdit->setTextCursor(cursor);

    window.placeholderMenu()->actions().at(placeholder)->trigger();

    QCOMPARE(bodyEdit->toPlainText(), body);
    QCOMPARE(storedTemplates(company.store()), QStringList{s("*Empty Template |  | ") + body});
    // Typing goes on after the placeholder.
    const QString inserted = window.placeholderMenu()->actions().at(placeholder)->text();
    QCOMPARE(bodyEdit->textCursor().position(), start + inserted.size());
}

// The tick of another template makes it the default; the default's own tick stays; a name typed
// in place is stored.
void tst_EmailTemplatesWindow::inPlaceEdits()
{
    UiCompany company;
    company.main().insertRecord(s("EmailTemplates"), {{s("name"), s("Reminder")}});
    company.save();
    EmailTemplatesWindow window(company.store(), company.prompter());
    QTableWidget* list = table(window);
    QCOMPARE(list->item(1, 0)->text(), s("Reminder"));

    list->item(1, 1)->setCheckState(Qt::Checked);
    QCOMPARE(storedTemplates(company.store()),
             (QStringList{s("Empty Template |  | "), s("*Reminder |  | ")}));
    QCOMPARE(list->item(0, 1)->checkState(), Qt::Unchecked);

    list->item(1, 1)->setCheckState(Qt::Unchecked);
    QCOMPARE(list->item(1, 1)->checkState(), Qt::Checked);
    QCOMPARE(storedTemplates(company.store()),
             (QStringList{s("Empty Template |  | "), s("*Reminder |  | ")}));

    // Renamed, the template moves to its place by name and stays chosen.
    QVERIFY(window.selectTemplate(s("Reminder")));
    list->item(1, 0)->setText(s("A Reminder"));
    QCOMPARE(storedTemplates(company.store()),
             (QStringList{s("*A Reminder |  | "), s("Empty Template |  | ")}));
    QTRY_COMPARE(list->item(0, 0)->text(), s("A Reminder"));
    QCOMPARE(window.selectedTemplate()->value(s("name")).toString(), s("A Reminder"));
}

CORVANTA_UI_TEST_MAIN(tst_EmailTemplatesWindow)

#include "tst_emailtemplateswindow.moc"
