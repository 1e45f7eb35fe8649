#pragma once

#include <QString>

namespace corvanta::model {
class EditingContext;
class Record;
} // namespace corvanta::model

namespace corvanta::documents {

// The company record (MyCompany) of an editing context and the defaults it holds.
class CompanyRecord
{
public:
    // The one MyCompany record of the context, or null in a database without one.
    static model::Record* of(model::EditingContext& context);
    // The company's default record under `key` ("default_tax", "default_unit" ...), or null.
    static model::Record* defaultRecord(model::EditingContext& context, const QString& key);
    // The company's default template for a document type, or null.
    static model::Record* defaultTemplate(model::EditingContext& context, qint64 type);
};

} // namespace corvanta::documents
