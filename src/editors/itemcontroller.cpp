#include "itemcontroller.h"

#include "documentcontroller.h"
#include "documents/numberlimits.h"
#include "documents/pricelevels.h"
#include "documents/stockcalculator.h"
#include "model/companyrecord.h"
#include "predicate/literal.h"
#include "store/editingcontext.h"
#include "store/store.h"
#include "support/prompter.h"
#include "support/uuid.h"

namespace corvanta::editors {

using documents::Clock;
using documents::NumberLimits;
using documents::PriceLevels;
using documents::StockCalculator;

using store::FetchRequest;
using store::Record;
using store::SortDescriptor;

namespace {

QString s(const char* key)
{
    return QString::fromLatin1(key);
}

} // namespace

ItemController::ItemController(store::Store& store, support::Prompter& prompter, Clock clock, QObject* parent)
    : RecordEditor(
          store, prompter, std::move(clock), s("Items"),
          {tr("Save this item?"),
           tr("This item has not been saved and contains unsaved changes. Would you like to save now?")},
          parent)
{}

ItemController::~ItemController() = default;

Record* ItemController::newItem(qint64 type)
{
    Record* item = editNew({{s("type"), type}, {s("identifier"), support::UUID()}});
    // A new item is sold in the company's usual unit and with its usual tax, as a new row is.
    item->setRelated(s("unit"), model::CompanyRecord::defaultRecord(*m_context, s("default_unit")));
    item->setRelated(s("tax"), model::CompanyRecord::defaultRecord(*m_context, s("default_tax")));
    return item;
}

Record* ItemController::openItem(const predicate::RecordRef& item)
{
    return editStored(item);
}

bool ItemController::setPrice(int level, double price)
{
    if (!m_record || level < 1 || level > PriceLevels::kCount ||
        !NumberLimits::accept(NumberLimits::Kind::Price, price, m_prompter))
        return false;
    m_record->setValue(PriceLevels::slotKey(level), price);
    markEdited();
    return true;
}

void ItemController::pricesToNet()
{
    if (!m_record)
        return;
    const Record* tax = m_record->related(s("tax"));
    // Only the first rate is taken out, also of a tax with two rates.
    const double divisor = (tax ? tax->value(s("rate1")).toDouble() : 0.0) / 100.0 + 1.0;
    for (int level = 1; level <= PriceLevels::kCount; ++level) {
        const QString key = PriceLevels::slotKey(level);
        const QVariant price = m_record->value(key);
        if (!price.isNull())
            m_record->setValue(key, price.toDouble() / divisor);
    }
    markEdited();
}

Record* ItemController::addIncoming(Record* supplier, double quantity, const QDateTime& date)
{
    if (!m_record || !NumberLimits::accept(NumberLimits::Kind::Quantity, quantity, m_prompter))
        return nullptr;
    Record* delivery =
        m_context->insertRecord(s("Warehouse"), {{s("quantity"), quantity}, {s("date"), date}});
    delivery->setRelated(s("item"), m_record);
    delivery->setRelated(s("client"), supplier);
    markEdited();
    return delivery;
}

void ItemController::removeIncoming(Record* delivery)
{
    if (!m_record || !delivery || delivery->related(s("item")) != m_record)
        return;
    m_context->deleteRecord(delivery);
    markEdited();
}

QList<Record*> ItemController::fetchForItem(const QString& entity, const QString& condition)
{
    if (!m_record)
        return {};
    return m_context->fetch(
        FetchRequest(entity, predicate::literal(condition, {QVariant::fromValue(m_record->ref())})));
}

QList<Record*> ItemController::movementsIn()
{
    return fetchForItem(s("Warehouse"), s("item == %@"));
}

QList<ItemController::MovementOut> ItemController::movementsOut()
{
    QList<MovementOut> result;
    for (const Record* row : fetchForItem(s("DocumentRows"), s("item == %@ && document.draft != YES"))) {
        const Record* document = row->related(s("document"));
        result.append({row->value(s("quantity")).toDouble(),
                       document ? document->related(s("client")) : nullptr,
                       row->valueForKeyPath(s("document.number_formatted")).toString(),
                       row->valueForKeyPath(s("document.created")).toDateTime()});
    }
    return result;
}

QList<Record*> ItemController::supplierSuggestions(const QString& text)
{
    return m_context->fetch(
        FetchRequest(s("Clients"), predicate::literal(s("company_name CONTAINS[c] %@ && type == 1"), {text}),
                     {SortDescriptor::localized(s("full_name"))}));
}

void ItemController::prepareSave()
{
    if (m_record->value(s("name")).toString().isEmpty())
        m_record->setValue(s("name"), tr("No Name"));

    QVariantList tags;
    for (const Record* tag : m_record->relatedList(s("tags"))) {
        if (tag->value(s("subtype")).isNull())
            tags << QVariant::fromValue(tag->ref());
    }
    const Record* kind = m_context->fetchFirst(
        FetchRequest(s("Categories"), predicate::literal(s("type == 2 && subtype == %@"),
                                                         {m_record->value(s("type")).toLongLong()})));
    if (kind)
        tags << QVariant::fromValue(kind->ref());
    m_record->setValue(s("tags"), tags);
    // Deliveries added or removed here count at once.
    StockCalculator(*m_context).updateItemCurrentStock(m_record);
}

void ItemController::handOver(DocumentController& openDocument)
{
    openDocument.addItem(m_record->ref());
}

} // namespace corvanta::editors
