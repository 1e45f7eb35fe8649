#include "predicate/formatter.h"
#include "predicate/parser.h"
#include "predicate/recordref.h"

#include <QDateTime>
#include <QTest>

using namespace corvanta::predicate;
using Op = Predicate::Operator;

Q_DECLARE_METATYPE(corvanta::predicate::Predicate)

namespace {

QString s(const char* text)
{
    return QString::fromUtf8(text);
}

Predicate parsed(const QString& text, const QVariantList& arguments = {})
{
    ParseError error;
    const std::optional<Predicate> p = Parser::parse(text, arguments, &error);
    if (!p)
        qWarning("%s", qPrintable(error.message()));
    return p.value_or(Predicate::falsePredicate());
}

} // namespace

class tst_Parser : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void roundTrip_data();
    void roundTrip();
    void trees_data();
    void trees();
    void arguments_data();
    void arguments();
    void errors_data();
    void errors();
};

void tst_Parser::roundTrip_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("stored"); // the form the formatter writes; empty: the text itself
    const auto row = [](const char* text, const char* stored = "") {
        QTest::newRow(text) << s(text) << s(stored);
    };
    row("company_name CONTAINS[cd] \"smith\"");
    row("date_creation == \"@this_month\"");
    row("type == 0");
    row("type == 1 AND subtype == 2");
    row("sum_total == payments.@sum.amount && type == 0 && draft == NO",
        "sum_total == payments.@sum.amount AND type == 0 AND draft == NO");
    row("sum_total != payments.@sum.amount && type == 0 && draft == NO && cancel_reference == NULL",
        "sum_total != payments.@sum.amount AND type == 0 AND draft == NO AND cancel_reference == nil");
    row("stock_current <= stock_critical && type == 1", "stock_current <= stock_critical AND type == 1");
    row("draft == YES");
    row("parent == nil");
    row("type == 100 || type == 110", "type == 100 OR type == 110");
    row("(type == 1 OR type == 2) AND name BEGINSWITH[c] \"a\"");
    row("type == 1 OR (type == 2 AND name ENDSWITH[d] \"é\")");
    row("selectable == YES || my_company_default_currency.default_currency == self",
        "selectable == YES OR my_company_default_currency.default_currency == SELF");
    row("NOT draft == YES");
    row("! (type == 1 || type == 2)", "NOT (type == 1 OR type == 2)");
    row("ANY addresses.city LIKE[cd] \"bud*\"");
    row("ALL rows.quantity > 0");
    row("type IN {1, 2, 3}");
    row("tax.rate1 > \"10\"");
    row("note == \"line \\\"one\\\"\\nline two\"");
    row("date_creation >= CAST(757382400, \"NSDate\")", "date_creation >= CAST(757382400.0, \"NSDate\")");
    row("sum_total > -12.5");
    row("TRUEPREDICATE");
    row("FALSEPREDICATE");
    row("key == 'version'", "key == \"version\"");
    QTest::newRow("nested as deeply as allowed")
        << s("NOT ").repeated(100) + s("a IN {{1}}")
        << s("NOT (").repeated(99) + s("NOT a IN {{1}}") + QString(99, QLatin1Char(')'));
}

void tst_Parser::roundTrip()
{
    QFETCH(QString, text);
    QFETCH(QString, stored);
    ParseError error;
    const std::optional<Predicate> first = Parser::parse(text, {}, &error);
    QVERIFY2(first, qPrintable(error.message()));
    const QString formatted = Formatter::format(*first);
    QCOMPARE(formatted, stored.isEmpty() ? text : stored);
    const std::optional<Predicate> second = Parser::parse(formatted, {}, &error);
    QVERIFY2(second, qPrintable(error.message()));
    QVERIFY(*second == *first);
}

