#include "crashsoaktoken.h"

#include <QRegularExpression>
#include <QStringList>

namespace corvanta::bench {

DocumentToken::DocumentToken(int serial, int type, QList<Row> rows)
    : m_serial(serial)
    , m_type(type)
    , m_rows(std::move(rows))
{}

const QList<DocumentToken::Tax>& DocumentToken::taxes()
{
    static const QList<Tax> list{{QStringLiteral("10%"), 10, 0}, {QStringLiteral("GST / PST"), 5, 7}};
    return list;
}

QString DocumentToken::rowName(int index) const
{
    const Row& row = m_rows.at(index);
    return QStringLiteral("soak %1 T%2 %3/%4 %5x%6 tax%7")
        .arg(m_serial)
        .arg(m_type)
        .arg(index + 1)
        .arg(m_rows.size())
        .arg(row.quantity, row.price)
        .arg(row.tax);
}

QStringList DocumentToken::rowArguments() const
{
    QStringList arguments;
    for (int i = 0; i < m_rows.size(); ++i) {
        const Row& row = m_rows.at(i);
        arguments << QStringLiteral("--row")
                  << QStringList{rowName(i), row.quantity, row.price, taxes().at(row.tax).name}.join(
                         QLatin1Char(';'));
    }
    return arguments;
}

std::optional<DocumentToken::RowName> DocumentToken::parse(const QString& rowName)
{
    static const QRegularExpression pattern(
        QStringLiteral(R"(^soak (\d+) T(\d) (\d+)/(\d+) ([0-9.]+)x([0-9.]+) tax(\d)$)"));
    const QRegularExpressionMatch match = pattern.match(rowName);
    if (!match.hasMatch())
        return std::nullopt;
    RowName name;
    name.serial = match.captured(1).toInt();
    name.type = match.captured(2).toInt();
    name.index = match.captured(3).toInt();
    name.count = match.captured(4).toInt();
    name.quantity = match.captured(5).toDouble();
    name.price = match.captured(6).toDouble();
    name.tax = match.captured(7).toInt();
    if (name.index < 1 || name.index > name.count || name.tax >= taxes().size())
        return std::nullopt;
    return name;
}

DocumentToken::RowFigures DocumentToken::figures(double quantity, double price, int tax)
{
    const Tax& rates = taxes().at(tax);
    RowFigures f;
    f.net = quantity * price;
    f.tax1 = f.net * rates.rate1 / 100.0;
    f.tax2 = f.net * rates.rate2 / 100.0;
    f.total = f.net + f.tax1 + f.tax2;
    return f;
}

} // namespace corvanta::bench
