#pragma once

#include "predicate/recordref.h"

#include <QObject>

namespace corvanta::store {
class Store;
}
namespace corvanta::support {
class Prompter;
}

namespace corvanta::documents {

// Deletes a document from a list after asking: its rows, tax summary and payments go with it, a
// cancellation partner forgets the link, and the stock of its items is counted again without it.
class DocumentDeleter : public QObject
{
    Q_OBJECT

public:
    DocumentDeleter(store::Store& store, support::Prompter& prompter, QObject* parent = nullptr);

    // True when the document is gone; false when it is not stored, the user declined or the
    // save failed (then nothing changed).
    bool deleteDocument(const predicate::RecordRef& document);

Q_SIGNALS:
    // Records changed that the sidebar counts.
    void countsChanged();

private:
    store::Store& m_store;
    support::Prompter& m_prompter;
};

} // namespace corvanta::documents
