#include "pricelevels.h"

#include "predicate/literal.h"
#include "store/editingcontext.h"

namespace corvanta::documents {

using store::Record;

QString PriceLevels::slotKey(int level)
{
    return QStringLiteral("custom_price0%1").arg(level);
}

QString PriceLevels::fieldKey(int level) const
{
    return level == m_active ? QStringLiteral("unit_price") : slotKey(level);
}

void PriceLevels::defaultPriceChanged(const QList<Record*>& rows, std::optional<int> level)
{
    const int chosen = level.value_or(m_active);
    if (chosen < 1 || chosen > kCount)
        return;
    const QString previousSlot = slotKey(m_active);
    const QString chosenSlot = slotKey(chosen);
    for (Record* row : rows) {
        row->setValue(previousSlot, row->value(QStringLiteral("unit_price")));
        row->setValue(QStringLiteral("unit_price"), row->value(chosenSlot));
    }
    m_active = chosen;
}

QStringList PriceLevels::labels(store::EditingContext& context)
{
    const QList<Record*> fields = context.fetch(store::FetchRequest(
        QStringLiteral("Compose"),
        predicate::literal("name beginswith[c] %@", {QStringLiteral("item_custom_price")}),
        {store::SortDescriptor{QStringLiteral("name"), true, store::SortDescriptor::Comparison::Default}}));
    QStringList result;
    for (const Record* field : fields)
        result << field->value(QStringLiteral("label")).toString();
    return result;
}

} // namespace corvanta::documents
