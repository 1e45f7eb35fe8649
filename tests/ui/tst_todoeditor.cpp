#include "editors/todocontroller.h"
#include "ui/openeditors.h"
#include "ui/todoeditorwindow.h"
#include "uitestsupport.h"

#include <QAbstractItemView>
#include <QCheckBox>
#include <QComboBox>
#include <QCompleter>
#include <QDateEdit>
#include <QDateTimeEdit>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QRadioButton>
#include <QSpinBox>
#include <QStandardPaths>
#include <QToolButton>

using namespace corvanta;
using namespace corvanta::ui;
using namespace corvanta::ui::testing;
using store::Record;

namespace {

QDateTime at(int year, int month, int day, int hour = 9, int minute = 0)
{
    return QDateTime(QDate(year, month, day), QTime(hour, minute));
}

} // namespace

// The to-do editor window driven as a user drives it: the recurrence controls with the summary
// that follows them, the all-day switch, what a save stores and the question before closing.
class tst_ToDoEditor : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        QStandardPaths::setTestModeEnabled(true);
        QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
    }
    void init();
    void cleanup();
    void summaryFollowsControls_data();
    void summaryFollowsControls();
    void allDay();
    void doneTickedAndSaved();
    void closeQuestion();
    void monthlyToDoLinksWhatWasChosen();

private:
    ToDoEditorWindow* openWindow();
    template <typename T>
    T* child(const char* name)
    {
        T* widget = m_window->findChild<T*>(s(name));
        if (!widget)
            qFatal("no control %s", name);
        return widget;
    }
    Record* storedToDo() { return m_company->main().fetchFirst(store::FetchRequest(s("ToDos"))); }

    std::unique_ptr<UiCompany> m_company;
    std::unique_ptr<OpenEditors> m_openEditors;
    QPointer<ToDoEditorWindow> m_window;
};

void tst_ToDoEditor::init()
{
    m_company = std::make_unique<UiCompany>();
    m_openEditors = std::make_unique<OpenEditors>();
}

void tst_ToDoEditor::cleanup()
{
    delete m_window;
    m_openEditors.reset();
    m_company.reset();
}

ToDoEditorWindow* tst_ToDoEditor::openWindow()
{
    m_window = new ToDoEditorWindow(m_company->store(), m_company->prompter(), *m_openEditors);
    return m_window;
}

void tst_ToDoEditor::summaryFollowsControls_data()
{
    QTest::addColumn<QDateTime>("start");
    QTest::addColumn<QStringList>("steps");
    QTest::addColumn<QString>("summary");
    QTest::addColumn<QStringList>("shown");

    const QStringList daily{s("frequencySpin"), s("endPopup"), s("summaryLabel")};
    const QDateTime monday = at(2026, 11, 23);
    // Started on a Wednesday, which a weekly to-do first takes as its day.
    QTest::newRow("weekly on Monday")
        << at(2026, 11, 25) << QStringList{s("repeat Weekly"), s("weekday 2"), s("weekday 4")}
        << s("Weekly on Monday")
        << QStringList{s("frequencySpin"), s("weekday2"), s("endPopup"), s("summaryLabel")};
    QTest::newRow("every 3 days, 3 times")
        << monday << QStringList{s("repeat Daily"), s("every 3"), s("end After"), s("occurrences 7")}
        << s("Every 3 days, 3 times") << daily + QStringList{s("occurrencesSpin")};
    QTest::newRow("until a date") << monday
                                  << QStringList{s("repeat Daily"), s("end On Date"), s("until 2026-12-24")}
                                  << s("Daily, until 12/24/26") << daily + QStringList{s("endDateEdit")};
    QTest::newRow("back to none") << monday
                                  << QStringList{s("repeat Weekly"), s("end After"), s("repeat None")}
                                  << QString() << QStringList();
}

