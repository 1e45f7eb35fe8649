#pragma once

#include <QCoreApplication>
#include <QDate>
#include <QDateTime>
#include <optional>

namespace corvanta::cli {

// Numbers and dates as the command line writes them: numbers with a "." before the fraction and
// no grouping ("1234.5", "-2"), dates as YYYY-MM-DD.
class ValueText
{
    Q_DECLARE_TR_FUNCTIONS(ValueText)

public:
    static std::optional<double> number(const QString& text);
    static std::optional<QDate> date(const QString& text);
    static QString notANumber(const QString& what, const QString& text);
    static QString notADate(const QString& what, const QString& text);

    // A date of the command line as the moment the documents store for a day: its midday.
    static QDateTime midday(const QDate& date);
    // A stored moment as a day, YYYY-MM-DD in local time; empty for none.
    static QString day(const QVariant& moment);
    // A number in the shortest form that reads back the same ("2", "0.125").
    static QString plain(double number);
};

} // namespace corvanta::cli
