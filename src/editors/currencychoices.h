#pragma once

#include <QList>

namespace corvanta::store {
class EditingContext;
class Record;
} // namespace corvanta::store

namespace corvanta::editors {

// The currencies a document's currency is chosen from, by code: the selectable ones, the
// company's default, and the document's own (`current`, may be null), so that a currency made
// unselectable since still shows on the documents that use it.
QList<store::Record*> selectableCurrencies(store::EditingContext& context, const store::Record* current);

} // namespace corvanta::editors
