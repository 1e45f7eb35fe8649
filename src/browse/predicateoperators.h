#pragma once

#include "predicate/predicate.h"

#include <QCoreApplication>
#include <QList>
#include <QString>
#include <QVariant>

namespace corvanta::browse {

// The operators a row of the smart-folder editor offers, by the kind of value it compares.
enum class OperatorSet {
    Text,         // is, is not, contains, begins with, ends with, is like
    Number,       // the four orderings, is, is not
    Date,         // is the date, is after the date, is before the date
    RelativeDate, // is (one of the named ranges)
    Choice,       // is (one of the labelled numbers)
};

// One entry of a row's value menu: a choice's number or a relative date's token, with its label.
struct RowChoice
{
    QVariant value;
    QString label;
};

class PredicateOperators
{
    Q_DECLARE_TR_FUNCTIONS(PredicateOperators)

public:
    // The operators of a set in the order the editor lists them.
    static QList<predicate::Predicate::Operator> of(OperatorSet set);
    static bool offers(OperatorSet set, predicate::Predicate::Operator op);
    // The label shown for an operator of the set; empty when the set does not offer it.
    static QString label(OperatorSet set, predicate::Predicate::Operator op);

    // The named date ranges, "today" to "last year", each with the token stored for it ("@today").
    static QList<RowChoice> relativeDates();
};

} // namespace corvanta::browse
