#pragma once

#include <QCoreApplication>
#include <QProcess>
#include <QString>
#include <QStringList>

namespace corvanta::exchange {

// Hands a prepared e-mail to the desktop's mail program through xdg-email, which opens a new
// message for the user to check and send. xdg-email is started with an argument list, never
// through a shell, and builds the message's mailto link from its options itself.
//
// xdg-email takes no sender: the message goes out from the account the mail program chooses,
// never from the own company's address.
class EmailHandOver
{
    Q_DECLARE_TR_FUNCTIONS(EmailHandOver)

public:
    static constexpr int kDefaultGracePeriodMs = 10000;

    // `program` is looked up on the PATH when an e-mail is handed over.
    explicit EmailHandOver(const QString& program = QStringLiteral("xdg-email"),
                           int gracePeriodMs = kDefaultGracePeriodMs);

    // Hands the e-mail over. A recipient that could become an option or a field of the link is
    // refused before anything starts; a hand-over that cannot start or ends with an error within
    // the grace period is logged. False with `error` set in either case. xdg-email may run the
    // mail program itself in the foreground (a mail program that was not running yet stays in
    // front until the user closes it): one still running after the grace period has opened the
    // message, counts as handed over and is left running, its later failure only logged. An empty
    // `attachmentPath` attaches nothing.
    bool sendEmailTo(const QString& to, const QString& subject, const QString& body,
                     const QString& attachmentPath, QString* error) const;

    // Why a recipient is refused (naming it), or empty when it may be handed over.
    static QString recipientRefusal(const QString& to);
    // xdg-email's arguments: the body followed by three line breaks; an empty subject or body is
    // left out, as xdg-email takes no empty value.
    static QStringList arguments(const QString& to, const QString& subject, const QString& body,
                                 const QString& attachmentPath);

private:
    bool failed(const QString& message, QString* error) const;
    // Why a finished xdg-email failed, or empty when it did its work.
    static QString finishedFailure(QProcess& process);

    QString m_program;
    int m_gracePeriodMs;
};

} // namespace corvanta::exchange
