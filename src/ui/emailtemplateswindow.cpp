#include "emailtemplateswindow.h"

#include "app/commandrules.h"
#include "exchange/emailplaceholders.h"
#include "exchange/emailtemplatelist.h"
#include "mainwindow.h"
#include "store/changeset.h"
#include "store/editingcontext.h"
#include "store/record.h"
#include "store/store.h"
#include "windowplacement.h"

#include <QCloseEvent>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScopedValueRollback>
#include <QSplitter>
#include <QTableWidget>
#include <QTextCursor>
#include <QTimer>
#include <QToolButton>
#include <QVBoxLayout>

namespace corvanta::ui {

using exchange::EmailTemplateList;
using store::Record;

namespace {

QString s(const char* text)
{
    return QString::fromLatin1(text);
}

enum Column { NameColumn, DefaultColumn };

// How long typing may pause before the subject and body are saved.
constexpr int kTypingPauseMs = 800;

QToolButton* iconButton(const char* icon, const QString& text, const char* name, QWidget* parent)
{
    auto* button = new QToolButton(parent);
    button->setIcon(QIcon::fromTheme(s(icon)));
    button->setToolTip(text);
    button->setAccessibleName(text);
    button->setObjectName(s(name));
    button->setAutoRaise(true);
    return button;
}

} // namespace

EmailTemplatesWindow::EmailTemplatesWindow(store::Store& store, support::Prompter& prompter, QWidget* parent)
    : QWidget(parent, Qt::Window)
    , m_prompter(prompter)
    , m_context(store.newContext())
    , m_list(std::make_unique<EmailTemplateList>(*m_context, prompter))
{
    setObjectName(s("EmailTemplatesWindow"));
    setAttribute(Qt::WA_DeleteOnClose);
    setProperty(MainWindow::windowKindProperty(), int(app::WindowKind::EmailTemplatesList));
    setProperty("canAdd", true);
    setProperty("selectedRowCount", 0);
    setWindowTitle(tr("Email Templates"));
    setWindowIcon(QIcon::fromTheme(s("mail-message-new")));

    m_pause = new QTimer(this);
    m_pause->setSingleShot(true);
    m_pause->setInterval(kTypingPauseMs);
    connect(m_pause, &QTimer::timeout, this, &EmailTemplatesWindow::commitPending);

    m_splitter = new QSplitter(Qt::Horizontal, this);
    m_splitter->setObjectName(s("splitter"));
    m_splitter->setChildrenCollapsible(false);
    m_splitter->addWidget(makeList());
    m_splitter->addWidget(makeFields());
    m_splitter->setStretchFactor(0, 2);
    m_splitter->setStretchFactor(1, 3);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(m_splitter);

    connect(&store, &store::Store::didSave, this, &EmailTemplatesWindow::storeDidSave);

    reload();
    if (m_table->rowCount() > 0)
        m_table->selectRow(0);
    updateState();

    if (!WindowPlacement::restore(this))
        resize(fontMetrics().averageCharWidth() * 110, fontMetrics().lineSpacing() * 30);
    m_splitter->restoreState(WindowPlacement::partState(this, s("splitter")));
}

EmailTemplatesWindow::~EmailTemplatesWindow()
{
    // The fields write into records of the context: they go first, without a last word.
    const QList<QWidget*> children = findChildren<QWidget*>();
    for (QWidget* child : children)
        disconnect(child, nullptr, this, nullptr);
    m_pause->stop();
    delete m_splitter;
}

QWidget* EmailTemplatesWindow::makeList()
{
    auto* pane = new QWidget(this);
    auto* label = new QLabel(tr("&Templates:"), pane);
    m_table = new QTableWidget(0, 2, pane);
    m_table->setObjectName(s("templatesTable"));
    label->setBuddy(m_table);
    m_table->setHorizontalHeaderLabels({tr("Name"), tr("Default")});
    m_table->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_table->setSelectionMode(QAbstractItemView::SingleSelection);
    m_table->setEditTriggers(QAbstractItemView::DoubleClicked | QAbstractItemView::EditKeyPressed |
                             QAbstractItemView::SelectedClicked);
    m_table->verticalHeader()->hide();
    // Rows as high as a line of text with its margins, not the style's roomy default.
    m_table->verticalHeader()->setDefaultSectionSize(m_table->fontMetrics().lineSpacing() + 10);
    m_table->horizontalHeader()->setSectionResizeMode(NameColumn, QHeaderView::Stretch);
    m_table->horizontalHeader()->setSectionResizeMode(DefaultColumn, QHeaderView::ResizeToContents);
    m_table->setWordWrap(false);
    m_table->setTabKeyNavigation(false);
    connect(m_table, &QTableWidget::itemSelectionChanged, this, &EmailTemplatesWindow::selectionChanged);
    connect(m_table, &QTableWidget::itemChanged, this, &EmailTemplatesWindow::itemChanged);

    m_addButton = iconButton("list-add", tr("Add Template"), "addButton", pane);
    m_removeButton = iconButton("list-remove", tr("Delete Template"), "removeButton", pane);
    m_duplicateButton = iconButton("edit-copy", tr("Duplicate Template"), "duplicateButton", pane);
    m_defaultButton = new QPushButton(tr("&Make Default"), pane);
    m_defaultButton->setObjectName(s("makeDefaultButton"));
    connect(m_addButton, &QToolButton::clicked, this, &EmailTemplatesWindow::addRow);
    connect(m_removeButton, &QToolButton::clicked, this, &EmailTemplatesWindow::deleteRow);
    connect(m_duplicateButton, &QToolButton::clicked, this, &EmailTemplatesWindow::duplicateRow);
    connect(m_defaultButton, &QPushButton::clicked, this, &EmailTemplatesWindow::makeDefault);

    auto* buttons = new QHBoxLayout;
    buttons->setSpacing(0);
    buttons->addWidget(m_addButton);
    buttons->addWidget(m_removeButton);
    buttons->addWidget(m_duplicateButton);
    buttons->addStretch(1);
    buttons->addWidget(m_defaultButton);

    auto* layout = new QVBoxLayout(pane);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(label);
    layout->addWidget(m_table, 1);
    layout->addLayout(buttons);
    return pane;
}

QWidget* EmailTemplatesWindow::makeFields()
{
    auto* pane = new QWidget(this);
    pane->setObjectName(s("fieldsPane"));
    m_subjectEdit = new QLineEdit(pane);
    m_subjectEdit->setObjectName(s("subjectEdit"));
    m_bodyEdit = new QPlainTextEdit(pane);
    m_bodyEdit->setObjectName(s("bodyEdit"));
    m_bodyEdit->setTabChangesFocus(true);

    m_placeholderMenu = new QMenu(this);
    m_placeholderMenu->setObjectName(s("placeholderMenu"));
    const QStringList& placeholders = exchange::EmailPlaceholders::all();
    for (int index = 0; index < placeholders.size(); ++index) {
        QAction* action = m_placeholderMenu->addAction(placeholders.at(index));
        connect(action, &QAction::triggered, this, [this, index] { insertPlaceholder(index); });
    }
    m_placeholderButton = new QToolButton(pane);
    m_placeholderButton->setObjectName(s("placeholderButton"));
    m_placeholderButton->setText(tr("Insert &Placeholder"));
    m_placeholderButton->setToolTip(tr("Put a value filled in when the e-mail is written at the cursor"));
    m_placeholderButton->setMenu(m_placeholderMenu);
    m_placeholderButton->setPopupMode(QToolButton::InstantPopup);

    auto* form = new QFormLayout;
    form->setContentsMargins(0, 0, 0, 0);
    auto* subjectLabel = new QLabel(tr("&Subject:"), pane);
    subjectLabel->setBuddy(m_subjectEdit);
    form->addRow(subjectLabel, m_subjectEdit);
    auto* bodyLabel = new QLabel(tr("&Body:"), pane);
    bodyLabel->setBuddy(m_bodyEdit);
    form->addRow(bodyLabel, m_bodyEdit);
    auto* placeholderRow = new QHBoxLayout;
    placeholderRow->addStretch(1);
    placeholderRow->addWidget(m_placeholderButton);
    form->addRow(placeholderRow);

    auto* layout = new QVBoxLayout(pane);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addLayout(form, 1);

    connect(m_subjectEdit, &QLineEdit::textEdited, this, &EmailTemplatesWindow::typed);
    connect(m_subjectEdit, &QLineEdit::editingFinished, this, &EmailTemplatesWindow::commitPending);
    connect(m_bodyEdit, &QPlainTextEdit::textChanged, this, &EmailTemplatesWindow::typed);
    return pane;
}

Record* EmailTemplatesWindow::recordAt(int row) const
{
    const QTableWidgetItem* item = m_table->item(row, NameColumn);
    return item ? item->data(Qt::UserRole).value<Record*>() : nullptr;
}

bool EmailTemplatesWindow::selectTemplate(const QString& name)
{
    for (int row = 0; row < m_table->rowCount(); ++row) {
        if (m_table->item(row, NameColumn)->text() == name) {
            m_table->selectRow(row);
            return true;
        }
    }
    return false;
}

void EmailTemplatesWindow::reload(Record* select)
{
    if (!select)
        select = m_shown;
    {
        const QScopedValueRollback loading(m_loading, true);
        const QSignalBlocker blocker(m_table);
        m_table->setRowCount(0);
        const QList<Record*> templates = m_list->templates();
        const Record* defaultTemplate = m_list->defaultTemplate();
        m_table->setRowCount(int(templates.size()));
        int selectedRow = -1;
        for (int row = 0; row < templates.size(); ++row) {
            Record* emailTemplate = templates.at(row);
            const QString name = emailTemplate->value(s("name")).toString();
            auto* nameItem = new QTableWidgetItem(name);
            nameItem->setData(Qt::UserRole, QVariant::fromValue(emailTemplate));
            nameItem->setToolTip(name);
            auto* defaultItem = new QTableWidgetItem;
            defaultItem->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsUserCheckable);
            defaultItem->setCheckState(emailTemplate == defaultTemplate ? Qt::Checked : Qt::Unchecked);
            defaultItem->setToolTip(tr("The template chosen first for a new e-mail"));
            m_table->setItem(row, NameColumn, nameItem);
            m_table->setItem(row, DefaultColumn, defaultItem);
            if (emailTemplate == select)
                selectedRow = row;
        }
        if (selectedRow >= 0)
            m_table->selectRow(selectedRow);
    }
    selectionChanged();
}

