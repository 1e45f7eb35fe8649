#include "itemcontroller.h"

#include "documentcontroller.h"
#include "model/editingcontext.h"
#include "model/prompter.h"
#include "model/store.h"
#include "model/uuid.h"
#include "numberlimits.h"
#include "predicate/parser.h"
#include "pricelevels.h"
#include "savefailure.h"
#include "stockcalculator.h"

namespace corvanta::documents {

using model::FetchRequest;
using model::Record;
using model::SortDescriptor;

namespace {

QString s(const char* key)
{
    return QString::fromLatin1(key);
}

} // namespace

ItemController::ItemController(model::Store& store, model::Prompter& prompter, Clock clock, QObject* parent)
    : QObject(parent)
    , m_prompter(prompter)
    , m_clock(std::move(clock))
    , m_context(store.newContext())
{}

ItemController::~ItemController() = default;

void ItemController::setEdited(bool edited)
{
    if (m_edited == edited)
        return;
    m_edited = edited;
    Q_EMIT editedChanged(edited);
}

Record* ItemController::newItem(qint64 type)
{
    m_context->rollback();
    m_item = m_context->insertRecord(s("Items"), {{s("type"), type}, {s("identifier"), model::UUID()}});
    setEdited(false);
    return m_item;
}

Record* ItemController::openItem(const predicate::RecordRef& item)
{
    m_context->rollback();
    m_item = m_context->fetchFirst(
        FetchRequest(s("Items"), *predicate::Parser::parse(s("self == %@"), {QVariant::fromValue(item)})));
    setEdited(false);
    return m_item;
}

bool ItemController::setPrice(int level, double price)
{
    if (!m_item || level < 1 || level > PriceLevels::kCount ||
        !NumberLimits::accept(NumberLimits::Kind::Price, price, m_prompter))
        return false;
    m_item->setValue(PriceLevels::slotKey(level), price);
    markEdited();
    return true;
}

void ItemController::pricesToNet()
{
    if (!m_item)
        return;
    const Record* tax = m_item->related(s("tax"));
    // Only the first rate is taken out, also of a tax with two rates.
    const double divisor = (tax ? tax->value(s("rate1")).toDouble() : 0.0) / 100.0 + 1.0;
    for (int level = 1; level <= PriceLevels::kCount; ++level) {
        const QString key = PriceLevels::slotKey(level);
        const QVariant price = m_item->value(key);
        if (!price.isNull())
            m_item->setValue(key, price.toDouble() / divisor);
    }
    markEdited();
}

Record* ItemController::addIncoming(Record* supplier, double quantity, const QDateTime& date)
{
    if (!m_item || !NumberLimits::accept(NumberLimits::Kind::Quantity, quantity, m_prompter))
        return nullptr;
    Record* delivery =
        m_context->insertRecord(s("Warehouse"), {{s("quantity"), quantity}, {s("date"), date}});
    delivery->setRelated(s("item"), m_item);
    delivery->setRelated(s("client"), supplier);
    markEdited();
    return delivery;
}

void ItemController::removeIncoming(Record* delivery)
{
    if (!m_item || !delivery || delivery->related(s("item")) != m_item)
        return;
    m_context->deleteRecord(delivery);
    markEdited();
}

QList<Record*> ItemController::fetchForItem(const QString& entity, const QString& condition)
{
    if (!m_item)
        return {};
    return m_context->fetch(
        FetchRequest(entity, *predicate::Parser::parse(condition, {QVariant::fromValue(m_item->ref())})));
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
    return m_context->fetch(FetchRequest(
        s("Clients"), *predicate::Parser::parse(s("company_name CONTAINS[c] %@ && type == 1"), {text}),
        {SortDescriptor::localized(s("full_name"))}));
}

bool ItemController::save(Sender sender, DocumentController* openDocument)
{
    if (!m_item)
        return false;
    if (m_item->value(s("name")).toString().isEmpty())
        m_item->setValue(s("name"), tr("No Name"));

    QVariantList tags;
    for (const Record* tag : m_item->relatedList(s("tags"))) {
        if (tag->value(s("subtype")).isNull())
            tags << QVariant::fromValue(tag->ref());
    }
    const Record* kind = m_context->fetchFirst(
        FetchRequest(s("Categories"), *predicate::Parser::parse(s("type == 2 && subtype == %@"),
                                                                {m_item->value(s("type")).toLongLong()})));
    if (kind)
        tags << QVariant::fromValue(kind->ref());
    m_item->setValue(s("tags"), tags);
    // Deliveries added or removed here count at once.
    StockCalculator(*m_context).updateItemCurrentStock(m_item);

    model::StoreError error;
    if (!m_context->save(&error)) {
        SaveFailure::show(m_prompter, error);
        return false;
    }
    setEdited(false);
    if (openDocument)
        openDocument->addItem(m_item->ref());
    if (sender == Sender::Control)
        Q_EMIT closeRequested();
    return true;
}

ItemController::CloseAnswer ItemController::windowShouldClose(DocumentController* openDocument)
{
    if (!m_edited)
        return CloseAnswer::Close;
    const QString saveButton = tr("Save");
    const QString dontSave = tr("Don't Save");
    const QString answer = m_prompter.alert(
        tr("Save this item?"),
        tr("This item has not been saved and contains unsaved changes. Would you like to save now?"),
        {saveButton, dontSave, tr("Cancel")});
    if (answer == saveButton)
        return save(Sender::None, openDocument) ? CloseAnswer::Close : CloseAnswer::KeepOpen;
    if (answer == dontSave) {
        m_context->rollback();
        m_item = nullptr;
        setEdited(false);
        return CloseAnswer::Close;
    }
    return CloseAnswer::KeepOpen;
}

} // namespace corvanta::documents
