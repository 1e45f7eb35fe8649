#include "currencychoices.h"

#include "predicate/literal.h"
#include "store/editingcontext.h"

namespace corvanta::editors {

QList<store::Record*> selectableCurrencies(store::EditingContext& context, const store::Record* current)
{
    const QVariant currentRef = current ? QVariant::fromValue(current->ref()) : QVariant();
    const predicate::Predicate offered = predicate::literal(
        "selectable == YES || my_company_default_currency.default_currency == self || self == %@",
        {currentRef});
    return context.fetch(store::FetchRequest(QStringLiteral("Currencies"), offered,
                                             {store::SortDescriptor{QStringLiteral("code")}}));
}

} // namespace corvanta::editors
