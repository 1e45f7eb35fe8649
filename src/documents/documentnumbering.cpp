#include "documentnumbering.h"

#include "format/relativedates.h"
#include "model/editingcontext.h"
#include "model/prompter.h"
#include "model/store.h"
#include "numberformat.h"
#include "predicate/parser.h"

namespace corvanta::documents {

using model::FetchRequest;
using model::SortDescriptor;

DocumentNumbering::DocumentNumbering(model::EditingContext& context, model::Prompter& prompter)
    : m_context(context)
    , m_prompter(prompter)
{}

qint64 DocumentNumbering::highestNumber(qint64 type, const QDateTime& date)
{
    const QString inYear =
        QStringLiteral("type == %ld && date_creation >= %@ && date_creation <= %@ && draft != 1");
    const QVariantList arguments{type, format::dates::yearMin(date), format::dates::yearMax(date)};
    const auto first = [&](const QString& condition, const QVariantList& values, const QString& orderKey) {
        FetchRequest request(QStringLiteral("Documents"), *predicate::Parser::parse(condition, values),
                             {SortDescriptor{orderKey, false, SortDescriptor::Comparison::Default}});
        request.limit = 1;
        // Only what is stored counts; the document being edited has no number yet.
        request.includesPendingChanges = false;
        const model::Record* found = m_context.fetchFirst(request);
        return found ? std::optional<qint64>(found->value(QStringLiteral("number")).toLongLong())
                     : std::nullopt;
    };
    // The year's latest document walks the date index backwards and stops at once; its number is
    // nearly always the highest, so that the search for a higher one leaves few rows to order.
    const std::optional<qint64> latest = first(inYear, arguments, QStringLiteral("date_creation"));
    if (!latest)
        return 0;
    const std::optional<qint64> higher = first(inYear + QStringLiteral(" && number > %ld"),
                                               arguments + QVariantList{*latest}, QStringLiteral("number"));
    return higher.value_or(*latest);
}

DocumentNumbering::NextNumber DocumentNumbering::nextNumberByType(qint64 type, const QDateTime& date,
                                                                  bool showStartNumberWindow)
{
    NextNumber next;
    next.nextNumber = highestNumber(type, date) + 1;
    if (showStartNumberWindow && next.nextNumber == 1) {
        next.nextNumber = startNumberFrom(m_prompter.askText(
            tr("Start Number"),
            tr("This is the first document of its type in %1. Enter the number it starts with:")
                .arg(date.date().year()),
            QStringLiteral("1")));
    }
    const QString format = m_context.store().cachedSetting(NumberFormat::settingKey(int(type))).toString();
    next.formattedNumber = NumberFormat::render(format, date.date(), next.nextNumber);
    return next;
}

qint64 DocumentNumbering::startNumberFrom(const std::optional<QString>& answer)
{
    if (!answer)
        return 1;
    // Read as a leading integer: "42 pieces" is 42, "abc" is 0.
    const QString text = answer->trimmed();
    qsizetype end = 0;
    if (end < text.size() && (text.at(end) == QLatin1Char('-') || text.at(end) == QLatin1Char('+')))
        ++end;
    while (end < text.size() && text.at(end).isDigit() && text.at(end).unicode() < 128)
        ++end;
    bool ok = false;
    const qint64 value = text.left(end).toLongLong(&ok);
    return ok && value >= 1 && value <= 99999 ? value : 1;
}

} // namespace corvanta::documents
