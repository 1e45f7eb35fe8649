#pragma once

#include "clock.h"
#include "predicate/recordref.h"

#include <QObject>
#include <optional>

namespace corvanta::store {
class EditingContext;
class Record;
class Store;
} // namespace corvanta::store
namespace corvanta::support {
class Prompter;
}

namespace corvanta::documents {

// The payments of one document, as its payments sheet records them. Every change is stored at
// once; a failed save changes nothing.
class DocumentPayments : public QObject
{
    Q_OBJECT

public:
    DocumentPayments(store::Store& store, support::Prompter& prompter, Clock clock = systemClock(),
                     QObject* parent = nullptr);

    // Records a payment of `amount` (a finite amount of a sensible size, else refused with a
    // message) by `paymentType` (none: the company's default) at `date` (none: now).
    std::optional<predicate::RecordRef> addPayment(const predicate::RecordRef& document, double amount,
                                                   const predicate::RecordRef& paymentType = {},
                                                   const std::optional<QDateTime>& date = std::nullopt);
    bool removePayment(const predicate::RecordRef& payment);
    // Changes a recorded payment in place: its amount (checked as a new one is), how it was paid
    // (none: the company's default) and when. False when it is refused or cannot be saved.
    bool changePayment(const predicate::RecordRef& payment, double amount,
                       const predicate::RecordRef& paymentType, const QDateTime& date);
    // The document's total less its payments.
    double remaining(const predicate::RecordRef& document);

    // The sheet was left: with the settling button (`settle`), a rest above 0 is paid by the
    // company's default payment type now. True unless the save failed.
    bool closeDocumentPayments(const predicate::RecordRef& document, bool settle);

Q_SIGNALS:
    // Payments changed: the paid chart and the sidebar counts are out of date.
    void paymentsChanged(const corvanta::predicate::RecordRef& document);

private:
    bool save(store::EditingContext& context, const predicate::RecordRef& document);

    store::Store& m_store;
    support::Prompter& m_prompter;
    Clock m_clock;
};

} // namespace corvanta::documents
