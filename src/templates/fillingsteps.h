#pragma once

#include "workingelements.h"

#include <functional>

namespace corvanta::store {
class Record;
}

namespace corvanta::templates::filling {

// The sections whose elements are filled once per table row rather than once per page.
bool isRowSection(const QString& section);
bool isTableFooter(const QString& section);

// The working elements of `all` that belong to `section`.
WorkingElements ofSection(const WorkingElements& all, const QString& section);

// Applies `replace` to the text of every element of `elements` that carries one and for which
// `wanted` holds.
void replaceTexts(WorkingElements& elements, const std::function<bool(const WorkingElement&)>& wanted,
                  const std::function<QString(const QString&)>& replace);

// The order rows and tax summaries print in: ascending `order`, and for equal `order` the order
// in which they were made.
bool inOrder(const store::Record* a, const store::Record* b);

// Every literal "@" + key of `text` replaced by its value, longer keys first.
QString replacedTokens(QString text, QList<std::pair<QString, QString>> values);

} // namespace corvanta::templates::filling
