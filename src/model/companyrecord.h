#pragma once

#include <QString>

namespace corvanta::store {
class EditingContext;
class Record;
} // namespace corvanta::store

namespace corvanta::model {

// The company record (MyCompany) of an editing context and the defaults it holds.
class CompanyRecord
{
public:
    // The one MyCompany record of the context, or null in a database without one.
    static store::Record* of(store::EditingContext& context);
    // The company's default record under `key` ("default_tax", "default_unit" ...), or null.
    static store::Record* defaultRecord(store::EditingContext& context, const QString& key);
};

} // namespace corvanta::model
