#pragma once

#include "../model/modeltestsupport.h"
#include "documents/clock.h"
#include "documents/documentnumbering.h"
#include "documents/documentsnapshot.h"
#include "documents/documenttags.h"
#include "documents/documenttotals.h"
#include "documents/draftnumber.h"
#include "documents/rowfiller.h"
#include "documents/stockcalculator.h"
#include "model/companyrecord.h"
#include "model/defaultrecords.h"
#include "predicate/literal.h"
#include "support/scriptedprompter.h"
#include "support/uuid.h"

#include <QDateTime>
#include <QTest>

namespace corvanta::documents::testing {

using model::testing::s;
using predicate::RecordRef;
using store::Record;

// A local moment, as the user's clock gives it.
inline QDateTime at(int year, int month, int day, int hour = 10, int minute = 30)
{
    return QDateTime(QDate(year, month, day), QTime(hour, minute));
}

// A new company database with the default records of a new database, a scripted prompter and
// a clock that stands still until it is moved.
class TestCompany
{
public:
    explicit TestCompany(const QDateTime& now = at(2024, 3, 15))
        : m_now(now)
    {
        store::StoreError error;
        if (!model::DefaultRecords(main()).initDatabaseRecords(&error))
            qFatal("cannot insert the default records: %s", qPrintable(error.message()));
    }

    store::Store& store() { return m_scratch.store(); }
    store::EditingContext& main() { return m_scratch.main(); }
    QString path() const { return m_scratch.path(); }
    support::ScriptedPrompter& prompter() { return m_prompter; }
    Clock clock()
    {
        return [this] { return m_now; };
    }
    void setNow(const QDateTime& now) { m_now = now; }
    const QDateTime& now() const { return m_now; }

    // One of the objects that work on this company's store, asking through its prompter.
    template <typename T>
    T make()
    {
        if constexpr (std::is_constructible_v<T, store::Store&, support::Prompter&, Clock>)
            return T(store(), prompter(), clock());
        else
            return T(store(), prompter());
    }

    QList<Record*> fetch(const QString& entity, const QString& condition, const QVariantList& arguments = {})
    {
        return main().fetch(store::FetchRequest(entity, predicate::literal(condition, arguments)));
    }
    Record* named(const char* entity, const QString& name)
    {
        return fetch(s(entity), s("name == %@"), {name}).value(0);
    }
    int count(const char* entity) { return main().count(store::FetchRequest(s(entity))); }
    Record* record(const RecordRef& ref) { return main().record(ref); }

    // Inserts a record into the main context and saves it.
    RecordRef add(const char* entity, const QVariantMap& values)
    {
        Record* record = main().insertRecord(s(entity), values);
        saveMain();
        return record->ref();
    }
    RecordRef addTax(const QString& name, double rate1, double rate2 = 0, bool cumulative = false)
    {
        return add(
            "Taxes",
            {{s("name"), name}, {s("rate1"), rate1}, {s("rate2"), rate2}, {s("cumulative"), cumulative}});
    }
    // A product whose five price levels are `price` times 1 to 5.
    RecordRef addItem(const QString& name, double price, const RecordRef& tax = {})
    {
        QVariantMap values{{s("name"), name}, {s("type"), 1}, {s("code"), name.left(3).toUpper()}};
        for (int level = 1; level <= 5; ++level)
            values.insert(QStringLiteral("custom_price0%1").arg(level), price * level);
        if (!tax.isNull())
            values.insert(s("tax"), QVariant::fromValue(tax));
        return add("Items", values);
    }
    RecordRef addClient(const QString& companyName, const QVariantMap& more = {})
    {
        QVariantMap values{{s("type"), 0}, {s("company_name"), companyName}};
        values.insert(more);
        return add("Clients", values);
    }
    void addDelivery(const RecordRef& item, double quantity)
    {
        add("Warehouse",
            {{s("item"), QVariant::fromValue(item)}, {s("quantity"), quantity}, {s("date"), m_now}});
    }

