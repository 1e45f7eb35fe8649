#include "numberformat.h"

#include "documenttypes.h"

namespace corvanta::documents {

namespace {

const char* const kDefaultFormats[DocumentTypes::kCount] = {
    QT_TRANSLATE_NOOP("NumberFormat", "INVOICE/,YYYY,-,NNNN"),
    QT_TRANSLATE_NOOP("NumberFormat", "PROFORMA/,YYYY,-,NNNN"),
    QT_TRANSLATE_NOOP("NumberFormat", "ESTIMATE/,YYYY,-,NNNN"),
    QT_TRANSLATE_NOOP("NumberFormat", "QUOTATION/,YYYY,-,NNNN"),
    QT_TRANSLATE_NOOP("NumberFormat", "DELIVERY NOTE/,YYYY,-,NNNN"),
    QT_TRANSLATE_NOOP("NumberFormat", "CREDIT NOTE/,YYYY,-,NNNN"),
    QT_TRANSLATE_NOOP("NumberFormat", "CREDIT MEMO/,YYYY,-,NNNN"),
    QT_TRANSLATE_NOOP("NumberFormat", "PURCHASE ORDER/,YYYY,-,NNNN"),
};

QString padded(qint64 number, int width)
{
    return QStringLiteral("%1").arg(number, width, 10, QLatin1Char('0'));
}

QString fourDigits(int year)
{
    return QStringLiteral("%1").arg(year, 4, 10, QLatin1Char('0'));
}

QString twoDigits(int year)
{
    return QStringLiteral("%1").arg(((year % 100) + 100) % 100, 2, 10, QLatin1Char('0'));
}

} // namespace

QString NumberFormat::substitute(QString format, const QString& longYear, const QString& shortYear,
                                 qint64 number)
{
    // Longer tokens go first, so that a shorter one never eats part of a longer one.
    format.replace(QLatin1String("YYYY"), longYear);
    format.replace(QLatin1String("YY"), shortYear);
    format.replace(QLatin1String("NNNNNN"), padded(number, 6));
    format.replace(QLatin1String("NNNNN"), padded(number, 5));
    format.replace(QLatin1String("NNNN"), padded(number, 4));
    format.remove(QLatin1Char(','));
    return format;
}

QString NumberFormat::render(const QString& format, const QDate& date, qint64 number)
{
    return substitute(format, fourDigits(date.year()), twoDigits(date.year()), number);
}

QString NumberFormat::sample(const QString& format, const QDate& today)
{
    int weekYear = today.year();
    today.weekNumber(&weekYear);
    return substitute(format, fourDigits(weekYear), twoDigits(weekYear), 123);
}

QString NumberFormat::defaultFormat(int type)
{
    return DocumentTypes::isValid(type) ? tr(kDefaultFormats[type]) : QString();
}

QString NumberFormat::settingKey(int type)
{
    return QStringLiteral("number_format_") + DocumentTypes::typeNameByNumber(type);
}

bool NumberFormat::isYearToken(const QString& token)
{
    return token == QLatin1String("YY") || token == QLatin1String("YYYY");
}

bool NumberFormat::isNumberToken(const QString& token)
{
    return token == QLatin1String("NNNN") || token == QLatin1String("NNNNN") ||
           token == QLatin1String("NNNNNN");
}

QStringList NumberFormat::menuEntries(const QString& token)
{
    if (isYearToken(token))
        return {QStringLiteral("YY"), QStringLiteral("YYYY")};
    if (isNumberToken(token))
        return {QStringLiteral("NNNN"), QStringLiteral("NNNNN"), QStringLiteral("NNNNNN")};
    return {};
}

} // namespace corvanta::documents
