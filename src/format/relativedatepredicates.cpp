#include "relativedatepredicates.h"

#include "formatlog.h"
#include "predicate/formatter.h"
#include "predicate/parser.h"
#include "relativedates.h"

namespace corvanta::format {

using predicate::Formatter;
using predicate::Parser;
using predicate::Predicate;

std::optional<Predicate> replaceRelativeDates(const std::optional<Predicate>& predicate, const QDateTime& now,
                                              Qt::DayOfWeek firstDayOfWeek)
{
    if (!predicate)
        return std::nullopt;
    const QVariantList records = Formatter::recordArguments(*predicate);
    static const QDateTime reference(QDate(2001, 1, 1), QTime(0, 0), Qt::UTC);
    Predicate current = *predicate;
    for (const dates::RelativeDateToken& token : dates::relativeDateTokens(now, firstDayOfWeek)) {
        QString text = Formatter::format(current);
        const QString quotedToken = QLatin1Char('"') + token.token + QLatin1Char('"');
        if (!text.contains(quotedToken))
            continue;
        const double seconds = double(reference.msecsTo(token.date)) / 1000.0;
        text.replace(quotedToken, QStringLiteral("CAST(%1, \"NSDate\")").arg(seconds, 0, 'f', 3));
        predicate::ParseError error;
        const std::optional<Predicate> reread = Parser::parse(text, records, &error);
        if (!reread) {
            qCWarning(lcFormat) << "replaceRelativeDates: cannot read" << text << error.message();
            return std::nullopt;
        }
        current = *reread;
    }
    return current;
}

} // namespace corvanta::format
