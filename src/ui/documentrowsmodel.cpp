#include "documentrowsmodel.h"

#include "editors/documentcontroller.h"
#include "format/currencyformatter.h"
#include "format/numberformatter.h"
#include "format/numberinput.h"
#include "model/companyrecord.h"
#include "store/editingcontext.h"
#include "store/record.h"
#include "support/prompter.h"

namespace corvanta::ui {

using store::Record;

namespace {

QString s(const char* key)
{
    return QString::fromLatin1(key);
}

// Quantities are counts and hours: up to three fraction digits, none added.
constexpr int kQuantityDigits = 3;

bool isNumberColumn(int column)
{
    return column == DocumentRowsModel::Quantity || column == DocumentRowsModel::Price ||
           column == DocumentRowsModel::Total;
}

} // namespace

DocumentRowsModel::DocumentRowsModel(editors::DocumentController& controller, support::Prompter& prompter,
                                     QObject* parent)
    : QAbstractTableModel(parent)
    , m_controller(controller)
    , m_prompter(prompter)
{
    updateFormats();
}

DocumentRowsModel::~DocumentRowsModel() = default;

void DocumentRowsModel::reload()
{
    beginResetModel();
    m_rows = m_controller.rows();
    endResetModel();
    Q_EMIT amountsChanged();
}

void DocumentRowsModel::updateFormats()
{
    const Record* document = m_controller.document();
    const Record* currency = document ? document->related(s("currency")) : nullptr;
    const Record* company = model::CompanyRecord::of(m_controller.context());
    const Record* defaultCurrency = company ? company->related(s("default_currency")) : nullptr;
    m_amounts = std::make_unique<format::CurrencyFormatter>(currency);
    m_priceInput = std::make_unique<format::NumberFormatter>(currency);
    m_priceInput->setMinimumFractionDigits(0);
    m_priceInput->setMaximumFractionDigits(format::DecimalFormatter::kFractionDigitLimit);
    m_quantities = std::make_unique<format::NumberFormatter>(defaultCurrency);
    m_quantities->setMinimumFractionDigits(0);
    m_quantities->setMaximumFractionDigits(kQuantityDigits);
    if (!m_rows.isEmpty())
        Q_EMIT dataChanged(index(0, 0), index(int(m_rows.size()) - 1, ColumnCount - 1));
}

int DocumentRowsModel::rowOf(const Record* record) const
{
    for (int i = 0; i < m_rows.size(); ++i) {
        if (m_rows.at(i) == record)
            return i;
    }
    return -1;
}

int DocumentRowsModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : int(m_rows.size());
}

int DocumentRowsModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : ColumnCount;
}

QVariant DocumentRowsModel::data(const QModelIndex& index, int role) const
{
    const Record* row = m_rows.value(index.row());
    if (!row || row->isDeleted())
        return {};
    if (role == Qt::TextAlignmentRole)
        return isNumberColumn(index.column()) ? QVariant(Qt::AlignRight | Qt::AlignVCenter)
                                              : QVariant(Qt::AlignLeft | Qt::AlignVCenter);
    if (role == Qt::ToolTipRole && index.column() == Name) {
        const QString desc = row->value(s("desc")).toString();
        return desc.isEmpty() ? row->value(s("name")) : QVariant(desc);
    }
    if (role != Qt::DisplayRole && role != Qt::EditRole)
        return {};
    const bool edit = role == Qt::EditRole;
    switch (index.column()) {
    case Name:
        return row->value(s("name")).toString();
    case Quantity:
        return m_quantities->stringForObjectValue(row->value(s("quantity")));
    case Unit:
        if (edit) {
            const Record* unit = row->related(s("unit"));
            return unit ? unit->pk() : qint64(0);
        }
        return row->value(s("unit_name")).toString();
    case Price:
        return edit ? m_priceInput->stringForObjectValue(row->value(s("unit_price")))
                    : m_amounts->stringForObjectValue(row->value(s("unit_price")));
    case Tax: {
        const Record* tax = row->related(s("tax"));
        if (edit)
            return tax ? tax->pk() : qint64(0);
        return tax ? tax->value(s("name")).toString() : QString();
    }
    case Total:
        return m_amounts->stringForObjectValue(row->value(s("total")));
    default:
        return {};
    }
}

