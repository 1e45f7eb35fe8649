#pragma once

#include "predicate/recordref.h"

#include <QMainWindow>
#include <QPointer>
#include <memory>

class QComboBox;
class QDateEdit;
class QFormLayout;
class QLabel;
class QLineEdit;
class QPlainTextEdit;
class QPushButton;
class QStringListModel;
class QTabWidget;
class QToolButton;
class QButtonGroup;

namespace corvanta::editors {
class DocumentController;
class DocumentOutput;
} // namespace corvanta::editors
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

class DocumentRowsModel;
class DocumentRowsView;
class OpenEditors;

// The editor of one business document in a window of its own: the header (type, number, dates,
// client, template, currency and rate, terms), the rows typed in a table, the selected row's
// note with the library of row notes, the header and footer notes, and the totals, which follow
// every change. All rules are the DocumentController's, which owns the document's editing context;
// the window shows its records and calls its operations.
class DocumentEditorWindow : public QMainWindow
{
    Q_OBJECT

public:
    DocumentEditorWindow(store::Store& store, support::Prompter& prompter, OpenEditors& openEditors,
                         QWidget* parent = nullptr);
    ~DocumentEditorWindow() override;

    // A new document of `type` (0 to 7); false for an unknown type.
    bool newDocument(qint64 type);
    // A stored document; false when there is no such document.
    bool openDocument(const predicate::RecordRef& document);

    editors::DocumentController& controller() { return *m_controller; }
    // Where print, export, e-mail and preview hand the document over.
    void setOutput(editors::DocumentOutput* output);

public Q_SLOTS:
    void addRow();
    void editRow();
    void duplicateRow();
    void deleteRow();
    void save();
    void preview();
    void print();
    void saveAs();
    void sendEmail();

protected:
    void closeEvent(QCloseEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    QWidget* makeDocumentTab();
    QWidget* makeHeader();
    QWidget* makeRowsBar();
    QWidget* makeFooter();
    QWidget* makeNotesTab();
    void makeActions();

    // Shows the document's header values; run when the controller changed them.
    void refreshHeader();
    void refreshTemplates();
    // Lists the payment types, banks and currencies again, keeping the document's choices.
    void refreshReferenceChoosers();
    void referenceListsSaved(const store::ChangeSet& changes, store::EditingContext* origin);
    void refreshCurrencies();
    void refreshExchangeRate();
    void refreshTotals();
    void refreshTitle();
    void refreshPriceLevels();
    void refreshSelection();
    void showDocument();

    void rowsChanged();
    void scrollToRow(store::Record* row);
    void clientTyped(const QString& text);
    void clientEntered();
    void exchangeRateEntered();
    void currencyChosen(int index);
    void priceLevelChosen(int level);
    void priceEntered(int level);
    QWidget* makeRowPrices();
    void buildNotesMenu();
    void showTags();
    // Ends every edit in progress, so that a command sees what was typed.
    void finishEditing();
    void setDocumentValue(const QString& key, const QVariant& value);
    void setDocumentRelated(const QString& key, QComboBox* chooser, const QString& entity);

    support::Prompter& m_prompter;
    OpenEditors& m_openEditors;
    std::unique_ptr<editors::DocumentController> m_controller;
    bool m_loading = false;
    bool m_editNewRow = false;

    QTabWidget* m_tabs = nullptr;
    QComboBox* m_typeChooser = nullptr;
    QLabel* m_numberLabel = nullptr;
    QDateEdit* m_dateEdit = nullptr;
    QDateEdit* m_dueDateEdit = nullptr;
    QToolButton* m_dueDaysButton = nullptr;
    QLineEdit* m_clientEdit = nullptr;
    QStringListModel* m_clientNames = nullptr;
    QLabel* m_clientLabel = nullptr;
    QComboBox* m_templateChooser = nullptr;
    QPushButton* m_tagsButton = nullptr;
    QFormLayout* m_termsForm = nullptr;
    QComboBox* m_currencyChooser = nullptr;
    QLabel* m_exchangeRateLabel = nullptr;
    QLineEdit* m_exchangeRateEdit = nullptr;
    QComboBox* m_paymentTypeChooser = nullptr;
    QComboBox* m_bankChooser = nullptr;

    DocumentRowsModel* m_rowsModel = nullptr;
    DocumentRowsView* m_rowsView = nullptr;
    QButtonGroup* m_priceLevels = nullptr;
    QPlainTextEdit* m_rowNoteEdit = nullptr;
    QList<QLabel*> m_priceLabels;
    QList<QLineEdit*> m_priceFields;
    QToolButton* m_notesButton = nullptr;
    QFormLayout* m_totalsForm = nullptr;
    QWidget* m_totalsBox = nullptr;

    QPlainTextEdit* m_headerNoteEdit = nullptr;
    QPlainTextEdit* m_footerNoteEdit = nullptr;
};

} // namespace corvanta::ui
