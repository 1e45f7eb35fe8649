#include "orderbook.h"
#include "predicate/evaluator.h"
#include "predicate/formatter.h"
#include "predicate/parser.h"

#include <QDateTime>
#include <random>

using namespace corvanta::store;
using namespace corvanta::store::testing;
using namespace corvanta::predicate;
using Op = Predicate::Operator;

namespace {

// Builds random order books and random predicates over their orders and customers.
class RandomOrderBook
{
public:
    explicit RandomOrderBook(unsigned seed)
        : m_random(seed)
    {}

    void fill(EditingContext& c)
    {
        for (int i = 0; i < 4; ++i)
            m_tags << c.insertRecord(s("Tags"), {{s("name"), pick(m_words)}, {s("type"), 3}})->ref();
        for (int i = 0; i < 30; ++i)
            m_clients << c.insertRecord(s("Customers"),
                                        {{s("kind"), chance(10) ? QVariant() : QVariant(below(3))},
                                         {s("name"), maybeText()},
                                         {s("first_name"), maybeText()},
                                         {s("last_name"), maybeText()}})
                             ->ref();
        for (int i = 0; i < 60; ++i) {
            const double total = pick(m_amounts);
            Record* doc = c.insertRecord(
                s("Orders"),
                {{s("kind"), below(8)},
                 {s("draft"), chance(20) ? QVariant() : QVariant(chance(50))},
                 {s("number"), maybeText()},
                 {s("note"), maybeText()},
                 {s("total"), chance(10) ? QVariant() : QVariant(total)},
                 {s("created"), chance(10) ? QVariant() : QVariant(someDate())},
                 {s("customer"), chance(20) ? QVariant() : QVariant::fromValue(c.record(pick(m_clients)))}});
            m_documents << doc->ref();
            // Payments that often add up to the total, in an order that matters for doubles.
            const int payments = below(4);
            double left = total;
            for (int p = 0; p < payments; ++p) {
                const double amount = p == payments - 1 && chance(60) ? left : pick(m_amounts) / 3.0;
                left -= amount;
                c.insertRecord(s("Payments"),
                               {{s("amount"), amount}, {s("order"), QVariant::fromValue(doc)}});
            }
            for (int r = below(4); r > 0; --r)
                c.insertRecord(s("Lines"),
                               {{s("name"), maybeText()},
                                {s("quantity"), chance(10) ? QVariant() : QVariant(double(below(7) - 2))},
                                {s("order"), QVariant::fromValue(doc)}});
            for (const RecordRef& tag : m_tags) {
                if (chance(30))
                    doc->addRelated(s("tags"), c.record(tag));
            }
        }
        if (m_documents.size() > 3) // a cancelled pair
            c.record(m_documents.at(0))
                ->setValue(s("cancel_reference"), QVariant::fromValue(m_documents.at(1)));
    }

