// The browser and the report screen on a large company database: every sidebar count after a
// save, the documents report and the client-sums report over one year and over five, and the
// first page of each list, each against hand-written SQL that asks the same question, side by
// side in one run.

#include "benchoutput.h"
#include "browse/categorycounts.h"
#include "browse/recordlistmodel.h"
#include "browse/reportoptions.h"
#include "browse/reportrunner.h"
#include "companygenerator.h"
#include "model/companydatabase.h"
#include "predicate/literal.h"
#include "store/editingcontext.h"
#include "store/record.h"
#include "store/store.h"
#include "store/valueconversion.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QTemporaryDir>
#include <QTextStream>
#include <algorithm>
#include <functional>

using namespace corvanta;
using bench::medianOf;
using bench::out;

namespace {

QString s(const char* text)
{
    return QString::fromLatin1(text);
}

double millisecondsOf(const std::function<void()>& work)
{
    QElapsedTimer timer;
    timer.start();
    work();
    return double(timer.nsecsElapsed()) / 1e6;
}

// Hand-written SQL on a read-only connection of its own; statements are prepared once, as the
// store prepares its own once.
class HandWritten
{
public:
    explicit HandWritten(const QString& path)
        : m_db(QSqlDatabase::addDatabase(s("QSQLITE"), s("hand-written")))
    {
        m_db.setDatabaseName(path);
        m_db.setConnectOptions(s("QSQLITE_OPEN_READONLY"));
        if (!m_db.open())
            out() << "hand-written connection: " << m_db.lastError().text() << Qt::endl;
    }
    ~HandWritten()
    {
        m_prepared.clear();
        m_db.close();
    }

    // Runs `sql` with `bindings` and hands every result row to `row`; the number of rows.
    int run(const QString& sql, const QVariantList& bindings,
            const std::function<void(const QSqlQuery&)>& row = {})
    {
        auto it = m_prepared.find(sql);
        if (it == m_prepared.end()) {
            QSqlQuery query(m_db);
            query.setForwardOnly(true);
            if (!query.prepare(sql))
                out() << "hand-written query: " << query.lastError().text() << Qt::endl;
            it = m_prepared.insert(sql, query);
        }
        QSqlQuery& query = *it;
        for (int i = 0; i < bindings.size(); ++i)
            query.bindValue(i, bindings.at(i));
        int rows = 0;
        if (!query.exec())
            out() << "hand-written query failed: " << query.lastError().text() << Qt::endl;
        while (query.next()) {
            if (row)
                row(query);
            ++rows;
        }
        query.finish();
        return rows;
    }

