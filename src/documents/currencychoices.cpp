#include "currencychoices.h"

#include "model/editingcontext.h"
#include "predicate/parser.h"

#include <QDebug>

namespace corvanta::documents {

QList<model::Record*> selectableCurrencies(model::EditingContext& context, const model::Record* current)
{
    const QVariant currentRef = current ? QVariant::fromValue(current->ref()) : QVariant();
    const std::optional<predicate::Predicate> predicate = predicate::Parser::parse(
        QStringLiteral(
            "selectable == YES || my_company_default_currency.default_currency == self || self == %@"),
        {currentRef});
    if (!predicate) {
        qWarning() << "selectableCurrencies: the predicate does not parse";
        return {};
    }
    return context.fetch(model::FetchRequest(QStringLiteral("Currencies"), *predicate,
                                             {model::SortDescriptor{QStringLiteral("code")}}));
}

} // namespace corvanta::documents
