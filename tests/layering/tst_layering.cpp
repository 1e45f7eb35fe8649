#include "layering.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

using namespace corvanta::layering;

namespace {

QString s(const char* text)
{
    return QString::fromUtf8(text);
}

QString read(const QString& file)
{
    QFile in(file);
    return in.open(QIODevice::ReadOnly) ? QString::fromUtf8(in.readAll()) : QString();
}

void write(const QString& file, const QString& text)
{
    QDir().mkpath(QFileInfo(file).path());
    QFile out(file);
    QVERIFY(out.open(QIODevice::WriteOnly));
    out.write(text.toUtf8());
}

} // namespace

// The libraries under src/ may include only what src/layers.txt allows them, and the store's
// public headers must not bring Qt SQL or SQLite to those who include them.
class tst_Layering : public QObject
{
    Q_OBJECT

private:
    LayerTable m_table;

private Q_SLOTS:
    void initTestCase();
    void theTableIsReadable();
    void includesFollowTheTable_data();
    void includesFollowTheTable();
    void storeHeadersHideTheDatabase_data();
    void storeHeadersHideTheDatabase();
    void checkerFindsWhatIsWrong_data();
    void checkerFindsWhatIsWrong();
};

void tst_Layering::initTestCase()
{
    m_table = LayerTable::parse(read(s(CORVANTA_SOURCE_DIR "/src/layers.txt")));
}

void tst_Layering::theTableIsReadable()
{
    QVERIFY2(m_table.problems.isEmpty(), qPrintable(m_table.problems.join(QLatin1Char('\n'))));
    QVERIFY(m_table.uses.contains(s("store")));
    // Every use names a library that has a line of its own.
    for (auto it = m_table.uses.cbegin(); it != m_table.uses.cend(); ++it) {
        for (const QString& used : it.value())
            QVERIFY2(m_table.uses.contains(used), qPrintable(it.key() + s(" uses unknown ") + used));
    }
}

void tst_Layering::includesFollowTheTable_data()
{
    QTest::addColumn<QString>("library");
    const IncludeChecker checker(m_table, s(CORVANTA_SOURCE_DIR "/src"));
    for (const QString& library : checker.libraries())
        QTest::newRow(qPrintable(library)) << library;
}

void tst_Layering::includesFollowTheTable()
{
    QFETCH(QString, library);
    const IncludeChecker checker(m_table, s(CORVANTA_SOURCE_DIR "/src"), s(CORVANTA_SOURCE_DIR "/tests"));
    const QStringList violations = checker.violations(library);
    QVERIFY2(violations.isEmpty(), qPrintable(violations.join(QLatin1Char('\n'))));
}

void tst_Layering::storeHeadersHideTheDatabase_data()
{
    QTest::addColumn<QString>("header");
    for (const char* header :
         {"store/store.h", "store/editingcontext.h", "store/record.h", "store/storefile.h"})
        QTest::newRow(header) << s(header);
}

void tst_Layering::storeHeadersHideTheDatabase()
{
    QFETCH(QString, header);
    const IncludeChecker checker(m_table, s(CORVANTA_SOURCE_DIR "/src"));
    QStringList database;
    for (const QString& chain : checker.outsideHeadersReachedFrom(header)) {
        if (chain.contains(s("QSql")) || chain.contains(s("sqlite3")))
            database << chain;
    }
    QVERIFY2(database.isEmpty(), qPrintable(database.join(QLatin1Char('\n'))));
}

// The checker itself, on small trees of its own: it must report what is wrong, and only that.
void tst_Layering::checkerFindsWhatIsWrong_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("violation");
    QTest::newRow("an allowed use") << s("src/model/a.h") << s("#include \"store/b.h\"\n") << QString();
    QTest::newRow("its own folder, bare") << s("src/store/a.cpp") << s("#include \"b.h\"\n") << QString();
    QTest::newRow("an include running upward")
        << s("src/store/a.h") << s("#include \"store/b.h\"\n#include \"model/c.h\"\n")
        << s("src/store/a.h:2: includes \"model/c.h\": store may not use model");
    QTest::newRow("a library not on the line")
        << s("src/model/a.cpp") << s("#include \"companies/c.h\"\n")
        << s("src/model/a.cpp:1: includes \"companies/c.h\": model may not use companies");
    QTest::newRow("the database outside the store")
        << s("src/model/a.cpp") << s("#include <QSqlQuery>\n")
        << s("src/model/a.cpp:1: includes \"QSqlQuery\": only store may include it");
    QTest::newRow("widgets in the core")
        << s("src/store/a.cpp") << s("#include <QtWidgets/QWidget>\n")
        << s("src/store/a.cpp:1: includes \"QtWidgets/QWidget\": only the windows may include it");
    QTest::newRow("a test of the store using the model")
        << s("tests/store/tst_a.cpp") << s("#include \"model/corvantamodel.h\"\n")
        << s("tests/store/tst_a.cpp:1: includes \"model/corvantamodel.h\": store may not use model");
    QTest::newRow("a test borrowing another test's support")
        << s("tests/store/tst_a.cpp") << s("#include \"../model/support.h\"\n")
        << s("tests/store/tst_a.cpp:1: includes \"../model/support.h\": store may not use model");
    QTest::newRow("a test reading the database itself")
        << s("tests/model/tst_a.cpp") << s("#include <QSqlQuery>\n") << QString();
    QTest::newRow("a test's support found through an include path")
        << s("tests/store/tst_a.cpp") << s("#include \"support.h\"\n")
        << s("tests/store/tst_a.cpp:1: includes \"support.h\": not in this folder: include it as "
             "\"../<folder>/support.h\"");
}

void tst_Layering::checkerFindsWhatIsWrong()
{
    QFETCH(QString, file);
    QFETCH(QString, text);
    QFETCH(QString, violation);
    const LayerTable table = LayerTable::parse(s("store: \nmodel: store\ncompanies: store model\n"
                                                 "outside QSql sqlite3.h: store\noutside QtWidgets:\n"));
    QTemporaryDir root;
    for (const char* library : {"store", "model", "companies"}) {
        write(root.filePath(s("src/%1/CMakeLists.txt").arg(QLatin1String(library))), {});
        write(root.filePath(s("src/%1/b.h").arg(QLatin1String(library))), {});
    }
    write(root.filePath(file), text);
    const IncludeChecker checker(table, root.filePath(s("src")), root.filePath(s("tests")));
    QCOMPARE(checker.libraries(), QStringList({s("companies"), s("model"), s("store")}));
    QStringList found;
    for (const QString& library : checker.libraries())
        found << checker.violations(library);
    QCOMPARE(found, violation.isEmpty() ? QStringList() : QStringList{violation});
}

QTEST_GUILESS_MAIN(tst_Layering)
#include "tst_layering.moc"
