#include "currenciesrecord.h"

#include "format/currencyformatter.h"

namespace corvanta::model {

using format::CurrencyFormatter;

QString CurrenciesRecord::makeSample(const store::Record* currency)
{
    const CurrencyFormatter formatter(currency);
    return formatter.stringFromNumber(formatter.format().showFixedDigits ? 12345.6 : 12345.6789);
}

void CurrenciesRecord::updateSample()
{
    // A stored sample made from another format is corrected at the next save.
    setPrimitiveValue(QStringLiteral("sample"), makeSample(this), true);
}

void CurrenciesRecord::awakeFromFetch()
{
    updateSample();
}

void CurrenciesRecord::awakeFromInsert()
{
    updateSample();
}

void CurrenciesRecord::didChangeValue(const QString& key)
{
    static const QStringList formatKeys{
        QStringLiteral("grouping_separator"),
        QStringLiteral("decimal_separator"),
        QStringLiteral("digits"),
        QStringLiteral("show_fixed_digits"),
        QStringLiteral("symbol_format"),
        QStringLiteral("symbol"),
        QStringLiteral("code"),
    };
    if (formatKeys.contains(key))
        updateSample();
}

} // namespace corvanta::model
