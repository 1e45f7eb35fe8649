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

// Cancels a final invoice by its negative twin: a new, numbered document of today with every
// amount and quantity negated, which gives the stock back. The two documents point at each
// other through `cancel_reference`; the cancelled one is otherwise left as it was.
class DocumentCanceller : public QObject
{
    Q_OBJECT

public:
    DocumentCanceller(store::Store& store, support::Prompter& prompter, Clock clock = systemClock(),
                      QObject* parent = nullptr);

    // Only a final invoice that is neither cancelled nor a cancellation can be cancelled.
    static bool canCancel(const store::Record* document);

    // Asks, then stores the cancellation. Its reference, or nothing when the document cannot be
    // cancelled, the user declined or the save failed (then nothing changed).
    std::optional<predicate::RecordRef> cancel(const predicate::RecordRef& document);

Q_SIGNALS:
    // Records changed that the sidebar counts.
    void countsChanged();

private:
    store::Record* makeTwin(store::EditingContext& context, store::Record* original);
    void copyRows(store::EditingContext& context, store::Record* original, store::Record* twin);
    void copySummaries(store::EditingContext& context, store::Record* original, store::Record* twin);

    store::Store& m_store;
    support::Prompter& m_prompter;
    Clock m_clock;
};

} // namespace corvanta::documents
