#pragma once

#include <QDateTime>
#include <QStringList>

namespace corvanta::exchange {

// The placeholders an e-mail template's body may hold, and their replacement when the template is
// chosen for an e-mail. Subjects keep them as they are.
class EmailPlaceholders
{
public:
    // In the order of the insert menu: "@MyCompanyName", "@ClientName", "@TodayDateAndTime",
    // "@TodayDate".
    static const QStringList& all();

    // `body` with every placeholder replaced. "@TodayDateAndTime" goes before "@TodayDate", which
    // is the start of it. Dates in the short date style of the user's locale, the time as "HH:mm".
    static QString replaced(const QString& body, const QString& clientName, const QString& companyName,
                            const QDateTime& now);
};

} // namespace corvanta::exchange
