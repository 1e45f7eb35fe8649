#include "pricelevels.h"

#include "model/editingcontext.h"
#include "predicate/parser.h"

namespace corvanta::documents {

using model::Record;

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

QStringList PriceLevels::labels(model::EditingContext& context)
{
    const auto predicate = predicate::Parser::parse(QStringLiteral("name beginswith[c] %@"),
                                                    {QStringLiteral("item_custom_price")});
    const QList<Record*> fields = context.fetch(model::FetchRequest(
        QStringLiteral("Compose"), *predicate,
        {model::SortDescriptor{QStringLiteral("name"), true, model::SortDescriptor::Comparison::Default}}));
    QStringList result;
    for (const Record* field : fields)
        result << field->value(QStringLiteral("label")).toString();
    return result;
}

} // namespace corvanta::documents
