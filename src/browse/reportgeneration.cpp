#include "browse/reportgeneration.h"

#include "predicate/literal.h"
#include "store/editingcontext.h"
#include "store/record.h"
#include "templates/documentfiller.h"
#include "templates/templatetypes.h"

namespace corvanta::browse {

using store::Record;
using templates::ReportInput;
using templates::TemplateTypes;

namespace {

QString s(const char* text)
{
    return QString::fromLatin1(text);
}

QVariantMap sumsMap(const DocumentSums& sums)
{
    return {{s("documents_sum_net"), sums.net},
            {s("documents_sum_tax1"), sums.tax1},
            {s("documents_sum_tax2"), sums.tax2},
            {s("documents_sum_total"), sums.total}};
}

// The listed rows' documents in the order they first appear, each with its listed rows.
QList<std::pair<Record*, QList<Record*>>> rowsByDocument(const QList<Record*>& rows)
{
    QList<std::pair<Record*, QList<Record*>>> groups;
    QHash<const Record*, qsizetype> indexOf;
    for (Record* row : rows) {
        Record* document = row->related(s("document"));
        const auto it = indexOf.constFind(document);
        if (it == indexOf.cend()) {
            indexOf.insert(document, groups.size());
            groups.append(std::make_pair(document, QList<Record*>{row}));
        } else {
            groups[*it].second << row;
        }
    }
    return groups;
}

// Reads the rows of all the documents in a few queries, before the groups reach them one by one.
void prefetchRows(const QList<Record*>& documents)
{
    constexpr qsizetype kBatch = 500;
    for (qsizetype first = 0; first < documents.size(); first += kBatch) {
        QVariantList refs;
        for (const Record* document : documents.mid(first, kBatch))
            refs << QVariant::fromValue(document->ref());
        documents.at(first)->context()->fetch(
            store::FetchRequest(s("DocumentRows"), predicate::literal("document IN %@", {QVariant(refs)})));
    }
}

} // namespace

bool ReportGeneration::offers(ReportView view, qint64 templateType)
{
    switch (view) {
    case ReportView::Documents:
        return templateType == TemplateTypes::DocumentReport ||
               templateType == TemplateTypes::DocumentsGroupedReport;
    case ReportView::DocumentRows:
        return templateType == TemplateTypes::DocumentsGroupedReport;
    case ReportView::ClientSums:
        return templateType == TemplateTypes::ClientReport;
    case ReportView::ItemSums:
        return templateType == TemplateTypes::ItemReport;
    }
    return false;
}

QVariantMap ReportGeneration::options(const ReportResult& result, qint64 templateType)
{
    return {{s("date_start"), result.options.fromDate},
            {s("date_end"), result.options.toDate},
            {s("currency"), QVariant::fromValue(result.options.currency)},
            {s("type"), templateType},
            {s("view"), int(result.options.view)}};
}

ReportInput ReportGeneration::input(const ReportResult& result, qint64 templateType)
{
    ReportInput input;
    input.dateStart = result.options.fromDate;
    input.dateEnd = result.options.toDate;
    input.currency = result.options.currency;
    QList<Record*> records = result.records;
    if (records.isEmpty()) {
        for (qsizetype row = 0; row < result.size(); ++row)
            records << result.recordAt(row);
    }
    switch (templateType) {
    case TemplateTypes::DocumentReport:
        for (Record* record : records)
            input.rows.append({record, {}, {}});
        break;
    case TemplateTypes::DocumentsGroupedReport: {
        QList<std::pair<Record*, QList<Record*>>> groups;
        if (result.options.view == ReportView::DocumentRows) {
            groups = rowsByDocument(records);
        } else {
            prefetchRows(records);
            for (Record* document : records)
                groups.append(std::make_pair(document, templates::DocumentFiller::rowsInOrder(document)));
        }
        for (const auto& [document, rows] : std::as_const(groups)) {
            input.rows.append({document, s("group_header"), {}});
            for (Record* row : rows)
                input.rows.append({row, s("group_detail"), {}});
            input.rows.append({document, s("group_footer"), {}});
        }
        break;
    }
    case TemplateTypes::ClientReport:
    case TemplateTypes::ItemReport:
        for (Record* record : records)
            input.rows.append({record, {}, sumsMap(result.sumsOf(record))});
        break;
    default:
        break;
    }
    return input;
}

QString ReportGeneration::fileName(const QDate& today)
{
    return tr("Corvanta Report %1").arg(today.toString(QStringLiteral("yyyy-MM-dd")));
}

} // namespace corvanta::browse
