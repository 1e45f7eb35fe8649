#include "reportfiller.h"

#include "fieldreplacer.h"
#include "fillingsteps.h"
#include "format/formattedcurrency.h"
#include "predicate/literal.h"
#include "store/editingcontext.h"
#include "store/fetchrequest.h"
#include "store/record.h"
#include "templatetypes.h"

#include <QHash>
#include <QSet>
#include <algorithm>
#include <map>
#include <memory>

namespace corvanta::templates {

namespace {

QString s(const char* text)
{
    return QString::fromLatin1(text);
}

const char* const kDocumentSums[] = {"documents_sum_net", "documents_sum_tax1", "documents_sum_tax2",
                                     "documents_sum_total"};

struct GrandTotals
{
    double net = 0.0;
    double tax1 = 0.0;
    double tax2 = 0.0;
    double total = 0.0;
};

// The tax summaries of the report's documents, read in a few queries for all of them instead of
// one per document as they are reached; a document not among them is read on its own.
class SummaryCache
{
public:
    explicit SummaryCache(const QList<store::Record*>& documents)
    {
        constexpr qsizetype kBatch = 500;
        for (qsizetype first = 0; first < documents.size(); first += kBatch) {
            QVariantList refs;
            for (const store::Record* document : documents.mid(first, kBatch))
                refs << QVariant::fromValue(document->ref());
            store::EditingContext* context = documents.at(first)->context();
            for (store::Record* summary : context->fetch(store::FetchRequest(
                     s("DocumentSummaries"), predicate::literal("document IN %@", {QVariant(refs)}))))
                m_summaries[summary->related(s("document"))].append(summary);
        }
        for (QList<store::Record*>& summaries : m_summaries)
            std::sort(summaries.begin(), summaries.end(), filling::inOrder);
        for (const store::Record* document : documents)
            m_read.insert(document);
    }

    QList<store::Record*> inOrderOf(const store::Record& document) const
    {
        if (m_read.contains(&document))
            return m_summaries.value(&document);
        QList<store::Record*> summaries = document.relatedList(s("summaries"));
        std::sort(summaries.begin(), summaries.end(), filling::inOrder);
        return summaries;
    }

private:
    QHash<const store::Record*, QList<store::Record*>> m_summaries;
    QSet<const store::Record*> m_read;
};

// The documents whose summaries a report of `type` reads.
QList<store::Record*> summarisedDocuments(qint64 type, const ReportInput& input)
{
    QList<store::Record*> documents;
    for (const ReportInput::Row& row : input.rows) {
        const bool summarised =
            type == TemplateTypes::DocumentReport ||
            (type == TemplateTypes::DocumentsGroupedReport && row.groupType == QLatin1String("group_footer"));
        if (summarised && row.record)
            documents << row.record;
    }
    return documents;
}

void addSummaries(GrandTotals& totals, const QList<store::Record*>& summaries)
{
    for (const store::Record* summary : summaries) {
        totals.net += summary->value(s("net")).toDouble();
        totals.tax1 += summary->value(s("tax1_value")).toDouble();
        totals.tax2 += summary->value(s("tax2_value")).toDouble();
        totals.total += summary->value(s("total")).toDouble();
    }
}

// The first of the values that a client keeps joined by ",".
QString firstValue(const QVariant& joined)
{
    return joined.toString().section(QLatin1Char(','), 0, 0);
}

// Fills one kind of report row. The replacers are made on the first row of their entity and
// reused for the others.
class RowFiller
{
public:
    RowFiller(qint64 type, const ReportInput& input, const WorkingElements& fresh)
        : m_type(type)
        , m_currency(input.currency)
        , m_summaryCache(summarisedDocuments(type, input))
    {
        for (const char* section : {"details_header", "details", "details_footer"})
            m_sections.insert(s(section), filling::ofSection(fresh, s(section)));
    }

