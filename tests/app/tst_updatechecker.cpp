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

// A real HTTP server on 127.0.0.1 that answers every request with `status` and `body`, or not
// at all when the status is empty.
class LocalServer : public QObject
{
public:
    LocalServer(const QByteArray& status, const QByteArray& body)
    {
        QVERIFY(m_server.listen(QHostAddress::LocalHost, 0));
        connect(&m_server, &QTcpServer::newConnection, this, [this, status, body]() {
            QTcpSocket* socket = m_server.nextPendingConnection();
            connect(socket, &QTcpSocket::readyRead, this, [this, socket, status, body]() {
                m_request += socket->readAll();
                if (!m_request.contains("\r\n\r\n") ||
                    requestBody().size() < header("Content-Length").toInt() || status.isEmpty())
                    return;
                socket->write("HTTP/1.1 " + status + "\r\nContent-Type: text/plain\r\nContent-Length: " +
                              QByteArray::number(body.size()) + "\r\nConnection: close\r\n\r\n" + body);
                socket->disconnectFromHost();
            });
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
    QTcpServer m_server;
    QByteArray m_request;
};

const QString kUpToDate = s("Corvanta Update | Corvanta is up to date.");

QString announcement(const char* version, const char* notes)
{
    return s("Corvanta Update | A new version of %1 is available.\n%2\n\nPlease download the new version and "
             "replace it with old one.")
        .arg(s(version), s(notes));
}

} // namespace

class tst_UpdateChecker : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void replies_data();
    void replies();
};

// The request is this program's version, form-encoded. Whatever the server answers, the user
// sees plain text, and only an announcement offers the download.
void tst_UpdateChecker::replies_data()
{
    QTest::addColumn<QByteArray>("status"); // empty: the server never answers
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<QString>("shown");
    const QByteArray ok = "200 OK";
    QTest::newRow("a new version") << ok << QByteArray("ok|2.0 (7)|Faster reports.")
                                   << announcement("2.0 (7)", "Faster reports.");
    QTest::newRow("wrong shape") << ok << QByteArray("ok|2.0|notes|more") << kUpToDate;
    QTest::newRow("mark-up stays text") << ok << QByteArray("ok|<b>3.0</b>|<a href=\"x\">notes</a>\n")
                                        << announcement("<b>3.0</b>", "<a href=\"x\">notes</a>\n");
    QTest::newRow("control characters are dropped")
        << ok << QByteArray("ok|3.0\x1b[31m|line\r\ntwo") << announcement("3.0[31m", "line\ntwo");
    QTest::newRow("NUL bytes") << ok << QByteArray("ok|2.0|a\x00b", 10) << kUpToDate;
    QTest::newRow("not UTF-8") << ok << QByteArray("ok|2.0|caf\xe9") << kUpToDate;
    QTest::newRow("oversized") << ok << QByteArray("ok|2.0|") + QByteArray(300 * 1024, 'x') << kUpToDate;
    QTest::newRow("server error") << QByteArray("500 Internal Server Error") << QByteArray("ok|2.0|notes")
                                  << kUpToDate;
    QTest::newRow("slow server") << QByteArray() << QByteArray() << kUpToDate;
}

void tst_UpdateChecker::replies()
{
    QFETCH(QByteArray, status);
    QFETCH(QByteArray, body);
    QFETCH(QString, shown);
    LocalServer server(status, body);
    ScriptedPrompter prompter;
    prompter.addAnswer(s("Download"));
    UpdateChecker checker(prompter, server.url(), std::chrono::milliseconds(500));
    QElapsedTimer clock;
    clock.start();
    const std::optional<QUrl> download = checker.update();
    QVERIFY(clock.elapsed() < 5000);
    QCOMPARE(prompter.questions().size(), 1);
    const ScriptedPrompter::Question& asked = prompter.questions().first();
    QCOMPARE(asked.title + s(" | ") + asked.text, shown);
    QVERIFY(server.request().startsWith("POST /update HTTP/1.1\r\n"));
    QCOMPARE(server.header("Content-Type"), QByteArray("application/x-www-form-urlencoded"));
    const QByteArray sent = server.requestBody(); // "<version> (<build>)"
    QVERIFY2(sent.startsWith("version=" CORVANTA_VERSION "+%28") && sent.endsWith("%29"), sent.constData());
    QCOMPARE(server.header("Content-Length"), QByteArray::number(server.requestBody().size()));
    const bool offered = shown != kUpToDate;
    QCOMPARE(asked.buttons, offered ? (QStringList{s("Download"), s("Cancel")}) : QStringList{s("OK")});
    QCOMPARE(download, offered ? std::make_optional(UpdateChecker::defaultDownloadPage()) : std::nullopt);
}

QTEST_GUILESS_MAIN(tst_UpdateChecker)
#include "tst_updatechecker.moc"
