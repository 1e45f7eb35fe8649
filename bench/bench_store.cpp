// bench_store: fills a large company database through the record store and prints what it
// cost, then compares the store's inserts with plain SQL and times the first page of
// documents after reopening. Exits 1 when something it reads back disagrees with what it
// wrote, 2 on a usage error.

#include "companygenerator.h"
#include "cpuclock.h"
#include "generateddatacheck.h"
#include "insertcomparison.h"
#include "model/companydatabase.h"
#include "processmemory.h"
#include "rowsample.h"
#include "store/editingcontext.h"
#include "store/store.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTextStream>
#include <algorithm>
#include <cmath>
#include <functional>
#include <memory>
#include <vector>

namespace {

using corvanta::bench::CompanyGenerator;
using corvanta::store::FetchRequest;
using corvanta::store::SortDescriptor;
using corvanta::store::Store;
using corvanta::store::StoreError;

constexpr int kFirstPage = 100;
constexpr int kFetchRepeats = 20;
// The insert comparison uses the rows of this many documents (at scale 1).
constexpr int kSampleDocuments = 20000;
constexpr std::uint32_t kSampleSeed = 4242;
constexpr int kInsertRounds = 3;

QTextStream& out()
{
    static QTextStream stream(stdout);
    return stream;
}

QTextStream& err()
{
    static QTextStream stream(stderr);
    return stream;
}

QString seconds(qint64 nanoseconds)
{
    return QString::number(double(nanoseconds) / 1e9, 'f', 2) + QLatin1String(" s");
}

QString milliseconds(qint64 nanoseconds)
{
    return QString::number(double(nanoseconds) / 1e6, 'f', 2) + QLatin1String(" ms");
}

QString megabytes(qint64 bytes)
{
    return bytes < 0 ? QStringLiteral("unknown")
                     : QString::number(double(bytes) / 1048576.0, 'f', 1) + QLatin1String(" MiB");
}

QString rate(qint64 count, qint64 nanoseconds)
{
    return QString::number(std::llround(double(count) / (double(nanoseconds) / 1e9)));
}

std::unique_ptr<Store> openStore(const QString& path)
{
    StoreError error;
    std::unique_ptr<Store> store = corvanta::model::CompanyDatabase::open(path, &error);
    if (!store)
        err() << "cannot open " << path << ": " << error.message() << '\n';
    return store;
}

qint64 sizeOnDisk(const QString& path)
{
    qint64 size = 0;
    for (const QString& suffix : {QString(), QStringLiteral("-wal"), QStringLiteral("-shm")})
        size += QFileInfo(path + suffix).size();
    return size;
}

// Generates the company into `path`, printing each step's time and what was made.
bool generate(const QString& path, const CompanyGenerator::Sizes& sizes, CompanyGenerator::Counts* counts)
{
    std::unique_ptr<Store> store = openStore(path);
    if (!store)
        return false;
    CompanyGenerator generator(*store, sizes);
    const std::pair<const char*, std::function<bool(StoreError*)>> steps[] = {
        {"reference records", [&](StoreError* e) { return generator.insertReferenceRecords(e); }},
        {"clients", [&](StoreError* e) { return generator.insertClients(e); }},
        {"items", [&](StoreError* e) { return generator.insertItems(e); }},
        {"documents", [&](StoreError* e) { return generator.insertDocuments(e); }},
        {"to-dos", [&](StoreError* e) { return generator.insertToDos(e); }},
    };
    out() << "generation\n";
    qint64 total = 0;
    qint64 totalCpu = 0;
    for (const auto& [name, step] : steps) {
        QElapsedTimer timer;
        timer.start();
        const qint64 cpuStart = corvanta::bench::CpuClock::processNanoseconds();
        StoreError error;
        if (!step(&error)) {
            err() << "generating " << name << " failed: " << error.message() << '\n';
            return false;
        }
        const qint64 elapsed = timer.nsecsElapsed();
        const qint64 cpu = corvanta::bench::CpuClock::processNanoseconds() - cpuStart;
        total += elapsed;
        totalCpu += cpu;
        out() << QStringLiteral("  %1 %2 (%3 cpu)\n")
                     .arg(QLatin1String(name), -20)
                     .arg(seconds(elapsed), seconds(cpu));
    }
    *counts = generator.counts();
    qint64 records = 0;
    for (const qint64 n : counts->records)
        records += n;
    out() << QStringLiteral("  %1 %2 (%3 cpu; %4 records, %5 records/s)\n")
                 .arg(QStringLiteral("total"), -20)
                 .arg(seconds(total), seconds(totalCpu))
                 .arg(records)
                 .arg(rate(records, total));
    // Right after generating, before anything else is loaded.
    out() << "peak memory after generation (VmHWM): "
          << megabytes(corvanta::bench::ProcessMemory::peakResident()) << '\n';
    store.reset();
    out() << "database file: " << megabytes(sizeOnDisk(path)) << '\n';
    out() << "records per entity\n";
    for (auto it = counts->records.cbegin(); it != counts->records.cend(); ++it)
        out() << QStringLiteral("  %1 %2\n").arg(it.key(), -20).arg(it.value());
    out() << "tag links\n";
    for (auto it = counts->tagLinks.cbegin(); it != counts->tagLinks.cend(); ++it)
        out() << QStringLiteral("  %1 %2\n").arg(it.key(), -20).arg(it.value());
    out() << "documents per type (0 invoice ... 7 purchase order):";
    for (const qint64 n : counts->documentsByType)
        out() << ' ' << n;
    out() << QStringLiteral("\ninvoices: %1 drafts, %2 paid, %3 partly paid, %4 unpaid\n")
                 .arg(counts->draftInvoices)
                 .arg(counts->paidInvoices)
                 .arg(counts->partlyPaidInvoices)
                 .arg(counts->unpaidInvoices);
    out().flush();
    return true;
}

// Reopens the database and times the first page of documents, newest first. Returns false
// when the page is not what the database holds.
bool timeFirstPage(const QString& path, qint64 documents)
{
    QElapsedTimer timer;
    timer.start();
    std::unique_ptr<Store> store = openStore(path);
    if (!store)
        return false;
    const qint64 reopen = timer.nsecsElapsed();

    FetchRequest request(QStringLiteral("Documents"), {},
                         {SortDescriptor{QStringLiteral("date_creation"), false}});
    request.limit = kFirstPage;
    const auto check = [&](const QList<corvanta::store::Record*>& page) {
        if (page.size() != std::min<qint64>(kFirstPage, documents))
            return false;
        for (qsizetype i = 1; i < page.size(); ++i) {
            if (page.at(i - 1)->value(QStringLiteral("date_creation")).toDateTime() <
                page.at(i)->value(QStringLiteral("date_creation")).toDateTime())
                return false;
        }
        return true;
    };

    StoreError error;
    timer.restart();
    const QList<corvanta::store::Record*> first = store->mainContext().fetch(request, &error);
    const qint64 firstFetch = timer.nsecsElapsed();
    bool ok = check(first);

    std::vector<qint64> repeats;
    for (int i = 0; i < kFetchRepeats; ++i) {
        const std::unique_ptr<corvanta::store::EditingContext> context = store->newContext();
        timer.restart();
        const QList<corvanta::store::Record*> page = context->fetch(request, &error);
        repeats.push_back(timer.nsecsElapsed());
        ok = ok && check(page);
    }
    // Nothing left out of the page may be newer than its last document.
    if (ok && !first.isEmpty()) {
        const QDateTime last = first.last()->value(QStringLiteral("date_creation")).toDateTime();
        const auto newer = std::count_if(first.begin(), first.end(), [&](const corvanta::store::Record* r) {
            return r->value(QStringLiteral("date_creation")).toDateTime() > last;
        });
        const int stored = store->mainContext().count(
            FetchRequest(QStringLiteral("Documents"),
                         corvanta::predicate::Predicate::compare(
                             QStringLiteral("date_creation"),
                             corvanta::predicate::Predicate::Operator::Greater, last)),
            &error);
        ok = stored == newer;
    }
    std::sort(repeats.begin(), repeats.end());
    const qint64 median = (repeats[kFetchRepeats / 2 - 1] + repeats[kFetchRepeats / 2]) / 2;
    out() << "reopen: " << milliseconds(reopen) << '\n';
    out() << QStringLiteral(
                 "first %1 documents by date_creation descending: first fetch %2, median of %3 in fresh "
                 "contexts %4 (min %5, max %6)\n")
                 .arg(kFirstPage)
                 .arg(milliseconds(firstFetch))
                 .arg(kFetchRepeats)
                 .arg(milliseconds(median))
                 .arg(milliseconds(repeats.front()))
                 .arg(milliseconds(repeats.back()));
    if (!ok)
        err() << "the first page of documents is not the newest " << kFirstPage << " in order"
              << (error.isError() ? QStringLiteral(": ") + error.message() : QString()) << '\n';
    out().flush();
    return ok;
}

bool checkDatabase(const QString& path, const CompanyGenerator::Counts& counts)
{
    std::unique_ptr<Store> store = openStore(path);
    if (!store)
        return false;
    QElapsedTimer timer;
    timer.start();
    corvanta::bench::GeneratedDataCheck check(store->mainContext());
    const QStringList failures = check.compare(counts);
    out() << QStringLiteral("read back through the store: %1 figures compared in %2, %3 disagree\n")
                 .arg(check.comparisons())
                 .arg(seconds(timer.nsecsElapsed()))
                 .arg(failures.size());
    for (const QString& failure : failures)
        err() << "  " << failure << '\n';
    out().flush();
    return failures.isEmpty();
}

bool compareInserts(const QString& folder, double scale)
{
    using corvanta::bench::InsertComparison;
    const int documentsPerBatch = CompanyGenerator::Sizes().documentsPerSave;
    const int documents = std::max(1, int(std::lround(kSampleDocuments * scale)));
    const corvanta::bench::RowSample sample(documents, documentsPerBatch, kSampleSeed);
    const qint64 rows = sample.rowCount();
    out() << QStringLiteral(
                 "store against plain SQL: %1 rows of %2 documents, one transaction per %3 documents "
                 "(%4 transactions), each into a fresh database, median of %5 rounds\n")
                 .arg(rows)
                 .arg(documents)
                 .arg(documentsPerBatch)
                 .arg(sample.batchEnds().size())
                 .arg(kInsertRounds);
    out().flush();

    InsertComparison comparison(folder, sample, kInsertRounds);
    const bool ok = comparison.run();
    if (!ok)
        err() << "insert comparison: " << comparison.error() << '\n';
    if (comparison.timings(InsertComparison::PlainEveryColumn).empty())
        return false;
    for (int m = 0; m < InsertComparison::MethodCount; ++m) {
        const auto method = InsertComparison::Method(m);
        const InsertComparison::Timing median = comparison.median(method);
        QStringList rounds;
        for (const InsertComparison::Timing& t : comparison.timings(method))
            rounds << QString::number(double(t.wallNanoseconds) / 1e9, 'f', 2);
        out() << QStringLiteral("  %1 %2 rows/s (%3 wall, %4 cpu; rounds %5 s)\n")
                     .arg(InsertComparison::name(method), -34)
                     .arg(rate(rows, median.wallNanoseconds), 7)
                     .arg(seconds(median.wallNanoseconds), seconds(median.cpuNanoseconds),
                          rounds.join(QLatin1Char(' ')));
    }
    const InsertComparison::Timing store = comparison.median(InsertComparison::ThroughStore);
    const InsertComparison::Timing plain = comparison.median(InsertComparison::PlainFilledColumns);
    const InsertComparison::Timing every = comparison.median(InsertComparison::PlainEveryColumn);
    out() << QStringLiteral(
                 "  store/plain rate ratio: %1 (plain is %2x as fast; on cpu time %3x); against plain "
                 "with every column: %4 (%5x)\n")
                 .arg(double(plain.wallNanoseconds) / double(store.wallNanoseconds), 0, 'f', 3)
                 .arg(double(store.wallNanoseconds) / double(plain.wallNanoseconds), 0, 'f', 2)
                 .arg(double(store.cpuNanoseconds) / double(plain.cpuNanoseconds), 0, 'f', 2)
                 .arg(double(every.wallNanoseconds) / double(store.wallNanoseconds), 0, 'f', 3)
                 .arg(double(store.wallNanoseconds) / double(every.wallNanoseconds), 0, 'f', 2);
    out() << "  the databases hold the same rows: " << (ok ? "yes" : "no") << '\n';
    out().flush();
    return ok;
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("bench_store"));

    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral(
        "Fills a large company database through the record store and prints what it cost: generation "
        "time and peak memory, store inserts against plain SQL inserts of the same rows, and the "
        "first page of documents after reopening. Checks what it reads back; exits 1 on a "
        "disagreement."));
    const QCommandLineOption helpOption = parser.addHelpOption();
    const QCommandLineOption scaleOption(
        QStringLiteral("scale"),
        QStringLiteral(
            "Multiplies the number of clients, items, documents, rows and to-dos (default 1: 10,000 "
            "clients, 5,000 items, 100,000 documents, 1,000,000 rows, 20,000 to-dos)."),
        QStringLiteral("F"), QStringLiteral("1.0"));
    const QCommandLineOption keepOption(
        QStringLiteral("keep"),
        QStringLiteral("Generates the company into PATH, which must not exist yet, "
                       "and keeps it for other benchmarks."),
        QStringLiteral("PATH"));
    parser.addOption(scaleOption);
    parser.addOption(keepOption);
    if (!parser.parse(QCoreApplication::arguments())) {
        err() << parser.errorText() << '\n';
        return 2;
    }
    if (parser.isSet(helpOption) || parser.isSet(QStringLiteral("help-all"))) {
        out() << parser.helpText();
        return 0;
    }

    bool ok = false;
    const double scale = parser.value(scaleOption).toDouble(&ok);
    if (!ok || !(scale > 0.0) || scale > 100.0) {
        err() << "--scale needs a number above 0 and at most 100\n";
        return 2;
    }
    QTemporaryDir scratch;
    if (!scratch.isValid()) {
        err() << "cannot create a temporary folder: " << scratch.errorString() << '\n';
        return 1;
    }
    QString path = scratch.filePath(QStringLiteral("company.cvdb"));
    if (parser.isSet(keepOption)) {
        path = QFileInfo(parser.value(keepOption)).absoluteFilePath();
        if (QFileInfo::exists(path)) {
            err() << path << " exists already; the company is generated into a new database only\n";
            return 2;
        }
    }

    const CompanyGenerator::Sizes sizes = CompanyGenerator::Sizes::scaled(scale);
    out()
        << QStringLiteral("bench_store: scale %1, seed %2\n").arg(scale).arg(CompanyGenerator::kDefaultSeed);
    out() << "database: " << path << '\n';
    out().flush();

    CompanyGenerator::Counts counts;
    if (!generate(path, sizes, &counts))
        return 1;
    bool passed = timeFirstPage(path, counts.records.value(QStringLiteral("Documents")));
    passed = checkDatabase(path, counts) && passed;
    passed = compareInserts(scratch.path(), scale) && passed;
    out() << "peak memory at the end (VmHWM): " << megabytes(corvanta::bench::ProcessMemory::peakResident())
          << '\n';
    out() << (passed ? "all checks passed\n" : "SOME CHECKS FAILED\n");
    return passed ? 0 : 1;
}
