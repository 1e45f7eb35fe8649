#pragma once

#include "clock.h"
#include "predicate/recordref.h"

#include <QObject>

namespace corvanta::store {
class Store;
}
namespace corvanta::support {
class Prompter;
}

namespace corvanta::documents {

// Finalises a stored draft invoice from a list: after the user's consent it takes the next
// number of its type and year, counts for stock, and is stored at once.
class InvoiceFinalizer : public QObject
{
    Q_OBJECT

public:
    InvoiceFinalizer(store::Store& store, support::Prompter& prompter, Clock clock = systemClock(),
                     QObject* parent = nullptr);

    // True when the document is final, already or now; false when the user declined, the
    // document is not stored or the save failed (then nothing changed).
    bool finalizeInvoiceIfNeeded(const predicate::RecordRef& document);

Q_SIGNALS:
    void soundRequested(const QString& name);
    // Records changed that the sidebar counts.
    void countsChanged();

private:
    store::Store& m_store;
    support::Prompter& m_prompter;
    Clock m_clock;
};

} // namespace corvanta::documents
