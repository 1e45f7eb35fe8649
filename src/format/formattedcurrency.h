#pragma once

#include <QString>

namespace corvanta::model {
class Record;
}

namespace corvanta::format {

// An amount written in a currency's format with a fresh CurrencyFormatter for that currency
// (a `Currencies` record; the neutral format without one). NaN and infinity give an empty text.
QString formattedCurrency(double number, const model::Record* currency);

} // namespace corvanta::format