void tst_Parser::trees_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<Predicate>("expected");
    const auto k = [](const char* path) { return Expression::keyPath(s(path)); };
    const auto c = [](const QVariant& v) { return Expression::constant(v); };
    QTest::newRow("AND binds tighter than OR")
        << s("a == 1 OR b == 2 AND c == 3")
        << Predicate::orOf({Predicate::comparison(k("a"), Op::Equal, c(1)),
                            Predicate::andOf({Predicate::comparison(k("b"), Op::Equal, c(2)),
                                              Predicate::comparison(k("c"), Op::Equal, c(3))})});
    QTest::newRow("keywords in any case")
        << s("not (name contains 'price')")
        << Predicate::notOf(Predicate::comparison(k("name"), Op::Contains, c(s("price"))));
    QTest::newRow("single = and =<") << s("a = 1 AND b =< 2")
                                     << Predicate::andOf(
                                            {Predicate::comparison(k("a"), Op::Equal, c(1)),
                                             Predicate::comparison(k("b"), Op::LessOrEqual, c(2))});
    QTest::newRow("<> is !=") << s("a <> \"x\"") << Predicate::comparison(k("a"), Op::NotEqual, c(s("x")));
    QTest::newRow("options [cd]") << s("name ==[cd] \"É\"")
                                  << Predicate::comparison(k("name"), Op::Equal, c(s("É")),
                                                           Predicate::CaseInsensitive |
                                                               Predicate::DiacriticInsensitive);
    QTest::newRow("ANY constant IN to-many")
        << s("ANY %@ in tags")
        << Predicate::comparison(c(QVariant()), Op::In, k("tags"), {}, Predicate::Modifier::Any);
    QTest::newRow("SELF.name is a key path")
        << s("SELF.name == \"x\"") << Predicate::comparison(k("self.name"), Op::Equal, c(s("x")));
    QTest::newRow("numbers") << s("a == 3 AND b == 2.5 AND c == -1e3")
                             << Predicate::andOf({Predicate::comparison(k("a"), Op::Equal, c(qint64(3))),
                                                  Predicate::comparison(k("b"), Op::Equal, c(2.5)),
                                                  Predicate::comparison(k("c"), Op::Equal, c(-1000.0))});
    QTest::newRow("date literal") << s("date_due < CAST(0, \"NSDate\")")
                                  << Predicate::comparison(
                                         k("date_due"), Op::Less,
                                         c(QDateTime(QDate(2001, 1, 1), QTime(0, 0), Qt::UTC)));
    QTest::newRow("escapes") << s("a == \"tab\\there \\\\ \\' \\\"\"")
                             << Predicate::comparison(k("a"), Op::Equal, c(s("tab\there \\ ' \"")));
    QTest::newRow("single-quoted text keeps double quotes")
        << s("a == 'say \"hi\"'") << Predicate::comparison(k("a"), Op::Equal, c(s("say \"hi\"")));
}

void tst_Parser::trees()
{
    QFETCH(QString, text);
    QFETCH(Predicate, expected);
    // Arguments for rows that use them.
    const Predicate actual = parsed(text, {QVariant()});
    QVERIFY2(actual == expected, qPrintable(Formatter::format(actual)));
}

void tst_Parser::arguments_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QVariantList>("arguments");
    QTest::addColumn<Predicate>("expected");
    const auto k = [](const char* path) { return Expression::keyPath(s(path)); };
    const auto c = [](const QVariant& v) { return Expression::constant(v); };
    const QVariant record = QVariant::fromValue(RecordRef{s("Items"), 12});
    QTest::newRow("record") << s("item == %@") << QVariantList{record}
                            << Predicate::comparison(k("item"), Op::Equal, c(record));
    QTest::newRow("text is bound, never read as syntax")
        << s("name == %@") << QVariantList{s("x\" OR 1 == 1 OR name == \"")}
        << Predicate::comparison(k("name"), Op::Equal, c(s("x\" OR 1 == 1 OR name == \"")));
    QTest::newRow("integers") << s("type == %ld && subtype == %d") << QVariantList{3, 100}
                              << Predicate::andOf(
                                     {Predicate::comparison(k("type"), Op::Equal, c(qint64(3))),
                                      Predicate::comparison(k("subtype"), Op::Equal, c(qint64(100)))});
    QTest::newRow("key path arguments")
        << s("document.%K >= %@ && %K <= %@") << QVariantList{s("date_creation"), 1.0, s("date_due"), 2.0}
        << Predicate::andOf({Predicate::comparison(k("document.date_creation"), Op::GreaterOrEqual, c(1.0)),
                             Predicate::comparison(k("date_due"), Op::LessOrEqual, c(2.0))});
    QTest::newRow("beginswith[c] with prefix")
        << s("name beginswith[c] %@") << QVariantList{s("client_")}
        << Predicate::comparison(k("name"), Op::BeginsWith, c(s("client_")), Predicate::CaseInsensitive);
    QTest::newRow("pasted key stays text")
        << s("key == '%@'") << QVariantList{} << Predicate::comparison(k("key"), Op::Equal, c(s("%@")));
}

