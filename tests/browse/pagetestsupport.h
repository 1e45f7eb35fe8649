#pragma once

#include "../documents/documenttestsupport.h"

namespace corvanta::browse::testing {

using documents::testing::at;
using documents::testing::s;
using predicate::RecordRef;
using store::Record;

// A company whose records carry identifiers, as the detail pages address them by, with a client,
// an item and helpers for their documents and to-dos.
class PageCompany : public documents::testing::TestCompany
{
public:
    PageCompany()
        : TestCompany(at(2024, 3, 15))
    {
        client = addClient(s("Acme <b>Ltd</b>"));
        identify(client, s("client-1"));
        other = addClient(s("Other"));
        identify(other, s("client-2"));
        item = addItem(s("Bolt"), 10, addTax(s("VAT"), 20));
        identify(item, s("item-1"));
        euro = main()
                   .fetchFirst(store::FetchRequest(s("Currencies"), predicate::literal("code == 'EUR'")))
                   ->ref();
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
