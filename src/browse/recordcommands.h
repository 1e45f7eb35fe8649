#pragma once

#include "browse/listkind.h"
#include "predicate/recordref.h"

#include <QDateTime>
#include <QObject>
#include <functional>
#include <optional>

namespace corvanta::store {
class EditingContext;
class Record;
class Store;
} // namespace corvanta::store
namespace corvanta::support {
class Prompter;
}

namespace corvanta::browse {

// The browser's commands on the record of a list: delete, cancel and duplicate. Each works in
// an editing context of its own and saves at once; the main context merges the save, so the
// lists and the sidebar follow. Nothing is changed when the user declines or a save fails.
class RecordCommands : public QObject
{
    Q_OBJECT

public:
    using Clock = std::function<QDateTime()>;

    RecordCommands(store::Store& store, support::Prompter& prompter, Clock clock = {},
                   QObject* parent = nullptr);

    // The record a detail page shows, by its kind and `identifier`; nothing when none has it.
    static std::optional<predicate::RecordRef> lookUp(store::EditingContext& context, ListKind kind,
                                                      const QString& identifier);

    // Asks with the kind's question, then deletes a client, item, document or to-do. True
    // when it is gone.
    bool deleteRecord(const predicate::RecordRef& record);
    // Asks, then cancels a final invoice by its cancellation document, which it returns.
    std::optional<predicate::RecordRef> cancelDocument(const predicate::RecordRef& document);
    // A stored copy with the record's tags: a client or an item named "<name> Copy" (a client
    // with copies of its addresses and contacts), a to-do as it was, a document as a new one of
    // today with a fresh number.
    std::optional<predicate::RecordRef> duplicate(const predicate::RecordRef& record);

private:
    bool deleteAfterQuestion(const predicate::RecordRef& ref);
    void copyClient(store::Record* original, store::Record* copy);
    void copyItem(store::Record* original, store::Record* copy);
    bool save(store::EditingContext& context);

    store::Store& m_store;
    support::Prompter& m_prompter;
    Clock m_clock;
};

} // namespace corvanta::browse
