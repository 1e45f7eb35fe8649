// Counts of the sidebar's smart folders and tag folders on a large company database: the SQL
// the store compiles from each folder's predicate against a hand-written query of the same
// meaning, side by side in one run, and all default counts together.

#include "benchoutput.h"
#include "companygenerator.h"
#include "model/companydatabase.h"
#include "predicate/parser.h"
#include "store/editingcontext.h"
#include "store/store.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <QTextStream>
#include <algorithm>

using namespace corvanta;
using bench::medianOf;
using bench::out;

namespace {

struct Folder
{
    QString name;
    QString entity;
    QString predicate; // as stored
    QVariantList arguments;
    QString handWritten; // SQL of the same meaning
    QVariantList handArguments;
};

// The smart folders every new company has, and one folder per tag.
QList<Folder> sidebarFolders(store::EditingContext& context)
{
    const auto all = [](const char* name, const char* entity) {
        return Folder{QString::fromLatin1(name),
                      QString::fromLatin1(entity),
                      QStringLiteral("TRUEPREDICATE"),
                      {},
                      QStringLiteral("SELECT count(*) FROM \"%1\"").arg(QLatin1String(entity)),
                      {}};
    };
    QList<Folder> folders{
        all("All Clients", "Clients"),
        all("All Items", "Items"),
        {QStringLiteral("Critical Stock"),
         QStringLiteral("Items"),
         QStringLiteral("stock_current <= stock_critical && type == 1"),
         {},
         QStringLiteral("SELECT count(*) FROM Items WHERE stock_current <= stock_critical AND type = 1"),
         {}},
        all("All Documents", "Documents"),
        {QStringLiteral("Paid Invoices"),
         QStringLiteral("Documents"),
         QStringLiteral("sum_total == payments.@sum.amount && type == 0 && draft == NO"),
         {},
         QStringLiteral("SELECT count(*) FROM Documents d WHERE d.type = 0 AND d.draft = 0 AND d.sum_total = "
                        "(SELECT total(p.amount) FROM Payments p WHERE p.document = d.pk)"),
         {}},
        {QStringLiteral("Unpaid Invoices"),
         QStringLiteral("Documents"),
         QStringLiteral(
             "sum_total != payments.@sum.amount && type == 0 && draft == NO && cancel_reference == NULL"),
         {},
         QStringLiteral(
             "SELECT count(*) FROM Documents d WHERE d.type = 0 AND d.draft = 0 AND d.cancel_reference "
             "IS NULL AND d.sum_total IS NOT (SELECT total(p.amount) FROM Payments p WHERE p.document = "
             "d.pk)"),
         {}},
        {QStringLiteral("Draft Invoices"),
         QStringLiteral("Documents"),
         QStringLiteral("draft == YES"),
         {},
         QStringLiteral("SELECT count(*) FROM Documents WHERE draft = 1"),
         {}},
        all("All ToDos", "ToDos"),
    };
    static const char* const sections[] = {"", "Clients", "Items", "Documents", "ToDos"};
    for (store::Record* tag : context.fetch(
             store::FetchRequest(QStringLiteral("Categories"),
                                 predicate::Predicate::compare(QStringLiteral("type"),
                                                               predicate::Predicate::Operator::Greater, 0),
                                 {store::SortDescriptor{QStringLiteral("indexpath")},
                                  store::SortDescriptor{QStringLiteral("name")}}))) {
        const int type = tag->value(QStringLiteral("type")).toInt();
        if (type < 1 || type > 4)
            continue;
        const QString entity = QLatin1String(sections[type]);
        folders << Folder{
            QStringLiteral("tag %1 (%2)").arg(tag->value(QStringLiteral("name")).toString(), entity),
            entity,
            QStringLiteral("ANY tags == %@"),
            {QVariant::fromValue(tag->ref())},
            QStringLiteral("SELECT count(*) FROM \"%1_tags\" WHERE target = ?").arg(entity),
            {tag->pk()}};
    }
    return folders;
}

int storeCount(store::EditingContext& context, const Folder& folder)
{
    const std::optional<predicate::Predicate> p =
        predicate::Parser::parse(folder.predicate, folder.arguments);
    return p ? context.count(store::FetchRequest(folder.entity, *p)) : -1;
}

// Hand-written queries are prepared once, as the store prepares its statements once.
int handCount(QHash<QString, QSqlQuery>& prepared, QSqlDatabase& db, const Folder& folder)
{
    auto it = prepared.find(folder.handWritten);
    if (it == prepared.end()) {
        QSqlQuery q(db);
        q.setForwardOnly(true);
        q.prepare(folder.handWritten);
        it = prepared.insert(folder.handWritten, q);
    }
    QSqlQuery& q = *it;
    for (int i = 0; i < folder.handArguments.size(); ++i)
        q.bindValue(i, folder.handArguments.at(i));
    int count = -1;
    if (q.exec() && q.next())
        count = q.value(0).toInt();
    else
        out() << "hand-written query failed: " << q.lastError().text() << Qt::endl;
    q.finish();
    return count;
}

template <typename F>
double millisecondsOf(F&& f)
{
    QElapsedTimer timer;
    timer.start();
    f();
    return double(timer.nsecsElapsed()) / 1e6;
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral(
        "Times the sidebar counts: the store's compiled SQL against hand-written SQL of the same meaning."));
    parser.addHelpOption();
    const QCommandLineOption databaseOption(
        QStringLiteral("database"), QStringLiteral("Use this company database (as kept by bench_store)."),
        QStringLiteral("file"));
    const QCommandLineOption scaleOption(QStringLiteral("scale"),
                                         QStringLiteral("Without --database, generate a company of this size "
                                                        "first (1 = 100,000 documents)."),
                                         QStringLiteral("factor"), QStringLiteral("1"));
    const QCommandLineOption runsOption(QStringLiteral("runs"),
                                        QStringLiteral("Timed runs per count (median)."), QStringLiteral("n"),
                                        QStringLiteral("15"));
    parser.addOptions({databaseOption, scaleOption, runsOption});
    parser.process(app);
    const int runs = qMax(1, parser.value(runsOption).toInt());

