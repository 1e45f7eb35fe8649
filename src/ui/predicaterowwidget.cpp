#include "predicaterowwidget.h"

#include <QComboBox>
#include <QDateEdit>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QStyle>
#include <QToolButton>

namespace corvanta::ui {

using browse::PredicateOperators;
using browse::PredicateRow;
using browse::PredicateRowTemplate;
using browse::RowValueType;
using Op = predicate::Predicate::Operator;

namespace {

constexpr int kTemplateRole = Qt::UserRole;
constexpr int kOperatorRole = Qt::UserRole + 1;

QComboBox* popup(const char* name, QWidget* parent)
{
    auto* box = new QComboBox(parent);
    box->setObjectName(QString::fromLatin1(name));
    box->setSizeAdjustPolicy(QComboBox::AdjustToContents);
    return box;
}

} // namespace

PredicateRowWidget::PredicateRowWidget(const browse::PredicateRowTemplates& templates,
                                       const PredicateRow& row, const QList<int>& path, QWidget* parent)
    : QWidget(parent)
    , m_templates(templates)
    , m_row(row)
    , m_path(path)
{
    setObjectName(QStringLiteral("predicateRow"));
    auto* box = new QHBoxLayout(this);
    box->setContentsMargins(0, 0, 0, 0);
    // Each level of nesting sits one step further in, as a tree indents its children.
    box->addSpacing(int(path.size()) * style()->pixelMetric(QStyle::PM_TreeViewIndentation, nullptr, this));
    if (row.isCompound())
        buildCompound();
    else
        buildComparison();
    box->addStretch(1);
    buildButtons();
}

void PredicateRowWidget::buildCompound()
{
    QComboBox* kind = popup("compoundPopup", this);
    kind->addItem(browse::PredicateRowTemplates::anyLabel(), int(PredicateRow::Kind::Any));
    kind->addItem(browse::PredicateRowTemplates::allLabel(), int(PredicateRow::Kind::All));
    kind->setCurrentIndex(kind->findData(int(m_row.kind)));
    kind->setAccessibleName(tr("Match"));
    connect(kind, &QComboBox::activated, this, [this, kind](int index) {
        const auto chosen = PredicateRow::Kind(kind->itemData(index).toInt());
        if (chosen == m_row.kind)
            return;
        m_row.kind = chosen;
        Q_EMIT compoundKindEdited(m_path, chosen);
    });
    layout()->addWidget(kind);
    layout()->addWidget(new QLabel(browse::PredicateRowTemplates::compoundTrailingLabel(), this));
    m_controls << kind;
}

int PredicateRowWidget::templateIndex(const PredicateRow& row) const
{
    const QList<PredicateRowTemplate>& rows = m_templates.rows();
    for (qsizetype i = 0; i < rows.size(); ++i) {
        if (rows[i].keyPath == row.keyPath && rows[i].valueType == row.valueType)
            return int(i);
    }
    return -1;
}

void PredicateRowWidget::buildComparison()
{
    const QList<PredicateRowTemplate>& rows = m_templates.rows();
    const int current = templateIndex(m_row);
    const PredicateRowTemplate& field = rows.at(qMax(0, current));

    // One entry a field: the first of its templates stands for all of them.
    QComboBox* fields = popup("fieldPopup", this);
    fields->setAccessibleName(tr("Field"));
    for (qsizetype i = 0; i < rows.size(); ++i) {
        bool seen = false;
        for (qsizetype j = 0; j < i && !seen; ++j)
            seen = rows[j].keyPath == rows[i].keyPath && rows[j].label == rows[i].label;
        if (seen)
            continue;
        fields->addItem(rows[i].label, int(i));
        if (rows[i].keyPath == field.keyPath && rows[i].label == field.label)
            fields->setCurrentIndex(fields->count() - 1);
    }
    connect(fields, &QComboBox::activated, this,
            [this, fields](int index) { chooseField(fields->itemData(index).toInt()); });

    QComboBox* operators = popup("operatorPopup", this);
    operators->setAccessibleName(tr("Operator"));
    for (qsizetype i = 0; i < rows.size(); ++i) {
        if (rows[i].keyPath != field.keyPath || rows[i].label != field.label)
            continue;
        for (Op op : PredicateOperators::of(rows[i].operators)) {
            operators->addItem(PredicateOperators::label(rows[i].operators, op));
            const int entry = operators->count() - 1;
            operators->setItemData(entry, int(i), kTemplateRole);
            operators->setItemData(entry, int(op), kOperatorRole);
            if (i == current && op == m_row.op)
                operators->setCurrentIndex(entry);
        }
    }
    connect(operators, &QComboBox::activated, this, [this, operators](int index) {
        chooseOperator(operators->itemData(index, kTemplateRole).toInt(),
                       Op(operators->itemData(index, kOperatorRole).toInt()));
    });

    QWidget* value = buildValueWidget(field);
    layout()->addWidget(fields);
    layout()->addWidget(operators);
    layout()->addWidget(value);
    m_controls << fields << operators << value;
}

QWidget* PredicateRowWidget::buildValueWidget(const PredicateRowTemplate& field)
{
    switch (field.valueType) {
    case RowValueType::Text: {
        auto* edit = new QLineEdit(m_row.value.toString(), this);
        edit->setObjectName(QStringLiteral("valueEdit"));
        edit->setAccessibleName(tr("Value"));
        // Room for a few words, so that the row does not change width as it is typed.
        edit->setMinimumWidth(fontMetrics().averageCharWidth() * 18);
        connect(edit, &QLineEdit::textEdited, this, [this](const QString& text) { setValue(text); });
        return edit;
    }
    case RowValueType::Date: {
        auto* edit = new QDateEdit(this);
        edit->setObjectName(QStringLiteral("valueDate"));
        edit->setAccessibleName(tr("Date"));
        edit->setCalendarPopup(true);
        edit->setDisplayFormat(locale().dateFormat(QLocale::ShortFormat));
        const QDateTime stored = m_row.value.toDateTime();
        edit->setDate(stored.isValid() ? stored.toLocalTime().date() : QDate::currentDate());
        // The rows compare whole days from their start, as the date picker offers them.
        connect(edit, &QDateEdit::dateChanged, this,
                [this](const QDate& date) { setValue(QDateTime(date, QTime(0, 0))); });
        return edit;
    }
    case RowValueType::RelativeDate:
    case RowValueType::Choice:
        break;
    }
    QComboBox* choices = popup("valuePopup", this);
    choices->setAccessibleName(tr("Value"));
    for (const browse::RowChoice& choice : field.choices) {
        choices->addItem(choice.label, choice.value);
        if (choice.value == m_row.value)
            choices->setCurrentIndex(choices->count() - 1);
    }
    connect(choices, &QComboBox::activated, this,
            [this, choices](int index) { setValue(choices->itemData(index)); });
    return choices;
}

void PredicateRowWidget::buildButtons()
{
    if (!m_path.isEmpty()) {
        m_removeButton = new QToolButton(this);
        m_removeButton->setObjectName(QStringLiteral("removeButton"));
        m_removeButton->setIcon(QIcon::fromTheme(QStringLiteral("list-remove")));
        m_removeButton->setText(QStringLiteral("\u2212"));
        m_removeButton->setToolTip(tr("Remove Condition"));
        m_removeButton->setAccessibleName(tr("Remove Condition"));
        connect(m_removeButton, &QToolButton::clicked, this, [this] { Q_EMIT removeRequested(m_path); });
        layout()->addWidget(m_removeButton);
        m_controls << m_removeButton;
    }

    m_addButton = new QToolButton(this);
    m_addButton->setObjectName(QStringLiteral("addButton"));
    m_addButton->setIcon(QIcon::fromTheme(QStringLiteral("list-add")));
    m_addButton->setText(QStringLiteral("+"));
    m_addButton->setToolTip(tr("Add Condition"));
    m_addButton->setAccessibleName(tr("Add Condition"));
    // A click adds a condition; the arrow also offers a group of conditions of its own.
    m_addButton->setPopupMode(QToolButton::MenuButtonPopup);
    auto* menu = new QMenu(m_addButton);
    QAction* condition = menu->addAction(tr("Add Condition"));
    condition->setObjectName(QStringLiteral("addConditionAction"));
    QAction* group = menu->addAction(tr("Add Group of Conditions"));
    group->setObjectName(QStringLiteral("addGroupAction"));
    m_addButton->setMenu(menu);
    connect(m_addButton, &QToolButton::clicked, this, [this] { Q_EMIT addRequested(m_path, false); });
    connect(condition, &QAction::triggered, this, [this] { Q_EMIT addRequested(m_path, false); });
    connect(group, &QAction::triggered, this, [this] { Q_EMIT addRequested(m_path, true); });
    layout()->addWidget(m_addButton);
    m_controls << m_addButton;
}

void PredicateRowWidget::setEditable(bool editable)
{
    for (QWidget* control : std::as_const(m_controls))
        control->setEnabled(editable);
    if (m_addButton)
        m_addButton->setVisible(editable);
    if (m_removeButton)
        m_removeButton->setVisible(editable);
}

void PredicateRowWidget::setRemovable(bool removable)
{
    if (m_removeButton)
        m_removeButton->setEnabled(removable);
}

QList<QWidget*> PredicateRowWidget::tabStops() const
{
    return m_controls;
}

QVariant PredicateRowWidget::firstValue(const PredicateRowTemplate& field)
{
    switch (field.valueType) {
    case RowValueType::Text:
        return QString();
    case RowValueType::Date:
        return QDateTime(QDate::currentDate(), QTime(0, 0));
    case RowValueType::RelativeDate:
    case RowValueType::Choice:
        break;
    }
    return field.choices.isEmpty() ? QVariant() : field.choices.constFirst().value;
}

void PredicateRowWidget::chooseField(int index)
{
    const PredicateRowTemplate& next = m_templates.rows().at(index);
    const int current = templateIndex(m_row);
    if (current >= 0 && m_templates.rows().at(current).keyPath == next.keyPath &&
        m_templates.rows().at(current).label == next.label)
        return;
    // What was entered stays when the new field takes the same kind of value.
    const bool keepValue =
        next.valueType == m_row.valueType && (next.choices.isEmpty() || next.choice(m_row.value));
    const Op op = PredicateOperators::offers(next.operators, m_row.op)
                      ? m_row.op
                      : PredicateOperators::of(next.operators).constFirst();
    m_row = PredicateRow::comparison(next.keyPath, next.valueType, op,
                                     keepValue ? m_row.value : firstValue(next));
    Q_EMIT comparisonEdited(m_path, m_row, true);
}

void PredicateRowWidget::chooseOperator(int chosen, Op op)
{
    const PredicateRowTemplate& field = m_templates.rows().at(chosen);
    const bool reshaped = field.valueType != m_row.valueType;
    if (!reshaped && op == m_row.op)
        return;
    m_row = PredicateRow::comparison(field.keyPath, field.valueType, op,
                                     reshaped ? firstValue(field) : m_row.value);
    Q_EMIT comparisonEdited(m_path, m_row, reshaped);
}

void PredicateRowWidget::setValue(const QVariant& value)
{
    m_row.value = value;
    Q_EMIT comparisonEdited(m_path, m_row, false);
}

} // namespace corvanta::ui
