#include "taxvaluetext.h"

#include "format/numberformatter.h"
#include "store/record.h"

namespace corvanta::model {

QString TaxValueText::text(double tax1Value, double tax2Value, const store::Record* defaultCurrency)
{
    const format::NumberFormatter formatter(defaultCurrency);
    // Only a positive second tax is shown: a negative one (a row of negative quantity) is left out.
    if (tax2Value > 0)
        return QStringLiteral("%1+%2").arg(formatter.stringFromNumber(tax1Value),
                                           formatter.stringFromNumber(tax2Value));
    return formatter.stringFromNumber(tax1Value);
}

} // namespace corvanta::model
