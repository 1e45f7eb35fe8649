#include "paymentstatus.h"

#include "predicate/evaluator.h"
#include "predicate/literal.h"
#include "store/editingcontext.h"

namespace corvanta::documents {

namespace {

// The rules are parsed once; every judgement and count uses the same trees.
const predicate::Predicate& paidRule()
{
    static const predicate::Predicate rule = predicate::literal(PaymentStatus::paidPredicate());
    return rule;
}

const predicate::Predicate& unpaidRule()
{
    static const predicate::Predicate rule = predicate::literal(PaymentStatus::unpaidPredicate());
    return rule;
}

} // namespace

QString PaymentStatus::paidPredicate()
{
    return QStringLiteral("sum_total == payments.@sum.amount && type == 0 && draft == NO");
}

QString PaymentStatus::unpaidPredicate()
{
    return QStringLiteral(
        "sum_total != payments.@sum.amount && type == 0 && draft == NO && cancel_reference == NULL");
}

bool PaymentStatus::isPaid(const store::Record* document)
{
    return document && predicate::Evaluator::evaluate(paidRule(), *document);
}

bool PaymentStatus::isUnpaid(const store::Record* document)
{
    return document && predicate::Evaluator::evaluate(unpaidRule(), *document);
}

int PaymentStatus::countPaid(store::EditingContext& context)
{
    return context.count(store::FetchRequest(QStringLiteral("Documents"), paidRule()));
}

int PaymentStatus::countUnpaid(store::EditingContext& context)
{
    return context.count(store::FetchRequest(QStringLiteral("Documents"), unpaidRule()));
}

} // namespace corvanta::documents
