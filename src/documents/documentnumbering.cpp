#include "documentnumbering.h"

#include "format/relativedates.h"
#include "model/companycache.h"
#include "numberformat.h"
#include "predicate/literal.h"
#include "store/editingcontext.h"
#include "store/store.h"
#include "support/prompter.h"

namespace corvanta::documents {

using store::FetchRequest;

DocumentNumbering::DocumentNumbering(store::EditingContext& context, support::Prompter& prompter)
    : m_context(context)
    , m_prompter(prompter)
{}

// One query: the index on (type, date_creation, draft, number) holds everything it reads, so the
// year's documents are looked at in the index alone.
qint64 DocumentNumbering::highestNumber(qint64 type, const QDateTime& date)
{
    const predicate::Predicate inYear =
        predicate::literal("type == %ld && date_creation >= %@ && date_creation <= %@ && draft != 1",
                           {type, format::dates::yearMin(date), format::dates::yearMax(date)});
    // Only what is stored counts; the document being edited has no number yet.
    const std::optional<QVariant> highest = m_context.storedAggregate(
        FetchRequest(QStringLiteral("Documents"), inYear), store::Aggregate::Max, QStringLiteral("number"));
    return highest ? highest->toLongLong() : 0;
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
    const QString format =
        model::CompanyCache::of(m_context.store()).value(NumberFormat::settingKey(int(type))).toString();
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
