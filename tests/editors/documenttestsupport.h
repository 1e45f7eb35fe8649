#pragma once

#include "../model/modeltestsupport.h"
#include "documents/clock.h"
#include "model/defaultrecords.h"
#include "predicate/parser.h"
#include "support/scriptedprompter.h"

#include <QDateTime>
#include <QTest>
#include <memory>

namespace corvanta::documents::testing {

using namespace corvanta::store;
using namespace corvanta::support;

using model::testing::s;

// A local moment, as the user's clock gives it.
inline QDateTime at(int year, int month, int day, int hour = 10, int minute = 30)
{
    return QDateTime(QDate(year, month, day), QTime(hour, minute));
}

// A new company database with the default records of a new database and this library's record
// classes, a scripted prompter and a clock that stands still until it is moved.
class TestCompany
{
public:
    explicit TestCompany(const QDateTime& now = at(2024, 3, 15))
        : m_now(now)
    {
        model::DefaultRecords defaults(m_scratch.main());
        store::StoreError error;
        if (!defaults.initDatabaseRecords(&error))
            qFatal("cannot insert the default records: %s", qPrintable(error.message()));
    }

    store::Store& store() { return m_scratch.store(); }
    store::EditingContext& main() { return m_scratch.main(); }
    support::ScriptedPrompter& prompter() { return m_prompter; }
    Clock clock()
    {
        return [this] { return m_now; };
    }
    void setNow(const QDateTime& now) { m_now = now; }
    const QDateTime& now() const { return m_now; }

    static predicate::Predicate parsed(const QString& condition, const QVariantList& arguments = {})
    {
        predicate::ParseError error;
        const std::optional<predicate::Predicate> p = predicate::Parser::parse(condition, arguments, &error);
        if (!p)
            qFatal("unreadable predicate \"%s\": %s", qPrintable(condition), qPrintable(error.message()));
        return *p;
    }
    // The first record of `entity` matching a predicate, read afresh from the store.
    store::Record* find(const QString& entity, const QString& condition, const QVariantList& arguments = {})
    {
        return main().fetchFirst(store::FetchRequest(entity, parsed(condition, arguments)));
    }
    QList<store::Record*> fetch(const QString& entity, const QString& condition,
                                const QVariantList& arguments = {})
    {
        return main().fetch(store::FetchRequest(entity, parsed(condition, arguments)));
    }
    store::Record* named(const char* entity, const QString& name)
    {
        return find(s(entity), s("name == %@"), {name});
    }

    // Inserts a record into the main context and saves it.
    predicate::RecordRef add(const char* entity, const QVariantMap& values)
    {
        store::Record* record = main().insertRecord(s(entity), values);
        saveMain();
        return record->ref();
    }
    predicate::RecordRef addTax(const QString& name, double rate1, double rate2 = 0, bool cumulative = false)
    {
        return add(
            "Taxes",
            {{s("name"), name}, {s("rate1"), rate1}, {s("rate2"), rate2}, {s("cumulative"), cumulative}});
    }
    // An item whose five price levels are `price` times 1 to 5.
    predicate::RecordRef addItem(const QString& name, double price, const predicate::RecordRef& tax = {},
                                 int type = 1)
    {
        QVariantMap values{{s("name"), name}, {s("type"), type}, {s("code"), name.left(3).toUpper()}};
        for (int level = 1; level <= 5; ++level)
            values.insert(QStringLiteral("custom_price0%1").arg(level), price * level);
        if (!tax.isNull())
            values.insert(s("tax"), QVariant::fromValue(tax));
        return add("Items", values);
    }
    predicate::RecordRef addClient(const QString& companyName, const QVariantMap& more = {})
    {
        QVariantMap values{{s("type"), 0}, {s("company_name"), companyName}};
        values.insert(more);
        return add("Clients", values);
    }
    void addDelivery(const predicate::RecordRef& item, double quantity)
    {
        add("Warehouse",
            {{s("item"), QVariant::fromValue(item)}, {s("quantity"), quantity}, {s("date"), m_now}});
    }

    store::Record* record(const predicate::RecordRef& ref) { return main().record(ref); }
    // A value as the store holds it now.
    QVariant stored(const predicate::RecordRef& ref, const char* key)
    {
        std::unique_ptr<store::EditingContext> fresh = store().newContext();
        const store::Record* r = fresh->fetchFirst(
            store::FetchRequest(ref.entity, parsed(s("self == %@"), {QVariant::fromValue(ref)})));
        return r ? r->valueForKeyPath(s(key)) : QVariant();
    }

    // "key=value" for each key path of a record as the store holds it, to compare several values
    // at once; lists are joined by "|", numbers in their shortest exact form.
    QStringList stored(const predicate::RecordRef& ref, const QStringList& keys)
    {
        const auto text = [](const QVariant& v) {
            if (v.typeId() == QMetaType::Double)
                return QString::number(v.toDouble(), 'g', 17);
            if (v.typeId() == QMetaType::QDateTime)
                return v.toDateTime().toLocalTime().toString(Qt::ISODate);
            return v.toString();
        };
        QStringList result;
        for (const QString& key : keys) {
            const QVariant v = stored(ref, qPrintable(key));
            QStringList parts;
            if (v.typeId() == QMetaType::QVariantList) {
                for (const QVariant& part : v.toList())
                    parts << text(part);
            } else {
                parts << text(v);
            }
            result << key + QLatin1Char('=') + parts.join(QLatin1Char('|'));
        }
        return result;
    }

    void saveMain() { model::testing::saveOrFail(main()); }

private:
    model::testing::ScratchCompany m_scratch;
    support::ScriptedPrompter m_prompter;
    QDateTime m_now;
};

} // namespace corvanta::documents::testing