bool DocumentRowsModel::setData(const QModelIndex& index, const QVariant& value, int role)
{
    Record* row = m_rows.value(index.row());
    if (!row || role != Qt::EditRole)
        return false;
    bool changed = false;
    switch (index.column()) {
    case Name: {
        // Leaving the field unchanged must not fill the row again from its item: the prices
        // typed since would be lost.
        const QString text = value.toString();
        if (text == row->value(s("name")).toString())
            return false;
        m_controller.itemNameEntered(row, text);
        changed = true;
        break;
    }
    case Quantity:
    case Price:
        if (value.toString() == data(index, Qt::EditRole).toString())
            return false;
        changed = setNumber(row, index.column(), value.toString());
        break;
    case Unit:
    case Tax: {
        const qint64 pk = value.toLongLong();
        const QString entity = index.column() == Unit ? s("Units") : s("Taxes");
        Record* record = pk > 0 ? m_controller.context().record({entity, pk}) : nullptr;
        if (index.column() == Unit)
            m_controller.setRowUnit(row, record);
        else
            m_controller.setRowTax(row, record);
        changed = true;
        break;
    }
    default:
        return false;
    }
    if (changed)
        rowChanged(index.row());
    return changed;
}

namespace {

// A typed number in a formatter's style; nothing, after telling the user why, when it is none.
// An emptied field counts as nothing typed: 0.
std::optional<double> readNumber(const format::NumberFormatter& formatter, const QString& text,
                                 support::Prompter& prompter)
{
    QVariant number;
    QString error;
    if (!formatter.getObjectValue(&number, text, &error)) {
        prompter.alert(format::NumberInput::alertTitle(), error, {DocumentRowsModel::tr("OK")});
        return std::nullopt;
    }
    return number.isNull() ? 0.0 : number.toDouble();
}

} // namespace

bool DocumentRowsModel::setNumber(Record* row, int column, const QString& text)
{
    const std::optional<double> amount =
        readNumber(column == Quantity ? *m_quantities : *m_priceInput, text, m_prompter);
    if (!amount)
        return false;
    return column == Quantity ? m_controller.setQuantity(row, *amount)
                              : m_controller.setUnitPrice(row, *amount);
}

QString DocumentRowsModel::priceText(const QVariant& price) const
{
    return m_priceInput->stringForObjectValue(price);
}

std::optional<double> DocumentRowsModel::readPrice(const QString& text) const
{
    return readNumber(*m_priceInput, text, m_prompter);
}

void DocumentRowsModel::rowValuesChanged(const Record* record)
{
    const int row = rowOf(record);
    if (row >= 0)
        rowChanged(row);
}

void DocumentRowsModel::rowChanged(int row)
{
    Q_EMIT dataChanged(index(row, 0), index(row, ColumnCount - 1));
    Q_EMIT amountsChanged();
}

Qt::ItemFlags DocumentRowsModel::flags(const QModelIndex& index) const
{
    if (!index.isValid())
        return Qt::NoItemFlags;
    Qt::ItemFlags result = Qt::ItemIsSelectable | Qt::ItemIsEnabled;
    if (index.column() != Total)
        result |= Qt::ItemIsEditable;
    return result;
}

QVariant DocumentRowsModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal)
        return {};
    if (role == Qt::TextAlignmentRole)
        return isNumberColumn(section) ? QVariant(Qt::AlignRight | Qt::AlignVCenter)
                                       : QVariant(Qt::AlignLeft | Qt::AlignVCenter);
    if (role != Qt::DisplayRole)
        return {};
    switch (section) {
    case Name:
        return tr("Item");
    case Quantity:
        return tr("Quantity");
    case Unit:
        return tr("Unit");
    case Price:
        return tr("Price");
    case Tax:
        return tr("Tax");
    case Total:
        return tr("Total");
    default:
        return {};
    }
}

} // namespace corvanta::ui
