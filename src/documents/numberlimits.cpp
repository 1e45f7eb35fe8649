#include "numberlimits.h"

#include "format/numberinput.h"
#include "support/prompter.h"

#include <cmath>

namespace corvanta::documents {

namespace {

constexpr double kLargestQuantity = 1e9;
constexpr double kLargestAmount = 1e12;
constexpr double kLargestExchangeRate = 1e6;

} // namespace

std::optional<QString> NumberLimits::problem(Kind kind, double value)
{
    if (!std::isfinite(value))
        return format::NumberInput::notFiniteMessage();
    switch (kind) {
    case Kind::Quantity:
        if (std::fabs(value) > kLargestQuantity)
            return tr("The quantity must be a number from -1,000,000,000 to 1,000,000,000.");
        break;
    case Kind::Price:
        if (std::fabs(value) > kLargestAmount)
            return tr("The price must be a number from -1,000,000,000,000 to 1,000,000,000,000.");
        break;
    case Kind::Amount:
        if (std::fabs(value) > kLargestAmount)
            return tr("The amount must be a number from -1,000,000,000,000 to 1,000,000,000,000.");
        break;
    case Kind::ExchangeRate:
        if (value <= 0 || value > kLargestExchangeRate)
            return tr("The exchange rate must be a number above 0 and at most 1,000,000.");
        break;
    }
    return std::nullopt;
}

bool NumberLimits::accept(Kind kind, double value, support::Prompter& prompter)
{
    const std::optional<QString> why = problem(kind, value);
    if (!why)
        return true;
    prompter.alert(format::NumberInput::alertTitle(), *why, {tr("OK")});
    return false;
}

} // namespace corvanta::documents
