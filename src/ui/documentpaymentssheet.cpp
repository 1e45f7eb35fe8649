#include "documentpaymentssheet.h"

#include "documents/documentpayments.h"
#include "paymentstablemodel.h"
#include "store/editingcontext.h"
#include "store/record.h"
#include "store/store.h"

#include <QComboBox>
#include <QDoubleSpinBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QItemSelectionModel>
#include <QLabel>
#include <QPushButton>
#include <QStyledItemDelegate>
#include <QTableView>
#include <QVBoxLayout>
#include <limits>

namespace corvanta::ui {

using store::Record;

namespace {

QString s(const char* text)
{
    return QString::fromLatin1(text);
}

// Edits a payment's type with a pop-up of the payment types and its amount with a number field;
// the date keeps the view's own date editor.
class PaymentDelegate : public QStyledItemDelegate
{
public:
    PaymentDelegate(PaymentsTableModel* model, QObject* parent)
        : QStyledItemDelegate(parent)
        , m_model(model)
    {}

    QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem& option,
                          const QModelIndex& index) const override
    {
        if (index.column() == PaymentsTableModel::PaymentTypeColumn) {
            auto* popup = new QComboBox(parent);
            popup->setObjectName(s("paymentTypeEditor"));
            for (const Record* type : m_model->paymentTypes())
                popup->addItem(type->value(s("name")).toString(), type->pk());
            return popup;
        }
        if (index.column() == PaymentsTableModel::AmountColumn) {
            auto* field = new QDoubleSpinBox(parent);
            field->setObjectName(s("amountEditor"));
            field->setFrame(false);
            field->setDecimals(2);
            field->setRange(-std::numeric_limits<double>::max(), std::numeric_limits<double>::max());
            field->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
            field->setButtonSymbols(QAbstractSpinBox::NoButtons);
            return field;
        }
        return QStyledItemDelegate::createEditor(parent, option, index);
    }

    void setEditorData(QWidget* editor, const QModelIndex& index) const override
    {
        if (auto* popup = qobject_cast<QComboBox*>(editor)) {
            popup->setCurrentIndex(popup->findData(index.data(Qt::EditRole)));
            return;
        }
        QStyledItemDelegate::setEditorData(editor, index);
    }

    void setModelData(QWidget* editor, QAbstractItemModel* model, const QModelIndex& index) const override
    {
        if (auto* popup = qobject_cast<QComboBox*>(editor)) {
            if (popup->currentIndex() >= 0)
                model->setData(index, popup->currentData());
            return;
        }
        QStyledItemDelegate::setModelData(editor, model, index);
    }

private:
    PaymentsTableModel* m_model;
};

QPushButton* iconButton(const char* icon, const QString& text, const char* name, QWidget* parent)
{
    auto* button = new QPushButton(QIcon::fromTheme(s(icon)), QString(), parent);
    button->setObjectName(s(name));
    button->setToolTip(text);
    button->setAccessibleName(text);
    button->setAutoDefault(false);
    return button;
}

} // namespace