void tst_ToDoEditor::summaryFollowsControls()
{
    QFETCH(QDateTime, start);
    QFETCH(QStringList, steps);
    QFETCH(QString, summary);
    QFETCH(QStringList, shown);

    openWindow()->newToDo(start);
    m_window->show();
    for (const QString& step : std::as_const(steps)) {
        const QString argument = step.section(QLatin1Char(' '), 1);
        if (step.startsWith(s("repeat ")))
            child<QComboBox>("repeatPopup")
                ->setCurrentIndex(child<QComboBox>("repeatPopup")->findText(argument));
        else if (step.startsWith(s("every ")))
            child<QSpinBox>("frequencySpin")->setValue(argument.toInt());
        else if (step.startsWith(s("weekday ")))
            QTest::mouseClick(child<QToolButton>(qPrintable(s("weekday") + argument)), Qt::LeftButton);
        else if (step.startsWith(s("end ")))
            child<QComboBox>("endPopup")->setCurrentIndex(child<QComboBox>("endPopup")->findText(argument));
        else if (step.startsWith(s("occurrences ")))
            child<QSpinBox>("occurrencesSpin")->setValue(argument.toInt());
        else if (step.startsWith(s("until ")))
            child<QDateEdit>("endDateEdit")->setDate(QDate::fromString(argument, Qt::ISODate));
        else
            QFAIL(qPrintable(s("unknown step ") + step));
    }
    QCOMPARE(child<QLabel>("summaryLabel")->text(), summary);
    QCOMPARE(m_window->controller().todo()->value(s("repeat_summary")).toString(), summary);
    for (const char* name : {"frequencySpin", "weekday2", "byWeekdayRadio", "endPopup", "occurrencesSpin",
                             "endDateEdit", "summaryLabel"})
        QVERIFY2(child<QWidget>(name)->isVisibleTo(m_window) == shown.contains(s(name)), name);
    QVERIFY(m_window->isWindowModified());
}

void tst_ToDoEditor::allDay()
{
    openWindow()->newToDo(at(2026, 11, 23, 14, 30));
    m_window->show();
    auto* start = child<QDateTimeEdit>("startEdit");
    QTest::mouseClick(child<QCheckBox>("allDayCheck"), Qt::LeftButton, {}, QPoint(4, 4));
    QVERIFY(m_window->controller().todo()->value(s("all_day")).toBool());
    QVERIFY(!(start->displayedSections() & QDateTimeEdit::MinuteSection));
    QVERIFY(!(child<QDateTimeEdit>("endEdit")->displayedSections() & QDateTimeEdit::MinuteSection));
    QVERIFY(m_window->isWindowModified());
    QTest::mouseClick(child<QCheckBox>("allDayCheck"), Qt::LeftButton, {}, QPoint(4, 4));
    QCOMPARE(start->dateTime(), at(2026, 11, 23, 14, 30));
    QVERIFY(start->displayedSections() & QDateTimeEdit::MinuteSection);
}

// The done box, ticked, makes the pending to-do done when the window's own Save button stores it
// and closes the window; opened again, the box shows it done.
void tst_ToDoEditor::doneTickedAndSaved()
{
    Record* stored = m_company->main().insertRecord(
        s("ToDos"), {{s("title"), s("Visit")}, {s("done"), false}, {s("date_start"), at(2026, 11, 23)}});
    m_company->save();
    QVERIFY(openWindow()->openToDo(stored->ref()));
    m_window->show();
    QVERIFY(!child<QCheckBox>("doneCheck")->isChecked());
    QTest::mouseClick(child<QCheckBox>("doneCheck"), Qt::LeftButton, {}, QPoint(4, 4));
    QTest::mouseClick(child<QPushButton>("saveButton"), Qt::LeftButton);
    QTRY_VERIFY(m_window.isNull());
    QCOMPARE(m_company->main().count(store::FetchRequest(s("ToDos"))), 1);
    QVERIFY(storedToDo()->value(s("done")).toBool());
    QVERIFY(m_company->prompter().questions().isEmpty());
    QVERIFY(openWindow()->openToDo(storedToDo()->ref()));
    QVERIFY(child<QCheckBox>("doneCheck")->isChecked());
}

