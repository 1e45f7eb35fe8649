#include "model/corvantamodel.h"
#include "modeltestsupport.h"
#include "predicate/literal.h"

using namespace corvanta::model;
using namespace corvanta::model::testing;
using namespace corvanta::store;
using corvanta::predicate::literal;
using corvanta::predicate::Predicate;
using corvanta::predicate::RecordRef;

Q_DECLARE_METATYPE(corvanta::predicate::Predicate)

class tst_DataModel : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void relationshipsPairUp();
    void companyDefaultsAreNamedForTheirKind();
    void historySearchesReadIndexesOnly_data();
    void historySearchesReadIndexesOnly();
};

void tst_DataModel::relationshipsPairUp()
{
    const DataModel& model = corvantaDataModel();
    for (const EntityDescription& entity : model.entities()) {
        for (const RelationshipDescription& r : entity.relationships()) {
            const QString name = entity.name() + QLatin1Char('.') + r.name;
            const RelationshipDescription& inverse = model.inverseOf(r);
            QVERIFY2(inverse.destination == entity.name() && inverse.inverse == r.name, qPrintable(name));
            // Exactly one side of a to-one pair keeps the column, unless the relationship is its
            // own inverse.
            if (!r.toMany && !inverse.toMany && &inverse != &r)
                QVERIFY2((r.storage == RelationshipStorage::ForeignKey) !=
                             (inverse.storage == RelationshipStorage::ForeignKey),
                         qPrintable(name));
        }
    }
}

// A record tells whether it is the company's default through its first relationship whose name
// begins with "my_company_"; the rest of that name is the company's key.
void tst_DataModel::companyDefaultsAreNamedForTheirKind()
{
    const DataModel& model = corvantaDataModel();
    const EntityDescription* company = model.entity(s("MyCompany"));
    for (const char* key : {"default_currency", "default_unit", "default_tax", "default_payment_type",
                            "default_bank", "default_due_day", "default_email_template"}) {
        const RelationshipDescription* r = company->relationship(s(key));
        QVERIFY2(r, key);
        const QList<RelationshipDescription>& others = model.entity(r->destination)->relationships();
        const auto first = std::find_if(others.cbegin(), others.cend(), [](const RelationshipDescription& d) {
            return d.name.startsWith(QLatin1String("my_company_"));
        });
        QVERIFY2(first != others.cend(), key);
        QCOMPARE(first->name.mid(11), s(key));
    }
}

// The searches that run over a company's whole history, as stock and numbering make them, must be
// answered by the model's covering indexes alone.
void tst_DataModel::historySearchesReadIndexesOnly_data()
{
    QTest::addColumn<QString>("entity");
    QTest::addColumn<Predicate>("predicate");
    QTest::addColumn<int>("function");
    QTest::addColumn<QString>("keyPath");
    QTest::addColumn<QString>("index");
    const QVariant item = QVariant::fromValue(RecordRef{s("Items"), 1});
    const QVariant document = QVariant::fromValue(RecordRef{s("Documents"), 2});
    QTest::newRow("sold quantity of an item")
        << s("DocumentRows")
        << literal("item == %@ && document.type == 0 && document.draft == NO && NOT (document IN %@)",
                   {item, QVariantList{document}})
        << int(Aggregate::Sum) << s("quantity") << s("DocumentRows_item_document_quantity");
    QTest::newRow("deliveries of an item")
        << s("Warehouse") << literal("item == %@", {item}) << int(Aggregate::Sum) << s("quantity")
        << s("Warehouse_item_quantity");
    QTest::newRow("highest number of a year")
        << s("Documents")
        << literal(
               "type == %ld && date_creation >= %@ && date_creation <= %@ && draft != 1",
               {0, QDateTime(QDate(2024, 1, 1), QTime(0, 0)), QDateTime(QDate(2024, 12, 31), QTime(23, 59))})
        << int(Aggregate::Max) << s("number") << s("Documents_type_date_creation_draft_number");
}

void tst_DataModel::historySearchesReadIndexesOnly()
{
    QFETCH(QString, entity);
    QFETCH(Predicate, predicate);
    QFETCH(int, function);
    QFETCH(QString, keyPath);
    QFETCH(QString, index);
    ScratchCompany company;
    const QueryPlan plan =
        company.store().explain(FetchRequest(entity, predicate), Aggregate(function), keyPath);
    const QString steps = plan.steps.join(QLatin1Char('\n'));
    QVERIFY2(!steps.isEmpty() && !steps.contains(s("SCAN")), qPrintable(plan.statement + s("\n") + steps));
    QVERIFY2(steps.contains(s("COVERING INDEX ") + index), qPrintable(steps));
}

QTEST_GUILESS_MAIN(tst_DataModel)
#include "tst_datamodel.moc"
