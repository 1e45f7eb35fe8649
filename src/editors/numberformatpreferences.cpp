#include "numberformatpreferences.h"

#include "documents/documenttypes.h"
#include "documents/numberformat.h"
#include "model/companysettings.h"

namespace corvanta::editors {

using documents::Clock;
using documents::DocumentTypes;
using documents::NumberFormat;

NumberFormatPreferences::NumberFormatPreferences(store::EditingContext& mainContext, Clock clock)
    : m_context(mainContext)
    , m_clock(std::move(clock))
{}

QList<int> NumberFormatPreferences::listedTypes()
{
    return {DocumentTypes::Invoice,       DocumentTypes::Proforma,     DocumentTypes::Estimate,
            DocumentTypes::Quotation,     DocumentTypes::DeliveryNote, DocumentTypes::CreditNote,
            DocumentTypes::PurchaseOrder, DocumentTypes::CreditMemo};
}

QString NumberFormatPreferences::label(int type)
{
    return DocumentTypes::displayName(type);
}

QString NumberFormatPreferences::format(int type)
{
    if (!DocumentTypes::isValid(type))
        return {};
    return model::CompanySettings(m_context).setting(NumberFormat::settingKey(type)).toString();
}

QString NumberFormatPreferences::sample(const QString& format) const
{
    return NumberFormat::sample(format, m_clock().date());
}

bool NumberFormatPreferences::setFormat(int type, const QString& format, store::StoreError* error)
{
    if (!DocumentTypes::isValid(type))
        return false;
    return model::CompanySettings(m_context).setSetting(NumberFormat::settingKey(type), format, error);
}

bool NumberFormatPreferences::chooseToken(int type, int index, const QString& entry, store::StoreError* error)
{
    QStringList pieces = tokens(type);
    if (index < 0 || index >= pieces.size() || !NumberFormat::menuEntries(pieces.at(index)).contains(entry))
        return false;
    pieces[index] = entry;
    return setFormat(type, pieces.join(QLatin1Char(',')), error);
}

bool NumberFormatPreferences::reset(int type, store::StoreError* error)
{
    return setFormat(type, NumberFormat::defaultFormat(type), error);
}

} // namespace corvanta::editors
