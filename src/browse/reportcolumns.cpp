#include "browse/reportcolumns.h"

#include "documents/customfields.h"
#include "predicate/literal.h"
#include "store/editingcontext.h"
#include "store/record.h"

namespace corvanta::browse {

namespace {

QString s(const char* text)
{
    return QString::fromLatin1(text);
}

} // namespace

QString ReportColumns::customFieldName(const QString& key, ReportView view)
{
    const QString last = key.section(QLatin1Char('.'), -1);
    if (last.startsWith(s("client_custom")))
        return last;
    if (last.startsWith(s("custom")))
        return (view == ReportView::ClientSums ? s("client_") : s("item_")) + last;
    return {};
}

QList<ReportColumn> ReportColumns::of(store::EditingContext& context, ReportView view)
{
    const QList<store::Record*> records = context.fetch(store::FetchRequest(
        s("ReportColumns"), predicate::literal("view == %ld", {qint64(view)}), {{s("order"), true}}));
    QHash<QString, QString> labels;
    for (const store::Record* field : context.fetch(store::FetchRequest(s("Compose"))))
        labels.insert(field->value(s("name")).toString(), documents::CustomFields::displayName(field));

    QList<ReportColumn> columns;
    columns.reserve(records.size());
    for (const store::Record* record : records) {
        ReportColumn column;
        column.key = record->value(s("column")).toString();
        column.title = record->value(s("title")).toString();
        column.width = record->value(s("width")).toDouble();
        column.hidden = record->value(s("hidden")).toBool();
        const QString field = customFieldName(column.key, view);
        if (!field.isEmpty() && labels.contains(field))
            column.title = labels.value(field);
        columns << column;
    }
    return columns;
}

} // namespace corvanta::browse
