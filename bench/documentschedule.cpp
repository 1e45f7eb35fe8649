#include "documentschedule.h"

#include "random.h"

#include <QTimeZone>
#include <algorithm>
#include <array>
#include <map>

namespace corvanta::bench {

namespace {

constexpr int kMinRows = 1;
constexpr int kMaxRows = 19;
// Drafts are the invoices still being worked on: mostly the last weeks' ones.
constexpr int kRecentDays = 60;

} // namespace

DocumentSchedule::DocumentSchedule(Random& random, int documents, qint64 rows, QDate firstDay, QDate lastDay)
    : m_firstDay(firstDay)
    , m_lastDay(lastDay)
{
    const int days = int(firstDay.daysTo(lastDay)) + 1;
    m_entries.resize(std::size_t(std::max(0, documents)));
    for (Entry& e : m_entries) {
        e.day = random.between(0, days - 1);
        // Office hours, a little earlier or later now and then.
        e.second = random.between(7 * 3600, 19 * 3600 - 1);
        e.type = std::uint8_t(random.weighted({60, 5, 6, 7, 8, 4, 3, 7}));
        e.rows = std::uint8_t(random.between(kMinRows, kMaxRows));
        if (e.type == 0)
            e.draft = random.chance(e.day >= days - kRecentDays ? 0.25 : 0.005);
    }
    spreadRows(random, m_entries, rows);
    std::stable_sort(m_entries.begin(), m_entries.end(), [](const Entry& a, const Entry& b) {
        return a.day != b.day ? a.day < b.day : a.second < b.second;
    });
    number();
}

void DocumentSchedule::spreadRows(Random& random, std::vector<Entry>& entries, qint64 rows)
{
    if (entries.empty())
        return;
    const qint64 count = qint64(entries.size());
    const qint64 target = std::clamp(rows, count * kMinRows, count * kMaxRows);
    qint64 sum = 0;
    for (const Entry& e : entries)
        sum += e.rows;
    // Nudges random documents by one row until the total is exact.
    while (sum != target) {
        Entry& e = entries[std::size_t(random.between(0, int(count) - 1))];
        if (sum < target && e.rows < kMaxRows) {
            ++e.rows;
            ++sum;
        } else if (sum > target && e.rows > kMinRows) {
            --e.rows;
            --sum;
        }
    }
}

void DocumentSchedule::number()
{
    std::map<std::pair<int, int>, std::int32_t> last; // (type, year) -> last number given
    for (Entry& e : m_entries) {
        if (e.draft)
            continue;
        e.number = ++last[{e.type, m_firstDay.addDays(e.day).year()}];
    }
}

QDateTime DocumentSchedule::dateCreation(const Entry& entry) const
{
    return QDateTime(m_firstDay.addDays(entry.day), QTime(0, 0), QTimeZone::utc()).addSecs(entry.second);
}

QString DocumentSchedule::numberFormatted(const Entry& entry) const
{
    if (entry.draft)
        return {};
    return QStringLiteral("%1/%2-%3")
        .arg(prefix(entry.type))
        .arg(m_firstDay.addDays(entry.day).year())
        .arg(entry.number, 4, 10, QLatin1Char('0'));
}

QString DocumentSchedule::prefix(int type)
{
    static const char* const prefixes[kTypes] = {"INVOICE",  "PROFORMA", "ESTIMATE", "QUOTATION",
                                                 "DELIVERY", "CREDIT",   "MEMO",     "ORDER"};
    return QString::fromLatin1(prefixes[std::clamp(type, 0, kTypes - 1)]);
}

} // namespace corvanta::bench
