#include "app/updatechecker.h"
#include "support/scriptedprompter.h"

#include <QElapsedTimer>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTest>

using namespace corvanta;
using app::UpdateChecker;
using support::ScriptedPrompter;

namespace {

QString s(const char* text)
{
    return QString::fromUtf8(text);
}

// A real HTTP server on 127.0.0.1 that answers every request in one way.
class LocalServer : public QObject
{
public:
    enum class Mode { Reply, Silent, Status500 };

    LocalServer(Mode mode, const QByteArray& body)
        : m_mode(mode)
        , m_body(body)
    {
        QVERIFY(m_server.listen(QHostAddress::LocalHost, 0));
        connect(&m_server, &QTcpServer::newConnection, this, [this]() {
            QTcpSocket* socket = m_server.nextPendingConnection();
            connect(socket, &QTcpSocket::readyRead, this, [this, socket]() { read(socket); });
        });
    }

    QUrl url() const { return QUrl(s("http://127.0.0.1:%1/update").arg(m_server.serverPort())); }
    const QByteArray& request() const { return m_request; }
    QByteArray header(const QByteArray& name) const
    {
        for (const QByteArray& line : m_request.split('\n')) {
            if (line.toLower().startsWith(name.toLower() + ':'))
                return line.mid(name.size() + 1).trimmed();
        }
        return {};
    }
    QByteArray requestBody() const { return m_request.mid(m_request.indexOf("\r\n\r\n") + 4); }

private:
    void read(QTcpSocket* socket)
    {
        m_request += socket->readAll();
        const qsizetype end = m_request.indexOf("\r\n\r\n");
        if (end < 0 || requestBody().size() < header("Content-Length").toInt())
            return;
        if (m_mode == Mode::Silent)
            return;
        const QByteArray status = m_mode == Mode::Status500 ? "500 Internal Server Error" : "200 OK";
        socket->write("HTTP/1.1 " + status + "\r\nContent-Type: text/plain\r\nContent-Length: " +
                      QByteArray::number(m_body.size()) + "\r\nConnection: close\r\n\r\n" + m_body);
        socket->disconnectFromHost();
    }

    QTcpServer m_server;
    Mode m_mode;
    QByteArray m_body;
    QByteArray m_request;
};

const QString kUpToDate = s("Corvanta Update | Corvanta is up to date.");

} // namespace

class tst_UpdateChecker : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void replies_data();
    void replies();
    void requestIsFormEncoded();
    void transportErrorReadsAsUpToDate();
    void downloadIsOffered();
};

void tst_UpdateChecker::replies_data()
{
    QTest::addColumn<int>("mode");
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<QString>("shown");

    const int reply = int(LocalServer::Mode::Reply);
    QTest::newRow("a new version")
        << reply << QByteArray("ok|2.0 (7)|Faster reports.")
        << s("Corvanta Update | A new version of 2.0 (7) is available.\nFaster "
             "reports.\n\nPlease download the new version and replace it with old one.");
    QTest::newRow("two parts") << reply << QByteArray("ok|2.0") << kUpToDate;
    QTest::newRow("four parts") << reply << QByteArray("ok|2.0|notes|more") << kUpToDate;
    QTest::newRow("not ok") << reply << QByteArray("no|2.0|notes") << kUpToDate;
    QTest::newRow("empty reply") << reply << QByteArray() << kUpToDate;
    QTest::newRow("mark-up stays text") << reply << QByteArray("ok|<b>3.0</b>|<a href=\"x\">notes</a>\n")
                                        << s("Corvanta Update | A new version of <b>3.0</b> is "
                                             "available.\n<a href=\"x\">notes</a>\n\n\nPlease "
                                             "download the new version and replace it with old one.");
    QTest::newRow("control characters are dropped")
        << reply << QByteArray("ok|3.0\x1b[31m|line\r\ntwo")
        << s("Corvanta Update | A new version of 3.0[31m is available.\nline\ntwo\n\nPlease download the new "
             "version and replace it with old one.");
    QTest::newRow("binary") << reply << QByteArray("ok|\x00\x01|\xff\xfe", 8) << kUpToDate;
    QTest::newRow("not UTF-8") << reply << QByteArray("ok|2.0|caf\xe9") << kUpToDate;
    QTest::newRow("oversized") << reply << QByteArray("ok|2.0|") + QByteArray(300 * 1024, 'x') << kUpToDate;
    QTest::newRow("server error") << int(LocalServer::Mode::Status500) << QByteArray("ok|2.0|notes")
                                  << kUpToDate;
    QTest::newRow("slow server") << int(LocalServer::Mode::Silent) << QByteArray() << kUpToDate;
}