    int count(const QString& sql, const QVariantList& bindings = {})
    {
        int result = -1;
        run(sql, bindings, [&](const QSqlQuery& q) { result = q.value(0).toInt(); });
        return result;
    }

private:
    QSqlDatabase m_db;
    QHash<QString, QSqlQuery> m_prepared;
};

// One line of figures: ours against the hand-written SQL, with the goal beside it.
struct Figure
{
    QString name;
    double ours = 0;
    double hand = 0;
    double goal = 0;
    QString check; // empty when both gave the same answer
};

void print(const Figure& figure)
{
    out() << QStringLiteral("%1  %2 ms  hand-written %3 ms  ratio %4  goal < %5 ms %6%7")
                 .arg(figure.name, -52)
                 .arg(figure.ours, 8, 'f', 2)
                 .arg(figure.hand, 8, 'f', 2)
                 .arg(figure.hand > 0 ? figure.ours / figure.hand : 0.0, 5, 'f', 2)
                 .arg(figure.goal, 0, 'f', 0)
                 .arg(figure.ours < figure.goal ? s("met") : s("MISSED"))
                 .arg(figure.check.isEmpty() ? QString() : s("  MISMATCH: ") + figure.check)
          << Qt::endl;
}

// The smart folders a new company has, with a relative-date folder of documents, each with the
// hand-written count of the same meaning. Added to the database when it has none of its own.
struct SmartFolder
{
    const char* name;
    int type;
    const char* predicate;
    const char* handWritten;
};

const SmartFolder kSmartFolders[] = {
    {"All Clients", -1, "", "SELECT count(*) FROM Clients"},
    {"All Items", -2, "", "SELECT count(*) FROM Items"},
    {"Critical Stock", -2, "stock_current <= stock_critical && type == 1",
     "SELECT count(*) FROM Items WHERE stock_current <= stock_critical AND type = 1"},
    {"All Documents", -3, "", "SELECT count(*) FROM Documents"},
    {"Paid Invoices", -3, "sum_total == payments.@sum.amount && type == 0 && draft == NO",
     "SELECT count(*) FROM Documents d WHERE d.type = 0 AND d.draft = 0 AND d.sum_total = "
     "(SELECT total(p.amount) FROM Payments p WHERE p.document = d.pk)"},
    {"Unpaid Invoices", -3,
     "sum_total != payments.@sum.amount && type == 0 && draft == NO && cancel_reference == NULL",
     "SELECT count(*) FROM Documents d WHERE d.type = 0 AND d.draft = 0 AND d.cancel_reference IS NULL "
     "AND d.sum_total IS NOT (SELECT total(p.amount) FROM Payments p WHERE p.document = d.pk)"},
    {"Draft Invoices", -3, "draft == YES", "SELECT count(*) FROM Documents WHERE draft = 1"},
    {"Since Last Year", -3, "date_creation >= \"@last_year\"",
     "SELECT count(*) FROM Documents WHERE date_creation >= ?"},
    {"All ToDos", -4, "", "SELECT count(*) FROM ToDos"},
};

const char* const kEntities[] = {"", "Clients", "Items", "Documents", "ToDos"};

struct HandCount
{
    QString sql;
    QVariantList bindings;
};

// The sidebar's nodes with the hand-written count of each; adds the smart folders above first.
QList<HandCount> prepareSidebar(store::EditingContext& context, const QDateTime& now)
{
    const QList<store::Record*> existing =
        context.fetch(store::FetchRequest(s("Categories"), predicate::literal("type < 0")));
    if (existing.isEmpty()) {
        int position = 0;
        for (const SmartFolder& folder : kSmartFolders) {
            store::Record* node = context.insertRecord(s("Categories"));
            node->setValue(s("name"), s(folder.name));
            node->setValue(s("type"), folder.type);
            node->setValue(s("predicate"), s(folder.predicate));
            node->setValue(s("indexpath"), QStringLiteral("9%1").arg(position++, 2, 10, QLatin1Char('0')));
        }
        context.save();
    }
    const double lastYear = store::valueconversion::toReferenceSeconds(
        QDateTime(QDate(now.date().year() - 1, 1, 1), QTime(0, 0)));
    QList<HandCount> counts;
    for (store::Record* node : context.fetch(store::FetchRequest(s("Categories")))) {
        const int type = node->value(s("type")).toInt();
        if (type > 0 && type <= 4) {
            counts << HandCount{QStringLiteral("SELECT count(*) FROM \"%1_tags\" WHERE target = ?")
                                    .arg(QLatin1String(kEntities[type])),
                                {node->pk()}};
        }
        for (const SmartFolder& folder : kSmartFolders) {
            if (type < 0 && node->value(s("name")).toString() == s(folder.name)) {
                counts << HandCount{s(folder.handWritten),
                                    QString::fromLatin1(folder.handWritten).contains(QLatin1Char('?'))
                                        ? QVariantList{lastYear}
                                        : QVariantList{}};
            }
        }
    }
    return counts;
}

Figure sidebarAfterSave(store::Store& store, HandWritten& hand, const QList<HandCount>& handCounts,
                        const QDateTime& now, int runs)
{
    store::EditingContext& context = store.mainContext();
    store::Record* client = context.fetchFirst(store::FetchRequest(s("Clients")));
    QList<double> ours, byHand;
    int nodes = 0;
    for (int i = 0; i < runs; ++i) {
        client->setValue(s("desc"), QStringLiteral("visited %1").arg(i));
        context.save();
        ours << millisecondsOf([&] { browse::CategoryCounts::update(context, now); });
        byHand << millisecondsOf([&] {
            for (const HandCount& count : handCounts)
                hand.count(count.sql, count.bindings);
        });
    }
    for (store::Record* node : context.fetch(store::FetchRequest(s("Categories")))) {
        if (browse::ListKinds::ofCategory(node) != browse::ListKind::None &&
            !node->value(s("count")).toString().isEmpty())
            ++nodes;
    }
    return {QStringLiteral("sidebar: all %1 counts after a save").arg(nodes), medianOf(ours),
            medianOf(byHand), 50,
            nodes == handCounts.size()
                ? QString()
                : QStringLiteral("%1 nodes counted, %2 by hand").arg(nodes).arg(handCounts.size())};
}

// The currency most documents are in, so that the reports list the most.
store::Record* busiestCurrency(store::EditingContext& context)
{
    store::Record* busiest = nullptr;
    int most = -1;
    for (store::Record* currency : context.fetch(store::FetchRequest(s("Currencies")))) {
        const int documents = context.count(store::FetchRequest(
            s("Documents"), predicate::literal("currency == %@", {QVariant::fromValue(currency->ref())})));
        if (documents > most) {
            most = documents;
            busiest = currency;
        }
    }
    return busiest;
}

// What the hand-written statements of a report found: how many records they list and the grand
// total, to be compared with the report's own.
struct HandReport
{
    int listed = 0;
    double total = 0;
};

// A report's figure: the report runner against hand-written statements of the same question,
// which get the period's first and last instant and the currency as their bindings.
Figure reportFigure(store::Store& store, browse::ReportView view, const QString& what, const QDate& from,
                    const QDate& to, int runs,
                    const std::function<HandReport(const QVariantList&)>& byHandWork)
{
    QList<double> ours, byHand;
    qsizetype listed = 0;
    double total = 0;
    HandReport hand;
    for (int i = 0; i < runs; ++i) {
        std::unique_ptr<store::EditingContext> context = store.newContext();
        browse::ReportOptions options;
        options.view = view;
        options.currency = busiestCurrency(*context);
        options.allPaymentTypes = true;
        options.setDates(from, to);
        ours << millisecondsOf([&] {
            const std::optional<browse::ReportResult> result =
                browse::ReportRunner(*context).run(options, browse::ZoomStep::Month);
            listed = result ? result->size() : -1;
            total = result ? result->totals.total : 0;
        });
        const QVariantList bindings{store::valueconversion::toReferenceSeconds(options.fromInstant()),
                                    store::valueconversion::toReferenceSeconds(options.toInstant()),
                                    options.currency->pk()};
        byHand << millisecondsOf([&] { hand = byHandWork(bindings); });
    }
    const bool same = listed == hand.listed && qAbs(total - hand.total) < 0.01 * qMax(1.0, qAbs(hand.total));
    return {QStringLiteral("%1 %2 to %3 (%4 listed)")
                .arg(what, from.toString(Qt::ISODate), to.toString(Qt::ISODate))
                .arg(listed),
            medianOf(ours), medianOf(byHand), 150,
            same ? QString()
                 : QStringLiteral("%1 listed, total %2; by hand %3, %4")
                       .arg(listed)
                       .arg(total, 0, 'f', 2)
                       .arg(hand.listed)
                       .arg(hand.total, 0, 'f', 2)};
}

Figure documentsReport(store::Store& store, HandWritten& hand, const QDate& from, const QDate& to, int runs)
{
    // The list in its order with the amounts, summed and put into monthly buckets here.
    return reportFigure(
        store, browse::ReportView::Documents, s("documents report"), from, to, runs,
        [&hand](const QVariantList& bindings) {
            HandReport result;
            QMap<QString, std::pair<double, double>> months;
            result.listed =
                hand.run(s("SELECT pk, date_creation, sum_net, sum_total FROM Documents WHERE "
                           "date_creation >= ? AND date_creation <= ? AND draft IS NOT 1 AND currency = "
                           "? ORDER BY number_formatted"),
                         bindings, [&](const QSqlQuery& q) {
                             const QDateTime date =
                                 QDateTime::fromSecsSinceEpoch(qint64(q.value(1).toDouble() + 978307200.0));
                             auto& month = months[date.toString(s("yyyyMM"))];
                             month.first += q.value(2).toDouble();
                             month.second += q.value(3).toDouble() - q.value(2).toDouble();
                             result.total += q.value(3).toDouble();
                         });
            return result;
        });
}

Figure clientSumsReport(store::Store& store, HandWritten& hand, const QDate& from, const QDate& to, int runs)
{
    // Every client in name order, the sums of their counted documents by client, and the chart's
    // monthly amounts.
    return reportFigure(
        store, browse::ReportView::ClientSums, s("client sums"), from, to, runs,
        [&hand](const QVariantList& bindings) {
            HandReport result;
            QHash<qint64, double> sums;
            result.listed = hand.run(s("SELECT pk FROM Clients ORDER BY full_name"), {});
            hand.run(
                s("SELECT client, total(sum_net), total(sum_tax1), total(sum_tax2), total(sum_total) FROM "
                  "Documents WHERE date_creation >= ? AND date_creation <= ? AND draft IS NOT 1 AND "
                  "currency = ? GROUP BY client"),
                bindings, [&](const QSqlQuery& q) {
                    sums.insert(q.value(0).toLongLong(), q.value(4).toDouble());
                    if (!q.value(0).isNull())
                        result.total += q.value(4).toDouble();
                });
            hand.run(s("SELECT strftime('%Y%m', date_creation + 978307200, 'unixepoch'), total(sum_net), "
                       "total(sum_total) FROM Documents WHERE date_creation >= ? AND date_creation <= ? AND "
                       "draft IS NOT 1 AND currency = ? AND client IS NOT NULL GROUP BY 1"),
                     bindings);
            return result;
        });
}

// The first page of a node's list, in a fresh context as a newly selected node gets it.
// With `sameOrder` the two pages must hold the same records in the same order; otherwise (a
// localized order against SQLite's plain one) the same records.
Figure firstPage(store::Store& store, HandWritten& hand, const QString& nodeName, const QString& handSql,
                 bool sameOrder, int runs)
{
    QList<double> ours, byHand;
    int rows = 0, handRows = 0;
    QList<qint64> keys, handKeys;
    QString error;
    for (int i = 0; i < runs; ++i) {
        std::unique_ptr<store::EditingContext> context = store.newContext();
        store::Record* node = context->fetchFirst(
            store::FetchRequest(s("Categories"), predicate::literal("name == %@", {nodeName})));
        if (!node)
            return {nodeName, 0, 0, 20, s("no such node")};
        browse::RecordListModel model(*context);
        ours << millisecondsOf([&] {
            model.setCategory(node);
            rows = model.rowCount();
        });
        error = model.fetchError();
        keys.clear();
        for (int row = 0; row < rows; ++row)
            keys << model.recordAt(row)->pk();
        const QVariantList bindings =
            handSql.contains(QLatin1Char('?')) ? QVariantList{node->pk()} : QVariantList{};
        byHand << millisecondsOf([&] {
            // Every column of each row read, as a list shows several and keeps the records.
            handKeys.clear();
            handRows = hand.run(handSql, bindings, [&](const QSqlQuery& q) {
                handKeys << q.value(0).toLongLong();
                QVariantList values;
                for (int c = 0; c < q.record().count(); ++c)
                    values << q.value(c);
            });
        });
    }
    if (!sameOrder) {
        std::sort(keys.begin(), keys.end());
        std::sort(handKeys.begin(), handKeys.end());
    }
    QString check = error;
    if (check.isEmpty() && keys != handKeys)
        check = QStringLiteral("%1 rows, by hand %2, not the same records%3")
                    .arg(rows)
                    .arg(handRows)
                    .arg(sameOrder ? s(" in the same order") : QString());
    return {QStringLiteral("first page of \"%1\" (%2 rows)").arg(nodeName).arg(rows), medianOf(ours),
            medianOf(byHand), 20, check};
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    QCommandLineParser parser;
    parser.setApplicationDescription(
        s("Times the sidebar counts, the reports and the lists' first pages on a large company, against "
          "hand-written SQL of the same questions."));
    parser.addHelpOption();
    const QCommandLineOption databaseOption(
        s("database"), s("Copy this company database (as kept by bench_store) and run on the copy."),
        s("file"));
    const QCommandLineOption scaleOption(
        s("scale"), s("Without --database, generate a company of this size first (1 = 100,000 documents)."),
        s("factor"), s("1"));
    const QCommandLineOption runsOption(s("runs"), s("Timed runs per figure (median)."), s("n"), s("11"));
    parser.addOptions({databaseOption, scaleOption, runsOption});
    parser.process(app);
    const int runs = qMax(1, parser.value(runsOption).toInt());

    QTemporaryDir scratch;
    const QString path = scratch.filePath(s("company.cvdb"));
    if (parser.isSet(databaseOption)) {
        if (!QFile::copy(parser.value(databaseOption), path)) {
            out() << "cannot copy " << parser.value(databaseOption) << Qt::endl;
            return 1;
        }
    } else {
        store::StoreError error;
        auto store = model::CompanyDatabase::open(path, &error);
        if (!store) {
            out() << error.message() << Qt::endl;
            return 1;
        }
        out() << "generating a company at scale " << parser.value(scaleOption) << " ..." << Qt::endl;
        bench::CompanyGenerator generator(
            *store, bench::CompanyGenerator::Sizes::scaled(parser.value(scaleOption).toDouble()));
        if (!generator.generate(&error)) {
            out() << "generation failed: " << error.message() << Qt::endl;
            return 1;
        }
    }

    store::StoreError error;
    auto store = model::CompanyDatabase::open(path, &error);
    if (!store) {
        out() << error.message() << Qt::endl;
        return 1;
    }
    // The generated company's documents end in 2025; the relative-date folder is reckoned as if it
    // were the following summer, so that "since last year" selects a year of them.
    const QDateTime now(QDate(bench::CompanyGenerator::lastDay().year() + 1, 6, 30), QTime(12, 0));
    const QList<HandCount> handCounts = prepareSidebar(store->mainContext(), now);
    HandWritten hand(path);
    out() << "documents: " << store->mainContext().count(store::FetchRequest(s("Documents")))
          << ", clients: " << store->mainContext().count(store::FetchRequest(s("Clients")))
          << ", runs per figure: " << runs << " (median)" << Qt::endl
          << Qt::endl;

    const QDate lastDay = bench::CompanyGenerator::lastDay();
    const QDate oneYear = lastDay.addYears(-1).addDays(1);
    const QDate fiveYears = bench::CompanyGenerator::firstDay();
    QList<Figure> figures;
    figures << sidebarAfterSave(*store, hand, handCounts, now, runs);
    figures << documentsReport(*store, hand, oneYear, lastDay, runs);
    figures << documentsReport(*store, hand, fiveYears, lastDay, runs);
    figures << clientSumsReport(*store, hand, oneYear, lastDay, runs);
    figures << clientSumsReport(*store, hand, fiveYears, lastDay, runs);
    const auto page = [](const char* sql) { return s(sql) + s(" LIMIT 100"); };
    figures << firstPage(*store, hand, s("All Clients"), page("SELECT * FROM Clients ORDER BY full_name"),
                         false, runs);
    figures << firstPage(*store, hand, s("All Items"), page("SELECT * FROM Items ORDER BY name"), false,
                         runs);
    figures << firstPage(*store, hand, s("All Documents"),
                         page("SELECT * FROM Documents ORDER BY date_creation DESC, created DESC"), true,
                         runs);
    figures << firstPage(*store, hand, s("All ToDos"), page("SELECT * FROM ToDos ORDER BY date_start DESC"),
                         true, runs);
    figures << firstPage(*store, hand, s("Invoices"),
                         page("SELECT d.* FROM Documents d JOIN Documents_tags t ON t.source = d.pk WHERE "
                              "t.target = ? ORDER BY d.date_creation DESC, d.created DESC"),
                         true, runs);

    int met = 0;
    bool mismatch = false;
    for (const Figure& figure : figures) {
        print(figure);
        met += figure.ours < figure.goal ? 1 : 0;
        mismatch = mismatch || !figure.check.isEmpty();
    }
    out() << Qt::endl << QStringLiteral("goals met: %1 of %2").arg(met).arg(figures.size()) << Qt::endl;
    return mismatch ? 1 : 0;
}