void EmailTemplatesWindow::selectionChanged()
{
    const QModelIndexList rows = m_table->selectionModel()->selectedRows();
    showTemplate(rows.size() == 1 ? recordAt(rows.first().row()) : nullptr);
    updateState();
}

void EmailTemplatesWindow::showTemplate(Record* emailTemplate)
{
    // What was typed for the template shown before is kept before the fields change.
    if (m_shown != emailTemplate && !m_loading)
        commitPending();
    m_pause->stop();
    m_shown = emailTemplate;
    const QScopedValueRollback loading(m_loading, true);
    const QString subject = emailTemplate ? emailTemplate->value(s("subject")).toString() : QString();
    const QString body = emailTemplate ? emailTemplate->value(s("body")).toString() : QString();
    // The fields are set again only when they differ, so that the cursor stays where it is.
    if (m_subjectEdit->text() != subject)
        m_subjectEdit->setText(subject);
    if (m_bodyEdit->toPlainText() != body)
        m_bodyEdit->setPlainText(body);
    m_subjectEdit->setEnabled(emailTemplate != nullptr);
    m_bodyEdit->setEnabled(emailTemplate != nullptr);
    m_placeholderButton->setEnabled(emailTemplate != nullptr);
}

void EmailTemplatesWindow::typed()
{
    if (!m_loading && m_shown)
        m_pause->start();
}

