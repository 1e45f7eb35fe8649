#include "emailplaceholders.h"

#include <QLocale>
#include <algorithm>
#include <iterator>
#include <utility>

namespace corvanta::exchange {

const QStringList& EmailPlaceholders::all()
{
    static const QStringList placeholders{QStringLiteral("@MyCompanyName"), QStringLiteral("@ClientName"),
                                          QStringLiteral("@TodayDateAndTime"), QStringLiteral("@TodayDate")};
    return placeholders;
}

QString EmailPlaceholders::replaced(const QString& body, const QString& clientName,
                                    const QString& companyName, const QDateTime& now)
{
    const QString today = QLocale().toString(now.date(), QLocale::ShortFormat);
    // Tried in this order at each "@": the longer date placeholder before the shorter one it
    // begins with.
    const std::pair<QString, QString> replacements[] = {
        {QStringLiteral("@ClientName"), clientName},
        {QStringLiteral("@MyCompanyName"), companyName},
        {QStringLiteral("@TodayDateAndTime"),
         QStringLiteral("%1 %2").arg(today, now.toString(QStringLiteral("HH:mm")))},
        {QStringLiteral("@TodayDate"), today},
    };
    // One pass over the body, so that a replacement (a client named "@TodayDate") is never read
    // as a placeholder itself.
    QString result;
    result.reserve(body.size());
    qsizetype from = 0;
    while (from < body.size()) {
        const qsizetype at = body.indexOf(QLatin1Char('@'), from);
        if (at < 0)
            break;
        result += QStringView(body).mid(from, at - from);
        const QStringView rest = QStringView(body).mid(at);
        const auto match = std::find_if(std::begin(replacements), std::end(replacements),
                                        [rest](const auto& entry) { return rest.startsWith(entry.first); });
        if (match == std::end(replacements)) {
            result += QLatin1Char('@');
            from = at + 1;
        } else {
            result += match->second;
            from = at + match->first.size();
        }
    }
    result += QStringView(body).mid(from);
    return result;
}

} // namespace corvanta::exchange
