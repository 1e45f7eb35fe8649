#pragma once

#include <QList>

namespace corvanta::model {
class EditingContext;
class Record;
} // namespace corvanta::model

namespace corvanta::documents {

// The currencies a document's currency is chosen from, by code: the selectable ones, the
// company's default, and the document's own (`current`, may be null), so that a currency made
// unselectable since still shows on the documents that use it.
QList<model::Record*> selectableCurrencies(model::EditingContext& context, const model::Record* current);

} // namespace corvanta::documents
