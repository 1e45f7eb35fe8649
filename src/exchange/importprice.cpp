#include "importprice.h"

#include <cmath>
#include <cstdlib>
#include <locale.h>

namespace corvanta::exchange {

double ImportPrice::read(const QString& text)
{
    QString number;
    number.reserve(text.size());
    for (const QChar c : text) {
        if (c == QLatin1Char(','))
            number += QLatin1Char('.');
        else if (!c.isSpace())
            number += c;
    }
    // strtof follows the process's numeric locale, which the application takes from the user's;
    // the import's decimal mark is always ".", so the number is read in the "C" locale. The
    // locale object lives as long as the program.
    static const locale_t cLocale = newlocale(LC_NUMERIC_MASK, "C", locale_t(nullptr));
    const float value = strtof_l(number.toUtf8().constData(), nullptr, cLocale);
    // An overflowing number or a written "inf" or "nan" is no price; it is read like any other
    // text that does not begin with a number.
    return std::isfinite(value) ? double(value) : 0.0;
}

} // namespace corvanta::exchange