void EmailTemplatesWindow::commitPending()
{
    m_pause->stop();
    if (!m_shown)
        return;
    const QString subject = m_subjectEdit->text();
    const QString body = m_bodyEdit->toPlainText();
    bool saved = true;
    if (m_shown->value(s("subject")).toString() != subject)
        saved = m_list->setSubject(m_shown, subject);
    if (saved && m_shown->value(s("body")).toString() != body)
        saved = m_list->setBody(m_shown, body);
    // A refused save was forgotten by the list: the fields show what is stored again.
    if (!saved)
        reload();
}

void EmailTemplatesWindow::itemChanged(QTableWidgetItem* item)
{
    if (m_loading)
        return;
    Record* emailTemplate = recordAt(item->row());
    if (!emailTemplate)
        return;
    if (item->column() == NameColumn) {
        commitPending();
        m_list->rename(emailTemplate, item->text());
        // The list is sorted again once the view has finished with the item it edited.
        QTimer::singleShot(0, this, [this, emailTemplate] { reload(emailTemplate); });
    } else if (item->column() == DefaultColumn) {
        // A tick chooses the default; the default's own tick cannot be taken away, as there is
        // always one template chosen first.
        if (item->checkState() == Qt::Checked)
            m_list->defaultChanged(emailTemplate);
        showDefaultMarks();
    }
}

