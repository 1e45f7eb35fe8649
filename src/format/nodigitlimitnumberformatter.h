#pragma once

#include "decimalformatter.h"

#include <QLocale>

namespace corvanta::predicate {
class KeyPathSource;
}

namespace corvanta::format {

// The formatter of entry fields that need more precision than the currency has (quantities,
// exchange rates). Unlike NumberFormatter its decimal separator is the system's, not the
// currency's: that difference is intended.
class NoDigitLimitNumberFormatter : public DecimalFormatter
{
public:
    // Configured from the company's default currency at creation; `system` is the user's
    // locale (QLocale() in the program), which gives the decimal separator.
    explicit NoDigitLimitNumberFormatter(const predicate::KeyPathSource* defaultCurrency,
                                         const QLocale& system = QLocale());

    // Never grouped; at most 6 fraction digits whatever the currency says, and at least the
    // currency's `digits` with `show_fixed_digits`; the decimal separator of `system`.
    void setDefaultFormat(const predicate::KeyPathSource* defaultCurrency, const QLocale& system = QLocale());

    static constexpr int kMaximumFractionDigits = 6;
};

} // namespace corvanta::format
