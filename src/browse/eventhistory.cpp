#include "browse/eventhistory.h"

#include "browse/detailpage.h"
#include "browse/htmltext.h"
#include "browse/listkind.h"
#include "browse/pageaddress.h"
#include "format/currencyformatter.h"
#include "predicate/literal.h"
#include "store/editingcontext.h"

#include <QLocale>

namespace corvanta::browse {

using store::FetchRequest;
using store::Record;
using store::SortDescriptor;

namespace {

QString s(const char* text)
{
    return QString::fromLatin1(text);
}

const QString kDocuments = s("Documents");

bool isDocument(const Record* event)
{
    return event->entityName() == kDocuments;
}

} // namespace

EventHistory::EventHistory(Record* owner)
    : m_owner(owner)
    , m_isClient(owner && owner->entityName() == s("Clients"))
    , m_isItem(owner && owner->entityName() == s("Items"))
{}

bool EventHistory::listsDocuments(int filter)
{
    return filter == DocumentsOnly || (filter != ToDosOnly && filter != DoneToDos && filter != PendingToDos);
}

bool EventHistory::listsToDos(int filter)
{
    return filter != DocumentsOnly;
}

namespace {

// The owner's finalised documents and its to-dos of the filter, newest first.
FetchRequest documentsOf(Record* owner, bool isClient)
{
    const QVariant self = QVariant::fromValue(owner->ref());
    return FetchRequest(kDocuments,
                        isClient ? predicate::literal("draft == NO && client == %@", {self})
                                 : predicate::literal("draft == NO && ANY rows.item == %@", {self}),
                        ListKinds::defaultSort(ListKind::Documents));
}

FetchRequest toDosOf(Record* owner, bool isClient, int filter)
{
    const QVariant self = QVariant::fromValue(owner->ref());
    QString condition = isClient ? s("client == %@") : s("item == %@");
    if (filter == EventHistory::DoneToDos)
        condition += s(" && done == YES");
    else if (filter == EventHistory::PendingToDos)
        condition += s(" && done != YES");
    return FetchRequest(s("ToDos"), predicate::literal(condition, {self}),
                        {SortDescriptor{s("date_start"), false}});
}

} // namespace

QList<Record*> EventHistory::events(int filter, int count) const
{
    if (!m_isClient && !m_isItem)
        return {};
    const int wanted = shownCount(count);
    QList<Record*> documents;
    QList<Record*> todos;
    if (listsDocuments(filter)) {
        FetchRequest request = documentsOf(m_owner, m_isClient);
        request.limit = wanted;
        documents = m_owner->context()->fetch(request);
    }
    if (listsToDos(filter)) {
        FetchRequest request = toDosOf(m_owner, m_isClient, filter);
        request.limit = wanted;
        todos = m_owner->context()->fetch(request);
    }
    // Both lists are newest first; a missing date counts as the oldest.
    QList<Record*> merged;
    auto d = documents.cbegin();
    auto t = todos.cbegin();
    while (merged.size() < wanted && (d != documents.cend() || t != todos.cend())) {
        if (t == todos.cend() || (d != documents.cend() && !(dateOf(*t) > dateOf(*d))))
            merged.append(*d++);
        else
            merged.append(*t++);
    }
    return merged;
}

int EventHistory::total(int filter) const
{
    if (!m_isClient && !m_isItem)
        return 0;
    int result = 0;
    if (listsDocuments(filter)) {
        const int documents = m_owner->context()->count(documentsOf(m_owner, m_isClient));
        if (documents < 0)
            return -1;
        result += documents;
    }
    if (listsToDos(filter)) {
        const int todos = m_owner->context()->count(toDosOf(m_owner, m_isClient, filter));
        if (todos < 0)
            return -1;
        result += todos;
    }
    return result;
}

QDateTime EventHistory::dateOf(const Record* event)
{
    return event->value(isDocument(event) ? s("date_creation") : s("date_start")).toDateTime().toLocalTime();
}

QString EventHistory::html(int filter, int count) const
{
    const QList<Record*> shown = events(filter, count);
    QString result;
    QDate month;
    for (const Record* event : shown) {
        const QDate day = dateOf(event).date();
        const QDate first = day.isValid() ? QDate(day.year(), day.month(), 1) : QDate();
        if (first.isValid() && first != month) {
            result += QStringLiteral("<tr class='eMonth'><td colspan='3'><span class='month'>%1</span> "
                                     "<span class='year'>%2</span></td></tr>")
                          .arg(HtmlText::escaped(QLocale().toString(first, s("MMMM"))),
                               HtmlText::escaped(QLocale().toString(first, s("yyyy"))));
        }
        month = first;
        result += isDocument(event) ? documentRow(event) : toDoRow(event);
    }
    const int all = total(filter);
    if (all > shown.size()) {
        result += QStringLiteral("<tr class='eMore'><td colspan='3'>") +
                  QStringLiteral("<a href='' onclick='moreRow(%1); return false;'>%2</a>")
                      .arg(QString::number(nextCount(count, all)), HtmlText::escaped(tr("Show More"))) +
                  QStringLiteral("</td></tr>");
    }
    return QStringLiteral("<table class='events'>%1</table>").arg(result);
}

QString EventHistory::documentRow(const Record* document) const
{
    const QDate day = dateOf(document).date();
    const Record* currency = document->related(s("currency"));
    const format::CurrencyFormatter amount(currency);
    QString sum = HtmlText::escaped(amount.stringForObjectValue(document->value(s("sum_total"))));
    const QString code = currency ? currency->value(s("code")).toString() : QString();
    if (!code.isEmpty() && !sum.contains(code))
        sum += QLatin1Char(' ') + HtmlText::escaped(code);
    const QString link = PageAddress::of(ListKind::Documents, document->value(s("identifier")).toString());
    return QStringLiteral(
               "<tr class='eNotice'><td class='eMark eDay'>%1</td><td class='eBody'><a href='%2'>%3</a> "
               "%4</td><td class='eAmount'>%5</td></tr>")
        .arg(day.isValid() ? QString::number(day.day()) : QString(), HtmlText::escaped(link),
             HtmlText::escaped(document->value(s("number_formatted")).toString()),
             DetailPage::tagLabels(document), sum);
}

QString EventHistory::toDoRow(const Record* todo) const
{
    const QDateTime start = dateOf(todo);
    const bool done = todo->value(s("done")).toBool();
    const bool allDay = todo->value(s("all_day")).toBool();
    const QString time = start.isValid() && !allDay ? start.toString(s("HH:mm")) : QString();
    const QString desc = todo->value(s("desc")).toString();
    const QString link = PageAddress::of(ListKind::ToDos, todo->value(s("identifier")).toString());
    return QStringLiteral(
               "<tr class='%1'><td class='eMark eDay'>%2</td><td class='eBody'><a href='%3'>%4</a>%5</td>"
               "<td class='eAmount'>%6</td></tr>")
        .arg(done ? s("eDone") : s("ePending"),
             start.isValid() ? QString::number(start.date().day()) : QString(), HtmlText::escaped(link),
             HtmlText::escaped(todo->value(s("title")).toString()),
             desc.isEmpty() ? QString() : QStringLiteral("<br>") + HtmlText::multiline(desc), time);
}

} // namespace corvanta::browse
