#include "insertcomparison.h"

#include "cpuclock.h"
#include "model/companydatabase.h"
#include "model/corvantamodel.h"
#include "plainrowwriter.h"
#include "rowsample.h"
#include "sqlconnection.h"
#include "store/store.h"
#include "storerowwriter.h"

#include <QElapsedTimer>
#include <QFile>
#include <QSqlError>
#include <QSqlQuery>
#include <algorithm>

namespace corvanta::bench {

namespace {

void removeDatabase(const QString& path)
{
    for (const QString& suffix :
         {QString(), QStringLiteral("-wal"), QStringLiteral("-shm"), QStringLiteral(".lock")})
        QFile::remove(path + suffix);
}

} // namespace

InsertComparison::InsertComparison(const QString& folder, const RowSample& sample, int rounds)
    : m_folder(folder)
    , m_sample(sample)
    , m_rounds(std::max(1, rounds))
{}

QString InsertComparison::name(Method method)
{
    switch (method) {
    case ThroughStore:
        return QStringLiteral("store");
    case PlainFilledColumns:
        return QStringLiteral("plain, filled columns");
    case PlainEveryColumn:
        return QStringLiteral("plain, every column as the store");
    case MethodCount:
        break;
    }
    return {};
}

bool InsertComparison::run()
{
    for (auto& t : m_timings)
        t.clear();
    for (int round = 0; round < m_rounds; ++round) {
        std::array<QString, MethodCount> paths;
        for (int i = 0; i < MethodCount; ++i) {
            // Each round starts with a different method, so that none always runs first.
            const auto method = Method((round + i) % MethodCount);
            paths[std::size_t(method)] =
                m_folder + QStringLiteral("/insert-%1-%2.cvdb").arg(round).arg(int(method));
            Timing timing;
            if (!prepare(paths[std::size_t(method)]) || !insert(method, paths[std::size_t(method)], &timing))
                return false;
            m_timings[std::size_t(method)].push_back(timing);
        }
        for (const Method plain : {PlainFilledColumns, PlainEveryColumn}) {
            const qint64 differing = differingRows(paths[ThroughStore], paths[std::size_t(plain)]);
            if (differing != 0) {
                if (differing > 0)
                    m_error = QStringLiteral("the store's rows and the rows of \"%1\" differ in %2 rows")
                                  .arg(name(plain))
                                  .arg(differing);
                return false;
            }
        }
        for (const QString& path : paths)
            removeDatabase(path);
    }
    return true;
}

InsertComparison::Timing InsertComparison::median(Method method) const
{
    std::vector<Timing> sorted = timings(method);
    if (sorted.empty())
        return {};
    std::sort(sorted.begin(), sorted.end(),
              [](const Timing& a, const Timing& b) { return a.wallNanoseconds < b.wallNanoseconds; });
    std::vector<qint64> cpu;
    for (const Timing& t : sorted)
        cpu.push_back(t.cpuNanoseconds);
    std::sort(cpu.begin(), cpu.end());
    const std::size_t middle = sorted.size() / 2;
    if (sorted.size() % 2)
        return {sorted[middle].wallNanoseconds, cpu[middle]};
    return {(sorted[middle - 1].wallNanoseconds + sorted[middle].wallNanoseconds) / 2,
            (cpu[middle - 1] + cpu[middle]) / 2};
}

bool InsertComparison::prepare(const QString& path)
{
    removeDatabase(path);
    // The store creates the schema; the records the rows point at are written plainly.
    {
        store::StoreError error;
        if (!model::CompanyDatabase::open(path, &error)) {
            m_error = QStringLiteral("cannot create %1: %2").arg(path, error.message());
            return false;
        }
    }
    SqlConnection connection(path);
    QString why;
    if (!connection.open(&why) || !PlainRowWriter(connection.database()).writeParents(m_sample, &why)) {
        m_error = QStringLiteral("cannot prepare %1: %2").arg(path, why);
        return false;
    }
    return true;
}

bool InsertComparison::insert(Method method, const QString& path, Timing* timing)
{
    QElapsedTimer wall;
    qint64 cpuStart = 0;
    if (method == ThroughStore) {
        store::StoreError error;
        // The store alone, without the program's record classes: both ways write exactly the same
        // values, and the figure is the store's own cost of writing them.
        std::unique_ptr<store::Store> store = store::Store::open(path, model::corvantaDataModel(), &error);
        if (!store) {
            m_error = QStringLiteral("cannot open %1: %2").arg(path, error.message());
            return false;
        }
        wall.start();
        cpuStart = CpuClock::processNanoseconds();
        if (!StoreRowWriter(*store).write(m_sample, &error)) {
            m_error = QStringLiteral("store inserts failed: %1").arg(error.message());
            return false;
        }
    } else {
        SqlConnection connection(path);
        QString why;
        if (!connection.open(&why)) {
            m_error = QStringLiteral("cannot open %1: %2").arg(path, why);
            return false;
        }
        wall.start();
        cpuStart = CpuClock::processNanoseconds();
        const auto columns =
            method == PlainFilledColumns ? PlainRowWriter::Columns::Filled : PlainRowWriter::Columns::All;
        if (!PlainRowWriter(connection.database()).writeRows(m_sample, columns, &why)) {
            m_error = QStringLiteral("plain inserts failed: %1").arg(why);
            return false;
        }
    }
    timing->wallNanoseconds = wall.nsecsElapsed();
    timing->cpuNanoseconds = CpuClock::processNanoseconds() - cpuStart;
    return true;
}

qint64 InsertComparison::differingRows(const QString& pathA, const QString& pathB)
{
    SqlConnection connection(pathA);
    QString why;
    if (!connection.open(&why)) {
        m_error = why;
        return -1;
    }
    QSqlQuery q(connection.database());
    q.prepare(QStringLiteral("ATTACH DATABASE ? AS other"));
    q.bindValue(0, pathB);
    if (!q.exec()) {
        m_error = q.lastError().text();
        return -1;
    }
    const QString table = QLatin1Char('"') + RowSample::entity() + QLatin1Char('"');
    const QString sql =
        QStringLiteral("SELECT (SELECT count(*) FROM (SELECT * FROM main.%1 EXCEPT SELECT * FROM other.%1))"
                       " + (SELECT count(*) FROM (SELECT * FROM other.%1 EXCEPT SELECT * FROM main.%1))"
                       " + abs((SELECT count(*) FROM main.%1) - (SELECT count(*) FROM other.%1))"
                       " + abs((SELECT count(*) FROM main.%1) - ?)")
            .arg(table);
    q.prepare(sql);
    q.bindValue(0, m_sample.rowCount());
    if (!q.exec() || !q.next()) {
        m_error = q.lastError().text();
        return -1;
    }
    const qint64 differing = q.value(0).toLongLong();
    q.finish();
    q.exec(QStringLiteral("DETACH DATABASE other"));
    return differing;
}

} // namespace corvanta::bench
