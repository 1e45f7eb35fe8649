#include "recordlookup.h"

#include "predicate/literal.h"
#include "store/editingcontext.h"

namespace corvanta::cli {

using store::FetchRequest;
using store::Record;

namespace {

struct KindInfo
{
    const char* entity;
    const char* key; // the name that identifies a record of this kind
};

KindInfo info(RecordLookup::Kind kind)
{
    switch (kind) {
    case RecordLookup::Kind::Client:
        return {"Clients", "full_name"};
    case RecordLookup::Kind::Item:
        return {"Items", "name"};
    case RecordLookup::Kind::Tax:
        return {"Taxes", "name"};
    case RecordLookup::Kind::Unit:
        return {"Units", "name"};
    case RecordLookup::Kind::PaymentType:
        return {"PaymentTypes", "name"};
    case RecordLookup::Kind::Currency:
        return {"Currencies", "code"};
    }
    return {"", ""};
}

FetchRequest request(const char* entity, const QString& condition, const QVariantList& arguments,
                     int limit = 0)
{
    FetchRequest fetch(QString::fromLatin1(entity), predicate::literal(condition, arguments));
    fetch.limit = limit;
    return fetch;
}

QString quotedList(const QStringList& names)
{
    QStringList quoted;
    for (const QString& name : names)
        quoted << QStringLiteral("\"%1\"").arg(name);
    return quoted.join(QStringLiteral(", "));
}

} // namespace

Record* RecordLookup::find(Kind kind, const QString& name, QString* error)
{
    const KindInfo kindInfo = info(kind);
    const QString key = QString::fromLatin1(kindInfo.key);
    const QList<Record*> found =
        m_context.fetch(request(kindInfo.entity, QStringLiteral("%K == %@"), {key, name}));
    if (found.size() == 1)
        return found.first();
    if (found.size() > 1) {
        switch (kind) {
        case Kind::Client:
            *error = tr("%n clients are named \"%1\"; give one of them another name first.", nullptr,
                        int(found.size()))
                         .arg(name);
            break;
        case Kind::Item:
            *error = tr("%n items are named \"%1\"; give one of them another name first.", nullptr,
                        int(found.size()))
                         .arg(name);
            break;
        default:
            *error = tr("%n records are named \"%1\".", nullptr, int(found.size())).arg(name);
            break;
        }
        return nullptr;
    }
    switch (kind) {
    case Kind::Client:
        *error = tr("No client is named \"%1\".").arg(name);
        break;
    case Kind::Item:
        *error = tr("No item is named \"%1\".").arg(name);
        break;
    case Kind::Tax:
        *error = tr("No tax is named \"%1\".").arg(name);
        break;
    case Kind::Unit:
        *error = tr("No unit is named \"%1\".").arg(name);
        break;
    case Kind::PaymentType:
        *error = tr("No payment type is named \"%1\".").arg(name);
        break;
    case Kind::Currency:
        *error = tr("No currency has the code \"%1\".").arg(name);
        break;
    }
    QStringList close;
    const QString nearby = name.size() >= 2 ? name : QString();
    if (!nearby.isEmpty()) {
        for (const Record* record : m_context.fetch(
                 request(kindInfo.entity, QStringLiteral("%K CONTAINS[cd] %@"), {key, nearby}, 5)))
            close << record->value(key).toString();
    }
    // Reference lists are short: all of them are offered.
    if (close.isEmpty() && kind != Kind::Client && kind != Kind::Item && kind != Kind::Currency) {
        for (const Record* record :
             m_context.fetch(request(kindInfo.entity, QStringLiteral("TRUEPREDICATE"), {})))
            close << record->value(key).toString();
    }
    if (!close.isEmpty())
        *error += QLatin1Char(' ') + tr("Known: %1.").arg(quotedList(close));
    return nullptr;
}

Record* RecordLookup::document(const QString& key, QString* error)
{
    const QList<Record*> found = m_context.fetch(
        request("Documents", QStringLiteral("number_formatted == %@ || identifier == %@"), {key, key}));
    if (found.size() == 1)
        return found.first();
    if (found.isEmpty()) {
        *error = tr("No document has the number or identifier \"%1\".").arg(key);
        return nullptr;
    }
    QStringList identifiers;
    for (const Record* document : found)
        identifiers << document->value(QStringLiteral("identifier")).toString();
    *error =
        tr("%n documents have the number \"%1\"; name one by its identifier: %2.", nullptr, int(found.size()))
            .arg(key, identifiers.join(QStringLiteral(", ")));
    return nullptr;
}

QList<Record*> RecordLookup::byIdentifierOrName(const char* entity, const char* nameKey, const QString& key,
                                                const char* order)
{
    // An identifier names one record; a name may stand for several.
    const QList<store::SortDescriptor> sort =
        order ? QList{store::SortDescriptor(QString::fromLatin1(order))} : QList<store::SortDescriptor>{};
    QList<Record*> found = m_context.fetch(
        FetchRequest(QString::fromLatin1(entity), predicate::literal("identifier == %@", {key})));
    if (found.isEmpty())
        found = m_context.fetch(
            FetchRequest(QString::fromLatin1(entity),
                         predicate::literal("%K == %@", {QString::fromLatin1(nameKey), key}), sort));
    return found;
}

Record* RecordLookup::designTemplate(const QString& key, QString* error)
{
    const QList<Record*> found = byIdentifierOrName("Templates", "name", key);
    if (found.size() == 1)
        return found.first();
    *error = found.isEmpty()
                 ? tr("There is no template named \"%1\".").arg(key)
                 : tr("%n templates are named \"%1\"; name one by its identifier (templates list).", nullptr,
                      int(found.size()))
                       .arg(key);
    return nullptr;
}

Record* RecordLookup::todo(const QString& key, QString* error)
{
    const QList<Record*> found = byIdentifierOrName("ToDos", "title", key, "date_start");
    if (found.size() == 1)
        return found.first();
    if (found.isEmpty()) {
        *error = tr("No to-do has the title or identifier \"%1\".").arg(key);
        return nullptr;
    }
    QStringList candidates;
    for (const Record* todo : found)
        candidates << QStringLiteral("%1 (%2)").arg(todo->value(QStringLiteral("identifier")).toString(),
                                                    todo->value(QStringLiteral("date_start"))
                                                        .toDateTime()
                                                        .toLocalTime()
                                                        .toString(QStringLiteral("yyyy-MM-dd HH:mm")));
    *error = tr("%1 to-dos have the title \"%2\"; name one by its identifier: %3")
                 .arg(found.size())
                 .arg(key, candidates.join(QStringLiteral(", ")));
    return nullptr;
}

} // namespace corvanta::cli
