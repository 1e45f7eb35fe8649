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
#include "model/defaultrecords.h"
#include "predicate/literal.h"
#include "support/scriptedprompter.h"
#include "support/uuid.h"

#include <QDateTime>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QTest>
#include <QUuid>

namespace corvanta::documents::testing {

using model::testing::s;
using predicate::RecordRef;
using store::Record;

// A local moment, as the user's clock gives it.
inline QDateTime at(int year, int month, int day, int hour = 10, int minute = 30)
{
    return QDateTime(QDate(year, month, day), QTime(hour, minute));
}

// The questions a prompter was asked so far, each as "title | text | buttons".
inline QStringList asked(const support::ScriptedPrompter& prompter)
{
    QStringList result;
    for (const auto& q : prompter.questions())
        result << q.title + s(" | ") + q.text + s(" | ") + q.buttons.join(s(", "));
    return result;
}

// A new company database with its default records, a scripted prompter and a clock that stands still.
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
    QStringList asked() const { return testing::asked(m_prompter); }
    QString question() const { return asked().value(0, QStringLiteral("(not asked)")); }
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

    Record* named(const char* entity, const QString& name)
    {
        return main().fetchFirst(store::FetchRequest(s(entity), predicate::literal("name == %@", {name})));
    }
    int count(const char* entity) { return main().count(store::FetchRequest(s(entity))); }
    Record* record(const RecordRef& ref) { return main().record(ref); }

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
    RecordRef addClient(const QString& name)
    {
        return add("Clients", {{s("type"), 0}, {s("company_name"), name}});
    }
    void addDelivery(const RecordRef& item, double quantity)
    {
        add("Warehouse",
            {{s("item"), QVariant::fromValue(item)}, {s("quantity"), quantity}, {s("date"), m_now}});
    }

    // A document of `type` dated today with a row of `quantity` of an item, stored as the document
    // editor stores one: numbered without a question when `final`, otherwise a draft.
    RecordRef addDocument(int type, const RecordRef& client, const RecordRef& item, double quantity,
                          bool final = true, const QVariantMap& values = {})
    {
        store::EditingContext& c = main();
        QVariantMap all{{s("type"), type},
                        {s("identifier"), support::UUID()},
                        {s("exchange_rate"), 1.0},
                        {s("date_creation"), QDateTime(m_now.date(), QTime(12, 0))}};
        all.insert(values);
        Record* d = c.insertRecord(s("Documents"), all);
        d->setRelated(s("client"), record(client));
        Record* row = c.insertRecord(s("DocumentRows"));
        row->setRelated(s("document"), d);
        RowFiller::fillFromItem(row, record(item), 1);
        row->setValue(s("quantity"), quantity);
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

    // "key=value" for each blank-separated key path of a record: lists joined by "|", exact numbers.
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
        return text(fresh->fetchRecord(ref.entity, ref), keyPaths);
    }
    QVariant stored(const RecordRef& ref, const char* keyPath)
    {
        std::unique_ptr<store::EditingContext> fresh = store().newContext();
        const Record* r = fresh->fetchRecord(ref.entity, ref);
        return r ? r->valueForKeyPath(s(keyPath)) : QVariant();
    }
    double stock(const RecordRef& item) { return stored(item, "stock_current").toDouble(); }

    void saveMain() { model::testing::saveOrFail(main()); }

private:
    model::testing::ScratchCompany m_scratch;
    support::ScriptedPrompter m_prompter;
    QDateTime m_now;
};

// Makes every INSERT, UPDATE or DELETE of a table fail while it lives, through a trigger set from a
// second connection: a real failure in the middle of a save, after the statements before it ran.
class ForcedFailure
{
public:
    ForcedFailure(const QString& databasePath, const QString& table, const QString& operation)
        : m_connection(QUuid::createUuid().toString())
        , m_trigger(QStringLiteral("forced_failure_%1_%2").arg(table, operation.toLower()))
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), m_connection);
        db.setDatabaseName(databasePath);
        if (!db.open())
            qFatal("cannot open the database for a forced failure");
        run(QStringLiteral(
                "CREATE TRIGGER \"%1\" BEFORE %2 ON \"%3\" BEGIN SELECT RAISE(ABORT, 'forced failure'); END")
                .arg(m_trigger, operation, table));
    }
    ~ForcedFailure()
    {
        run(QStringLiteral("DROP TRIGGER IF EXISTS \"%1\"").arg(m_trigger));
        QSqlDatabase::database(m_connection).close();
        QSqlDatabase::removeDatabase(m_connection);
    }
    ForcedFailure(const ForcedFailure&) = delete;
    ForcedFailure& operator=(const ForcedFailure&) = delete;

private:
    void run(const QString& sql)
    {
        QSqlQuery query(QSqlDatabase::database(m_connection));
        if (!query.exec(sql))
            qFatal("forced failure: %s", qPrintable(query.lastError().text()));
    }

    QString m_connection;
    QString m_trigger;
};

} // namespace corvanta::documents::testing
