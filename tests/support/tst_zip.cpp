#include "support/zipreader.h"
#include "support/zipwriter.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

using namespace corvanta::support;

namespace {

QString s(const char* text)
{
    return QString::fromUtf8(text);
}

QByteArray read(const QString& path)
{
    QFile in(path);
    return in.open(QIODevice::ReadOnly) ? in.readAll() : QByteArray();
}

// An archive with the given entries, written with libzip.
void writeArchive(const QString& path, const QList<std::pair<QString, QByteArray>>& entries)
{
    ZipWriter zip;
    QString error;
    QVERIFY(zip.open(path, &error));
    for (const auto& [name, data] : entries)
        QVERIFY(zip.addData(name, data, &error));
    QVERIFY2(zip.close(&error), qPrintable(error));
}

} // namespace

// Archives come from outside (template files, backups to restore): they are read defensively.
class tst_Zip : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void unsafeArchivesAreRefused_data();
    void unsafeArchivesAreRefused();
    void failedExtractionLeavesNothing();
    void writerReplacesOnlyWhenComplete();
};

void tst_Zip::unsafeArchivesAreRefused_data()
{
    QTest::addColumn<QStringList>("names");
    QTest::addColumn<QString>("error");
    const auto unsafe = [](const char* row, const char* name) {
        QTest::newRow(row)
            << QStringList{s(name)}
            << s("The archive \"ARCHIVE\" holds an entry with an unsafe name (\"%1\").").arg(s(name));
    };
    unsafe("walks up", "../evil.txt");
    unsafe("walks up inside", "a/../../evil.txt");
    unsafe("absolute", "/etc/evil");
    unsafe("backslash", "a\\b.txt");
    unsafe("drive", "C:/evil");
    QTest::newRow("too many entries") << QStringList{s("1"), s("2"), s("3"), s("4"), s("5")}
                                      << s("The archive \"ARCHIVE\" holds too many entries.");
    QTest::newRow("too large") << QStringList{s("big")}
                               << s("The entry \"big\" of the archive \"ARCHIVE\" is too large.");
}

void tst_Zip::unsafeArchivesAreRefused()
{
    QFETCH(QStringList, names);
    QFETCH(QString, error);
    QTemporaryDir dir;
    const QString archive = dir.filePath(s("test.zip"));
    QList<std::pair<QString, QByteArray>> entries;
    for (const QString& name : names)
        entries.append({name, name == s("big") ? QByteArray(2000, 'x') : QByteArray("x")});
    writeArchive(archive, entries);
    ZipReader zip(ZipReader::Limits{4, 1000, 4000});
    QString why;
    QVERIFY(!zip.open(archive, &why));
    QCOMPARE(why, error.replace(s("ARCHIVE"), archive));
    QVERIFY(zip.entries().isEmpty());
    // The same bytes read from memory are refused alike.
    QVERIFY(!zip.openData(read(archive), s("in memory"), &why));
    QCOMPARE(why, error.replace(archive, s("in memory")));
    QVERIFY(zip.entries().isEmpty());
}

void tst_Zip::failedExtractionLeavesNothing()
{
    QTemporaryDir dir;
    const QString archive = dir.filePath(s("test.zip"));
    writeArchive(archive, {{s("a/one.txt"), "1"}, {s("a/b/two.txt"), "2"}, {s("three.txt"), "3"}});
    const QString target = dir.filePath(s("out"));
    QDir().mkpath(target);
    QFile existing(target + s("/three.txt"));
    QVERIFY(existing.open(QIODevice::WriteOnly));
    existing.write("already there");
    existing.close();
    ZipReader zip;
    QVERIFY(zip.open(archive, nullptr));
    QString error;
    QVERIFY(!zip.extractAll(target, &error));
    QVERIFY(error.contains(s("three.txt")));
    QCOMPARE(QDir(target).entryList(QDir::AllEntries | QDir::NoDotAndDotDot), QStringList{s("three.txt")});
    QCOMPARE(read(target + s("/three.txt")), QByteArray("already there"));
}

// An older archive of the same name stays whole until the new one is complete.
void tst_Zip::writerReplacesOnlyWhenComplete()
{
    QTemporaryDir dir;
    const QString archive = dir.filePath(s("copy.zip"));
    writeArchive(archive, {{s("old.txt"), "old"}});
    const QByteArray before = read(archive);
    {
        ZipWriter zip;
        QString error;
        QVERIFY(zip.open(archive, &error));
        QVERIFY(zip.addData(s("new.txt"), "new", &error));
        QVERIFY(!zip.addFile(s("gone.txt"), dir.filePath(s("no such file")), &error) || !zip.close(&error));
    }
    QCOMPARE(read(archive), before);
    QCOMPARE(QDir(dir.path()).entryList(QDir::Files | QDir::Hidden), QStringList{s("copy.zip")});
}

QTEST_GUILESS_MAIN(tst_Zip)
#include "tst_zip.moc"
