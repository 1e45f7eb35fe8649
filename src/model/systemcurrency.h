#pragma once

#include <QList>
#include <QString>

namespace corvanta::model {

// The currencies the system's ICU data knows: every current ISO 4217 code with the symbol and
// the separators of the locale that the code belongs to.
//
// A code belongs to the locale of its home region: the region named by the code's first two
// letters when that region uses the currency (USD: US, CHF: CH, EUR: EU), otherwise the first
// region in ICU's region list whose currency it is (XOF: Benin), with the language ICU finds
// likely there (en_Latn_US, de_Latn_CH, fr_Latn_BJ). A code without a region takes "en".
// The symbol is the currency's symbol in that locale ("$", "CHF", "€"), the separators are the
// locale's monetary grouping and decimal separators.
struct SystemCurrency
{
    QString code;
    QString symbol;
    QString groupingSeparator;
    QString decimalSeparator;
    QString locale; // the ICU locale the values were taken from

    static QList<SystemCurrency> all();
};

} // namespace corvanta::model
