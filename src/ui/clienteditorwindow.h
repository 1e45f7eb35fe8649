#pragma once

#include "editors/clientcontroller.h"

#include <QWidget>

class QComboBox;
class QHBoxLayout;
class QLabel;
class QLineEdit;
class QPlainTextEdit;
class QPushButton;
class QSpinBox;
class QTabWidget;

namespace corvanta::predicate {
struct RecordRef;
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
class OwnedRecordList;
class TagsPopover;

// The window that edits one client: its kind and names, how to reach it, its addresses and
// contacts, its payment defaults, notes, custom fields and tags. The fields write to the client
// in the controller's own editing context; the rules (the name fields of a kind, the name and
// kind folder given on saving, the defaults of the lists, the close question, the hand-over to
// an open document) are the controller's.
class ClientEditorWindow : public QWidget
{
    Q_OBJECT

public:
    ClientEditorWindow(store::Store& store, support::Prompter& prompter, OpenEditors& openEditors,
                       QWidget* parent = nullptr);
    ~ClientEditorWindow() override;

    // Starts on a new client of `type` (0 company, 1 supplier, 2 individual).
    bool newClient(qint64 type);
    // Edits the stored client; false when it is not there.
    bool openClient(const predicate::RecordRef& client);

    editors::ClientController& controller() { return m_controller; }
    store::Record* client() const { return m_controller.client(); }
    TagsPopover* tagsPopover() const { return m_tagsPopover; }

public Q_SLOTS:
    // Saves and, when a document editor is open, hands the client to its document; the window
    // closes after a save from here as after one from its own button.
    void save();
    void showTagsPopover();
    void addRow();
    void deleteRow();

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    void buildForm();
    QWidget* buildGeneralPage();
    QWidget* buildPaymentPage();
    QWidget* buildCustomPage();
    void load();
    void loadNameFields();
    void loadPaymentDefaults();
    void loadTags();
    void updateTitle();
    void kindChosen(int index);
    void setText(const QString& key, const QString& text);
    void fillPopup(QComboBox* popup, const QString& noneText, const QString& entity, const QString& nameKey);
    void relationChosen(QComboBox* popup, const QString& key);
    void restoreLayout();
    void saveLayout() const;
    OwnedRecordList* activeList() const;

    OpenEditors& m_openEditors;
    editors::ClientController m_controller;
    bool m_loading = false;

    QComboBox* m_kindPopup = nullptr;
    QLabel* m_firstNameLabel = nullptr;
    QLineEdit* m_firstNameEdit = nullptr;
    QLabel* m_secondNameLabel = nullptr;
    QLineEdit* m_secondNameEdit = nullptr;
    QComboBox* m_statusPopup = nullptr;
    QSpinBox* m_ratingSpin = nullptr;
    QLineEdit* m_emailsEdit = nullptr;
    QLineEdit* m_phonesEdit = nullptr;
    QTabWidget* m_tabs = nullptr;
    OwnedRecordList* m_addresses = nullptr;
    OwnedRecordList* m_contacts = nullptr;
    QComboBox* m_paymentTypePopup = nullptr;
    QComboBox* m_bankPopup = nullptr;
    QComboBox* m_dueDaysPopup = nullptr;
    QPlainTextEdit* m_notesEdit = nullptr;
    QList<QPair<QString, QLineEdit*>> m_customEdits;
    QPushButton* m_tagsButton = nullptr;
    QWidget* m_tagRow = nullptr;
    QHBoxLayout* m_tagRowLayout = nullptr;
    QPushButton* m_saveButton = nullptr;
    TagsPopover* m_tagsPopover = nullptr;
};

} // namespace corvanta::ui
