#include "browse/todopage.h"

#include "browse/htmltext.h"
#include "store/record.h"

namespace corvanta::browse {

using store::Record;

namespace {

QString s(const char* text)
{
    return QString::fromLatin1(text);
}

} // namespace

DetailPage ToDoPage::fill(Record* todo)
{
    DetailPage page(ListKind::ToDos);
    if (!todo)
        return page;
    const bool allDay = todo->value(s("all_day")).toBool();
    const bool done = todo->value(s("done")).toBool();
    page.setContent(s("name"), HtmlText::escaped(todo->value(s("title")).toString()));
    page.setContent(s("tags"), DetailPage::tagLabels(todo));

    QString properties;
    const auto add = [&properties](const QString& label, const QString& text) {
        if (!text.isEmpty())
            properties += DetailPage::propertyRow(label, HtmlText::multiline(text));
    };
    add(tr("Start"), DetailPage::shortDate(todo->value(s("date_start")), !allDay));
    add(tr("End"), DetailPage::shortDate(todo->value(s("date_end")), !allDay));
    if (const Record* client = todo->related(s("client")))
        add(tr("Client"), client->value(s("full_name")).toString());
    if (const Record* item = todo->related(s("item")))
        add(tr("Item"), item->value(s("name")).toString());
    add(tr("Repeat"), todo->value(s("repeat_summary")).toString());
    add(tr("Description"), todo->value(s("desc")).toString());
    page.setContent(s("properties"), properties);

    page.setContent(s("done"), QStringLiteral("<a href='' onclick=\"done('%1'); return false;\">%2 %3</a>")
                                   .arg(HtmlText::scriptArgument(todo->value(s("identifier")).toString()),
                                        done ? s("&#9745;") : s("&#9744;"), HtmlText::escaped(tr("Done"))));
    return page;
}

} // namespace corvanta::browse
