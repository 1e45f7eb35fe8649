#pragma once

#include <QString>

namespace corvanta::format {

// A finite double written out in decimal digits and rounded to a number of fraction digits.
//
// Rounding is decimal, at the digits the user sees: the number is first taken as the shortest
// decimal text that reads back as the same double (2.675 is "2.675", not the binary value
// 2.67499999...), then rounded half away from zero. So 2.675 gives 2.68, 0.125 gives 0.13 and
// -0.5 with no fraction digits gives -1, as an amount on an invoice is rounded by hand. The
// platform's "%.2f" would round the binary value half to even instead (2.67, 0.12).
class RoundedDecimal
{
public:
    // Rounds `value` to at most `maximumFractionDigits` and pads it to at least
    // `minimumFractionDigits` with zeros; trailing zeros beyond the minimum are dropped.
    // Negative digit counts count as 0; a minimum above the maximum raises the maximum.
    // A value that rounds to zero has no sign. `value` must be finite.
    static RoundedDecimal fromDouble(double value, int minimumFractionDigits, int maximumFractionDigits);

    bool isNegative() const { return m_negative; }
    // The whole part without leading zeros ("0" for none).
    const QString& integerDigits() const { return m_integerDigits; }
    // The fraction digits kept, possibly empty.
    const QString& fractionDigits() const { return m_fractionDigits; }
    bool isZero() const;

private:
    bool m_negative = false;
    QString m_integerDigits = QStringLiteral("0");
    QString m_fractionDigits;
};

} // namespace corvanta::format
