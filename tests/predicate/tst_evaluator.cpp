#include "predicate/evaluator.h"
#include "predicate/parser.h"

#include <QDateTime>
#include <QTest>

using namespace corvanta::predicate;

namespace {

QString s(const char* text)
{
    return QString::fromUtf8(text);
}

// A record in memory: key paths looked up in a map (to-many paths hold lists).
class MapRecord : public KeyPathSource
{
public:
    MapRecord(RecordRef self, QVariantMap values)
        : m_self(std::move(self))
        , m_values(std::move(values))
    {}
    QVariant valueForKeyPath(const QString& keyPath) const override { return m_values.value(keyPath); }
    RecordRef selfRef() const override { return m_self; }

private:
    RecordRef m_self;
    QVariantMap m_values;
};

QVariant ref(const char* entity, qint64 pk)
{
    return QVariant::fromValue(RecordRef{s(entity), pk});
}

} // namespace

// The evaluator on its own; its agreement with the SQL path is tested against a store.
class tst_Evaluator : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void evaluates_data();
    void evaluates();
};

void tst_Evaluator::evaluates_data()
{
    QTest::addColumn<QString>("predicate");
    QTest::addColumn<QVariantList>("arguments");
    QTest::addColumn<bool>("expected");
    const auto row = [](const char* name, const char* predicate, bool expected,
                        const QVariantList& arguments = {}) {
        QTest::newRow(name) << s(predicate) << arguments << expected;
    };
    row("paid: total equals the sum", "sum_total == payments.@sum.amount && type == 0 && draft == NO", true);
    row("missing draft is not NO", "note_draft == NO", false);
    row("missing draft is != YES", "note_draft != YES", true);
    row("missing equals nil", "cancel_reference == nil", true);
    row("ordering with a missing value", "stock_current < 5", false);
    row("NOT of that", "NOT stock_current < 5", true);
    row("contains on a missing text", "desc CONTAINS \"x\"", false);
    row("[cd] contains", "company_name CONTAINS[cd] \"almos\"", true);
    row("case-sensitive contains", "company_name CONTAINS \"almos\"", false);
    row("[c] keeps accents", "company_name CONTAINS[c] \"almos\"", false);
    row("[c] folds case", "company_name BEGINSWITH[c] \"ÁLM\"", true);
    row("[d] takes the double acute off", "city ==[d] \"Gyor\"", true);
    row("[cd] on double acute and case", "city ENDSWITH[cd] \"YOR\"", true);
    row("without [d] the accent counts", "city ==[c] \"gyor\"", false);
    row("ends with", "company_name ENDSWITH \"Kft.\"", true);
    row("empty needle never matches", "company_name CONTAINS \"\"", false);
    row("LIKE ? and *", "company_name LIKE \"?lmos*\"", true);
    row("LIKE anchors the end", "company_name LIKE \"Álmos\"", false);
    row("LIKE escaped star", "pattern LIKE \"a\\\\*b\"", true);
    row("number against text that is a number", "rate1 > \"10\"", true);
    row("integer equals double", "type == 0.0", true);
    row("booleans are numbers", "draft == 0", true);
    row("date compare", "date_creation >= CAST(757382400, \"NSDate\")", true);
    row("ANY to-many", "ANY rows.name == \"Bolt\"", true);
    row("to-many without ANY", "rows.name == \"Nut\"", true);
    row("ALL to-many", "ALL rows.quantity > 1", false);
    row("ALL over nothing", "ALL warehouse.quantity > 100", true);
    row("ANY over nothing", "ANY warehouse.quantity > 100", false);
    row("collection contains a record", "tags CONTAINS %@", true, {ref("Categories", 3)});
    row("record IN collection", "ANY %@ IN tags", false, {ref("Categories", 4)});
    row("record of another entity", "client == %@", false, {ref("Items", 7)});
    row("same record", "client == %@", true, {ref("Clients", 7)});
    row("self", "self == %@", true, {ref("Documents", 1)});
    row("IN list", "type IN {3, 0}", true);
    row("IN empty list", "type IN {}", false);
    row("IN a text", "code IN \"AB-12-CD\"", true);
    row("OR short-circuits nothing wrong", "type == 5 OR draft == NO", true);
    row("TRUEPREDICATE", "TRUEPREDICATE", true);
}

void tst_Evaluator::evaluates()
{
    QFETCH(QString, predicate);
    QFETCH(QVariantList, arguments);
    QFETCH(bool, expected);
    const MapRecord record({s("Documents"), 1},
                           {{s("sum_total"), 100.0},
                            {s("payments.@sum.amount"), 100.0},
                            {s("type"), qint64(0)},
                            {s("draft"), false},
                            {s("company_name"), s("Álmos Kft.")},
                            {s("pattern"), s("a*b")},
                            {s("city"), s("Győr")},
                            {s("rate1"), 20.0},
                            {s("code"), s("12")},
                            {s("date_creation"), QDateTime(QDate(2025, 1, 1), QTime(0, 0), Qt::UTC)},
                            {s("rows.name"), QVariantList{s("Bolt"), s("Nut")}},
                            {s("rows.quantity"), QVariantList{2.0, 1.0}},
                            {s("warehouse.quantity"), QVariantList{}},
                            {s("tags"), QVariantList{ref("Categories", 3), ref("Categories", 5)}},
                            {s("client"), ref("Clients", 7)}});
    ParseError error;
    const std::optional<Predicate> p = Parser::parse(predicate, arguments, &error);
    QVERIFY2(p, qPrintable(error.message()));
    QCOMPARE(Evaluator::evaluate(*p, record), expected);
}

QTEST_GUILESS_MAIN(tst_Evaluator)
#include "tst_evaluator.moc"
