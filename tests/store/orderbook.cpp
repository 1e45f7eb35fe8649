#include "orderbook.h"

#include <QSqlDatabase>
#include <QSqlQuery>

namespace corvanta::store::testing {

namespace {

using T = AttributeType;
using R = DeleteRule;

DataModel build()
{
    DataModelBuilder b(s("1.0"));
    b.setApplicationId(0x54455354); // "TEST"
    b.setVersionSetting(s("Settings"), s("key"), s("value"), s("version"));
    b.entity(s("Settings")).string(s("key")).attribute(s("value"), T::Variant).index({s("key")}, true);
    b.entity(s("Customers"))
        .integer(s("kind"))
        .string(s("name"))
        .string(s("first_name"))
        .string(s("last_name"))
        .string(s("full_name"))
        .string(s("tax_number"))
        .integer(s("rating"))
        .string(s("desc"))
        .transientAttribute(s("spent"), T::Decimal);
    b.entity(s("Addresses")).string(s("street")).string(s("city"));
    b.entity(s("Orders"))
        .string(s("number"))
        .integer(s("kind"))
        .boolean(s("draft"))
        .decimal(s("total"))
        .date(s("created"))
        .string(s("note"))
        .materializedSum(s("payments"), s("amount"))
        .index({s("kind"), s("created"), s("draft"), s("number")})
        .index({s("pk"), s("kind"), s("draft")});
    b.entity(s("Lines"))
        .string(s("name"))
        .decimal(s("quantity"))
        .decimal(s("price"))
        .index({s("product"), s("order"), s("quantity")});
    b.entity(s("Products")).string(s("name")).decimal(s("price")).attribute(s("picture"), T::Image);
    b.entity(s("Deliveries")).decimal(s("quantity")).index({s("product"), s("quantity")});
    b.entity(s("Payments")).decimal(s("amount"));
    b.entity(s("Tags"))
        .string(s("name"))
        .integer(s("type"))
        .colour(s("colour"))
        .attribute(s("weekdays"), T::IntegerSet);

    b.oneToMany(s("Customers"), s("addresses"), R::Cascade, s("Addresses"), s("customer"), R::Nullify);
    b.oneToOne(s("Customers"), s("default_address"), R::Nullify, s("Addresses"), s("default_of"), R::Nullify);
    b.oneToMany(s("Customers"), s("orders"), R::Nullify, s("Orders"), s("customer"), R::Nullify);
    b.oneToMany(s("Orders"), s("lines"), R::Cascade, s("Lines"), s("order"), R::Nullify);
    b.oneToMany(s("Orders"), s("payments"), R::Cascade, s("Payments"), s("order"), R::Nullify);
    b.symmetricToOne(s("Orders"), s("cancel_reference"), R::Nullify);
    b.oneToMany(s("Products"), s("lines"), R::Deny, s("Lines"), s("product"), R::Nullify);
    b.oneToMany(s("Products"), s("deliveries"), R::Cascade, s("Deliveries"), s("product"), R::Nullify);
    b.manyToMany(s("Customers"), s("tags"), R::Nullify, s("Tags"), s("customers"), R::Nullify);
    b.manyToMany(s("Orders"), s("tags"), R::Nullify, s("Tags"), s("orders"), R::Nullify);
    return b.build();
}

} // namespace

const DataModel& orderBook()
{
    static const DataModel model = build();
    return model;
}

void CustomersRecord::didChangeValue(const QString& key)
{
    if (key == QLatin1String("kind") || key == QLatin1String("name") || key == QLatin1String("first_name") ||
        key == QLatin1String("last_name"))
        updateFullName();
}

void CustomersRecord::updateFullName()
{
    const QString name = primitiveValue(s("kind")).toLongLong() < 2
                             ? primitiveValue(s("name")).toString()
                             : primitiveValue(s("first_name")).toString() + QLatin1Char(' ') +
                                   primitiveValue(s("last_name")).toString();
    setPrimitiveValue(s("full_name"), name.trimmed(), true);
}

std::unique_ptr<Store> openOrderBook(const QString& path, StoreError* error)
{
    std::unique_ptr<Store> store = Store::open(path, orderBook(), error);
    if (store)
        store->registerRecordClass(
            s("Customers"), [](const Record::Init& init) { return std::make_unique<CustomersRecord>(init); });
    return store;
}

ScratchStore::ScratchStore()
{
    reopen();
}

void ScratchStore::reopen()
{
    m_store.reset();
    StoreError error;
    m_store = openOrderBook(path(), &error);
    if (!m_store)
        qFatal("cannot open the scratch store: %s", qPrintable(error.message()));
}

QStringList runSql(const QString& path, const QStringList& statements)
{
    QStringList column;
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(s("QSQLITE"), s("raw"));
        db.setDatabaseName(path);
        db.open();
        QSqlQuery q(db);
        for (const QString& statement : statements)
            q.exec(statement);
        while (q.next())
            column << q.value(0).toString();
    }
    QSqlDatabase::removeDatabase(s("raw"));
    return column;
}

} // namespace corvanta::store::testing