void tst_Parser::arguments()
{
    QFETCH(QString, text);
    QFETCH(QVariantList, arguments);
    QFETCH(Predicate, expected);
    const Predicate actual = parsed(text, arguments);
    QVERIFY2(actual == expected, qPrintable(Formatter::format(actual)));
}

void tst_Parser::errors_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QVariantList>("arguments");
    QTest::addColumn<int>("position");
    QTest::addColumn<QString>("expected");
    QTest::newRow("empty") << s("") << QVariantList{} << 0 << s("a condition");
    QTest::newRow("missing operator") << s("type 1") << QVariantList{} << 5 << s("an operator");
    QTest::newRow("missing value") << s("type ==") << QVariantList{} << 7 << s("a key path or a value");
    QTest::newRow("unclosed text") << s("name == \"abc") << QVariantList{} << 12 << s("the closing \"");
    QTest::newRow("unclosed parenthesis") << s("(type == 1") << QVariantList{} << 10 << s("\")\"");
    QTest::newRow("dangling AND") << s("type == 1 AND") << QVariantList{} << 13 << s("a condition");
    QTest::newRow("trailing words") << s("type == 1 type == 2") << QVariantList{} << 10 << s("AND, OR");
    QTest::newRow("bad options") << s("name CONTAINS[x] \"a\"") << QVariantList{} << 14 << s("the options");
    QTest::newRow("unknown cast") << s("a == CAST(1, \"NSColor\")") << QVariantList{} << 13 << s("the type");
    QTest::newRow("too few arguments")
        << s("a == %@ AND b == %@") << QVariantList{1} << 17 << s("an argument");
    QTest::newRow("%K needs text") << s("%K == 1") << QVariantList{5} << 0 << s("a key path as the argument");
    QTest::newRow("semicolon is no syntax")
        << s("type == 1; DROP TABLE Clients") << QVariantList{} << 9 << s("AND, OR");
    QTest::newRow("comment marker is no syntax")
        << s("type == 1 -- rest") << QVariantList{} << 10 << s("AND, OR");
    // Nesting deep enough to overflow the stack of a recursive reader is refused: NOT, AND and
    // OR a hundred levels inside each other, twice that many parentheses, a hundred values.
    const QString tooDeep = s("a condition that is nested less deeply");
    QTest::newRow("parentheses nested too deeply")
        << QString(201, QLatin1Char('(')) + s("a == 1") + QString(201, QLatin1Char(')')) << QVariantList{}
        << 200 << tooDeep;
    QTest::newRow("NOT nested too deeply")
        << s("NOT ").repeated(101) + s("a == 1") << QVariantList{} << 0 << tooDeep;
    QTest::newRow("! nested too deeply")
        << s("!").repeated(4000) + s("a == 1") << QVariantList{} << 200 << tooDeep;
    QTest::newRow("lists nested too deeply")
        << s("a IN ") + QString(101, QLatin1Char('{')) << QVariantList{} << 105 << tooDeep;
    QTest::newRow("CAST nested too deeply")
        << s("a == ") + s("CAST(").repeated(101) << QVariantList{} << 505 << tooDeep;
}

void tst_Parser::errors()
{
    QFETCH(QString, text);
    QFETCH(QVariantList, arguments);
    QFETCH(int, position);
    QFETCH(QString, expected);
    ParseError error;
    QVERIFY(!Parser::parse(text, arguments, &error));
    QCOMPARE(error.position, position);
    QVERIFY2(error.expected.startsWith(expected), qPrintable(error.expected));
    QVERIFY(error.message().contains(QStringLiteral("position %1").arg(position)));
}

QTEST_GUILESS_MAIN(tst_Parser)
#include "tst_parser.moc"
