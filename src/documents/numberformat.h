#pragma once

#include <QCoreApplication>
#include <QDate>
#include <QStringList>

namespace corvanta::documents {

// The language of document number formats: tokens joined by commas, where YYYY and YY stand for
// the year and NNNNNN, NNNNN and NNNN for the number zero-padded to 6, 5 or 4 digits; every other
// piece is literal text.
class NumberFormat
{
    Q_DECLARE_TR_FUNCTIONS(NumberFormat)

public:
    // The number as printed: the tokens replaced over the whole text, longest first, then every
    // comma removed. A number wider than its padding is written in full.
    static QString render(const QString& format, const QDate& date, qint64 number);
    // The preview shown beside a format: number 123 and the week-based year of `today`, which
    // around New Year may differ from the calendar year that real numbers use.
    static QString sample(const QString& format, const QDate& today);

    // The format a new database starts with, and a reset restores ("INVOICE/,YYYY,-,NNNN" ...).
    static QString defaultFormat(int type);
    // The setting that holds a type's format ("number_format_invoice" ...).
    static QString settingKey(int type);

    // The pieces of a format as its token field shows them.
    static QStringList tokens(const QString& format) { return format.split(QLatin1Char(',')); }
    static bool isYearToken(const QString& token);
    static bool isNumberToken(const QString& token);
    // The entries of a token's menu: the year forms or the number forms; none for plain text.
    static QStringList menuEntries(const QString& token);

private:
    static QString substitute(QString format, const QString& longYear, const QString& shortYear,
                              qint64 number);
};

} // namespace corvanta::documents
