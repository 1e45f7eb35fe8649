#include "documentpayments.h"

#include "model/companyrecord.h"
#include "numberlimits.h"
#include "savefailure.h"
#include "store/editingcontext.h"
#include "store/store.h"

namespace corvanta::documents {

using model::CompanyRecord;

using store::Record;

namespace {

QString s(const char* key)
{
    return QString::fromLatin1(key);
}

} // namespace

DocumentPayments::DocumentPayments(store::Store& store, support::Prompter& prompter, Clock clock,
                                   QObject* parent)
    : QObject(parent)
    , m_store(store)
    , m_prompter(prompter)
    , m_clock(std::move(clock))
{}

std::optional<predicate::RecordRef> DocumentPayments::addPayment(const predicate::RecordRef& document,
                                                                 double amount,
                                                                 const predicate::RecordRef& paymentType,
                                                                 const std::optional<QDateTime>& date)
{
    if (!NumberLimits::accept(NumberLimits::Kind::Amount, amount, m_prompter))
        return std::nullopt;
    std::unique_ptr<store::EditingContext> context = m_store.newContext();
    Record* owner = context->fetchRecord(s("Documents"), document);
    if (!owner)
        return std::nullopt;
    Record* type = paymentType.isNull() ? CompanyRecord::defaultRecord(*context, s("default_payment_type"))
                                        : context->fetchRecord(s("PaymentTypes"), paymentType);
    Record* payment =
        context->insertRecord(s("Payments"), {{s("amount"), amount}, {s("date"), date.value_or(m_clock())}});
    payment->setRelated(s("payment"), type);
    payment->setRelated(s("document"), owner);
    if (!save(*context, document))
        return std::nullopt;
    return payment->ref();
}

bool DocumentPayments::removePayment(const predicate::RecordRef& paymentRef)
{
    std::unique_ptr<store::EditingContext> context = m_store.newContext();
    Record* payment = context->fetchRecord(s("Payments"), paymentRef);
    if (!payment)
        return false;
    const Record* document = payment->related(s("document"));
    const predicate::RecordRef documentRef = document ? document->ref() : predicate::RecordRef{};
    context->deleteRecord(payment);
    return save(*context, documentRef);
}

bool DocumentPayments::changePayment(const predicate::RecordRef& paymentRef, double amount,
                                     const predicate::RecordRef& paymentType, const QDateTime& date)
{
    if (!NumberLimits::accept(NumberLimits::Kind::Amount, amount, m_prompter))
        return false;
    std::unique_ptr<store::EditingContext> context = m_store.newContext();
    Record* payment = context->fetchRecord(s("Payments"), paymentRef);
    if (!payment || !date.isValid())
        return false;
    Record* type = paymentType.isNull() ? CompanyRecord::defaultRecord(*context, s("default_payment_type"))
                                        : context->fetchRecord(s("PaymentTypes"), paymentType);
    payment->setValue(s("amount"), amount);
    payment->setValue(s("date"), date);
    payment->setRelated(s("payment"), type);
    const Record* document = payment->related(s("document"));
    return save(*context, document ? document->ref() : predicate::RecordRef{});
}

double DocumentPayments::remaining(const predicate::RecordRef& document)
{
    std::unique_ptr<store::EditingContext> context = m_store.newContext();
    const Record* owner = context->fetchRecord(s("Documents"), document);
    if (!owner)
        return 0.0;
    return owner->value(s("sum_total")).toDouble() -
           owner->valueForKeyPath(s("payments.@sum.amount")).toDouble();
}

bool DocumentPayments::closeDocumentPayments(const predicate::RecordRef& document, bool settle)
{
    const double rest = remaining(document);
    if (settle && rest > 0)
        return addPayment(document, rest).has_value();
    Q_EMIT paymentsChanged(document);
    return true;
}

bool DocumentPayments::save(store::EditingContext& context, const predicate::RecordRef& document)
{
    store::StoreError error;
    if (!context.save(&error)) {
        SaveFailure::show(m_prompter, error);
        return false;
    }
    Q_EMIT paymentsChanged(document);
    return true;
}

} // namespace corvanta::documents
