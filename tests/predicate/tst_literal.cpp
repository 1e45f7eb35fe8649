#include "predicate/literal.h"
#include "predicate/parser.h"

#include <QCoreApplication>
#include <QProcess>
#include <QTest>
#include <cstdio>

using namespace corvanta::predicate;

namespace {

QString s(const char* text)
{
    return QString::fromUtf8(text);
}

// What the program would hold in its code, with a typo: an operator that does not exist.
const char* const kTypo = "type === %@";

} // namespace

// Predicates written in the code are parsed with their arguments bound; a typo in one is a
// programming error that must not pass silently.
class tst_Literal : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void parsesWithItsArguments();
    void typoFailsLoudly();
};

void tst_Literal::parsesWithItsArguments()
{
    const QVariantList arguments{qint64(3), s("O'Brien")};
    const Predicate expected = *Parser::parse(s("type == %ld && name == %@"), arguments);
    QVERIFY(literal("type == %ld && name == %@", arguments) == expected);
    QVERIFY(literal(QStringView(u"type == %ld && name == %@"), arguments) == expected);
}

// The typo runs in a child process: a debug build stops there with the text and the place the
// parser gave up; a release build logs the same and selects nothing rather than everything.
void tst_Literal::typoFailsLoudly()
{
    QProcess child;
    child.start(QCoreApplication::applicationFilePath(), {s("--typo")});
    QVERIFY(child.waitForFinished(30000));
    const QString errors = QString::fromUtf8(child.readAllStandardError());
    QVERIFY2(errors.contains(s("The predicate \"type === %@\" written in the program does not parse")),
             qPrintable(errors));
#ifdef QT_NO_DEBUG
    QCOMPARE(child.exitCode(), 0);
    QCOMPARE(QString::fromUtf8(child.readAllStandardOutput()).trimmed(), s("FALSEPREDICATE"));
#else
    QVERIFY(child.exitStatus() == QProcess::CrashExit || child.exitCode() != 0);
#endif
}

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    if (app.arguments().contains(QStringLiteral("--typo"))) {
        const Predicate p = literal(kTypo, {qint64(1)});
        std::fputs(p.kind() == Predicate::Kind::False ? "FALSEPREDICATE\n" : "something\n", stdout);
        return 0;
    }
    tst_Literal test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_literal.moc"
