#pragma once

#include "browse/reportoptions.h"

#include <QList>
#include <QString>

namespace corvanta::store {
class EditingContext;
}

namespace corvanta::browse {

// One column of a report's list: the key path it shows of each listed record, its title and
// whether it is hidden.
struct ReportColumn
{
    QString key;
    QString title;
    double width = 0.0;
    bool hidden = false;
};

// The columns of a view, from its `ReportColumns` records in their `order`.
class ReportColumns
{
public:
    static QList<ReportColumn> of(store::EditingContext& context, ReportView view);

    // The custom-field definition (`Compose` name) a column key shows, or empty when it shows
    // none: "client_custom03" (also reached as "document.client_custom03") is the client field;
    // "custom02" and "custom_price01" are the client's fields in the client view and the
    // item's elsewhere.
    static QString customFieldName(const QString& key, ReportView view);
};

} // namespace corvanta::browse
