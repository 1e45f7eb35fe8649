#include "roundeddecimal.h"

#include <QLocale>
#include <algorithm>
#include <cmath>

namespace corvanta::format {

namespace {

// Adds one unit in the last place of a string of decimal digits; returns false when the carry
// runs out of the front (all nines), leaving the digits as zeros.
bool incrementDigits(QString& digits)
{
    for (qsizetype i = digits.size() - 1; i >= 0; --i) {
        if (digits.at(i) != QLatin1Char('9')) {
            digits[i] = QChar(digits.at(i).unicode() + 1);
            return true;
        }
        digits[i] = QLatin1Char('0');
    }
    return false;
}

} // namespace

RoundedDecimal RoundedDecimal::fromDouble(double value, int minimumFractionDigits, int maximumFractionDigits)
{
    RoundedDecimal result;
    if (!std::isfinite(value))
        return result;
    const int minimum = std::max(0, minimumFractionDigits);
    const int maximum = std::max(minimum, maximumFractionDigits);

    // The shortest round-trip digits: "d.ddde+XX" (or "de+XX").
    const QString scientific = QString::number(std::fabs(value), 'e', QLocale::FloatingPointShortest);
    const qsizetype e = scientific.indexOf(QLatin1Char('e'));
    QString digits = scientific.left(e);
    digits.remove(QLatin1Char('.'));
    const int exponent = scientific.mid(e + 1).toInt();

    // The decimal point stands after `point` digits.
    qsizetype point = qsizetype(exponent) + 1;
    if (point <= 0) {
        digits.prepend(QString(-point, QLatin1Char('0')));
        point = 0;
    }
    if (point > digits.size())
        digits.append(QString(point - digits.size(), QLatin1Char('0')));

    QString integer = digits.left(point);
    QString fraction = digits.mid(point);
    if (fraction.size() > maximum) {
        const bool roundUp = fraction.at(maximum) >= QLatin1Char('5');
        fraction.truncate(maximum);
        if (roundUp) {
            QString all = integer + fraction;
            if (!incrementDigits(all))
                all.prepend(QLatin1Char('1'));
            integer = all.left(all.size() - maximum);
            fraction = all.right(maximum);
        }
    }
    while (fraction.size() > minimum && fraction.endsWith(QLatin1Char('0')))
        fraction.chop(1);
    if (fraction.size() < minimum)
        fraction.append(QString(minimum - fraction.size(), QLatin1Char('0')));

    qsizetype firstSignificant = 0;
    while (firstSignificant < integer.size() - 1 && integer.at(firstSignificant) == QLatin1Char('0'))
        ++firstSignificant;
    integer = integer.mid(firstSignificant);
    if (integer.isEmpty())
        integer = QStringLiteral("0");

    result.m_integerDigits = integer;
    result.m_fractionDigits = fraction;
    result.m_negative = value < 0 && !result.isZero();
    return result;
}

bool RoundedDecimal::isZero() const
{
    const auto zero = [](QChar c) { return c == QLatin1Char('0'); };
    return std::all_of(m_integerDigits.cbegin(), m_integerDigits.cend(), zero) &&
           std::all_of(m_fractionDigits.cbegin(), m_fractionDigits.cend(), zero);
}

} // namespace corvanta::format