void tst_UpdateChecker::replies()
{
    QFETCH(int, mode);
    QFETCH(QByteArray, body);
    QFETCH(QString, shown);
    LocalServer server(LocalServer::Mode(mode), body);
    ScriptedPrompter prompter;
    prompter.addAnswer(s("Cancel"));
    UpdateChecker checker(prompter, server.url(), std::chrono::milliseconds(500));
    QElapsedTimer clock;
    clock.start();
    QCOMPARE(checker.update(), std::nullopt);
    QVERIFY(clock.elapsed() < 5000);
    QCOMPARE(prompter.questions().size(), 1);
    const ScriptedPrompter::Question& asked = prompter.questions().first();
    QCOMPARE(asked.title + s(" | ") + asked.text, shown);
    QCOMPARE(asked.buttons,
             shown == kUpToDate ? QStringList{s("OK")} : (QStringList{s("Download"), s("Cancel")}));
}

void tst_UpdateChecker::requestIsFormEncoded()
{
    LocalServer server(LocalServer::Mode::Reply, "ok|2.0|x");
    ScriptedPrompter prompter;
    UpdateChecker checker(prompter, server.url());
    const UpdateChecker::Reply reply = checker.post(s("1.4.2"), s("88"));
    QVERIFY(reply.error.isNull());
    QCOMPARE(reply.result, s("ok|2.0|x"));
    QVERIFY(server.request().startsWith("POST /update HTTP/1.1\r\n"));
    QCOMPARE(server.header("Content-Type"), QByteArray("application/x-www-form-urlencoded"));
    QCOMPARE(server.requestBody(), QByteArray("version=1.4.2+%2888%29"));
    QCOMPARE(server.header("Content-Length"), QByteArray::number(server.requestBody().size()));
    QCOMPARE(UpdateChecker::newVersion(reply), std::make_optional(std::make_pair(s("2.0"), s("x"))));
}

void tst_UpdateChecker::transportErrorReadsAsUpToDate()
{
    quint16 port = 0;
    {
        QTcpServer closed;
        QVERIFY(closed.listen(QHostAddress::LocalHost, 0));
        port = closed.serverPort();
    }
    ScriptedPrompter prompter;
    UpdateChecker checker(prompter, QUrl(s("http://127.0.0.1:%1/update").arg(port)),
                          std::chrono::milliseconds(2000));
    const UpdateChecker::Reply reply = checker.post(s("1.0"), s("1"));
    QVERIFY(!reply.error.isEmpty());
    QCOMPARE(UpdateChecker::newVersion(reply), std::nullopt);
    QCOMPARE(checker.update(), std::nullopt);
    QCOMPARE(prompter.questions().first().title + s(" | ") + prompter.questions().first().text, kUpToDate);
}

void tst_UpdateChecker::downloadIsOffered()
{
    LocalServer server(LocalServer::Mode::Reply, "ok|9.9|Everything is new.");
    ScriptedPrompter prompter;
    prompter.addAnswer(s("Download"));
    UpdateChecker checker(prompter, server.url());
    QCOMPARE(checker.update(), std::make_optional(UpdateChecker::defaultDownloadPage()));
    QVERIFY(UpdateChecker::defaultDownloadPage().isValid());
}

QTEST_GUILESS_MAIN(tst_UpdateChecker)
#include "tst_updatechecker.moc"
