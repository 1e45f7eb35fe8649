#pragma once

#include "predicate/recordref.h"

#include <QObject>

namespace corvanta::model {
class Prompter;
class Store;
} // namespace corvanta::model

namespace corvanta::documents {

// Deletes a document from a list after asking: its rows, tax summary and payments go with it, a
// cancellation partner forgets the link, and the stock of its items is counted again without it.
class DocumentDeleter : public QObject
{
    Q_OBJECT

public:
    DocumentDeleter(model::Store& store, model::Prompter& prompter, QObject* parent = nullptr);

    // True when the document is gone; false when it is not stored, the user declined or the
    // save failed (then nothing changed).
    bool deleteDocument(const predicate::RecordRef& document);

Q_SIGNALS:
    // Records changed that the sidebar counts.
    void countsChanged();

private:
    model::Store& m_store;
    model::Prompter& m_prompter;
};

} // namespace corvanta::documents