    Predicate orderPredicate(int depth = 0)
    {
        if (depth < 3 && chance(35)) {
            std::vector<Predicate> children;
            for (int i = 1 + below(3); i > 0; --i)
                children.push_back(orderPredicate(depth + 1));
            switch (below(3)) {
            case 0:
                return Predicate::andOf(std::move(children));
            case 1:
                return Predicate::orOf(std::move(children));
            default:
                return Predicate::notOf(children.front());
            }
        }
        switch (below(12)) {
        case 0:
            return Predicate::compare(pick(QStringList{s("kind"), s("total")}), orderOp(), number());
        case 1:
            return Predicate::compare(s("draft"), chance(50) ? Op::Equal : Op::NotEqual,
                                      chance(20) ? QVariant() : QVariant(chance(50)));
        case 2:
            return Predicate::compare(pick(QStringList{s("number"), s("note")}), textOp(), textValue(),
                                      options());
        case 3:
            return Predicate::compare(pick(QStringList{s("customer.name"), s("customer.full_name")}),
                                      textOp(), textValue(), options());
        case 4:
            return Predicate::compare(s("customer.kind"), orderOp(), number());
        case 5:
            return Predicate::compare(s("lines.name"), textOp(), textValue(), options(), modifier());
        case 6:
            return Predicate::compare(s("lines.quantity"), orderOp(), number(), {}, modifier());
        case 7:
            return totalAgainstPayments(chance(50) ? Op::Equal : Op::NotEqual);
        case 8:
            return Predicate::compare(
                pick(QStringList{s("payments.@count"), s("payments.@sum.amount"), s("lines.@sum.quantity")}),
                orderOp(), number());
        case 9: {
            const QVariant tag = QVariant::fromValue(pick(m_tags));
            if (chance(50))
                return Predicate::compare(s("tags"), chance(50) ? Op::Equal : Op::Contains, tag, {},
                                          chance(50) ? Predicate::Modifier::Any
                                                     : Predicate::Modifier::Direct);
            return Predicate::comparison(Expression::constant(tag), Op::In, Expression::keyPath(s("tags")));
        }
        case 10:
            return Predicate::compare(s("created"), orderOp(),
                                      chance(10) ? QVariant() : QVariant(someDate()));
        default: {
            if (chance(50))
                return Predicate::compare(s("kind"), Op::In, QVariantList{below(8), below(8)});
            if (chance(50))
                return Predicate::compare(s("cancel_reference"), chance(50) ? Op::Equal : Op::NotEqual,
                                          QVariant());
            return Predicate::compare(s("self"), Op::Equal, QVariant::fromValue(pick(m_documents)));
        }
        }
    }

private:
    int below(int n) { return std::uniform_int_distribution<int>(0, n - 1)(m_random); }
    bool chance(int percent) { return below(100) < percent; }
    template <typename T>
    T pick(const QList<T>& list)
    {
        return list.at(below(int(list.size())));
    }
    QVariant maybeText()
    {
        if (chance(15))
            return {};
        if (chance(5))
            return s("");
        return pick(m_words) + (chance(40) ? QLatin1Char(' ') + pick(m_words) : QString());
    }
    // The word, its upper case, or a part of it cut at whole characters (never inside a
    // surrogate pair); now and then an empty text.
    QVariant textValue()
    {
        if (chance(5))
            return s("");
        const QString word = pick(m_words);
        const QList<uint> all = word.toUcs4();
        const auto* characters = reinterpret_cast<const char32_t*>(all.constData());
        const int size = int(all.size()), from = below(size);
        const int choice = below(4);
        return choice == 0   ? word
               : choice == 1 ? word.toUpper()
               : choice == 2 ? QString::fromUcs4(characters, 1 + from)
                             : QString::fromUcs4(characters + from, size - from);
    }
    QVariant number()
    {
        if (chance(10))
            return {};
        return chance(50) ? QVariant(below(8)) : QVariant(pick(m_amounts));
    }
    QDateTime someDate()
    {
        return QDateTime(QDate(2023, 1, 1), QTime(0, 0), Qt::UTC)
            .addSecs(qint64(below(730)) * 86400 + below(86400));
    }
    Op orderOp()
    {
        return pick(
            QList<Op>{Op::Equal, Op::NotEqual, Op::Less, Op::LessOrEqual, Op::Greater, Op::GreaterOrEqual});
    }
    Op textOp()
    {
        return pick(QList<Op>{Op::Equal, Op::NotEqual, Op::Contains, Op::BeginsWith, Op::EndsWith, Op::Like,
                              Op::Less, Op::Greater});
    }
    Predicate::Options options() { return Predicate::Options(below(4)); }
    Predicate::Modifier modifier() { return Predicate::Modifier(below(3)); }

    std::mt19937 m_random;
    const QStringList m_words{s("Álmos"), s("almos"), s("ALMOS"), s("Szabó"), s("szabo"),     s("Őz"),
                              s("öz"),    s("acme"),  s("Acme*"), s("a?c"),   s("Ünnep"),     s("straße"),
                              s("Zoë"),   s("zoe"),   s("X-1"),   s("x-10"),  s("🙂 smile")};
    const QList<double> m_amounts{0.0, 0.1, 0.2, 0.3, 1.5, 10.0, 33.33, 100.0, -40.0, 1e16};
    QList<RecordRef> m_tags;
    QList<RecordRef> m_clients;
    QList<RecordRef> m_documents;
};

} // namespace

// The store's SQL and the in-memory evaluator must select the same records. Random order books
// and random predicates look for a difference between them.
class tst_Differential : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void sqlAgreesWithEvaluator_data();
    void sqlAgreesWithEvaluator();
};

void tst_Differential::sqlAgreesWithEvaluator_data()
{
    QTest::addColumn<unsigned>("seed");
    for (unsigned seed : {1u, 2u, 3u, 4u})
        QTest::addRow("order book %u", seed) << seed;
}

void tst_Differential::sqlAgreesWithEvaluator()
{
    QFETCH(unsigned, seed);
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
    ScratchStore st;
    RandomOrderBook company(seed);
    company.fill(st.main());
    saveOrFail(st.main());
    st.reopen();
    EditingContext& c = st.main();
    const QList<Record*> all = c.fetch(FetchRequest(s("Orders")));
    QCOMPARE(all.size(), 60);

    for (int trial = 0; trial < 250; ++trial) {
        const Predicate p = company.orderPredicate();
        const QString text = Formatter::format(p);
        StoreError error;
        QSet<qint64> bySql;
        for (const Record* r : c.fetch(FetchRequest(s("Orders"), p), &error))
            bySql.insert(r->pk());
        QVERIFY2(!error.isError(), qPrintable(text + QLatin1String(": ") + error.message()));
        QSet<qint64> inMemory;
        for (const Record* r : all) {
            if (Evaluator::evaluate(p, *r))
                inMemory.insert(r->pk());
        }
        QVERIFY2(
            bySql == inMemory,
            qPrintable(
                text +
                s(": the SQL selects %1 records, the evaluator %2").arg(bySql.size()).arg(inMemory.size())));
        QCOMPARE(c.count(FetchRequest(s("Orders"), p)), int(bySql.size()));
    }
}

QTEST_GUILESS_MAIN(tst_Differential)
#include "tst_differential.moc"
