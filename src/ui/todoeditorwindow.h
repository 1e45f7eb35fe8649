#pragma once

#include "predicate/recordref.h"

#include <QWidget>

class QCheckBox;
class QComboBox;
class QCompleter;
class QDateEdit;
class QDateTimeEdit;
class QFormLayout;
class QGroupBox;
class QLabel;
class QLineEdit;
class QPlainTextEdit;
class QPushButton;
class QRadioButton;
class QSpinBox;
class QStringListModel;
class QToolButton;

namespace corvanta::editors {
class ToDoController;
}
namespace corvanta::store {
class Record;
class Store;
} // namespace corvanta::store
namespace corvanta::support {
class Prompter;
}

namespace corvanta::ui {

class OpenEditors;

// The window of one to-do: its title, times, client and item, colours, notes and done state, and
// its recurrence with a summary that reads as the to-do will be listed. Controls of a kind of
// recurrence other than the chosen one are hidden. Every change goes through the to-do editor's
// controller, and the window then shows the to-do as it is.
class ToDoEditorWindow : public QWidget
{
    Q_OBJECT

public:
    ToDoEditorWindow(store::Store& store, support::Prompter& prompter, OpenEditors& openEditors,
                     QWidget* parent = nullptr);
    ~ToDoEditorWindow() override;

    // A new to-do from `start`, or from the next half hour when `start` is not valid.
    bool newToDo(const QDateTime& start);
    // The stored to-do; false when it no longer exists.
    bool openToDo(const predicate::RecordRef& todo);

    editors::ToDoController& controller() { return *m_controller; }

public Q_SLOTS:
    // Saves and leaves the window open; the window's own Save button saves and closes it.
    void save();

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    store::Record* todo() const;
    void buildForm();
    QWidget* buildRecurrence();
    QToolButton* makeColorButton(const char* name, const QString& toolTip);
    void chooseColor(const char* key, const QString& title);
    void setUpSuggestions(QLineEdit* edit, QCompleter*& completer, QStringListModel*& names, bool client);
    void suggest(bool client, const QString& text);
    void linkTyped(bool client);
    void finishEditing();
    void showTags();
    void refresh();
    void refreshTitle();

    std::unique_ptr<editors::ToDoController> m_controller;
    QList<store::Record*> m_clientSuggestions;
    QList<store::Record*> m_itemSuggestions;

    QFormLayout* m_form = nullptr;
    QFormLayout* m_repeatForm = nullptr;
    QLineEdit* m_titleEdit = nullptr;
    QCheckBox* m_allDayCheck = nullptr;
    QDateTimeEdit* m_startEdit = nullptr;
    QDateTimeEdit* m_endEdit = nullptr;
    QLineEdit* m_clientEdit = nullptr;
    QLineEdit* m_itemEdit = nullptr;
    QCompleter* m_clientCompleter = nullptr;
    QCompleter* m_itemCompleter = nullptr;
    QStringListModel* m_clientNames = nullptr;
    QStringListModel* m_itemNames = nullptr;
    QToolButton* m_backgroundButton = nullptr;
    QToolButton* m_foregroundButton = nullptr;
    QCheckBox* m_doneCheck = nullptr;
    QPlainTextEdit* m_notesEdit = nullptr;

    QComboBox* m_repeatPopup = nullptr;
    QSpinBox* m_frequencySpin = nullptr;
    QLabel* m_frequencyUnit = nullptr;
    QWidget* m_frequencyRow = nullptr;
    QWidget* m_weekdayRow = nullptr;
    QList<QToolButton*> m_weekdayButtons; // in the locale's week order
    QWidget* m_monthlyRow = nullptr;
    QRadioButton* m_byDayRadio = nullptr;
    QRadioButton* m_byWeekdayRadio = nullptr;
    QWidget* m_endRow = nullptr;
    QComboBox* m_endPopup = nullptr;
    QSpinBox* m_occurrencesSpin = nullptr;
    QLabel* m_occurrencesUnit = nullptr;
    QDateEdit* m_endDateEdit = nullptr;
    QLabel* m_summaryLabel = nullptr;

    QPushButton* m_tagsButton = nullptr;
    QPushButton* m_saveButton = nullptr;
};

} // namespace corvanta::ui
