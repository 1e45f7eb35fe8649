#pragma once

#include <QWidget>
#include <memory>

class QLineEdit;
class QMenu;
class QPlainTextEdit;
class QPushButton;
class QSplitter;
class QTableWidget;
class QTableWidgetItem;
class QTimer;
class QToolButton;

namespace corvanta::exchange {
class EmailTemplateList;
}
namespace corvanta::store {
class ChangeSet;
class EditingContext;
class Record;
class Store;
} // namespace corvanta::store
namespace corvanta::support {
class Prompter;
}

namespace corvanta::ui {

// The window of the e-mail templates: their names at the left, edited in place, with a tick on
// the company's default; the chosen template's subject and body at the right, saved as the user
// types (after a short pause, and at once when the field is left, another template is chosen or
// the window closes), and a menu that puts a placeholder at the body's insertion point. The list
// of templates works in a context of its own and follows changes saved elsewhere.
class EmailTemplatesWindow : public QWidget
{
    Q_OBJECT

public:
    EmailTemplatesWindow(store::Store& store, support::Prompter& prompter, QWidget* parent = nullptr);
    ~EmailTemplatesWindow() override;

    // The template whose subject and body are shown; null when none is chosen.
    store::Record* selectedTemplate() const { return m_shown; }
    // Chooses the template with that name; false when there is none.
    bool selectTemplate(const QString& name);
    // The placeholder menu of the body.
    QMenu* placeholderMenu() const { return m_placeholderMenu; }

public Q_SLOTS:
    // A new template, its name opened for typing.
    void addRow();
    // Opens the chosen template's name for typing.
    void editRow();
    void duplicateRow();
    // Deletes the chosen template after the question; the default one is refused.
    void deleteRow();
    // Makes the chosen template the company's default.
    void makeDefault();
    // Writes the subject and body typed and not yet saved.
    void commitPending();

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    QWidget* makeList();
    QWidget* makeFields();
    // Reads the templates again and chooses `select` (the template shown when null).
    void reload(store::Record* select = nullptr);
    void selectionChanged();
    void showTemplate(store::Record* emailTemplate);
    void itemChanged(QTableWidgetItem* item);
    // Ticks the default template's row and only that one.
    void showDefaultMarks();
    void insertPlaceholder(int index);
    void typed();
    void storeDidSave(const store::ChangeSet& changes, store::EditingContext* origin);
    store::Record* recordAt(int row) const;
    void updateState();

    support::Prompter& m_prompter;
    std::unique_ptr<store::EditingContext> m_context;
    std::unique_ptr<exchange::EmailTemplateList> m_list;
    store::Record* m_shown = nullptr;
    bool m_loading = false;

    QSplitter* m_splitter = nullptr;
    QTableWidget* m_table = nullptr;
    QToolButton* m_addButton = nullptr;
    QToolButton* m_removeButton = nullptr;
    QToolButton* m_duplicateButton = nullptr;
    QPushButton* m_defaultButton = nullptr;
    QLineEdit* m_subjectEdit = nullptr;
    QPlainTextEdit* m_bodyEdit = nullptr;
    QToolButton* m_placeholderButton = nullptr;
    QMenu* m_placeholderMenu = nullptr;
    QTimer* m_pause = nullptr;
};

} // namespace corvanta::ui
