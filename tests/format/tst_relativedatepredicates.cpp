#include "format/relativedatepredicates.h"
#include "format/relativedates.h"
#include "predicate/formatter.h"
#include "predicate/parser.h"
#include "predicate/recordref.h"

#include <QTest>
#include <QTimeZone>

using namespace corvanta;
using predicate::Predicate;

namespace {

QString s(const char* text)
{
    return QString::fromUtf8(text);
}

const QTimeZone& budapest()
{
    static const QTimeZone zone("Europe/Budapest");
    return zone;
}

// 15 March 2024, 10:30 in Budapest: a Friday.
QDateTime now()
{
    return QDateTime(QDate(2024, 3, 15), QTime(10, 30), budapest());
}

Predicate read(const QString& text, const QVariantList& arguments = {})
{
    return predicate::Parser::parse(text, arguments).value_or(Predicate::falsePredicate());
}

} // namespace

class tst_RelativeDatePredicates : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void replacesTokens_data();
    void replacesTokens();
    void noPredicateInNoneOut();
    void recordsSurvive();
};

void tst_RelativeDatePredicates::replacesTokens_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("expected"); // %1 ... stand for the dates below, as CAST(..., "NSDate")
    QTest::addColumn<QList<QDateTime>>("dates");
    const QDateTime monthStart(QDate(2024, 3, 1), QTime(0, 0), budapest());
    QTest::newRow("this month") << s("date_creation == \"@this_month\"") << s("date_creation == %1")
                                << QList<QDateTime>{monthStart};
    QTest::newRow("two tokens and a plain row")
        << s("date_creation >= \"@last_month\" AND date_due <= \"@today\" AND type == 0")
        << s("date_creation >= %1 AND date_due <= %2 AND type == 0")
        << QList<QDateTime>{QDateTime(QDate(2024, 2, 15), QTime(0, 0), budapest()),
                            QDateTime(QDate(2024, 3, 15), QTime(0, 0), budapest())};
    QTest::newRow("the same token twice")
        << s("date_creation == \"@this_year\" OR date_due == \"@this_year\"")
        << s("date_creation == %1 OR date_due == %1")
        << QList<QDateTime>{QDateTime(QDate(2024, 1, 1), QTime(0, 0), budapest())};
    QTest::newRow("a week starting on Monday")
        << s("date_creation >= \"@this_week\"") << s("date_creation >= %1")
        << QList<QDateTime>{QDateTime(QDate(2024, 3, 11), QTime(0, 0), budapest())};
    QTest::newRow("rolling weeks") << s("date_creation >= \"@last_two_weeks\"") << s("date_creation >= %1")
                                   << QList<QDateTime>{QDateTime(QDate(2024, 3, 1), QTime(0, 0), budapest())};
    QTest::newRow("token inside longer text stays text")
        << s("note CONTAINS[cd] \"see @this_month\"") << s("note CONTAINS[cd] \"see @this_month\"")
        << QList<QDateTime>{};
    QTest::newRow("no tokens") << s("sum_total == payments.@sum.amount AND draft == NO")
                               << s("sum_total == payments.@sum.amount AND draft == NO")
                               << QList<QDateTime>{};
}

void tst_RelativeDatePredicates::replacesTokens()
{
    QFETCH(QString, text);
    QFETCH(QString, expected);
    QFETCH(QList<QDateTime>, dates);
    for (const QDateTime& date : dates)
        expected = expected.arg(predicate::Formatter::format(predicate::Expression::constant(date.toUTC())));
    const std::optional<Predicate> replaced = format::replaceRelativeDates(read(text), now(), Qt::Monday);
    QVERIFY(replaced);
    QCOMPARE(predicate::Formatter::format(*replaced), expected);
    QVERIFY(*replaced == read(expected));
}

void tst_RelativeDatePredicates::noPredicateInNoneOut()
{
    QVERIFY(!format::replaceRelativeDates(std::nullopt, now()));
}

void tst_RelativeDatePredicates::recordsSurvive()
{
    const QVariant tag = QVariant::fromValue(predicate::RecordRef{s("Categories"), 7});
    const Predicate original = read(s("ANY tags == %@ AND date_creation >= \"@yesterday\""), {tag});
    const std::optional<Predicate> replaced = format::replaceRelativeDates(original, now(), Qt::Monday);
    QVERIFY(replaced);
    const QDateTime yesterday(QDate(2024, 3, 14), QTime(0, 0), budapest());
    QVERIFY(*replaced ==
            Predicate::andOf(
                {Predicate::compare(s("tags"), Predicate::Operator::Equal, tag, {}, Predicate::Modifier::Any),
                 Predicate::compare(s("date_creation"), Predicate::Operator::GreaterOrEqual,
                                    yesterday.toUTC())}));
}

QTEST_GUILESS_MAIN(tst_RelativeDatePredicates)
#include "tst_relativedatepredicates.moc"
