#pragma once

#include <QString>

namespace corvanta::predicate {
class KeyPathSource;
}

namespace corvanta::format {

// The attributes of a `Currencies` record that decide how its amounts are written.
struct CurrencyFormat
{
    QString code;              // ISO 4217, shown with the "code" placement
    QString symbol;            // "$", "€", "Ft"
    QString symbolFormat;      // "l", "ls", "r", "sr", "code"; anything else shows no mark
    QString groupingSeparator; // ".", ",", " ", "'", or "none" for no grouping
    QString decimalSeparator = QStringLiteral(".");
    int digits = 2;               // fraction digits
    bool showFixedDigits = false; // pad the fraction with zeros up to `digits`

    // The format of a currency record; missing values read as empty texts, 0 and false. Without
    // a record, the neutral format above (two digits at most, no grouping, no mark).
    static CurrencyFormat fromRecord(const predicate::KeyPathSource* currency);

    // Whether the number is grouped at all ("none" turns grouping off).
    bool usesGrouping() const { return groupingSeparator != QLatin1String("none"); }
};

} // namespace corvanta::format
