#pragma once

#include <QList>
#include <QString>

namespace corvanta::store {
class EditingContext;
class Record;
} // namespace corvanta::store

namespace corvanta::documents {

// The user-defined fields: `Compose` records named with the prefix of their group ("my_" for
// the company, "client_", "item_") and a two-digit index, each with a label.
class CustomFields
{
public:
    // The definitions of one group that are not labelled empty, by name
    // ("name beginswith[c] %@ && label != ''"; a definition without any label is listed).
    static QList<store::Record*> group(store::EditingContext& context, const QString& prefix);

    // The name shown for a field without a label, made from its key: the group prefixes
    // removed, "_" as blanks, the two-digit index taken off the end, every word capitalised,
    // and the index appended as a number: "client_custom03" -> "Custom 3",
    // "item_custom_price02" -> "Custom Price 2".
    static QString readableName(const QString& key);

    // The label of a definition, or the readable name of its key when it has none.
    static QString displayName(const store::Record* field);
};

} // namespace corvanta::documents
