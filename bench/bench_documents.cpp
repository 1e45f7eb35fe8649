// Finalising draft invoices and cancelling final ones on a large company database, through the
// same core classes the program uses: the search for the next number, the stock of every item
// on the invoice recomputed from all final invoices, and the save. Each operation is timed on its
// own document; the figures are the median and the spread over all of them.

#include "companygenerator.h"
#include "documents/documentcanceller.h"
#include "documents/documentnumbering.h"
#include "documents/invoicefinalizer.h"
#include "documents/numberformat.h"
#include "documents/stockcalculator.h"
#include "model/companydatabase.h"
#include "predicate/parser.h"
#include "store/editingcontext.h"
#include "store/sqlite/sqlcompiler.h"
#include "store/store.h"
#include "support/scriptedprompter.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <QTextStream>
#include <algorithm>
#include <cmath>

using namespace corvanta;

namespace {

QTextStream& out()
{
    static QTextStream stream(stdout);
    return stream;
}

QString s(const char* text)
{
    return QString::fromLatin1(text);
}

predicate::Predicate parsed(const QString& text, const QVariantList& arguments = {})
{
    const std::optional<predicate::Predicate> p = predicate::Parser::parse(text, arguments);
    if (!p)
        qFatal("unreadable predicate %s", qPrintable(text));
    return *p;
}

template <typename F>
double millisecondsOf(F&& f)
{
    QElapsedTimer timer;
    timer.start();
    f();
    return double(timer.nsecsElapsed()) / 1e6;
}

struct Figures
{
    double median = 0;
    double p90 = 0;
    double max = 0;
    double mean = 0;
};

Figures figuresOf(QList<double> values)
{
    Figures f;
    if (values.isEmpty())
        return f;
    std::sort(values.begin(), values.end());
    f.median = values.at(values.size() / 2);
    f.p90 = values.at(std::min<qsizetype>(values.size() - 1, qsizetype(std::ceil(values.size() * 0.9)) - 1));
    f.max = values.last();
    double sum = 0;
    for (double v : values)
        sum += v;
    f.mean = sum / double(values.size());
    return f;
}

void report(const QString& what, const QList<double>& times)
{
    const Figures f = figuresOf(times);
    out() << QStringLiteral("%1  n %2  median %3 ms  p90 %4 ms  max %5 ms  mean %6 ms")
                 .arg(what, -44)
                 .arg(times.size(), 4)
                 .arg(f.median, 7, 'f', 2)
                 .arg(f.p90, 7, 'f', 2)
                 .arg(f.max, 7, 'f', 2)
                 .arg(f.mean, 7, 'f', 2)
          << Qt::endl;
}

// A consistent copy of the kept database, so that the benchmark never changes it.
bool copyDatabase(const QString& from, const QString& to, QString* error)
{
    QSqlDatabase db = QSqlDatabase::addDatabase(s("QSQLITE"), s("copy"));
    db.setDatabaseName(from);
    db.setConnectOptions(s("QSQLITE_OPEN_READONLY"));
    bool ok = db.open();
    if (ok) {
        QSqlQuery q(db);
        ok = q.exec(s("VACUUM INTO '%1'").arg(QString(to).replace(QLatin1Char('\''), s("''"))));
        if (!ok)
            *error = q.lastError().text();
    } else {
        *error = db.lastError().text();
    }
    db.close();
    db = QSqlDatabase();
    QSqlDatabase::removeDatabase(s("copy"));
    return ok;
}

// A generated company has no number formats: they are what a new database is given.
void addMissingNumberFormats(store::EditingContext& context)
{
    for (int type = 0; type < 8; ++type) {
        const QString key = documents::NumberFormat::settingKey(type);
        if (!context.fetchFirst(store::FetchRequest(s("Settings"), parsed(s("key == %@"), {key}))))
            context.insertRecord(
                s("Settings"), {{s("key"), key}, {s("value"), documents::NumberFormat::defaultFormat(type)}});
    }
    context.save();
}

// `count` documents matching `condition`, spread evenly over all of them.
QList<predicate::RecordRef> spreadDocuments(store::EditingContext& context, const QString& condition,
                                            int count)
{
    store::FetchRequest request(s("Documents"), parsed(condition));
    const int total = context.count(request);
    QList<predicate::RecordRef> refs;
    const int step = std::max(1, total / std::max(1, count));
    request.limit = 1;
    request.sortDescriptors = {
        store::SortDescriptor{s("date_creation"), true, store::SortDescriptor::Comparison::Default}};
    for (int i = 0; i < count && i * step < total; ++i) {
        request.offset = i * step;
        if (const store::Record* d = context.fetchFirst(request))
            refs << d->ref();
    }
    return refs;
}

// The stock of an item by hand-written SQL on a connection of its own: deliveries less the rows
// of final invoices, added up by the database. What the store's fetch is compared with.
class HandCount
{
public:
    explicit HandCount(const QString& path)
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(s("QSQLITE"), s("hand"));
        db.setDatabaseName(path);
        if (db.open()) {
            m_query = QSqlQuery(db);
            m_query.prepare(s("SELECT (SELECT total(quantity) FROM Warehouse WHERE item = ?) - (SELECT "
                              "total(r.quantity) FROM DocumentRows r JOIN Documents d ON d.pk = r.document "
                              "WHERE r.item = ? AND d.type = 0 AND d.draft = 0)"));
        }
    }
    ~HandCount()
    {
        m_query = QSqlQuery();
        QSqlDatabase::database(s("hand")).close();
        QSqlDatabase::removeDatabase(s("hand"));
    }
    double stock(qint64 item)
    {
        m_query.addBindValue(item);
        m_query.addBindValue(item);
        double result = std::nan("");
        if (m_query.exec() && m_query.next())
            result = m_query.value(0).toDouble();
        m_query.finish();
        return result;
    }

private:
    QSqlQuery m_query;
};

