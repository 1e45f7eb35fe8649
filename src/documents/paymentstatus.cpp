#include "paymentstatus.h"

#include "model/editingcontext.h"
#include "predicate/evaluator.h"
#include "predicate/parser.h"

namespace corvanta::documents {

namespace {

predicate::Predicate parsed(const QString& text)
{
    return *predicate::Parser::parse(text);
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

bool PaymentStatus::isPaid(const model::Record* document)
{
    return document && predicate::Evaluator::evaluate(parsed(paidPredicate()), *document);
}

bool PaymentStatus::isUnpaid(const model::Record* document)
{
    return document && predicate::Evaluator::evaluate(parsed(unpaidPredicate()), *document);
}

int PaymentStatus::countPaid(model::EditingContext& context)
{
    return context.count(model::FetchRequest(QStringLiteral("Documents"), parsed(paidPredicate())));
}

int PaymentStatus::countUnpaid(model::EditingContext& context)
{
    return context.count(model::FetchRequest(QStringLiteral("Documents"), parsed(unpaidPredicate())));
}

} // namespace corvanta::documents