void EmailTemplatesWindow::showDefaultMarks()
{
    const QSignalBlocker blocker(m_table);
    for (int row = 0; row < m_table->rowCount(); ++row)
        m_table->item(row, DefaultColumn)
            ->setCheckState(m_list->isDefault(recordAt(row)) ? Qt::Checked : Qt::Unchecked);
    updateState();
}

void EmailTemplatesWindow::addRow()
{
    commitPending();
    Record* made = m_list->addRow();
    reload(made);
    if (made && m_shown == made)
        editRow();
}

void EmailTemplatesWindow::editRow()
{
    const QModelIndexList rows = m_table->selectionModel()->selectedRows();
    if (rows.size() != 1)
        return;
    QTableWidgetItem* item = m_table->item(rows.first().row(), NameColumn);
    m_table->setFocus();
    m_table->setCurrentItem(item);
    m_table->editItem(item);
}

void EmailTemplatesWindow::duplicateRow()
{
    if (!m_shown)
        return;
    commitPending();
    reload(m_list->duplicateRow(m_shown));
}

void EmailTemplatesWindow::deleteRow()
{
    Record* chosen = m_shown;
    if (!chosen)
        return;
    commitPending();
    const int row = m_table->currentRow();
    if (!m_list->deleteRow(chosen)) {
        reload();
        return;
    }
    // The record is gone: the neighbour in the list is chosen instead.
    m_shown = nullptr;
    reload();
    if (m_table->rowCount() > 0)
        m_table->selectRow(qBound(0, row, m_table->rowCount() - 1));
}

void EmailTemplatesWindow::makeDefault()
{
    if (!m_shown)
        return;
    commitPending();
    m_list->defaultChanged(m_shown);
    reload();
}

void EmailTemplatesWindow::insertPlaceholder(int index)
{
    if (!m_shown)
        return;
    QTextCursor cursor = m_bodyEdit->textCursor();
    // A selection is replaced by the placeholder, as typing would replace it.
    const qsizetype start = cursor.selectionStart();
    QString body = m_bodyEdit->toPlainText();
    body.remove(start, cursor.selectionEnd() - start);
    const EmailTemplateList::Insertion insertion = EmailTemplateList::insertFormula(body, start, index);
    {
        // One step for undo, without saving between the removal and the insertion.
        const QScopedValueRollback loading(m_loading, true);
        cursor.beginEditBlock();
        cursor.select(QTextCursor::Document);
        cursor.insertText(insertion.body);
        cursor.endEditBlock();
    }
    cursor.setPosition(int(insertion.position));
    m_bodyEdit->setTextCursor(cursor);
    m_bodyEdit->setFocus();
    commitPending();
}

void EmailTemplatesWindow::storeDidSave(const store::ChangeSet& changes, store::EditingContext* origin)
{
    if (origin == m_context.get() ||
        !(changes.touches(s("EmailTemplates")) || changes.touches(s("MyCompany"))))
        return;
    // Typing not yet saved is saved first, so that the merge does not take it for older.
    commitPending();
    m_context->mergeChanges(changes);
    // The template shown may be one the merge deleted: it is only looked for again, never read.
    Record* shown = m_shown;
    m_shown = nullptr;
    reload(shown);
}

void EmailTemplatesWindow::updateState()
{
    const bool chosen = m_shown != nullptr;
    setProperty("selectedRowCount", int(m_table->selectionModel()->selectedRows().size()));
    m_removeButton->setEnabled(chosen);
    m_duplicateButton->setEnabled(chosen);
    m_defaultButton->setEnabled(chosen && !m_list->isDefault(m_shown));
}

void EmailTemplatesWindow::closeEvent(QCloseEvent* event)
{
    commitPending();
    WindowPlacement::save(this);
    WindowPlacement::savePartState(this, s("splitter"), m_splitter->saveState());
    QWidget::closeEvent(event);
}

} // namespace corvanta::ui
