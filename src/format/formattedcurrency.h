#pragma once

#include <QString>

namespace corvanta::predicate {
class KeyPathSource;
}

namespace corvanta::format {

// An amount written in a currency's format with a fresh CurrencyFormatter for that currency
// (a `Currencies` record; the neutral format without one). NaN and infinity give an empty text.
QString formattedCurrency(double number, const predicate::KeyPathSource* currency);

} // namespace corvanta::format
