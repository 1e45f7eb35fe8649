#include "browse/pagechart.h"

#include "browse/htmltext.h"
#include "predicate/literal.h"
#include "store/editingcontext.h"

#include <QLocale>

namespace corvanta::browse {

using store::Record;

namespace {

QString s(const char* text)
{
    return QString::fromLatin1(text);
}

constexpr int kLongestMonthlyRange = 24;

} // namespace

PageChart::Series PageChart::of(Record* owner, const QString& currencyCode, const QDate& from,
                                const QDate& to)
{
    Series series;
    if (!owner || !from.isValid() || !to.isValid() || to < from)
        return series;
    const bool client = owner->entityName() == s("Clients");
    if (!client && owner->entityName() != s("Items"))
        return series;
    const QString entity = client ? s("Documents") : s("DocumentRows");
    const QString sumKey = client ? s("sum_total") : s("total");

    const int months = (to.year() - from.year()) * 12 + to.month() - from.month() + 1;
    const bool monthly = months <= kLongestMonthlyRange;
    QDate start = from;
    while (start <= to) {
        QDate next =
            monthly ? QDate(start.year(), start.month(), 1).addMonths(1) : QDate(start.year() + 1, 1, 1);
        const QDate end = qMin(next, to.addDays(1));
        const store::FetchRequest period(
            entity,
            predicate::literal(
                client ? "draft == NO && client == %@ && currency.code == %@ && date_creation >= %@ && "
                         "date_creation < %@"
                       : "item == %@ && document.draft == NO && document.currency.code == %@ && "
                         "document.date_creation >= %@ && document.date_creation < %@",
                {QVariant::fromValue(owner->ref()), currencyCode, start.startOfDay(), end.startOfDay()}));
        const std::optional<QVariant> sum =
            owner->context()->storedAggregate(period, store::Aggregate::Sum, sumKey);
        series.labels << QLocale().toString(start, monthly ? s("MMM yyyy") : s("yyyy"));
        series.values << (sum ? sum->toDouble() : 0.0);
        start = next;
    }
    return series;
}

QString PageChart::script(const Series& series)
{
    QStringList labels;
    for (const QString& label : series.labels)
        labels << HtmlText::scriptString(label);
    QStringList values;
    for (double value : series.values)
        values << QString::asprintf("%f", value);
    return QStringLiteral("addChartValues([%1], [%2])")
        .arg(labels.join(QLatin1String(", ")), values.join(QLatin1String(", ")));
}

} // namespace corvanta::browse
