// The files that make the program at home on a Linux desktop, as `cmake --install` puts them:
// where the desktop looks for them, accepted by the desktop's own validators, naming one another
// and the program consistently; and the icon compiled into the program itself.
#include <QByteArrayView>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <QSvgRenderer>
#include <QTemporaryDir>
#include <QTest>
#include <QXmlStreamReader>

using namespace Qt::Literals::StringLiterals;

namespace {

const QString desktopEntryPath = u"share/applications/org.corvanta.Corvanta.desktop"_s;
const QString iconFolder = u"share/icons/hicolor/scalable/apps/"_s;
const QString metainfoPath = u"share/metainfo/org.corvanta.Corvanta.metainfo.xml"_s;

struct Finished
{
    int exitCode = -1;
    QString output;
};

// Runs a program to its end; a crash or a time-out counts as a failure.
Finished run(const QString& program, const QStringList& arguments)
{
    QProcess process;
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(program, arguments);
    const bool ended = process.waitForFinished(300'000);
    const QString output = QString::fromUtf8(process.readAll());
    if (!ended || process.exitStatus() != QProcess::NormalExit)
        return {-1, program + u" did not finish: "_s + output};
    return {process.exitCode(), output};
}

// The keys of a desktop file's [Desktop Entry] group.
QHash<QString, QString> desktopEntry(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text))
        return {};
    QHash<QString, QString> keys;
    bool inEntry = false;
    for (const QString& line : QString::fromUtf8(file.readAll()).split(u'\n')) {
        if (line.startsWith(u'['))
            inEntry = line == u"[Desktop Entry]"_s;
        else if (const qsizetype equals = line.indexOf(u'='); inEntry && equals > 0)
            keys.insert(line.left(equals).trimmed(), line.mid(equals + 1).trimmed());
    }
    return keys;
}

// The text of the first element of that name in an XML file.
QString elementText(const QString& path, QStringView name)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    QXmlStreamReader xml(&file);
    while (!xml.atEnd()) {
        if (xml.readNext() == QXmlStreamReader::StartElement && xml.name() == name)
            return xml.readElementText().trimmed();
    }
    return {};
}

} // namespace

class tst_DesktopFiles : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void installedFilesAreValid_data();
    void installedFilesAreValid();
    void namesLeadToInstalledFiles_data();
    void namesLeadToInstalledFiles();
    void programCarriesTheIcon();
    void wholeBuildInstalls();

private:
    QString installed(const QString& path) const { return m_prefix.filePath(path); }

    QString m_buildDir;
    QString m_cmake;
    QTemporaryDir m_prefix;
};

void tst_DesktopFiles::initTestCase()
{
    // Test programs are built into the build tree's bin folder.
    m_buildDir = QDir(QCoreApplication::applicationDirPath() + u"/.."_s).canonicalPath();
    QVERIFY2(QFile::exists(m_buildDir + u"/cmake_install.cmake"_s), qPrintable(m_buildDir));
    m_cmake = QStandardPaths::findExecutable(u"cmake"_s);
    QVERIFY2(!m_cmake.isEmpty(), "cmake is not on the PATH");
    QVERIFY(m_prefix.isValid());
    const Finished install = run(m_cmake, {u"--install"_s, m_buildDir, u"--prefix"_s, m_prefix.path(),
                                           u"--component"_s, u"desktop"_s});
    QVERIFY2(install.exitCode == 0, qPrintable(install.output));
}

void tst_DesktopFiles::installedFilesAreValid_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QStringList>("validator");
    QTest::addColumn<QString>("package");
    QTest::newRow("desktop entry") << desktopEntryPath << QStringList{u"desktop-file-validate"_s}
                                   << u"desktop-file-utils"_s;
    QTest::newRow("AppStream metainfo")
        << metainfoPath << QStringList{u"appstreamcli"_s, u"validate"_s, u"--no-net"_s} << u"appstream"_s;
    // The icon has no validator of the desktop's own: it must draw, and fill a square.
    QTest::newRow("scalable icon") << iconFolder + u"org.corvanta.Corvanta.svg"_s << QStringList()
                                   << QString();
}

