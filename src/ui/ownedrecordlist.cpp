#include "ownedrecordlist.h"

#include "store/record.h"

#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QToolButton>
#include <QVBoxLayout>

namespace corvanta::ui {

namespace {

constexpr int kRecordRole = Qt::UserRole + 1;

QToolButton* iconButton(QWidget* parent, const QString& name, const char* icon, const QString& toolTip)
{
    auto* button = new QToolButton(parent);
    button->setObjectName(name);
    button->setIcon(QIcon::fromTheme(QString::fromLatin1(icon)));
    // Shown only where the icon theme lacks the icon.
    button->setText(toolTip);
    button->setToolTip(toolTip);
    button->setAccessibleName(toolTip);
    button->setAutoRaise(true);
    return button;
}

} // namespace

OwnedRecordList::OwnedRecordList(const QString& name, const QList<Field>& fields, Operations operations,
                                 Texts texts, QWidget* parent)
    : QWidget(parent)
    , m_fields(fields)
    , m_operations(std::move(operations))
    , m_texts(std::move(texts))
{
    setObjectName(name);
    m_list = new QListWidget(this);
    m_list->setObjectName(name + QStringLiteral("List"));
    m_list->setSelectionMode(QAbstractItemView::SingleSelection);
    m_list->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_list->setToolTip(m_texts.defaultToolTip);
    m_list->setAccessibleName(m_texts.defaultToolTip);
    m_list->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);

    m_addButton = iconButton(this, name + QStringLiteral("AddButton"), "list-add", m_texts.add);
    m_removeButton = iconButton(this, name + QStringLiteral("RemoveButton"), "list-remove", m_texts.remove);
    auto* buttons = new QHBoxLayout;
    buttons->setContentsMargins(0, 0, 0, 0);
    buttons->addWidget(m_addButton);
    buttons->addWidget(m_removeButton);
    buttons->addStretch();

    m_form = new QWidget(this);
    auto* form = new QFormLayout(m_form);
    form->setContentsMargins(0, 0, 0, 0);
    form->setFieldGrowthPolicy(QFormLayout::ExpandingFieldsGrow);
    for (const Field& field : std::as_const(m_fields)) {
        QWidget* editor = nullptr;
        const QString key = field.key;
        if (field.multiline) {
            auto* edit = new QPlainTextEdit(m_form);
            edit->setTabChangesFocus(true);
            edit->setFixedHeight(edit->fontMetrics().lineSpacing() * 3 + 2 * edit->frameWidth() + 8);
            connect(edit, &QPlainTextEdit::textChanged, this, [this, edit, key] {
                if (!m_loading)
                    fieldEdited(key, edit->toPlainText());
            });
            editor = edit;
        } else {
            auto* edit = new QLineEdit(m_form);
            connect(edit, &QLineEdit::textEdited, this,
                    [this, key](const QString& text) { fieldEdited(key, text); });
            editor = edit;
        }
        editor->setObjectName(name + QLatin1Char('_') + key);
        auto* label = new QLabel(field.label, m_form);
        label->setBuddy(editor);
        form->addRow(label, editor);
        m_editors << editor;
    }

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(m_list, 1);
    layout->addLayout(buttons);
    layout->addWidget(m_form);

    connect(m_addButton, &QToolButton::clicked, this, &OwnedRecordList::addRecord);
    connect(m_removeButton, &QToolButton::clicked, this, &OwnedRecordList::removeCurrent);
    connect(m_list, &QListWidget::currentRowChanged, this, &OwnedRecordList::showCurrent);
    connect(m_list, &QListWidget::itemChanged, this, &OwnedRecordList::itemChanged);
}

void OwnedRecordList::reload()
{
    store::Record* selected = current();
    m_loading = true;
    m_records = m_operations.records();
    const store::Record* chosen = m_operations.defaultRecord();
    m_list->clear();
    for (store::Record* record : std::as_const(m_records)) {
        auto* item = new QListWidgetItem(m_operations.summary(record), m_list);
        item->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsUserCheckable);
        item->setCheckState(record == chosen ? Qt::Checked : Qt::Unchecked);
        item->setData(kRecordRole, QVariant::fromValue(record));
    }
    if (m_records.isEmpty() && !m_texts.empty.isEmpty()) {
        auto* item = new QListWidgetItem(m_texts.empty, m_list);
        item->setFlags(Qt::NoItemFlags);
    }
    const qsizetype row = m_records.indexOf(selected);
    m_list->setCurrentRow(row >= 0 ? int(row) : (m_records.isEmpty() ? -1 : 0));
    m_loading = false;
    showCurrent();
}

store::Record* OwnedRecordList::current() const
{
    const QListWidgetItem* item = m_list->currentItem();
    return item ? item->data(kRecordRole).value<store::Record*>() : nullptr;
}

void OwnedRecordList::setCurrent(store::Record* record)
{
    const qsizetype row = m_records.indexOf(record);
    if (row >= 0)
        m_list->setCurrentRow(int(row));
}

void OwnedRecordList::showCurrent()
{
    if (m_loading)
        return;
    store::Record* record = current();
    m_loading = true;
    for (int i = 0; i < m_fields.size(); ++i) {
        const QString text = record ? record->value(m_fields.at(i).key).toString() : QString();
        if (auto* line = qobject_cast<QLineEdit*>(m_editors.at(i)))
            line->setText(text);
        else if (auto* plain = qobject_cast<QPlainTextEdit*>(m_editors.at(i)))
            plain->setPlainText(text);
    }
    m_loading = false;
    m_form->setEnabled(record);
    m_removeButton->setEnabled(record);
}

void OwnedRecordList::addRecord()
{
    store::Record* record = m_operations.add();
    if (!record)
        return;
    reload();
    setCurrent(record);
    if (!m_editors.isEmpty())
        m_editors.first()->setFocus(Qt::OtherFocusReason);
    Q_EMIT edited();
}

void OwnedRecordList::removeCurrent()
{
    store::Record* record = current();
    if (!record)
        return;
    const int row = m_list->currentRow();
    m_operations.remove(record);
    reload();
    if (!m_records.isEmpty())
        m_list->setCurrentRow(qMin(row, int(m_records.size()) - 1));
    Q_EMIT edited();
}

void OwnedRecordList::itemChanged(QListWidgetItem* item)
{
    if (m_loading)
        return;
    auto* record = item->data(kRecordRole).value<store::Record*>();
    // Ticking a row makes it the default; the default itself cannot be unticked, only replaced.
    if (item->checkState() == Qt::Checked && record != m_operations.defaultRecord()) {
        m_operations.makeDefault(record);
        Q_EMIT edited();
    }
    store::Record* selected = record;
    reload();
    setCurrent(selected);
}

void OwnedRecordList::fieldEdited(const QString& key, const QString& text)
{
    store::Record* record = current();
    if (m_loading || !record)
        return;
    record->setValue(key, text);
    updateSummary(record);
    Q_EMIT edited();
}

void OwnedRecordList::updateSummary(store::Record* record)
{
    const qsizetype row = m_records.indexOf(record);
    if (QListWidgetItem* item = row >= 0 ? m_list->item(int(row)) : nullptr) {
        m_loading = true;
        item->setText(m_operations.summary(record));
        m_loading = false;
    }
}

} // namespace corvanta::ui