DocumentPaymentsSheet::DocumentPaymentsSheet(store::Store& store, support::Prompter& prompter,
                                             const predicate::RecordRef& document, QWidget* parent)
    : QDialog(parent)
    , m_document(document)
{
    setObjectName(s("DocumentPaymentsSheet"));
    setWindowModality(Qt::WindowModal);
    m_payments = new documents::DocumentPayments(store, prompter, documents::systemClock(), this);
    m_model = new PaymentsTableModel(store, *m_payments, document, this);

    QString number;
    {
        const std::unique_ptr<store::EditingContext> context = store.newContext();
        if (const Record* record = context->fetchRecord(s("Documents"), document))
            number = record->value(s("number_formatted")).toString();
    }
    setWindowTitle(tr("Payments"));
    auto* titleLabel = new QLabel(tr("Payments of %1").arg(number), this);
    titleLabel->setObjectName(s("titleLabel"));
    titleLabel->setTextFormat(Qt::PlainText);
    QFont bold = titleLabel->font();
    bold.setBold(true);
    titleLabel->setFont(bold);

    m_table = new QTableView(this);
    m_table->setObjectName(s("paymentsTable"));
    m_table->setModel(m_model);
    m_table->setItemDelegate(new PaymentDelegate(m_model, m_table));
    m_table->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_table->setEditTriggers(QAbstractItemView::DoubleClicked | QAbstractItemView::EditKeyPressed |
                             QAbstractItemView::SelectedClicked);
    m_table->verticalHeader()->hide();
    m_table->setShowGrid(false);
    m_table->setAlternatingRowColors(true);
    m_table->horizontalHeader()->setSectionResizeMode(PaymentsTableModel::PaymentTypeColumn,
                                                      QHeaderView::Stretch);
    m_table->horizontalHeader()->setSectionResizeMode(PaymentsTableModel::DateColumn,
                                                      QHeaderView::ResizeToContents);
    m_table->horizontalHeader()->setSectionResizeMode(PaymentsTableModel::AmountColumn,
                                                      QHeaderView::ResizeToContents);
    m_table->setMinimumSize(fontMetrics().averageCharWidth() * 60, fontMetrics().lineSpacing() * 10);

    m_addButton = iconButton("list-add", tr("Add Payment"), "addButton", this);
    m_removeButton = iconButton("list-remove", tr("Remove Payment"), "removeButton", this);
    connect(m_addButton, &QPushButton::clicked, this, &DocumentPaymentsSheet::addPayment);
    connect(m_removeButton, &QPushButton::clicked, this, &DocumentPaymentsSheet::removePayments);
    m_remainingLabel = new QLabel(this);
    m_remainingLabel->setObjectName(s("remainingLabel"));
    m_remainingLabel->setAlignment(Qt::AlignRight | Qt::AlignVCenter);

    auto* listButtons = new QHBoxLayout;
    listButtons->setSpacing(0);
    listButtons->addWidget(m_addButton);
    listButtons->addWidget(m_removeButton);
    listButtons->addStretch(1);
    listButtons->addWidget(m_remainingLabel);

    m_settleButton = new QPushButton(tr("Settle Remaining Amount"), this);
    m_settleButton->setObjectName(s("settleButton"));
    m_settleButton->setAutoDefault(false);
    m_closeButton = new QPushButton(tr("Close"), this);
    m_closeButton->setObjectName(s("closeButton"));
    m_closeButton->setDefault(true);
    connect(m_settleButton, &QPushButton::clicked, this, [this] { finish(true); });
    connect(m_closeButton, &QPushButton::clicked, this, [this] { finish(false); });
    auto* buttons = new QHBoxLayout;
    buttons->addStretch(1);
    buttons->addWidget(m_settleButton);
    buttons->addWidget(m_closeButton);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(titleLabel);
    layout->addWidget(m_table, 1);
    layout->addLayout(listButtons);
    layout->addLayout(buttons);

    connect(m_model, &QAbstractItemModel::dataChanged, this, &DocumentPaymentsSheet::updateRemaining);
    connect(m_model, &QAbstractItemModel::modelReset, this, &DocumentPaymentsSheet::updateRemaining);
    connect(m_model, &QAbstractItemModel::modelReset, this, &DocumentPaymentsSheet::updateButtons);
    connect(m_table->selectionModel(), &QItemSelectionModel::selectionChanged, this,
            &DocumentPaymentsSheet::updateButtons);
    updateRemaining();
    updateButtons();
}

DocumentPaymentsSheet::~DocumentPaymentsSheet() = default;

void DocumentPaymentsSheet::updateRemaining()
{
    const double rest = m_model->remaining();
    m_remainingLabel->setText(tr("Remaining: %1").arg(m_model->formattedAmount(rest)));
    m_settleButton->setEnabled(rest > 0);
}

void DocumentPaymentsSheet::updateButtons()
{
    m_removeButton->setEnabled(m_table->selectionModel()->hasSelection());
}

void DocumentPaymentsSheet::addPayment()
{
    m_table->setFocus(Qt::OtherFocusReason);
    const std::optional<predicate::RecordRef> payment = m_payments->addPayment(m_document, 0.0);
    m_model->reload();
    if (!payment)
        return;
    const int row = m_model->rowOf(*payment);
    if (row < 0)
        return;
    const QModelIndex amount = m_model->index(row, PaymentsTableModel::AmountColumn);
    m_table->selectionModel()->select(amount,
                                      QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
    m_table->setCurrentIndex(amount);
    m_table->edit(amount);
}

void DocumentPaymentsSheet::removePayments()
{
    QList<predicate::RecordRef> chosen;
    for (const QModelIndex& row : m_table->selectionModel()->selectedRows())
        chosen.append(m_model->paymentAt(row.row()));
    for (const predicate::RecordRef& payment : std::as_const(chosen))
        m_payments->removePayment(payment);
    m_model->reload();
}

void DocumentPaymentsSheet::finish(bool settle)
{
    // An edit still open is committed (its editor loses the focus) before the rest is worked out.
    m_table->setFocus(Qt::OtherFocusReason);
    if (!m_payments->closeDocumentPayments(m_document, settle))
        return;
    done(settle ? 1 : 0);
}

void DocumentPaymentsSheet::reject()
{
    finish(false);
}

} // namespace corvanta::ui
