#include "todofactory.h"

#include "batchinserter.h"
#include "random.h"
#include "referencedata.h"
#include "sampletext.h"

#include <QTimeZone>
#include <QVariantList>
#include <algorithm>

namespace corvanta::bench {

using store::Record;

namespace {

enum RepeatType { NoRepeat = 0, Daily = 1, Weekly = 2, Monthly = 3, Yearly = 4 };

QString weekdayName(int day)
{
    static const char* const names[] = {"Mon", "Tue", "Wed", "Thu", "Fri", "Sat", "Sun"};
    return QString::fromLatin1(names[(day - 1) % 7]);
}

} // namespace

ToDoFactory::ToDoFactory(BatchInserter& inserter, Random& random, const ReferenceData& reference,
                         QList<qint64> clients, QList<qint64> items, QDate firstDay, QDate lastDay)
    : m_inserter(inserter)
    , m_random(random)
    , m_reference(reference)
    , m_clients(std::move(clients))
    , m_items(std::move(items))
    , m_firstDay(firstDay)
    , m_days(int(firstDay.daysTo(lastDay)) + 1)
{}

bool ToDoFactory::make()
{
    const int day = m_random.between(0, m_days - 1);
    const bool allDay = m_random.chance(0.3);
    const QDate date = m_firstDay.addDays(day);
    const QDateTime start =
        allDay
            ? QDateTime(date, QTime(0, 0), QTimeZone::utc())
            : QDateTime(date, QTime(m_random.between(8, 17), 15 * m_random.between(0, 3)), QTimeZone::utc());
    const QDateTime end =
        allDay ? start.addDays(1).addSecs(-1) : start.addSecs(1800 * m_random.between(1, 6));

    Record* toDo = m_inserter.insert(QStringLiteral("ToDos"));
    toDo->setValue(QStringLiteral("title"), SampleText::toDoTitle(m_random));
    if (m_random.chance(0.4))
        toDo->setValue(QStringLiteral("desc"), SampleText::sentence(m_random));
    toDo->setValue(QStringLiteral("date_start"), start);
    toDo->setValue(QStringLiteral("date_end"), end);
    toDo->setValue(QStringLiteral("all_day"), allDay);
    toDo->setValue(QStringLiteral("done"), m_random.chance(day < m_days - 30 ? 0.9 : 0.2));
    toDo->setValue(QStringLiteral("created"), start.addDays(-m_random.between(0, 20)));
    toDo->setValue(QStringLiteral("identifier"), m_random.identifier());
    if (!m_clients.isEmpty() && m_random.chance(0.4))
        toDo->setRelated(QStringLiteral("client"),
                         m_inserter.existing(QStringLiteral("Clients"),
                                             m_clients.at(m_random.skewed(int(m_clients.size())))));
    if (!m_items.isEmpty() && m_random.chance(0.1))
        toDo->setRelated(
            QStringLiteral("item"),
            m_inserter.existing(QStringLiteral("Items"), m_items.at(m_random.skewed(int(m_items.size())))));

    const bool repeating = m_random.chance(0.15);
    if (repeating)
        addRepetition(toDo, start);
    else
        toDo->setValue(QStringLiteral("repeat_type"), NoRepeat);

    m_inserter.tag(
        toDo, m_inserter.existing(QStringLiteral("Categories"), m_reference.toDoKind(repeating ? 1 : 0)));
    const QList<qint64>& tags = m_reference.userTags();
    if (!tags.isEmpty() && m_random.chance(0.1))
        m_inserter.tag(toDo, m_inserter.existing(QStringLiteral("Categories"),
                                                 tags.at(m_random.between(0, int(tags.size()) - 1))));
    return repeating;
}

void ToDoFactory::addRepetition(Record* toDo, const QDateTime& start)
{
    const int type = m_random.weighted({15, 50, 30, 5}) + Daily;
    const int frequency = m_random.weighted({70, 20, 10}) + 1;
    toDo->setValue(QStringLiteral("repeat_type"), type);
    toDo->setValue(QStringLiteral("repeat_frequency"), frequency);
    QString summary;
    switch (type) {
    case Daily:
        summary =
            frequency == 1 ? QStringLiteral("Every day") : QStringLiteral("Every %1 days").arg(frequency);
        break;
    case Weekly: {
        QVariantList weekdays{start.date().dayOfWeek()};
        const int extra = m_random.between(0, 2);
        for (int i = 0; i < extra; ++i) {
            const int d = m_random.between(1, 5);
            if (!weekdays.contains(d))
                weekdays << d;
        }
        std::sort(weekdays.begin(), weekdays.end(),
                  [](const QVariant& a, const QVariant& b) { return a.toInt() < b.toInt(); });
        toDo->setValue(QStringLiteral("repeat_weekdays"), weekdays);
        QStringList names;
        for (const QVariant& d : weekdays)
            names << weekdayName(d.toInt());
        const QString every =
            frequency == 1 ? QStringLiteral("Every week") : QStringLiteral("Every %1 weeks").arg(frequency);
        summary = every + QLatin1String(" on ") + names.join(QLatin1String(", "));
        break;
    }
    case Monthly:
        toDo->setValue(QStringLiteral("repeat_monthly_day_of"), start.date().day());
        summary =
            frequency == 1 ? QStringLiteral("Every month") : QStringLiteral("Every %1 months").arg(frequency);
        break;
    default:
        summary = QStringLiteral("Every year");
        break;
    }
    const int endType = m_random.weighted({50, 30, 20});
    toDo->setValue(QStringLiteral("repeat_end_type"), endType);
    if (endType == 1)
        toDo->setValue(QStringLiteral("repeat_occurrences"), m_random.between(2, 24));
    else if (endType == 2)
        toDo->setValue(QStringLiteral("repeat_end_date"), start.addDays(m_random.between(30, 365)));
    toDo->setValue(QStringLiteral("repeat_summary"), summary);
}

} // namespace corvanta::bench
