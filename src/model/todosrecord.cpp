#include "todosrecord.h"

#include <QDateTime>
#include <QLocale>
#include <algorithm>

namespace corvanta::model {

namespace {

QString s(const char* text)
{
    return QString::fromLatin1(text);
}

// The locale's name of a weekday numbered 1 Sunday … 7 Saturday (Qt counts 1 Monday … 7 Sunday).
QString weekdayName(int number)
{
    return QLocale().dayName(number == 1 ? 7 : number - 1, QLocale::LongFormat);
}

QDate localDate(const QVariant& value)
{
    return value.isNull() ? QDate() : value.toDateTime().toLocalTime().date();
}

} // namespace

QString ToDosRecord::summary(const store::Record* todo)
{
    const qint64 frequency = todo->value(s("repeat_frequency")).toLongLong();
    const QString every = QString::number(frequency);
    const QDate start = localDate(todo->value(s("date_start")));
    QString text;
    switch (todo->value(s("repeat_type")).toLongLong()) {
    case 1:
        text = frequency == 1 ? tr("Daily") : tr("Every %1 days").arg(every);
        break;
    case 2: {
        text = frequency == 1 ? tr("Weekly on ") : tr("Every %1 weeks on ").arg(every);
        const QVariantList weekdays = todo->value(s("repeat_weekdays")).toList();
        if (weekdays.isEmpty()) {
            text += tr("Sunday");
            break;
        }
        // A set has no order of its own: its days are named Sunday first, however they were
        // chosen. A number outside 1 … 7 names no weekday and is left out.
        QList<int> numbers;
        for (const QVariant& weekday : weekdays) {
            const int number = weekday.toInt();
            if (number >= 1 && number <= 7 && !numbers.contains(number))
                numbers << number;
        }
        std::sort(numbers.begin(), numbers.end());
        QStringList names;
        for (const int number : numbers)
            names << weekdayName(number);
        text += names.join(s(", "));
        break;
    }
    case 3:
        text = frequency == 1 ? tr("Monthly") : tr("Every %1 months").arg(every);
        // Without a start there is no day to name.
        if (!start.isValid())
            break;
        if (todo->value(s("repeat_monthly_day_of")).toLongLong() != 0) {
            static const char* const ordinals[] = {QT_TR_NOOP("first"), QT_TR_NOOP("second"),
                                                   QT_TR_NOOP("third"), QT_TR_NOOP("fourth"),
                                                   QT_TR_NOOP("last")};
            const int ordinal = (start.day() - 1) / 7; // 0 … 4
            text += tr(" on the %1 %2").arg(tr(ordinals[ordinal]), weekdayName(start.dayOfWeek() % 7 + 1));
        } else {
            text += tr(" on day %1").arg(start.day());
        }
        break;
    case 4:
        text = frequency == 1 ? tr("Annually on %1").arg(QLocale().toString(start, s("MMMM d")))
                              : tr("Every %1 years").arg(every);
        break;
    default:
        break;
    }
    // The count shows the frequency, not `repeat_occurrences`: that is the text users know.
    switch (todo->value(s("repeat_end_type")).toLongLong()) {
    case 1:
        text += tr(", %1 times").arg(every);
        break;
    case 2:
        text +=
            tr(", until %1")
                .arg(QLocale().toString(localDate(todo->value(s("repeat_end_date"))), QLocale::ShortFormat));
        break;
    default:
        break;
    }
    return text;
}

void ToDosRecord::setSummary()
{
    // A summary stored under another language or locale is corrected at the next save.
    setPrimitiveValue(s("repeat_summary"), summary(this), true);
}

void ToDosRecord::awakeFromFetch()
{
    // A to-do stored without a summary that has nothing to summarise is left as it is, so that
    // reading it changes nothing.
    const QString text = summary(this);
    if (!text.isEmpty() || !primitiveValue(s("repeat_summary")).isNull())
        setPrimitiveValue(s("repeat_summary"), text, true);
}

void ToDosRecord::awakeFromInsert()
{
    setSummary();
}

void ToDosRecord::didChangeValue(const QString& key)
{
    static const QStringList recurrenceKeys{
        s("repeat_type"),     s("repeat_frequency"),   s("repeat_weekdays"), s("repeat_monthly_day_of"),
        s("repeat_end_type"), s("repeat_occurrences"), s("repeat_end_date"), s("date_start"),
    };
    if (recurrenceKeys.contains(key))
        setSummary();
}

} // namespace corvanta::model