    // A document of `type` dated today (unless `values` say otherwise) with a row of each item and
    // quantity, stored as the document editor stores one: snapshot, totals and folders; numbered
    // without a question when `final`, otherwise a draft; and the stock of its items counted again.
    RecordRef addDocument(int type, const RecordRef& client, const QList<std::pair<RecordRef, double>>& rows,
                          bool final = true, const QVariantMap& values = {})
    {
        store::EditingContext& c = main();
        const Record* company = model::CompanyRecord::of(c);
        const QVariant currency = company->value(s("default_currency"));
        Record* d =
            c.insertRecord(s("Documents"), {{s("type"), type},
                                            {s("identifier"), support::UUID()},
                                            {s("date_creation"), QDateTime(m_now.date(), QTime(12, 0))},
                                            {s("exchange_rate"), 1.0},
                                            {s("currency"), currency},
                                            {s("default_currency"), currency},
                                            {s("payment_type"), company->value(s("default_payment_type"))},
                                            {s("bank"), company->value(s("default_bank"))}});
        for (auto it = values.cbegin(); it != values.cend(); ++it)
            d->setValue(it.key(), it.value());
        d->setRelated(s("client"), record(client));
        for (const auto& [item, quantity] : rows) {
            Record* row = c.insertRecord(s("DocumentRows"));
            row->setRelated(s("document"), d);
            RowFiller::fillFromItem(row, record(item), 1);
            row->setValue(s("quantity"), quantity);
        }
        DocumentSnapshot::update(d);
        DocumentTotals::updateTaxSummary(d);
        DocumentTags::update(d);
        if (final) {
            const auto next = DocumentNumbering(c, m_prompter)
                                  .nextNumberByType(type, d->value(s("date_creation")).toDateTime(), false);
            d->setValue(s("number"), next.nextNumber);
            d->setValue(s("number_formatted"), next.formattedNumber);
            d->setValue(s("draft"), false);
        } else {
            DraftNumber::apply(d, m_now);
        }
        d->setValue(s("created"), m_now);
        StockCalculator(c).updateItemsCurrentStock(StockCalculator::itemsOf(d), {d});
        saveMain();
        return d->ref();
    }

    // "key=value" for each of the key paths (separated by blanks) of a record, to compare several
    // values at once: lists joined by "|", numbers in their shortest exact form.
    static QString text(const Record* record, const QString& keyPaths)
    {
        const auto text = [](const QVariant& v) {
            if (v.typeId() == QMetaType::Double)
                return QString::number(v.toDouble(), 'g', 17);
            if (v.typeId() == QMetaType::QDateTime)
                return v.toDateTime().toLocalTime().toString(Qt::ISODate);
            return v.toString();
        };
        QStringList result;
        for (const QString& key : keyPaths.split(QLatin1Char(' '))) {
            const QVariant v = record ? record->valueForKeyPath(key) : QVariant();
            QStringList parts;
            for (const QVariant& part : v.typeId() == QMetaType::QVariantList ? v.toList() : QVariantList{v})
                parts << text(part);
            result << key + QLatin1Char('=') + parts.join(QLatin1Char('|'));
        }
        return result.join(QLatin1Char(' '));
    }
    // The same, and single values, as the store holds them now.
    QString storedText(const RecordRef& ref, const QString& keyPaths)
    {
        std::unique_ptr<store::EditingContext> fresh = store().newContext();
        return text(fetchFirst(*fresh, ref), keyPaths);
    }
    QVariant stored(const RecordRef& ref, const char* keyPath)
    {
        std::unique_ptr<store::EditingContext> fresh = store().newContext();
        const Record* r = fetchFirst(*fresh, ref);
        return r ? r->valueForKeyPath(s(keyPath)) : QVariant();
    }
    double stock(const RecordRef& item) { return stored(item, "stock_current").toDouble(); }

    void saveMain() { model::testing::saveOrFail(main()); }

private:
    static Record* fetchFirst(store::EditingContext& context, const RecordRef& ref)
    {
        return context.fetchFirst(
            store::FetchRequest(ref.entity, predicate::literal("self == %@", {QVariant::fromValue(ref)})));
    }

    model::testing::ScratchCompany m_scratch;
    support::ScriptedPrompter m_prompter;
    QDateTime m_now;
};

} // namespace corvanta::documents::testing
