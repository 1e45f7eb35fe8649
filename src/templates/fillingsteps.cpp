#include "fillingsteps.h"

#include "store/record.h"

#include <algorithm>

namespace corvanta::templates::filling {

bool isRowSection(const QString& section)
{
    return section.contains(QLatin1String("details"));
}

bool isTableFooter(const QString& section)
{
    return section == QLatin1String("table_footer");
}

WorkingElements ofSection(const WorkingElements& all, const QString& section)
{
    WorkingElements elements;
    for (const WorkingElement& element : all) {
        if (element.section == section)
            elements.append(element);
    }
    return elements;
}

void replaceTexts(WorkingElements& elements, const std::function<bool(const WorkingElement&)>& wanted,
                  const std::function<QString(const QString&)>& replace)
{
    for (WorkingElement& element : elements) {
        if (!element.isShape() && wanted(element))
            element.text = replace(element.text);
    }
}

QString replacedTokens(QString text, QList<std::pair<QString, QString>> values)
{
    if (!text.contains(QLatin1Char('@')))
        return text;
    std::stable_sort(values.begin(), values.end(),
                     [](const auto& a, const auto& b) { return a.first.size() > b.first.size(); });
    for (const auto& [token, value] : values)
        text.replace(token, value);
    return text;
}

bool inOrder(const store::Record* a, const store::Record* b)
{
    const qint64 orderA = a->value(QStringLiteral("order")).toLongLong();
    const qint64 orderB = b->value(QStringLiteral("order")).toLongLong();
    return orderA != orderB ? orderA < orderB : a->pk() < b->pk();
}

} // namespace corvanta::templates::filling