void tst_DesktopFiles::installedFilesAreValid()
{
    QFETCH(QString, path);
    QFETCH(QStringList, validator);
    QFETCH(QString, package);
    QVERIFY2(QFile::exists(installed(path)), qPrintable(path + u" is not installed"_s));
    if (validator.isEmpty()) {
        const QSvgRenderer renderer(installed(path));
        QVERIFY(renderer.isValid());
        QCOMPARE(renderer.viewBoxF().width(), renderer.viewBoxF().height());
        return;
    }
    const QString tool = QStandardPaths::findExecutable(validator.takeFirst());
    if (tool.isEmpty())
        QSKIP(qPrintable(u"The validator is not installed (Debian package %1)"_s.arg(package)));
    const Finished validation = run(tool, validator << installed(path));
    QVERIFY2(validation.exitCode == 0, qPrintable(validation.output));
}

void tst_DesktopFiles::namesLeadToInstalledFiles_data()
{
    const QHash<QString, QString> entry = desktopEntry(installed(desktopEntryPath));
    const QString metainfo = installed(metainfoPath);
    QTest::addColumn<QString>("path");
    QTest::newRow("the entry's icon") << iconFolder + entry.value(u"Icon"_s) + u".svg"_s;
    QTest::newRow("the metainfo's launchable")
        << u"share/applications/"_s + elementText(metainfo, u"launchable");
    // The component's identifier is the desktop file's, as the program tells the window system.
    QTest::newRow("the metainfo's identifier")
        << u"share/applications/"_s + elementText(metainfo, u"id") + u".desktop"_s;
}

void tst_DesktopFiles::namesLeadToInstalledFiles()
{
    QFETCH(QString, path);
    QVERIFY2(QFile::exists(installed(path)), qPrintable(path));
}

void tst_DesktopFiles::programCarriesTheIcon()
{
    // This test links the desktop program's library as the program does, so the icon must be
    // registered here without any call to initialise it.
    QFile resource(u":/icons/corvanta.svg"_s);
    QVERIFY2(resource.open(QIODevice::ReadOnly), "the icon is not among the program's resources");
    QFile installedIcon(installed(iconFolder + u"org.corvanta.Corvanta.svg"_s));
    QVERIFY(installedIcon.open(QIODevice::ReadOnly));
    QCOMPARE(resource.readAll(), installedIcon.readAll());
}

void tst_DesktopFiles::wholeBuildInstalls()
{
    if (!QFile::exists(m_buildDir + u"/bin/corvanta"_s))
        QSKIP("The desktop program is not built; its installation is checked after a full build");
    QTemporaryDir prefix;
    QVERIFY(prefix.isValid());
    const Finished install = run(m_cmake, {u"--install"_s, m_buildDir, u"--prefix"_s, prefix.path()});
    QVERIFY2(install.exitCode == 0, qPrintable(install.output));

    // The entry starts the installed program, the one the metainfo says it provides.
    const QString exec = desktopEntry(prefix.filePath(desktopEntryPath)).value(u"Exec"_s);
    QCOMPARE(exec, elementText(prefix.filePath(metainfoPath), u"binary"));
    QFile program(prefix.filePath(u"bin/"_s + exec));
    QVERIFY2(program.exists(), qPrintable(program.fileName()));
    QVERIFY(program.permissions() & QFileDevice::ExeOwner);
    // Its icon resource is linked in (a static archive would have dropped it unseen).
    QVERIFY(program.open(QIODevice::ReadOnly));
    const uchar* image = program.map(0, program.size());
    QVERIFY(image);
    const QByteArrayView bytes(image, program.size());
    QVERIFY2(bytes.contains("qInitResources_icons"), "the program lacks its icon resource");
}

QTEST_MAIN(tst_DesktopFiles)
#include "tst_desktopfiles.moc"
