#include "exchange/emailhandover.h"
#include "xdgemailstandin.h"

using corvanta::exchange::EmailHandOver;
using corvanta::exchange::testing::XdgEmailStandIn;

namespace {

QString s(const char* text)
{
    return QString::fromUtf8(text);
}

} // namespace

// The hand-over to xdg-email: the exact argument list it gets, the recipients that are never
// handed over, and failures that are logged and reported.
class tst_EmailHandOver : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void handsOverArguments_data();
    void handsOverArguments();
    void refusesHostileRecipients_data();
    void refusesHostileRecipients();
    void failedHandOverIsLogged_data();
    void failedHandOverIsLogged();
    void mailProgramStillOpenCountsAsHandedOver();
};

void tst_EmailHandOver::handsOverArguments_data()
{
    QTest::addColumn<QString>("to");
    QTest::addColumn<QString>("subject");
    QTest::addColumn<QString>("body");
    QTest::addColumn<QString>("attachment"); // a path only: xdg-email opens it, not the stand-in
    QTest::addColumn<QString>("expected");   // the arguments joined by "|"

    QTest::newRow("everything, shell characters as plain text")
        << s("o'brien+1@example.com") << s("$(touch pwned) \"quoted\" `x`")
        << s("Dear Acme,\n; rm -rf ~ & $HOME") << s("/tmp/INVOICE-2024 0007.pdf")
        << s("--utf8|--to|o'brien+1@example.com|--subject|$(touch pwned) \"quoted\" `x`|--body|Dear Acme,\n; "
             "rm "
             "-rf ~ & $HOME\n\n\n|--attach|/tmp/INVOICE-2024 0007.pdf");
    QTest::newRow("empty subject and body are left out")
        << s("No Email") << QString() << QString() << s("/tmp/a.pdf")
        << s("--utf8|--to|No Email|--attach|/tmp/a.pdf");
    QTest::newRow("empty subject, body kept") << s("a@b.example") << QString() << s("Hi") << QString()
                                              << s("--utf8|--to|a@b.example|--body|Hi\n\n\n");
    QTest::newRow("non-ASCII, ? & and a leading dash in subject and body")
        << s("müller@example.de") << s("Q&A? für Müller") << s("-Grüße") << QString()
        << s("--utf8|--to|müller@example.de|--subject|Q&A? für Müller|--body|-Grüße\n\n\n");
}

void tst_EmailHandOver::handsOverArguments()
{
    QFETCH(QString, to);
    QFETCH(QString, subject);
    QFETCH(QString, body);
    QFETCH(QString, attachment);
    QFETCH(QString, expected);

    XdgEmailStandIn standIn;
    QString error;
    QVERIFY2(EmailHandOver().sendEmailTo(to, subject, body, attachment, &error), qPrintable(error));
    QCOMPARE(standIn.callCount(), 1);
    QCOMPARE(standIn.arguments(), expected.split(u'|'));
}

void tst_EmailHandOver::refusesHostileRecipients_data()
{
    QTest::addColumn<QString>("to");
    QTest::addColumn<QString>("shown"); // how the message quotes the recipient
    QTest::addColumn<QString>("reason");

    const QString control = s("a line break or another control character");
    QTest::newRow("leading dash: an option") << s("-x@y") << s("-x@y") << s("begins with \"-\"");
    QTest::newRow("question mark: a field") << s("a?cc=b") << s("a?cc=b") << s("holds \"?\" or \"&\"");
    QTest::newRow("ampersand: a field") << s("a&b") << s("a&b") << s("holds \"?\" or \"&\"");
    QTest::newRow("line break: a header") << s("a\nBcc: x") << s("a\\nBcc: x") << control;
    QTest::newRow("carriage return") << s("a@b\rBcc: x") << s("a@b\\rBcc: x") << control;
    QTest::newRow("line separator") << s("a@b\u2028Bcc: x") << s("a@b\\u2028Bcc: x") << control;
    QTest::newRow("other control character") << s("a\x01@b") << s("a\\u0001@b") << control;
    QTest::newRow("mailto link with an attachment")
        << s("mailto:x@y?attach=/etc/passwd") << s("mailto:x@y?attach=/etc/passwd")
        << s("begins with \"mailto:\"");
    QTest::newRow("mailto in capitals") << s("MailTo:x@y") << s("MailTo:x@y") << s("begins with \"mailto:\"");
}

void tst_EmailHandOver::refusesHostileRecipients()
{
    QFETCH(QString, to);
    QFETCH(QString, shown);
    QFETCH(QString, reason);

    XdgEmailStandIn standIn;
    QString error;
    QVERIFY(!EmailHandOver().sendEmailTo(to, s("Subject"), s("Body"), QString(), &error));
    QVERIFY2(error.startsWith(s("The recipient \"%1\" is not handed to the mail program: ").arg(shown)),
             qPrintable(error));
    QVERIFY2(error.contains(reason), qPrintable(error));
    QCOMPARE(standIn.callCount(), 0);
}

void tst_EmailHandOver::failedHandOverIsLogged_data()
{
    QTest::addColumn<int>("status");
    QTest::addColumn<QString>("program");
    QTest::addColumn<QString>("message");

    QTest::newRow("non-zero exit with its error output")
        << 3 << s("xdg-email") << s("The mail program ended with status 3: stand-in says no");
    QTest::newRow("not on the PATH") << 0 << s("xdg-email-missing")
                                     << s("The mail program could not be reached: \"xdg-email-missing\" was "
                                          "not found.");
}

void tst_EmailHandOver::failedHandOverIsLogged()
{
    QFETCH(int, status);
    QFETCH(QString, program);
    QFETCH(QString, message);

    XdgEmailStandIn standIn(status);
    QTest::ignoreMessage(QtWarningMsg, qPrintable(message));
    QString error;
    QVERIFY(!EmailHandOver(program).sendEmailTo(s("a@b.example"), s("S"), s("B"), QString(), &error));
    QCOMPARE(error, message);
}

void tst_EmailHandOver::mailProgramStillOpenCountsAsHandedOver()
{
    // xdg-email waits for a mail program it had to start: the hand-over neither blocks on it nor
    // kills it, and a failure when it ends at last is still written down.
    XdgEmailStandIn standIn(4, 1);
    QString error;
    QVERIFY2(
        EmailHandOver(s("xdg-email"), 200).sendEmailTo(s("a@b.example"), s("S"), s("B"), QString(), &error),
        qPrintable(error));
    QTest::ignoreMessage(QtWarningMsg, "The mail program ended with status 4: stand-in says no");
    QTest::qWait(2500);
}

QTEST_GUILESS_MAIN(tst_EmailHandOver)
#include "tst_emailhandover.moc"
