#pragma once

#include <QCoreApplication>
#include <QString>
#include <QVariant>
#include <optional>

namespace corvanta::format {

// The check every number passes where it enters the program (an entry field, a list editor):
// amounts and rates are finite numbers, and NaN or infinity is refused with a message the user
// can read.
class NumberInput
{
    Q_DECLARE_TR_FUNCTIONS(NumberInput)

public:
    // The number a value holds when it is a finite number; otherwise nothing, with `error` set.
    // A null value is no number and no error either: callers treat it as an emptied field.
    static std::optional<double> finiteNumber(const QVariant& value, QString* error = nullptr);

    // The title of the alert that shows one of these messages.
    static QString alertTitle();
    static QString notFiniteMessage();
    static QString notANumberMessage(const QString& text);
    static QString tooLargeMessage(const QString& text);
};

} // namespace corvanta::format