    TableEntry entry(const ReportInput::Row& row)
    {
        TableEntry entry;
        if (m_type == TemplateTypes::DocumentsGroupedReport) {
            if (row.groupType == QLatin1String("group_header"))
                entry.sectionType = s("details_header");
            else if (row.groupType == QLatin1String("group_footer"))
                entry.sectionType = s("details_footer");
        }
        entry.values = m_sections.value(entry.sectionType);
        if (!row.record)
            return entry;
        filling::replaceTexts(
            entry.values, [](const WorkingElement&) { return true; },
            [&](const QString& text) { return replaced(text, row); });
        if (entry.sectionType == QLatin1String("details_footer"))
            addSummaries(m_totals, m_summaryCache.inOrderOf(*row.record));
        else if (m_type == TemplateTypes::DocumentReport)
            addSummaries(m_totals, m_summaryCache.inOrderOf(*row.record));
        else if (m_type == TemplateTypes::ClientReport || m_type == TemplateTypes::ItemReport)
            addDocumentSums(row);
        return entry;
    }

    const GrandTotals& totals() const { return m_totals; }

private:
    QVariant documentSum(const ReportInput::Row& row, const QString& key) const
    {
        return row.sums.contains(key) ? row.sums.value(key) : row.record->value(key);
    }

    void addDocumentSums(const ReportInput::Row& row)
    {
        m_totals.net += documentSum(row, s("documents_sum_net")).toDouble();
        m_totals.tax1 += documentSum(row, s("documents_sum_tax1")).toDouble();
        m_totals.tax2 += documentSum(row, s("documents_sum_tax2")).toDouble();
        m_totals.total += documentSum(row, s("documents_sum_total")).toDouble();
    }

    const FieldReplacer& replacerFor(const store::Record& record, const QStringList& skipped = {})
    {
        std::unique_ptr<FieldReplacer>& replacer = m_replacers[record.entityName()];
        if (!replacer)
            replacer = std::make_unique<FieldReplacer>(record.entity(), m_currency, skipped);
        return *replacer;
    }

    QString replaced(const QString& text, const ReportInput::Row& row)
    {
        const store::Record& record = *row.record;
        if (!text.contains(QLatin1Char('@')))
            return text;
        if (m_type == TemplateTypes::DocumentsGroupedReport && row.groupType == QLatin1String("group_footer"))
            return summaryLines(text, record);
        if (m_type == TemplateTypes::ClientReport || m_type == TemplateTypes::ItemReport)
            return summaryRow(text, row);
        return replacerFor(record).replaced(text, record);
    }

    // A client or item with its sums; the relationships' fields and a client's first phone
    // number and e-mail address are put in before the record's own fields.
    QString summaryRow(QString text, const ReportInput::Row& row)
    {
        const store::Record& record = *row.record;
        QList<std::pair<QString, QString>> paths;
        QStringList skipped;
        for (const char* key : kDocumentSums)
            skipped << s(key);
        if (m_type == TemplateTypes::ClientReport) {
            for (const char* key : {"street", "city", "state", "country", "zip_code", "address_note"}) {
                const QString path = s("default_address.") + s(key);
                paths.append({QLatin1Char('@') + path, record.valueForKeyPath(path).toString()});
            }
            paths.append({s("@phones"), firstValue(record.value(s("phones")))});
            paths.append({s("@emails"), firstValue(record.value(s("emails")))});
            skipped << s("phones") << s("emails");
        } else {
            paths.append({s("@tax.name"), record.valueForKeyPath(s("tax.name")).toString()});
            paths.append({s("@unit.name"), record.valueForKeyPath(s("unit.name")).toString()});
        }
        text = filling::replacedTokens(text, paths);
        for (const char* key : kDocumentSums)
            text = FieldReplacer::replacedText(record.entity(), s(key), text, documentSum(row, s(key)),
                                               m_currency);
        text = replacerFor(record, skipped).replaced(text, record);
        if (m_type == TemplateTypes::ItemReport && text.contains(QLatin1String("@stock"))) {
            const QVariant stock = record.value(s("stock_current"));
            if (!stock.isNull())
                text.replace(s("@stock"), FieldReplacer::formattedNumber(stock.toDouble(), m_currency));
        }
        return text;
    }

