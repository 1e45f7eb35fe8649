#pragma once

#include "clock.h"
#include "predicate/recordref.h"

#include <QObject>
#include <optional>

namespace corvanta::store {
class Record;
class Store;
} // namespace corvanta::store
namespace corvanta::support {
class Prompter;
}

namespace corvanta::documents {

// Duplicates a document from a list: the copy is a new document of today with a fresh number,
// a due date from its client's payment term, the same client, terms, tags, rows and summaries,
// and no payments. A copy of a draft invoice stays a draft.
class DocumentCopier : public QObject
{
    Q_OBJECT

public:
    DocumentCopier(store::Store& store, support::Prompter& prompter, Clock clock = systemClock(),
                   QObject* parent = nullptr);

    // The stored copy, or nothing when the document is not stored or the save failed.
    std::optional<predicate::RecordRef> duplicate(const predicate::RecordRef& document);

Q_SIGNALS:
    // Records changed that the sidebar counts.
    void countsChanged();

private:
    store::Store& m_store;
    support::Prompter& m_prompter;
    Clock m_clock;
};

} // namespace corvanta::documents
