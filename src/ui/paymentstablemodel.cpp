#include "paymentstablemodel.h"

#include "documents/documentpayments.h"
#include "editors/paymenttypevaluetransformer.h"
#include "format/formattedcurrency.h"
#include "predicate/literal.h"
#include "store/changeset.h"
#include "store/editingcontext.h"
#include "store/fetchrequest.h"
#include "store/record.h"
#include "store/store.h"

#include <QLocale>

namespace corvanta::ui {

using store::Record;

namespace {

QString s(const char* text)
{
    return QString::fromLatin1(text);
}

} // namespace

PaymentsTableModel::PaymentsTableModel(store::Store& store, documents::DocumentPayments& payments,
                                       const predicate::RecordRef& document, QObject* parent)
    : QAbstractTableModel(parent)
    , m_store(store)
    , m_payments(payments)
    , m_document(document)
{
    connect(&m_store, &store::Store::didSave, this,
            [this](const store::ChangeSet& changes, store::EditingContext* origin) {
                if (m_context && origin != m_context.get())
                    m_context->mergeChanges(changes);
            });
    reload();
}

PaymentsTableModel::~PaymentsTableModel() = default;

void PaymentsTableModel::reload()
{
    beginResetModel();
    m_rows.clear();
    // A fresh context: what the core stored is read as it is now.
    m_context = m_store.newContext();
    m_documentRecord = m_context->fetchRecord(s("Documents"), m_document);
    if (m_documentRecord) {
        m_rows = m_context->fetch(store::FetchRequest(
            s("Payments"), predicate::literal("document == %@", {QVariant::fromValue(m_document)}),
            {{s("date")}}));
    }
    endResetModel();
}

int PaymentsTableModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : int(m_rows.size());
}

int PaymentsTableModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : ColumnCount;
}

QString PaymentsTableModel::formattedAmount(double amount) const
{
    return format::formattedCurrency(amount,
                                     m_documentRecord ? m_documentRecord->related(s("currency")) : nullptr);
}

double PaymentsTableModel::remaining() const
{
    if (!m_documentRecord)
        return 0.0;
    return m_documentRecord->value(s("sum_total")).toDouble() -
           m_documentRecord->valueForKeyPath(s("payments.@sum.amount")).toDouble();
}

QVariant PaymentsTableModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid() || index.row() >= m_rows.size())
        return {};
    const Record* payment = m_rows.at(index.row());
    if (role == kPaymentRole)
        return QVariant::fromValue(payment->ref());
    const Record* type = payment->related(s("payment"));
    switch (index.column()) {
    case DateColumn:
        if (role == Qt::DisplayRole)
            return QLocale().toString(payment->value(s("date")).toDateTime().toLocalTime().date(),
                                      QLocale::ShortFormat);
        if (role == Qt::EditRole)
            return payment->value(s("date")).toDateTime().toLocalTime().date();
        break;
    case PaymentTypeColumn:
        if (role == Qt::DisplayRole)
            return editors::PaymentTypeValueTransformer().transformedValue(type ? type->value(s("name"))
                                                                                : QVariant());
        if (role == Qt::EditRole)
            return type ? type->pk() : qint64(0);
        break;
    case AmountColumn:
        if (role == Qt::DisplayRole)
            return formattedAmount(payment->value(s("amount")).toDouble());
        if (role == Qt::EditRole)
            return payment->value(s("amount")).toDouble();
        if (role == Qt::TextAlignmentRole)
            return QVariant::fromValue(Qt::AlignRight | Qt::AlignVCenter);
        break;
    default:
        break;
    }
    return {};
}

QVariant PaymentsTableModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal)
        return {};
    if (role == Qt::TextAlignmentRole && section == AmountColumn)
        return QVariant::fromValue(Qt::AlignRight | Qt::AlignVCenter);
    if (role != Qt::DisplayRole)
        return {};
    switch (section) {
    case DateColumn:
        return tr("Date");
    case PaymentTypeColumn:
        return tr("Payment Type");
    case AmountColumn:
        return tr("Amount");
    default:
        return {};
    }
}

Qt::ItemFlags PaymentsTableModel::flags(const QModelIndex& index) const
{
    return QAbstractTableModel::flags(index) | Qt::ItemIsEditable;
}

bool PaymentsTableModel::setData(const QModelIndex& index, const QVariant& value, int role)
{
    if (role != Qt::EditRole || !index.isValid() || index.row() >= m_rows.size())
        return false;
    const Record* payment = m_rows.at(index.row());
    double amount = payment->value(s("amount")).toDouble();
    QDateTime date = payment->value(s("date")).toDateTime().toLocalTime();
    const Record* type = payment->related(s("payment"));
    predicate::RecordRef typeRef = type ? type->ref() : predicate::RecordRef{};
    switch (index.column()) {
    case DateColumn: {
        const QDate day = value.toDate();
        if (!day.isValid())
            return false;
        // The day changes; the time of day stays.
        date = QDateTime(day, date.isValid() ? date.time() : QTime(12, 0));
        break;
    }
    case PaymentTypeColumn:
        typeRef = {s("PaymentTypes"), value.toLongLong()};
        break;
    case AmountColumn: {
        bool ok = false;
        amount = value.toDouble(&ok);
        if (!ok)
            return false;
        break;
    }
    default:
        return false;
    }
    // The store's report of the save brings the new values into this model's context.
    if (!m_payments.changePayment(payment->ref(), amount, typeRef, date))
        return false;
    Q_EMIT dataChanged(this->index(0, 0), this->index(rowCount() - 1, ColumnCount - 1));
    return true;
}

predicate::RecordRef PaymentsTableModel::paymentAt(int row) const
{
    return row >= 0 && row < m_rows.size() ? m_rows.at(row)->ref() : predicate::RecordRef{};
}

int PaymentsTableModel::rowOf(const predicate::RecordRef& payment) const
{
    for (int row = 0; row < m_rows.size(); ++row) {
        if (m_rows.at(row)->ref() == payment)
            return row;
    }
    return -1;
}

QList<Record*> PaymentsTableModel::paymentTypes() const
{
    return m_context->fetch(
        store::FetchRequest(s("PaymentTypes"), {}, {store::SortDescriptor::localized(s("name"))}));
}

} // namespace corvanta::ui
