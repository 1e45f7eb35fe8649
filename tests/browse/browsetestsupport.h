#pragma once

#include "../documents/documenttestsupport.h"
#include "browse/categorytree.h"

namespace corvanta::browse::testing {

using documents::testing::at;
using documents::testing::s;
using documents::testing::TestCompany;
using predicate::RecordRef;
using store::Record;

// The records' names, joined by ", ".
inline QString namesOf(const QList<Record*>& records)
{
    QStringList names;
    for (const Record* record : records)
        names << record->value(s("name")).toString();
    return names.join(s(", "));
}

// A scratch company with the sidebar's nodes, currencies and user tags at hand.
class BrowseCompany : public TestCompany
{
public:
    using TestCompany::TestCompany;

    // The sidebar node of that name; none for an empty name.
    Record* category(const QString& name) { return name.isEmpty() ? nullptr : named("Categories", name); }

    Record* currency(const char* code)
    {
        return main().fetchFirst(
            store::FetchRequest(s("Currencies"), predicate::literal("code == %@", {s(code)})));
    }

    // A user tag for clients (1), items (2) or documents (3), filed in "My Folder".
    Record* userTag(const QString& name, int kind)
    {
        return CategoryTree(main()).newTag(name, kind, category(s("My Folder")));
    }
};

// A company whose records carry identifiers, as the detail pages address them by, with a client,
// an item and helpers for their documents and to-dos.
class PageCompany : public BrowseCompany
{
public:
    PageCompany()
        : BrowseCompany(at(2024, 3, 15))
    {
        client = addClient(s("Acme <b>Ltd</b>"));
        identify(client, s("client-1"));
        other = addClient(s("Other"));
        identify(other, s("client-2"));
        item = addItem(s("Bolt"), 10, addTax(s("VAT"), 20));
        identify(item, s("item-1"));
        euro = currency("EUR")->ref();
    }

    void identify(const RecordRef& ref, const QString& identifier)
    {
        record(ref)->setValue(s("identifier"), identifier);
        saveMain();
    }
    QString identifier(const RecordRef& ref) { return record(ref)->value(s("identifier")).toString(); }

    // A final invoice of the client for the item, on `day`, in euros unless told otherwise.
    RecordRef invoice(const QDate& day, double quantity = 1, bool final = true,
                      const RecordRef& currency = {})
    {
        const RecordRef ref =
            addDocument(0, client, item, quantity, final,
                        {{s("date_creation"), QDateTime(day, QTime(12, 0))},
                         {s("currency"), QVariant::fromValue(currency.isNull() ? euro : currency)}});
        identify(ref, s("doc-%1").arg(++m_documents));
        return ref;
    }

    RecordRef todo(const RecordRef& owner, const QString& title, const QDateTime& start, bool done = false,
                   const QVariantMap& values = {})
    {
        QVariantMap all{{s("title"), title},
                        {s("date_start"), start},
                        {s("done"), done},
                        {s("identifier"), s("todo-%1").arg(++m_todos)}};
        all.insert(owner.entity == s("Clients") ? s("client") : s("item"), QVariant::fromValue(owner));
        all.insert(values);
        return add("ToDos", all);
    }

    RecordRef client;
    RecordRef other;
    RecordRef item;
    RecordRef euro;

private:
    int m_documents = 0;
    int m_todos = 0;
};

} // namespace corvanta::browse::testing
