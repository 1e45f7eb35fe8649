#pragma once

#include "clock.h"
#include "predicate/recordref.h"

#include <QObject>
#include <optional>

namespace corvanta::model {
class EditingContext;
class Prompter;
class Record;
class Store;
} // namespace corvanta::model

namespace corvanta::documents {

// Cancels a final invoice by its negative twin: a new, numbered document of today with every
// amount and quantity negated, which gives the stock back. The two documents point at each
// other through `cancel_reference`; the cancelled one is otherwise left as it was.
class DocumentCanceller : public QObject
{
    Q_OBJECT

public:
    DocumentCanceller(model::Store& store, model::Prompter& prompter, Clock clock = systemClock(),
                      QObject* parent = nullptr);

    // Only a final invoice that is neither cancelled nor a cancellation can be cancelled.
    static bool canCancel(const model::Record* document);

    // Asks, then stores the cancellation. Its reference, or nothing when the document cannot be
    // cancelled, the user declined or the save failed (then nothing changed).
    std::optional<predicate::RecordRef> cancel(const predicate::RecordRef& document);

Q_SIGNALS:
    // Records changed that the sidebar counts.
    void countsChanged();

private:
    model::Record* makeTwin(model::EditingContext& context, model::Record* original);
    void copyRows(model::EditingContext& context, model::Record* original, model::Record* twin);
    void copySummaries(model::EditingContext& context, model::Record* original, model::Record* twin);

    model::Store& m_store;
    model::Prompter& m_prompter;
    Clock m_clock;
};

} // namespace corvanta::documents
