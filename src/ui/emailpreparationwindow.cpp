#include "emailpreparationwindow.h"

#include "documentpdf.h"
#include "exchange/emailpreparation.h"
#include "sheetbuttons.h"
#include "store/changeset.h"
#include "store/editingcontext.h"
#include "store/record.h"
#include "store/store.h"
#include "support/prompter.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace corvanta::ui {

using store::Record;

namespace {

QString s(const char* text)
{
    return QString::fromLatin1(text);
}

} // namespace

EmailPreparationWindow::EmailPreparationWindow(store::Store& store, support::Prompter& prompter,
                                               const predicate::RecordRef& selected, QWidget* parent)
    : QDialog(parent)
    , m_store(store)
    , m_prompter(prompter)
    , m_context(store.newContext())
{
    setObjectName(s("EmailPreparationWindow"));
    setWindowModality(Qt::WindowModal);
    setWindowTitle(tr("Send by Email"));

    Record* record = m_context->fetchRecord(selected.entity, selected);
    m_preparation = std::make_unique<exchange::EmailPreparation>(record);

    auto* titleLabel = new QLabel(tr("Send by Email"), this);
    QFont bold = titleLabel->font();
    bold.setBold(true);
    titleLabel->setFont(bold);

    m_recipientEdit = new QLineEdit(m_preparation->toEmail(), this);
    m_recipientEdit->setObjectName(s("recipientEdit"));
    m_templatePopup = new QComboBox(this);
    m_templatePopup->setObjectName(s("templatePopup"));
    m_templatePopup->setPlaceholderText(tr("No template"));
    m_subjectEdit = new QLineEdit(m_preparation->subject(), this);
    m_subjectEdit->setObjectName(s("subjectEdit"));
    m_bodyEdit = new QPlainTextEdit(m_preparation->body(), this);
    m_bodyEdit->setObjectName(s("bodyEdit"));
    // Lines wrap at the field's width, as the mail program will show them.
    m_bodyEdit->setLineWrapMode(QPlainTextEdit::WidgetWidth);
    m_bodyEdit->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_bodyEdit->setMinimumSize(fontMetrics().averageCharWidth() * 64, fontMetrics().lineSpacing() * 12);

    auto* form = new QFormLayout;
    const auto addRow = [&](const QString& text, QWidget* field) {
        auto* label = new QLabel(text, this);
        label->setBuddy(field);
        form->addRow(label, field);
    };
    addRow(tr("&To:"), m_recipientEdit);
    addRow(tr("&Template:"), m_templatePopup);
    if (m_preparation->offersAttachment()) {
        // Only a document goes along, under its number.
        m_attachmentCheck = new QCheckBox(m_preparation->attachmentLabel(), this);
        m_attachmentCheck->setObjectName(s("attachmentCheck"));
        m_attachmentCheck->setIcon(QIcon::fromTheme(s("mail-attachment")));
        m_attachmentCheck->setChecked(m_preparation->attaches());
        m_attachmentCheck->setToolTip(tr("Attach the document as a PDF"));
        addRow(tr("&Attachment:"), m_attachmentCheck);
    }
    addRow(tr("&Subject:"), m_subjectEdit);
    addRow(tr("&Body:"), m_bodyEdit);

    const SheetButtons buttons = SheetButtons::make(this);
    m_cancelButton = buttons.cancel;
    m_sendButton = buttons.save;
    m_sendButton->setText(tr("Send"));
    m_sendButton->setObjectName(s("sendButton"));
    m_sendButton->setIcon(QIcon::fromTheme(s("mail-send")));
    connect(m_sendButton, &QPushButton::clicked, this, &EmailPreparationWindow::send);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(titleLabel);
    layout->addLayout(form, 1);
    layout->addLayout(buttons.layout);

    fillTemplates();
    connect(m_templatePopup, &QComboBox::activated, this, &EmailPreparationWindow::templateChosen);
    connect(&m_store, &store::Store::didSave, this, &EmailPreparationWindow::storeDidSave);
    m_subjectEdit->setFocus(Qt::OtherFocusReason);
}

EmailPreparationWindow::~EmailPreparationWindow() = default;

void EmailPreparationWindow::fillTemplates()
{
    // Keeps the chosen template and the texts typed so far; only the list follows the store.
    const Record* chosen = m_preparation->selectedTemplate();
    const QSignalBlocker blocker(m_templatePopup);
    m_templatePopup->clear();
    const QList<Record*> templates = m_preparation->templates();
    for (Record* emailTemplate : templates) {
        m_templatePopup->addItem(emailTemplate->value(s("name")).toString(),
                                 QVariant::fromValue(emailTemplate));
        if (emailTemplate == chosen)
            m_templatePopup->setCurrentIndex(m_templatePopup->count() - 1);
    }
    if (!chosen || !templates.contains(chosen))
        m_templatePopup->setCurrentIndex(-1);
}

void EmailPreparationWindow::templateChosen(int index)
{
    m_preparation->emailTemplatesChanged(index >= 0 ? m_templatePopup->itemData(index).value<Record*>()
                                                    : nullptr);
    m_subjectEdit->setText(m_preparation->subject());
    m_bodyEdit->setPlainText(m_preparation->body());
}

void EmailPreparationWindow::storeDidSave(const store::ChangeSet& changes, store::EditingContext* origin)
{
    if (origin == m_context.get() || !changes.touches(s("EmailTemplates")))
        return;
    m_context->mergeChanges(changes);
    fillTemplates();
}

void EmailPreparationWindow::send()
{
    m_preparation->setToEmail(m_recipientEdit->text().trimmed());
    m_preparation->setSubject(m_subjectEdit->text());
    m_preparation->setBody(m_bodyEdit->toPlainText());
    if (m_attachmentCheck)
        m_preparation->setAttaches(m_attachmentCheck->isChecked());
    QString error;
    if (!m_preparation->continueSending(m_handOver, DocumentPdf::tempFilesDirectory(m_store),
                                        DocumentPdf::templateFilesDirectory(m_store), &error)) {
        m_prompter.alert(tr("The email could not be sent"), error, {tr("OK")});
        return;
    }
    accept();
}

} // namespace corvanta::ui