void tst_ToDoEditor::closeQuestion()
{
    const QString question = s(
        "Save this to-do?|This to-do has not been saved and contains unsaved changes. Would you like to save "
        "now?|Save, Don't Save, Cancel");
    const auto asked = [this] {
        const QList<support::ScriptedPrompter::Question> questions = m_company->prompter().questions();
        m_company->prompter().clear();
        return questions.size() == 1 ? questions[0].title + s("|") + questions[0].text + s("|") +
                                           questions[0].buttons.join(s(", "))
                                     : s("%1 questions").arg(questions.size());
    };

    openWindow()->newToDo(at(2026, 11, 23));
    m_window->show();
    QCOMPARE(m_window->windowTitle(), s("New To-Do[*]"));
    QTest::keyClicks(child<QLineEdit>("titleEdit"), s("Lunch"));
    QCOMPARE(m_window->windowTitle(), s("Lunch[*]"));

    m_company->prompter().addAnswer(s("Cancel"));
    QVERIFY(!m_window->close());
    QCOMPARE(asked(), question);
    QVERIFY(m_window->isVisible());

    // Saved from the menu's command, the window stays open; what is typed after it is forgotten
    // on Don't Save.
    m_window->save();
    QVERIFY(m_window->isVisible() && !m_window->isWindowModified());
    QTest::keyClicks(child<QLineEdit>("titleEdit"), s(" with Anna"));
    m_company->prompter().addAnswer(s("Don't Save"));
    QVERIFY(m_window->close());
    QCOMPARE(asked(), question);
    QTRY_VERIFY(m_window.isNull());
    QCOMPARE(storedToDo()->value(s("title")).toString(), s("Lunch"));
}

// A monthly to-do with a client and an item: the client picked from the suggestions and the item
// typed in full are linked, and every visible text is shown whole.
void tst_ToDoEditor::monthlyToDoLinksWhatWasChosen()
{
    m_company->addClient(s("Berger Haustechnik GmbH"));
    m_company->addClient(s("Berger Haustechnik GmbH"));
    m_company->main().insertRecord(s("Items"),
                                   {{s("name"), s("Maintenance contract")}, {s("type"), qint64(0)}});
    m_company->save();
    openWindow()->newToDo(at(2026, 12, 8, 10, 0));
    m_window->show();
    QTest::keyClicks(child<QLineEdit>("titleEdit"), s("Service visit"));
    QTest::keyClicks(child<QLineEdit>("clientEdit"), s("haus"));
    QAbstractItemView* suggestions = child<QLineEdit>("clientEdit")->completer()->popup();
    QTRY_VERIFY(suggestions->isVisible());
    QCOMPARE(suggestions->model()->rowCount(), 2);
    QTest::keyClick(suggestions, Qt::Key_Down);
    QTest::keyClick(suggestions, Qt::Key_Down);
    QTest::keyClick(suggestions, Qt::Key_Return);
    const Record* todo = m_window->controller().todo();
    const QList<Record*> clients = m_window->controller().clientSuggestions(s("haus"));
    QVERIFY(todo->related(s("client")) == clients.value(1) && clients.value(0) != clients.value(1));
    QCOMPARE(child<QLineEdit>("clientEdit")->text(), s("Berger Haustechnik GmbH"));
    QTest::keyClicks(child<QLineEdit>("itemEdit"), s("Maintenance contract"));
    child<QComboBox>("repeatPopup")->setCurrentIndex(child<QComboBox>("repeatPopup")->findText(s("Monthly")));
    QTest::mouseClick(child<QRadioButton>("byWeekdayRadio"), Qt::LeftButton, {}, QPoint(4, 4));
    child<QComboBox>("endPopup")->setCurrentIndex(child<QComboBox>("endPopup")->findText(s("After")));
    child<QSpinBox>("occurrencesSpin")->setValue(12);
    QTest::keyClicks(child<QWidget>("notesEdit"), s("Check the heating pumps and replace the filters."));
    QVERIFY(todo->value(s("item")).isNull());
    m_window->save();
    QCOMPARE(todo->valueForKeyPath(s("item.name")).toString(), s("Maintenance contract"));
    QCOMPARE(child<QLabel>("summaryLabel")->text(), s("Monthly on the second Tuesday, 1 times"));

    for (QWidget* widget : m_window->findChildren<QWidget*>()) {
        const auto* label = qobject_cast<QLabel*>(widget);
        const bool text = (label && !label->wordWrap()) || qobject_cast<QCheckBox*>(widget) ||
                          qobject_cast<QRadioButton*>(widget) || qobject_cast<QPushButton*>(widget);
        if (text && widget->isVisibleTo(m_window))
            QVERIFY2(widget->width() >= widget->sizeHint().width(),
                     qPrintable(widget->objectName() + s(" ") +
                                QString::fromLatin1(widget->metaObject()->className()) + s(" ") +
                                widget->property("text").toString()));
    }
}

CORVANTA_UI_TEST_MAIN(tst_ToDoEditor)
#include "tst_todoeditor.moc"