    QTemporaryDir scratch;
    QString path = parser.value(databaseOption);
    if (path.isEmpty()) {
        path = scratch.filePath(QStringLiteral("company.cvdb"));
        store::StoreError error;
        auto store = model::CompanyDatabase::open(path, &error);
        if (!store) {
            out() << error.message() << Qt::endl;
            return 1;
        }
        bench::CompanyGenerator generator(
            *store, bench::CompanyGenerator::Sizes::scaled(parser.value(scaleOption).toDouble()));
        out() << "generating a company at scale " << parser.value(scaleOption) << " ..." << Qt::endl;
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
    QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("hand-written"));
    db.setDatabaseName(path);
    db.setConnectOptions(QStringLiteral("QSQLITE_OPEN_READONLY"));
    if (!db.open()) {
        out() << db.lastError().text() << Qt::endl;
        return 1;
    }

    QHash<QString, QSqlQuery> prepared;
    store::EditingContext& context = store->mainContext();
    const QList<Folder> folders = sidebarFolders(context);
    out() << "database: " << path << Qt::endl;
    out() << "documents: " << context.count(store::FetchRequest(QStringLiteral("Documents"))) << Qt::endl;
    out() << "runs per figure: " << runs << " (median)" << Qt::endl << Qt::endl;

    bool mismatch = false;
    double worstRatio = 0.0;
    for (const Folder& folder : folders) {
        // Warm both paths once: the page cache and the prepared statements.
        const int byStore = storeCount(context, folder);
        const int byHand = handCount(prepared, db, folder);
        QList<double> storeTimes, handTimes;
        for (int i = 0; i < runs; ++i) {
            storeTimes << millisecondsOf([&] { storeCount(context, folder); });
            handTimes << millisecondsOf([&] { handCount(prepared, db, folder); });
        }
        const double storeMs = medianOf(storeTimes);
        const double handMs = medianOf(handTimes);
        const double ratio = handMs > 0 ? storeMs / handMs : 0.0;
        worstRatio = qMax(worstRatio, ratio);
        out() << QStringLiteral("%1  count %2  store %3 ms  hand-written %4 ms  ratio %5%6")
                     .arg(folder.name, -34)
                     .arg(byStore, 7)
                     .arg(storeMs, 8, 'f', 3)
                     .arg(handMs, 8, 'f', 3)
                     .arg(ratio, 5, 'f', 2)
                     .arg(byStore == byHand ? QString()
                                            : QStringLiteral("  MISMATCH: hand-written %1").arg(byHand))
              << Qt::endl;
        mismatch = mismatch || byStore != byHand;
    }

    QList<double> together;
    for (int i = 0; i < qMax(5, runs / 3); ++i) {
        together << millisecondsOf([&] {
            for (const Folder& folder : folders)
                storeCount(context, folder);
        });
    }
    out() << Qt::endl
          << QStringLiteral("all %1 default sidebar counts together: %2 ms (median)")
                 .arg(folders.size())
                 .arg(medianOf(together), 0, 'f', 2)
          << Qt::endl;
    out() << QStringLiteral("worst ratio store / hand-written: %1").arg(worstRatio, 0, 'f', 2) << Qt::endl;
    prepared.clear();
    db.close();
    return mismatch ? 1 : 0;
}
