#pragma once

#include <QCoreApplication>
#include <QString>
#include <optional>

namespace corvanta::support {
class Prompter;
}

namespace corvanta::documents {

// The check of every number typed into a document, an item or a payment: it must be finite and
// of a size that a business document can hold, so that no total overflows and nothing
// unreadable is stored.
class NumberLimits
{
    Q_DECLARE_TR_FUNCTIONS(NumberLimits)

public:
    enum class Kind {
        Quantity,     // a row's or a delivery's quantity
        Price,        // a price of a row or an item
        Amount,       // a payment
        ExchangeRate, // units of the company's currency per unit of the document's
    };

    // Why the value is refused, or nothing when it is fine.
    static std::optional<QString> problem(Kind kind, double value);
    // True when the value is fine; otherwise tells the user why and returns false.
    static bool accept(Kind kind, double value, support::Prompter& prompter);
};

} // namespace corvanta::documents
