#include "browse/recordlistmodel.h"

#include "editors/documentsumtotalcurrencyvaluetransformer.h"
#include "store/editingcontext.h"
#include "store/record.h"
#include "store/store.h"

#include <QLocale>
#include <QScopedValueRollback>

namespace corvanta::browse {

using store::Record;
using store::SortDescriptor;

namespace {

QString s(const char* text)
{
    return QString::fromLatin1(text);
}

// Beyond this many members a folder's page is found faster along the order's index.
constexpr int kManyMembers = 1000;

bool leadsAnIndex(const store::EntityDescription& entity, const SortDescriptor& sort)
{
    if (sort.comparison != SortDescriptor::Comparison::Default)
        return false; // the database's indexes do not hold the localized order
    for (const store::IndexDescription& index : entity.indexes()) {
        if (index.columns.value(0) == sort.keyPath)
            return true;
    }
    return false;
}

// A folder or tag selects its members from the join table, which the database then sorts
// whole. For a page of a large folder (the invoices of many years) it is far cheaper to walk the
// records in the list's order by an index and ask each whether it is a member: the same
// condition, written per record.
void preferIndexOrder(store::EditingContext& context, store::FetchRequest& request, Record* category)
{
    if (category->value(s("type")).toLongLong() < 0 || request.sortDescriptors.isEmpty())
        return;
    const store::EntityDescription* entity = context.store().model().entity(request.entity);
    if (!entity || !leadsAnIndex(*entity, request.sortDescriptors.first()) ||
        context.count(request) <= kManyMembers)
        return;
    request.predicate = predicate::Predicate::compare(s("tags.self"), predicate::Predicate::Operator::Equal,
                                                      QVariant::fromValue(category->ref()), {},
                                                      predicate::Predicate::Modifier::Any);
}

} // namespace

struct RecordListModel::Column
{
    enum class Shown { Text, List, Date, Number, DocumentTotal, Done };
    const char* key;
    const char* title; // translated in the model's context
    Shown shown;
};

const QList<RecordListModel::Column>& RecordListModel::columnsOf(ListKind kind)
{
    using S = Column::Shown;
    static const QList<Column> clients{{"full_name", QT_TR_NOOP("Name"), S::Text},
                                       {"emails", QT_TR_NOOP("E-mail"), S::List},
                                       {"phones", QT_TR_NOOP("Phone"), S::List}};
    static const QList<Column> items{{"name", QT_TR_NOOP("Name"), S::Text},
                                     {"code", QT_TR_NOOP("Code"), S::Text},
                                     // An item's first price level is its unit price.
                                     {"custom_price01", QT_TR_NOOP("Price"), S::Number},
                                     {"stock_current", QT_TR_NOOP("Stock"), S::Number}};
    static const QList<Column> documents{{"number_formatted", QT_TR_NOOP("Number"), S::Text},
                                         {"date_creation", QT_TR_NOOP("Date"), S::Date},
                                         {"client_full_name", QT_TR_NOOP("Client"), S::Text},
                                         {"sum_total", QT_TR_NOOP("Total"), S::DocumentTotal}};
    static const QList<Column> todos{{"title", QT_TR_NOOP("Title"), S::Text},
                                     {"date_start", QT_TR_NOOP("Start"), S::Date},
                                     {"done", QT_TR_NOOP("Done"), S::Done}};
    static const QList<Column> none;
    switch (kind) {
    case ListKind::Clients:
        return clients;
    case ListKind::Items:
        return items;
    case ListKind::Documents:
        return documents;
    case ListKind::ToDos:
        return todos;
    case ListKind::None:
        break;
    }
    return none;
}

RecordListModel::RecordListModel(store::EditingContext& context, Clock now, QObject* parent)
    : QAbstractTableModel(parent)
    , m_context(context)
    , m_now(now ? std::move(now) : Clock([] { return QDateTime::currentDateTime(); }))
{
    connect(&m_context, &store::EditingContext::objectsDidChange, this, &RecordListModel::contextChanged);
}

RecordListModel::~RecordListModel() = default;

void RecordListModel::setCategory(Record* category)
{
    m_category = category ? category->ref() : predicate::RecordRef();
    refetch(kPageSize);
}

QList<SortDescriptor> RecordListModel::sortDescriptors() const
{
    return m_sortByKind.value(int(m_kind), ListKinds::defaultSort(m_kind));
}

void RecordListModel::setSortDescriptors(const QList<SortDescriptor>& sort)
{
    if (m_kind == ListKind::None)
        return;
    m_sortByKind.insert(int(m_kind), sort);
    refetch(kPageSize);
}

QStringList RecordListModel::columnKeys() const
{
    QStringList keys;
    for (const Column& column : columnsOf(m_kind))
        keys << s(column.key);
    return keys;
}

Record* RecordListModel::recordAt(int row) const
{
    return row >= 0 && row < m_records.size() ? m_records.at(row) : nullptr;
}

int RecordListModel::rowOf(const predicate::RecordRef& record) const
{
    for (int row = 0; row < m_records.size(); ++row) {
        if (m_records.at(row)->ref() == record)
            return row;
    }
    return -1;
}

void RecordListModel::refetch(int rows)
{
    beginResetModel();
    m_records.clear();
    m_error.clear();
    m_complete = true;
    m_request.reset();
    Record* category = m_category.isNull() ? nullptr : m_context.fetchRecord(s("Categories"), m_category);
    m_kind = ListKinds::ofCategory(category);
    if (m_kind != ListKind::None) {
        m_request = CategoryFetch::of(category, m_now(), &m_error);
        if (m_request) {
            m_request->sortDescriptors = sortDescriptors();
            // Paging must stay in SQL: pending records would make the context load every row.
            m_request->includesPendingChanges = false;
            preferIndexOrder(m_context, *m_request, category);
            const int limit = ((qMax(rows, 1) + kPageSize - 1) / kPageSize) * kPageSize;
            m_records = fetchPage(0, limit);
            m_complete = m_records.size() < limit;
        }
    }
    endResetModel();
}

QList<Record*> RecordListModel::fetchPage(int offset, int limit)
{
    store::FetchRequest page = *m_request;
    page.offset = offset;
    page.limit = limit;
    store::StoreError error;
    QList<Record*> records = m_context.fetch(page, &error);
    if (error.isError()) {
        m_error = error.message();
        return {};
    }
    return records;
}

void RecordListModel::contextChanged(const store::ChangeSet& changes)
{
    if (changes.isEmpty() && changes.touchedJoinTables.isEmpty())
        return;
    // Any saved change may move a record into or out of the node (tags, payments, a client's
    // name a smart folder looks at), so the rows shown so far are read again.
    refetch(int(m_records.size()));
}

bool RecordListModel::canFetchMore(const QModelIndex& parent) const
{
    return !parent.isValid() && !m_complete && !m_fetching && m_request.has_value();
}

void RecordListModel::fetchMore(const QModelIndex& parent)
{
    if (!canFetchMore(parent))
        return;
    const QList<Record*> more = fetchPage(int(m_records.size()), kPageSize);
    m_complete = more.size() < kPageSize;
    if (more.isEmpty())
        return;
    // A view may ask for the next page while it hears of this one, before these rows are in.
    const QScopedValueRollback fetching(m_fetching, true);
    beginInsertRows({}, int(m_records.size()), int(m_records.size() + more.size() - 1));
    m_records << more;
    endInsertRows();
}

int RecordListModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : int(m_records.size());
}

int RecordListModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : int(columnsOf(m_kind).size());
}

QString RecordListModel::displayText(const Column& column, Record* record) const
{
    const QVariant value = record->value(s(column.key));
    const QLocale locale;
    switch (column.shown) {
    case Column::Shown::Text:
        return value.toString();
    case Column::Shown::List:
        return value.toString().split(QLatin1Char(','), Qt::SkipEmptyParts).join(s(", "));
    case Column::Shown::Date:
        return value.isNull() ? QString() : locale.toString(value.toDateTime().date(), QLocale::ShortFormat);
    case Column::Shown::Number:
        return value.isNull() ? QString() : locale.toString(value.toDouble(), 'f', 2);
    case Column::Shown::DocumentTotal:
        return editors::DocumentSumTotalCurrencyValueTransformer()
            .transformedValue(QVariant::fromValue(record))
            .toString();
    case Column::Shown::Done:
        return value.toBool() ? tr("Done") : QString();
    }
    return {};
}

QVariant RecordListModel::data(const QModelIndex& index, int role) const
{
    Record* record = index.isValid() ? recordAt(index.row()) : nullptr;
    const QList<Column>& columns = columnsOf(m_kind);
    if (!record || index.column() < 0 || index.column() >= columns.size())
        return {};
    const Column& column = columns.at(index.column());
    switch (role) {
    case Qt::DisplayRole:
        return displayText(column, record);
    case Qt::EditRole:
        return record->value(s(column.key));
    case Qt::TextAlignmentRole:
        if (column.shown == Column::Shown::Number || column.shown == Column::Shown::DocumentTotal)
            return QVariant::fromValue(Qt::AlignRight | Qt::AlignVCenter);
        return {};
    case RecordRole:
        return QVariant::fromValue(record);
    case RefRole:
        return QVariant::fromValue(record->ref());
    case IdentifierRole:
        return record->value(s("identifier"));
    default:
        return {};
    }
}

QVariant RecordListModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    const QList<Column>& columns = columnsOf(m_kind);
    if (orientation != Qt::Horizontal || section < 0 || section >= columns.size())
        return {};
    const Column& column = columns.at(section);
    switch (role) {
    case Qt::DisplayRole:
        return tr(column.title);
    case Qt::TextAlignmentRole:
        // A title stands over its values.
        if (column.shown == Column::Shown::Number || column.shown == Column::Shown::DocumentTotal)
            return QVariant::fromValue(Qt::AlignRight | Qt::AlignVCenter);
        return QVariant::fromValue(Qt::AlignLeft | Qt::AlignVCenter);
    default:
        return {};
    }
}

QHash<int, QByteArray> RecordListModel::roleNames() const
{
    QHash<int, QByteArray> names = QAbstractTableModel::roleNames();
    names.insert(RecordRole, "record");
    names.insert(RefRole, "ref");
    names.insert(IdentifierRole, "identifier");
    return names;
}

} // namespace corvanta::browse
