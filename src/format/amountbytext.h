#pragma once

#include <QString>

namespace corvanta::format {

// An amount in Hungarian words with the cents as a fraction of 100, as printed on documents:
// 2500 is "Kettőezerötszáz 00/100", 1 500 000 "Egymillió-ötszázezer 00/100", 0.5 "Nulla 50/100",
// 0 "Nulla", -3 "minusz Három 00/100".
//
// The amount is rounded to cents as RoundedDecimal rounds (half away from zero on the decimal
// digits), the same as every amount shown beside it. The words reach 999 999 999 999.99; a
// larger whole part is written in digits ("1000000000000 00/100"). NaN and infinity give an
// empty text.
QString amountByText(double number);

} // namespace corvanta::format
