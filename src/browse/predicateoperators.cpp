#include "browse/predicateoperators.h"

namespace corvanta::browse {

using Op = predicate::Predicate::Operator;

namespace {

struct OperatorLabel
{
    Op op;
    const char* label;
};

QList<OperatorLabel> labelsOf(OperatorSet set)
{
    switch (set) {
    case OperatorSet::Text:
        return {{Op::Equal, QT_TRANSLATE_NOOP("PredicateOperators", "is")},
                {Op::NotEqual, QT_TRANSLATE_NOOP("PredicateOperators", "is not")},
                {Op::Contains, QT_TRANSLATE_NOOP("PredicateOperators", "contains")},
                {Op::BeginsWith, QT_TRANSLATE_NOOP("PredicateOperators", "begins with")},
                {Op::EndsWith, QT_TRANSLATE_NOOP("PredicateOperators", "ends with")},
                {Op::Like, QT_TRANSLATE_NOOP("PredicateOperators", "is like")}};
    case OperatorSet::Number:
        return {{Op::Greater, QT_TRANSLATE_NOOP("PredicateOperators", "is greater than")},
                {Op::GreaterOrEqual, QT_TRANSLATE_NOOP("PredicateOperators", "is greater than or equal to")},
                {Op::Less, QT_TRANSLATE_NOOP("PredicateOperators", "is less than")},
                {Op::LessOrEqual, QT_TRANSLATE_NOOP("PredicateOperators", "is less than or equal to")},
                {Op::Equal, QT_TRANSLATE_NOOP("PredicateOperators", "is")},
                {Op::NotEqual, QT_TRANSLATE_NOOP("PredicateOperators", "is not")}};
    case OperatorSet::Date:
        return {{Op::Equal, QT_TRANSLATE_NOOP("PredicateOperators", "is the date")},
                {Op::Greater, QT_TRANSLATE_NOOP("PredicateOperators", "is after the date")},
                {Op::Less, QT_TRANSLATE_NOOP("PredicateOperators", "is before the date")}};
    case OperatorSet::RelativeDate:
    case OperatorSet::Choice:
        return {{Op::Equal, QT_TRANSLATE_NOOP("PredicateOperators", "is")}};
    }
    return {};
}

} // namespace

QList<Op> PredicateOperators::of(OperatorSet set)
{
    QList<Op> ops;
    for (const OperatorLabel& entry : labelsOf(set))
        ops << entry.op;
    return ops;
}

bool PredicateOperators::offers(OperatorSet set, Op op)
{
    return of(set).contains(op);
}

QString PredicateOperators::label(OperatorSet set, Op op)
{
    for (const OperatorLabel& entry : labelsOf(set)) {
        if (entry.op == op)
            return tr(entry.label);
    }
    return {};
}

QList<RowChoice> PredicateOperators::relativeDates()
{
    static const struct
    {
        const char* token;
        const char* label;
    } ranges[] = {
        {"@today", QT_TRANSLATE_NOOP("PredicateOperators", "today")},
        {"@yesterday", QT_TRANSLATE_NOOP("PredicateOperators", "yesterday")},
        {"@this_week", QT_TRANSLATE_NOOP("PredicateOperators", "this week")},
        {"@last_week", QT_TRANSLATE_NOOP("PredicateOperators", "last week")},
        {"@last_two_weeks", QT_TRANSLATE_NOOP("PredicateOperators", "last two weeks")},
        {"@this_month", QT_TRANSLATE_NOOP("PredicateOperators", "this month")},
        {"@last_month", QT_TRANSLATE_NOOP("PredicateOperators", "last month")},
        {"@last_three_months", QT_TRANSLATE_NOOP("PredicateOperators", "last three months")},
        {"@last_six_months", QT_TRANSLATE_NOOP("PredicateOperators", "last six months")},
        {"@this_year", QT_TRANSLATE_NOOP("PredicateOperators", "this year")},
        {"@last_year", QT_TRANSLATE_NOOP("PredicateOperators", "last year")},
    };
    QList<RowChoice> choices;
    for (const auto& range : ranges)
        choices.append({QString::fromLatin1(range.token), tr(range.label)});
    return choices;
}

} // namespace corvanta::browse
