#pragma once

#include "predicate.h"

#include <QString>
#include <QVariantList>

namespace corvanta::predicate {

// Writes a predicate in its stored text form, the form the smart-folder editor writes:
// `company_name CONTAINS[cd] "smith"`, `date_creation == "@this_month"`, `type == 0`,
// compounds joined by AND / OR with nested compounds in parentheses. Reading the text back
// with Parser gives the same tree; a record constant is written as %@, to be bound again.
class Formatter
{
public:
    static QString format(const Predicate& predicate);
    static QString format(const Expression& expression);
    static QString quoted(const QString& text);
    // The record constants of a predicate in the order format() writes their %@, to be bound
    // when the text is read again.
    static QVariantList recordArguments(const Predicate& predicate);
};

} // namespace corvanta::predicate
