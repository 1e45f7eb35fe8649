#include "browse/sortmenu.h"

namespace corvanta::browse {

using store::SortDescriptor;

namespace {

struct KeyChoice
{
    ListKind kind;
    int tag;
    QStringList keys; // the first decides; the others order equal values of it
};

const QList<KeyChoice>& keyChoices()
{
    static const QList<KeyChoice> choices{
        {ListKind::Clients, -1, {QStringLiteral("full_name")}},
        {ListKind::Items, -1, {QStringLiteral("name")}},
        {ListKind::Documents, -1, {QStringLiteral("number_formatted")}},
        {ListKind::Documents, -2, {QStringLiteral("date_creation"), QStringLiteral("number")}},
        {ListKind::Documents, -3, {QStringLiteral("date_completion"), QStringLiteral("number")}},
        {ListKind::Documents, -4, {QStringLiteral("date_due"), QStringLiteral("number")}},
        {ListKind::ToDos, -1, {QStringLiteral("title")}},
        {ListKind::ToDos, -2, {QStringLiteral("date_start")}},
    };
    return choices;
}

const KeyChoice* keyChoice(ListKind kind, int tag)
{
    for (const KeyChoice& choice : keyChoices()) {
        if (choice.kind == kind && choice.tag == tag)
            return &choice;
    }
    return nullptr;
}

bool isText(const QString& key)
{
    return key == QLatin1String("full_name") || key == QLatin1String("name") || key == QLatin1String("title");
}

} // namespace

QList<SortMenu::Entry> SortMenu::entries(ListKind kind, const QList<SortDescriptor>& current)
{
    const SortDescriptor* first = current.isEmpty() ? nullptr : &current.first();
    QList<Entry> entries;
    for (const KeyChoice& choice : keyChoices()) {
        if (choice.kind == kind) {
            const QString key = choice.keys.first();
            entries << Entry{choice.tag, buttonTitle({SortDescriptor{key}}), first && first->keyPath == key};
        }
    }
    if (entries.isEmpty())
        return entries;
    entries << Entry{kAscending, tr("Ascending"), first && first->ascending}
            << Entry{kDescending, tr("Descending"), first && !first->ascending};
    return entries;
}

QList<SortDescriptor> SortMenu::changed(ListKind kind, const QList<SortDescriptor>& current, int tag)
{
    if (tag == kAscending || tag == kDescending) {
        QList<SortDescriptor> sort = current;
        for (SortDescriptor& descriptor : sort)
            descriptor.ascending = tag == kAscending;
        return sort;
    }
    const KeyChoice* choice = keyChoice(kind, tag);
    if (!choice)
        return current;
    const bool ascending = current.isEmpty() || current.first().ascending;
    QList<SortDescriptor> sort;
    for (const QString& key : choice->keys) {
        sort << SortDescriptor{key, ascending,
                               isText(key) ? SortDescriptor::Comparison::LocalizedCaseInsensitive
                                           : SortDescriptor::Comparison::Default};
    }
    return sort;
}

QString SortMenu::buttonTitle(const QList<SortDescriptor>& current)
{
    if (current.isEmpty())
        return {};
    const QString& key = current.first().keyPath;
    if (key == QLatin1String("full_name") || key == QLatin1String("name"))
        return tr("Name");
    if (key == QLatin1String("title"))
        return tr("Title");
    if (key == QLatin1String("number_formatted"))
        return tr("Number");
    if (key == QLatin1String("date_creation"))
        return tr("Date");
    if (key == QLatin1String("date_completion"))
        return tr("Completion Date");
    if (key == QLatin1String("date_due"))
        return tr("Due Date");
    if (key == QLatin1String("date_start"))
        return tr("Start Date");
    return {};
}

} // namespace corvanta::browse
