#pragma once

#include "exchange/emailhandover.h"
#include "predicate/recordref.h"

#include <QDialog>
#include <memory>

class QCheckBox;
class QComboBox;
class QLineEdit;
class QPlainTextEdit;
class QPushButton;

namespace corvanta::store {
class ChangeSet;
class EditingContext;
class Store;
} // namespace corvanta::store
namespace corvanta::support {
class Prompter;
}
namespace corvanta::exchange {
class EmailPreparation;
}

namespace corvanta::ui {

// The sheet in which one e-mail about a client or a document is prepared: the recipient, the
// e-mail template that fills subject and body, for a document whether its PDF goes along, and
// "Send", which hands it to the desktop's mail program. It reads the record in a context of its
// own, and its template list follows the templates' window.
class EmailPreparationWindow : public QDialog
{
    Q_OBJECT

public:
    // `selected` is a stored client or document.
    EmailPreparationWindow(store::Store& store, support::Prompter& prompter,
                           const predicate::RecordRef& selected, QWidget* parent = nullptr);
    ~EmailPreparationWindow() override;

    // The program the e-mail is handed to (xdg-email unless changed).
    void setHandOver(const exchange::EmailHandOver& handOver) { m_handOver = handOver; }
    exchange::EmailPreparation* preparation() const { return m_preparation.get(); }

public Q_SLOTS:
    // Hands the e-mail over and closes the sheet; a failure is told and the sheet stays.
    void send();

private:
    void fillTemplates();
    void templateChosen(int index);
    void storeDidSave(const store::ChangeSet& changes, store::EditingContext* origin);

    store::Store& m_store;
    support::Prompter& m_prompter;
    std::unique_ptr<store::EditingContext> m_context;
    std::unique_ptr<exchange::EmailPreparation> m_preparation;
    exchange::EmailHandOver m_handOver;

    QLineEdit* m_recipientEdit = nullptr;
    QComboBox* m_templatePopup = nullptr;
    QLineEdit* m_subjectEdit = nullptr;
    QPlainTextEdit* m_bodyEdit = nullptr;
    QCheckBox* m_attachmentCheck = nullptr;
    QPushButton* m_cancelButton = nullptr;
    QPushButton* m_sendButton = nullptr;
};

} // namespace corvanta::ui