// The statement a search compiles to and how SQLite answers it.
void printCompiled(store::Store& store, const QString& title, const store::FetchRequest& request,
                   store::Aggregate function, const QString& keyPath)
{
    const store::QueryPlan plan = store.explain(request, function, keyPath);
    out() << title << ":\n  " << plan.statement << Qt::endl;
    for (const QString& step : plan.steps)
        out() << "  plan: " << step << Qt::endl;
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    QCommandLineParser parser;
    parser.setApplicationDescription(
        s("Times finalising draft invoices and cancelling final ones, numbering and stock included."));
    parser.addHelpOption();
    const QCommandLineOption databaseOption(
        s("database"), s("Use a copy of this company database (as kept by bench_store --keep)."), s("file"));
    const QCommandLineOption scaleOption(
        s("scale"), s("Without --database, generate a company of this size first (1 = 100,000 documents)."),
        s("factor"), s("1"));
    const QCommandLineOption countOption(s("count"), s("Documents finalised and cancelled (each)."), s("n"),
                                         s("100"));
    const QCommandLineOption sqlOption(s("sql"),
                                       s("Print the SQL of the number search and the stock queries."));
    parser.addOptions({databaseOption, scaleOption, countOption, sqlOption});
    parser.process(app);
    const int count = std::max(1, parser.value(countOption).toInt());

    QTemporaryDir scratch;
    const QString path = scratch.filePath(s("company.cvdb"));
    if (parser.isSet(databaseOption)) {
        QString why;
        out() << "copying " << parser.value(databaseOption) << " ..." << Qt::endl;
        if (!copyDatabase(parser.value(databaseOption), path, &why)) {
            out() << "cannot copy the database: " << why << Qt::endl;
            return 1;
        }
    } else {
        store::StoreError error;
        auto store = model::CompanyDatabase::open(path, &error);
        out() << "generating a company at scale " << parser.value(scaleOption) << " ..." << Qt::endl;
        if (!store) {
            out() << error.message() << Qt::endl;
            return 1;
        }
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
    store::EditingContext& main = store->mainContext();
    addMissingNumberFormats(main);
    out() << "documents: " << main.count(store::FetchRequest(s("Documents")))
          << "  rows: " << main.count(store::FetchRequest(s("DocumentRows")))
          << "  items: " << main.count(store::FetchRequest(s("Items"))) << Qt::endl;

    const QList<predicate::RecordRef> drafts = spreadDocuments(main, s("type == 0 && draft == YES"), count);
    const QList<predicate::RecordRef> finals =
        spreadDocuments(main, s("type == 0 && draft == NO && cancel_reference == NULL"), count);
    out() << "draft invoices to finalise: " << drafts.size()
          << "  final invoices to cancel: " << finals.size() << Qt::endl
          << Qt::endl;

    support::ScriptedPrompter prompter;
    const documents::Clock clock = documents::systemClock();

    // The two steps that read the whole history, each on its own.
    QList<double> numberSearches;
    QList<double> stockPerItem;
    QList<double> handStockPerItem;
    QList<double> stockPerInvoice;
    auto hand = std::make_unique<HandCount>(path);
    qint64 rowsSeen = 0;
    for (const predicate::RecordRef& ref : drafts) {
        std::unique_ptr<store::EditingContext> context = store->newContext();
        store::Record* document = context->record(ref);
        const QDateTime date = document->value(s("date_creation")).toDateTime().toLocalTime();
        documents::DocumentNumbering numbering(*context, prompter);
        numberSearches << millisecondsOf([&] { numbering.nextNumberByType(0, date, false); });
        documents::StockCalculator stock(*context);
        stockPerInvoice << millisecondsOf([&] {
            stock.updateItemsCurrentStock(documents::StockCalculator::itemsOf(document), {document});
        });
        for (const store::Record* row : document->relatedList(s("rows"))) {
            ++rowsSeen;
            if (store::Record* item = row->related(s("item"))) {
                stockPerItem << millisecondsOf([&] { stock.updateItemCurrentStock(item, {document}); });
                handStockPerItem << millisecondsOf([&] { hand->stock(item->pk()); });
            }
        }
    }
    report(s("next number search"), numberSearches);
    report(s("stock of one item recomputed"), stockPerItem);
    report(s("  the same sum by hand-written SQL"), handStockPerItem);
    report(s("stock of all items of one invoice"), stockPerInvoice);
    out() << QStringLiteral("rows per finalised invoice: %1")
                 .arg(drafts.isEmpty() ? 0.0 : double(rowsSeen) / double(drafts.size()), 0, 'f', 1)
          << Qt::endl;

    // The durable commit that every operation ends with (synchronous writes), on its own.
    QList<double> commits;
    for (const predicate::RecordRef& ref : finals) {
        std::unique_ptr<store::EditingContext> context = store->newContext();
        context->record(ref)->setValue(s("note"), s("benchmark"));
        commits << millisecondsOf([&] { context->save(); });
    }
    report(s("save of one changed document"), commits);

    documents::InvoiceFinalizer finalizer(*store, prompter, clock);
    QList<double> finalising;
    int finalised = 0;
    for (const predicate::RecordRef& ref : drafts) {
        prompter.addAnswer(s("Finalize"));
        bool ok = false;
        finalising << millisecondsOf([&] { ok = finalizer.finalizeInvoiceIfNeeded(ref); });
        finalised += ok ? 1 : 0;
        prompter.clear();
    }
    report(s("finalise a draft invoice"), finalising);

    documents::DocumentCanceller canceller(*store, prompter, clock);
    QList<double> cancelling;
    int cancelled = 0;
    QList<qint64> touchedItems;
    for (const predicate::RecordRef& ref : finals) {
        prompter.addAnswer(s("Cancel Invoice"));
        std::optional<predicate::RecordRef> twin;
        cancelling << millisecondsOf([&] { twin = canceller.cancel(ref); });
        cancelled += twin ? 1 : 0;
        prompter.clear();
        if (twin && touchedItems.size() < 5) {
            if (const store::Record* item =
                    main.record(ref)->relatedList(s("rows")).value(0)->related(s("item")))
                touchedItems << item->pk();
        }
    }
    report(s("cancel a final invoice"), cancelling);

    out() << Qt::endl
          << "finalised " << finalised << " of " << drafts.size() << ", cancelled " << cancelled << " of "
          << finals.size() << Qt::endl;
    bool stockRight = true;
    for (qint64 pk : std::as_const(touchedItems)) {
        std::unique_ptr<store::EditingContext> context = store->newContext();
        const double kept = context->record({s("Items"), pk})->value(s("stock_current")).toDouble();
        const double recount = hand->stock(pk);
        stockRight = stockRight && kept == recount;
        out() << QStringLiteral("item %1: stock %2, counted by hand %3").arg(pk).arg(kept).arg(recount)
              << Qt::endl;
    }

    if (parser.isSet(sqlOption) && !drafts.isEmpty()) {
        out() << Qt::endl;
        using Aggregate = store::Aggregate;
        const QVariantList year{0, QDateTime(QDate(2024, 1, 1), QTime(0, 0)),
                                QDateTime(QDate(2024, 12, 31), QTime(23, 59, 59))};
        printCompiled(
            *store, s("next number search, the year's highest number"),
            store::FetchRequest(
                s("Documents"),
                parsed(s("type == %ld && date_creation >= %@ && date_creation <= %@ && draft != 1"), year)),
            Aggregate::Max, s("number"));
        const QVariant item = QVariant::fromValue(predicate::RecordRef{s("Items"), 1});
        printCompiled(
            *store, s("sold quantity of an item"),
            store::FetchRequest(s("DocumentRows"),
                                parsed(s("item == %@ && document.type == 0 && document.draft == NO && "
                                         "NOT (document IN %@)"),
                                       {item, QVariantList{QVariant::fromValue(drafts.first())}})),
            Aggregate::Sum, s("quantity"));
        printCompiled(*store, s("deliveries of an item"),
                      store::FetchRequest(s("Warehouse"), parsed(s("item == %@"), {item})), Aggregate::Sum,
                      s("quantity"));
    }
    return finalised == drafts.size() && cancelled == finals.size() && stockRight ? 0 : 1;
}
