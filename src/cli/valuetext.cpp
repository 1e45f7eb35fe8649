#include "valuetext.h"

#include "format/relativedates.h"

#include <QLocale>
#include <cmath>

namespace corvanta::cli {

std::optional<double> ValueText::number(const QString& text)
{
    QLocale c = QLocale::c();
    c.setNumberOptions(QLocale::RejectGroupSeparator);
    bool ok = false;
    const double value = c.toDouble(text.trimmed(), &ok);
    // QLocale reads "nan" and "inf" too; they are no quantity, price or rate.
    return ok && std::isfinite(value) ? std::optional<double>(value) : std::nullopt;
}

std::optional<QDate> ValueText::date(const QString& text)
{
    const QDate value = QDate::fromString(text.trimmed(), QStringLiteral("yyyy-MM-dd"));
    return value.isValid() ? std::optional<QDate>(value) : std::nullopt;
}

QString ValueText::notANumber(const QString& what, const QString& text)
{
    return tr("%1: \"%2\" is not a number (write it like 1234.5).").arg(what, text);
}

QString ValueText::notADate(const QString& what, const QString& text)
{
    return tr("%1: \"%2\" is not a date (write it as YYYY-MM-DD, like 2024-03-15).").arg(what, text);
}

QDateTime ValueText::midday(const QDate& date)
{
    return format::dates::midday(date.startOfDay());
}

QString ValueText::day(const QVariant& moment)
{
    const QDateTime value = moment.toDateTime();
    return value.isValid() ? value.toLocalTime().date().toString(Qt::ISODate) : QString();
}

QString ValueText::plain(double number)
{
    return QLocale::c().toString(number, 'f', QLocale::FloatingPointShortest);
}

} // namespace corvanta::cli
