#include "updatechecker.h"

#include "applog.h"
#include "support/prompter.h"

#include <QEventLoop>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QStringDecoder>
#include <QTimer>

namespace corvanta::app {

namespace {

// What may be shown of a reply: its text without control characters (line breaks and tabs
// stay), no longer than `limit` characters.
QString shownText(const QString& text, qsizetype limit)
{
    QString shown;
    for (const QChar c : text) {
        if (c == QLatin1Char('\n') || c == QLatin1Char('\t') ||
            (c.category() != QChar::Other_Control && c.category() != QChar::Other_Format))
            shown.append(c);
    }
    if (shown.size() > limit)
        shown = shown.left(limit) + QChar(0x2026);
    return shown;
}

} // namespace

QUrl UpdateChecker::defaultEndpoint()
{
    return QUrl(QStringLiteral(CORVANTA_UPDATE_URL));
}

QUrl UpdateChecker::defaultDownloadPage()
{
    return QUrl(QStringLiteral(CORVANTA_DOWNLOAD_URL));
}

UpdateChecker::UpdateChecker(support::Prompter& prompter, const QUrl& endpoint,
                             std::chrono::milliseconds timeout)
    : m_prompter(prompter)
    , m_endpoint(endpoint)
    , m_timeout(timeout)
{}

UpdateChecker::Reply UpdateChecker::post(const QString& version, const QString& build)
{
    // application/x-www-form-urlencoded: every byte but the unreserved ones escaped, spaces as "+".
    QByteArray value = QUrl::toPercentEncoding(QStringLiteral("%1 (%2)").arg(version, build));
    value.replace("%20", "+");
    const QByteArray body = "version=" + value;

    QNetworkRequest request(m_endpoint);
    request.setHeader(QNetworkRequest::ContentTypeHeader, QByteArray("application/x-www-form-urlencoded"));
    request.setHeader(QNetworkRequest::ContentLengthHeader, body.size());
    request.setTransferTimeout(int(m_timeout.count()));

    QNetworkReply* reply = m_network.post(request, body);
    reply->setReadBufferSize(kMaxReplySize + 1);
    QByteArray received;
    bool tooLarge = false;
    bool timedOut = false;
    const auto readAvailable = [&]() {
        received.append(reply->read(kMaxReplySize + 1 - received.size()));
        if (received.size() > kMaxReplySize && !tooLarge) {
            tooLarge = true;
            reply->abort();
        }
    };
    QEventLoop loop;
    QTimer timer;
    timer.setSingleShot(true);
    QObject::connect(reply, &QNetworkReply::readyRead, &loop, readAvailable);
    QObject::connect(reply, &QNetworkReply::finished, &loop, &QEventLoop::quit);
    QObject::connect(&timer, &QTimer::timeout, &loop, [&]() {
        timedOut = true;
        reply->abort();
    });
    timer.start(m_timeout);
    if (!reply->isFinished())
        loop.exec(QEventLoop::ExcludeUserInputEvents);
    timer.stop();
    if (!tooLarge && !timedOut && reply->isOpen())
        readAvailable();

    Reply result;
    if (timedOut)
        result.error = tr("The update server did not answer in time.");
    else if (tooLarge)
        result.error = tr("The update server's reply is too large.");
    else if (reply->error() != QNetworkReply::NoError)
        result.error = reply->errorString();
    reply->deleteLater();
    if (!result.error.isNull())
        return result;

    QStringDecoder utf8(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    result.result = utf8.decode(received);
    if (utf8.hasError() || received.contains('\0')) {
        result.result.clear();
        result.error = tr("The update server's reply is not text.");
    }
    return result;
}

std::optional<std::pair<QString, QString>> UpdateChecker::newVersion(const Reply& reply)
{
    if (!reply.error.isNull())
        return std::nullopt;
    const QStringList parts = reply.result.split(QLatin1Char('|'));
    if (parts.size() != 3 || parts.at(0) != QLatin1String("ok"))
        return std::nullopt;
    return std::make_pair(parts.at(1), parts.at(2));
}

std::optional<QUrl> UpdateChecker::update()
{
    const Reply reply = post(QStringLiteral(CORVANTA_VERSION), QStringLiteral(CORVANTA_BUILD_NUMBER));
    if (!reply.error.isNull())
        qCInfo(lcApp, "Update check: %s", qPrintable(reply.error));
    const auto found = newVersion(reply);
    if (!found) {
        m_prompter.alert(tr("Corvanta Update"), tr("Corvanta is up to date."), {tr("OK")});
        return std::nullopt;
    }
    const QString text = tr("A new version of %1 is available.\n%2\n\nPlease download the new version and "
                            "replace it with old one.")
                             .arg(shownText(found->first, 100), shownText(found->second, 2000));
    if (m_prompter.alert(tr("Corvanta Update"), text, {tr("Download"), tr("Cancel")}) != tr("Download"))
        return std::nullopt;
    return defaultDownloadPage();
}

} // namespace corvanta::app
