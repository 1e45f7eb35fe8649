#pragma once

#include <QCoreApplication>
#include <QNetworkAccessManager>
#include <QUrl>
#include <chrono>
#include <optional>

namespace corvanta::support {
class Prompter;
}

namespace corvanta::app {

// Asks the maker's update endpoint whether a newer version exists: an HTTP POST of
// "version=<version> (<build>)", form-encoded, waited for with a time limit. A reply
// "ok|<version>|<notes>" announces a new version; anything else, a failed request included,
// reads as up to date. The reply is only ever shown as plain text.
class UpdateChecker
{
    Q_DECLARE_TR_FUNCTIONS(UpdateChecker)

public:
    // Replies larger than this are not read to the end and count as failed.
    static constexpr qint64 kMaxReplySize = 64 * 1024;
    static constexpr std::chrono::milliseconds kDefaultTimeout{15000};

    struct Reply
    {
        QString result; // the reply body as text
        QString error;  // the transport error; null when there was none
    };

    // The endpoint and download page set when the program was built.
    static QUrl defaultEndpoint();
    static QUrl defaultDownloadPage();

    explicit UpdateChecker(support::Prompter& prompter, const QUrl& endpoint = defaultEndpoint(),
                           std::chrono::milliseconds timeout = kDefaultTimeout);

    // Sends the request and waits for the reply (or the time limit).
    Reply post(const QString& version, const QString& build);
    // The new version and its notes when the reply announces one.
    static std::optional<std::pair<QString, QString>> newVersion(const Reply& reply);

    // Checks with this program's version and build and tells the user. Returns the download
    // page when the user chose "Download", for the front end to open.
    std::optional<QUrl> update();

private:
    support::Prompter& m_prompter;
    QUrl m_endpoint;
    std::chrono::milliseconds m_timeout;
    QNetworkAccessManager m_network;
};

} // namespace corvanta::app
