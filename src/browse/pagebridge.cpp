#include "browse/pagebridge.h"

#include "browse/clientpage.h"
#include "browse/documentpage.h"
#include "browse/eventhistory.h"
#include "browse/itempage.h"
#include "browse/pagechart.h"
#include "browse/todopage.h"
#include "model/companyrecord.h"
#include "predicate/literal.h"
#include "store/editingcontext.h"
#include "store/store.h"
#include "tasks/tododone.h"

#include <QLoggingCategory>
#include <cmath>

namespace corvanta::browse {

using store::Record;

namespace {

Q_LOGGING_CATEGORY(lcPageBridge, "corvanta.browse.pages")

QString s(const char* text)
{
    return QString::fromLatin1(text);
}

// A whole number as a page's script hands it over (a script number arrives as a double);
// nothing for text, truth values, fractions and anything else.
std::optional<qint64> wholeNumber(const QVariant& value)
{
    switch (value.typeId()) {
    case QMetaType::Int:
    case QMetaType::LongLong:
    case QMetaType::UInt:
        return value.toLongLong();
    case QMetaType::Double: {
        const double number = value.toDouble();
        if (std::isfinite(number) && std::trunc(number) == number && std::fabs(number) < 1e15)
            return qint64(number);
        return std::nullopt;
    }
    default:
        return std::nullopt;
    }
}

std::optional<QString> text(const QVariant& value)
{
    if (value.typeId() != QMetaType::QString)
        return std::nullopt;
    return value.toString();
}

QString shown(const QVariant& value)
{
    return QStringLiteral("%1 (%2)").arg(value.toString(), s(value.typeName() ? value.typeName() : "none"));
}

QString kindName(ListKind kind)
{
    switch (kind) {
    case ListKind::Clients:
        return s("client");
    case ListKind::Items:
        return s("item");
    case ListKind::Documents:
        return s("document");
    case ListKind::ToDos:
        return s("to-do");
    case ListKind::None:
        break;
    }
    return s("record");
}

} // namespace

PageBridge::PageBridge(store::Store& store, QObject* parent)
    : QObject(parent)
    , m_store(store)
    , m_changes(store.newContext())
{
    const Record* currency =
        model::CompanyRecord::defaultRecord(m_store.mainContext(), s("default_currency"));
    m_currency = currency ? currency->value(s("code")).toString() : QString();
    // The chart shows the last twelve months until the user picks a range.
    m_chartTo = QDate::currentDate();
    m_chartFrom = QDate(m_chartTo.year(), m_chartTo.month(), 1).addMonths(-11);
}

PageBridge::~PageBridge() = default;

Record* PageBridge::find(ListKind kind, const QString& identifier) const
{
    if (kind == ListKind::None || identifier.isEmpty())
        return nullptr;
    return m_store.mainContext().fetchFirst(
        store::FetchRequest(ListKinds::entity(kind), predicate::literal("identifier == %@", {identifier})));
}

bool PageBridge::showPage(const QString& address)
{
    m_shown = PageAddress::parse(address);
    m_eventsCount = 0;
    if (m_shown && !find(m_shown->kind, m_shown->identifier))
        m_shown.reset();
    return m_shown.has_value();
}

void PageBridge::showNothing()
{
    m_shown.reset();
    m_eventsCount = 0;
}

Record* PageBridge::shownRecord() const
{
    return m_shown ? find(m_shown->kind, m_shown->identifier) : nullptr;
}

DetailPage PageBridge::page() const
{
    Record* record = shownRecord();
    if (!record)
        return DetailPage::nothingSelected();
    switch (m_shown->kind) {
    case ListKind::Clients:
        return ClientPage::fill(record, m_eventsType, m_eventsCount);
    case ListKind::Items:
        return ItemPage::fill(record, m_eventsType, m_eventsCount);
    case ListKind::Documents:
        return DocumentPage::fill(record);
    case ListKind::ToDos:
        return ToDoPage::fill(record);
    case ListKind::None:
        break;
    }
    return DetailPage::nothingSelected();
}

QString PageBridge::historyHtml() const
{
    return EventHistory(shownRecord()).html(m_eventsType, m_eventsCount);
}

void PageBridge::setChartRange(const QDate& from, const QDate& to)
{
    if (!from.isValid() || !to.isValid() || to < from)
        return;
    m_chartFrom = from;
    m_chartTo = to;
    if (m_shown && (m_shown->kind == ListKind::Clients || m_shown->kind == ListKind::Items))
        emitChart();
}

void PageBridge::refuse(const char* call, const QString& reason)
{
    qCWarning(lcPageBridge, "The page's call %s was refused: %s", call, qPrintable(reason));
    Q_EMIT callRefused(s(call), reason);
}

Record* PageBridge::shownOf(const char* call, ListKind kind)
{
    Record* record = m_shown && m_shown->kind == kind ? shownRecord() : nullptr;
    if (!record)
        refuse(call, QStringLiteral("the page does not show a stored %1").arg(kindName(kind)));
    return record;
}

Record* PageBridge::shownClientOrItem(const char* call)
{
    Record* record = m_shown && (m_shown->kind == ListKind::Clients || m_shown->kind == ListKind::Items)
                         ? shownRecord()
                         : nullptr;
    if (!record)
        refuse(call, s("the page shows neither a stored client nor a stored item"));
    return record;
}

void PageBridge::emitChart()
{
    const PageChart::Series series = PageChart::of(shownRecord(), m_currency, m_chartFrom, m_chartTo);
    QVariantList values;
    for (double value : series.values)
        values << value;
    Q_EMIT chartChanged(series.labels, values);
}

void PageBridge::showChartSettings()
{
    if (shownClientOrItem("showChartSettings"))
        Q_EMIT chartSettingsRequested();
}

void PageBridge::showDocumentPayments()
{
    if (Record* document = shownOf("showDocumentPayments", ListKind::Documents))
        Q_EMIT documentPaymentsRequested(document->value(s("identifier")).toString());
}

void PageBridge::openWarehouse()
{
    if (Record* item = shownOf("openWarehouse", ListKind::Items))
        Q_EMIT warehouseRequested(item->value(s("identifier")).toString());
}

void PageBridge::filterEventsByType(const QVariant& type)
{
    const std::optional<qint64> filter = wholeNumber(type);
    if (!filter) {
        refuse("filterEventsByType", s("not a whole number: ") + shown(type));
        return;
    }
    if (!shownClientOrItem("filterEventsByType"))
        return;
    // Every number other than the four filters lists all events.
    m_eventsType = *filter >= 0 && *filter <= 3 ? int(*filter) : int(EventHistory::All);
    m_eventsCount = 0;
    Q_EMIT historyChanged(historyHtml());
}

void PageBridge::moreRow(const QVariant& count)
{
    const std::optional<qint64> wanted = wholeNumber(count);
    if (!wanted || *wanted < 1) {
        refuse("moreRow", s("not a count of events: ") + shown(count));
        return;
    }
    Record* owner = shownClientOrItem("moreRow");
    if (!owner)
        return;
    const int total = EventHistory(owner).total(m_eventsType);
    if (*wanted > qMax(total, int(EventHistory::kPageSize))) {
        refuse("moreRow", QStringLiteral("%1 events asked for, %2 exist").arg(*wanted).arg(total));
        return;
    }
    m_eventsCount = int(*wanted);
    Q_EMIT historyChanged(historyHtml());
}

void PageBridge::changeView(const QVariant& view)
{
    const std::optional<QString> name = text(view);
    if (!name || (*name != QLatin1String("events_view") && *name != QLatin1String("chart_view"))) {
        refuse("changeView", s("not a view: ") + shown(view));
        return;
    }
    if (!shownClientOrItem("changeView"))
        return;
    Q_EMIT viewChanged(*name);
    if (*name == QLatin1String("chart_view"))
        emitChart();
}

void PageBridge::sendEmail(const QVariant& address)
{
    const std::optional<QString> email = text(address);
    if (!email || email->trimmed().isEmpty()) {
        refuse("sendEmail", s("not an address: ") + shown(address));
        return;
    }
    Record* client = shownOf("sendEmail", ListKind::Clients);
    if (!client)
        return;
    // Only an address the page shows: the client's own or one of its contacts'.
    QStringList known = client->value(s("emails")).toString().split(QLatin1Char(','), Qt::SkipEmptyParts);
    for (const Record* contact : client->relatedList(s("contacts")))
        known << contact->value(s("email")).toString();
    for (QString& k : known)
        k = k.trimmed();
    if (!known.contains(email->trimmed())) {
        refuse("sendEmail", s("not an address of the client: ") + *email);
        return;
    }
    Q_EMIT emailRequested(email->trimmed());
}

void PageBridge::storeOnClient(const char* call, const QVariant& argument, const char* key, qint64 highest)
{
    const std::optional<qint64> value = wholeNumber(argument);
    if (!value || *value < 0 || *value > highest) {
        refuse(call, QStringLiteral("not a number from 0 to %1: ").arg(highest) + shown(argument));
        return;
    }
    Record* shownClient = shownOf(call, ListKind::Clients);
    if (!shownClient)
        return;
    Record* client = m_changes->fetchRecord(s("Clients"), shownClient->ref());
    if (!client) {
        refuse(call, s("the client is no longer stored"));
        return;
    }
    client->setValue(s(key), *value);
    store::StoreError error;
    if (!m_changes->save(&error)) {
        qCWarning(lcPageBridge, "The client's %s could not be stored: %s", key, qPrintable(error.message()));
        m_changes->rollback();
        return;
    }
    Q_EMIT pageChanged();
}

void PageBridge::clientRating(const QVariant& rating)
{
    storeOnClient("clientRating", rating, "rating", 5);
}

void PageBridge::clientStatus(const QVariant& status)
{
    storeOnClient("clientStatus", status, "status", 2);
}

void PageBridge::done(const QVariant& identifier)
{
    const std::optional<QString> id = text(identifier);
    if (!id) {
        refuse("done", s("not an identifier: ") + shown(identifier));
        return;
    }
    const Record* shownTodo = find(ListKind::ToDos, *id);
    if (!shownTodo) {
        refuse("done", s("no stored to-do has the identifier ") + *id);
        return;
    }
    // The to-do of the page, or one in the history of the client or item shown.
    const Record* owner = shownRecord();
    const bool onPage =
        owner && (owner == shownTodo ||
                  (m_shown->kind == ListKind::Clients && shownTodo->related(s("client")) == owner) ||
                  (m_shown->kind == ListKind::Items && shownTodo->related(s("item")) == owner));
    if (!onPage) {
        refuse("done", s("the page does not show the to-do ") + *id);
        return;
    }
    Record* todo = m_changes->fetchRecord(s("ToDos"), shownTodo->ref());
    if (!todo) {
        refuse("done", s("the to-do is no longer stored"));
        return;
    }
    tasks::ToDoDone::toggle(todo);
    store::StoreError error;
    if (!m_changes->save(&error)) {
        qCWarning(lcPageBridge, "The to-do could not be stored: %s", qPrintable(error.message()));
        m_changes->rollback();
        return;
    }
    Q_EMIT pageChanged();
    if (m_shown->kind != ListKind::ToDos)
        Q_EMIT historyChanged(historyHtml());
}

} // namespace corvanta::browse