    // A grouped report's document footer: its tax summaries one per line, and their sums.
    QString summaryLines(const QString& text, const store::Record& document) const
    {
        const QList<store::Record*> summaries = m_summaryCache.inOrderOf(document);
        const auto amount = [&](double value) { return format::formattedCurrency(value, m_currency); };
        const auto lines = [&](const char* key) {
            QStringList texts;
            for (const store::Record* summary : summaries)
                texts << amount(summary->value(s(key)).toDouble());
            return texts.join(QLatin1Char('\n'));
        };
        const auto sum = [&](const char* key) {
            return amount(document.valueForKeyPath(s("summaries.@sum.") + s(key)).toDouble());
        };
        QStringList taxNames;
        for (const store::Record* summary : summaries)
            taxNames << summary->value(s("tax_name")).toString();
        return filling::replacedTokens(text, {{s("@summary_tax_name"), taxNames.join(QLatin1Char('\n'))},
                                              {s("@summary_net"), lines("net")},
                                              {s("@summary_tax1"), lines("tax1_value")},
                                              {s("@summary_tax2"), lines("tax2_value")},
                                              {s("@summary_total"), lines("total")},
                                              {s("@summary_sum_net"), sum("net")},
                                              {s("@summary_sum_tax1"), sum("tax1_value")},
                                              {s("@summary_sum_tax2"), sum("tax2_value")},
                                              {s("@summary_sum_total"), sum("total")}});
    }

    qint64 m_type;
    const store::Record* m_currency;
    SummaryCache m_summaryCache;
    QHash<QString, WorkingElements> m_sections;
    std::map<QString, std::unique_ptr<FieldReplacer>> m_replacers;
    GrandTotals m_totals;
};

} // namespace

FilledTemplate ReportFiller::fill(store::Record* templateRecord, const ReportInput& input)
{
    const qint64 type = templateRecord ? templateRecord->value(s("type")).toLongLong() : 0;
    return fill(templateElements(templateRecord), type, input);
}

FilledTemplate ReportFiller::fill(const QList<store::Record*>& elements, qint64 templateType,
                                  const ReportInput& input)
{
    FilledTemplate filled;
    const WorkingElements fresh = resetReplaceElements(elements);

    filled.page = fresh;
    const QList<std::pair<QString, QString>> period{
        {s("@date_start"), FieldReplacer::shortDate(input.dateStart)},
        {s("@date_end"), FieldReplacer::shortDate(input.dateEnd)}};
    filling::replaceTexts(
        filled.page,
        [](const WorkingElement& e) {
            return !filling::isRowSection(e.section) && !filling::isTableFooter(e.section);
        },
        [&](const QString& text) { return filling::replacedTokens(text, period); });

    RowFiller rows(templateType, input, fresh);
    filled.rows.reserve(input.rows.size());
    for (const ReportInput::Row& row : input.rows)
        filled.rows.append(rows.entry(row));

    const GrandTotals& totals = rows.totals();
    const auto amount = [&](double value) { return format::formattedCurrency(value, input.currency); };
    const QList<std::pair<QString, QString>> grand{{s("@grand_net"), amount(totals.net)},
                                                   {s("@grand_tax1"), amount(totals.tax1)},
                                                   {s("@grand_tax2"), amount(totals.tax2)},
                                                   {s("@grand_total"), amount(totals.total)}};
    filled.tableFooter = fresh;
    filling::replaceTexts(
        filled.tableFooter, [](const WorkingElement& e) { return filling::isTableFooter(e.section); },
        [&](const QString& text) { return filling::replacedTokens(text, grand); });
    return filled;
}

} // namespace corvanta::templates
