#pragma once

#include "documents/clock.h"

#include <QList>
#include <QString>

namespace corvanta::store {
class Record;
}

namespace corvanta::exchange {

class EmailHandOver;

// The preparation of one e-mail about a client or a document: the recipient, the e-mail
// templates with the company's default chosen first, the subject and body of the chosen
// template, for a document whether its PDF goes along, and the sending.
class EmailPreparation
{
public:
    // `selected` is a client or a document; its context gives the templates and the company.
    explicit EmailPreparation(store::Record* selected, documents::Clock clock = documents::systemClock());

    store::Record* selected() const { return m_selected; }
    const QString& toEmail() const { return m_toEmail; }
    void setToEmail(const QString& to) { m_toEmail = to; }

    // The e-mail templates by name, localized and ignoring case.
    QList<store::Record*> templates() const;
    store::Record* selectedTemplate() const { return m_template; }
    // Chooses a template: its subject as stored, its body with the placeholders replaced. Null
    // empties both.
    void emailTemplatesChanged(store::Record* emailTemplate);

    const QString& subject() const { return m_subject; }
    void setSubject(const QString& subject) { m_subject = subject; }
    const QString& body() const { return m_body; }
    void setBody(const QString& body) { m_body = body; }

    // Only a document is offered as an attachment, labelled with its number; attached unless
    // the user chooses otherwise.
    bool offersAttachment() const;
    QString attachmentLabel() const;
    bool attaches() const { return offersAttachment() && m_attach; }
    void setAttaches(bool attach) { m_attach = attach; }

    // Makes the attachment when it is asked for, then hands the e-mail over. False with `error`
    // set when the PDF cannot be made (nothing is handed over then) or the hand-over fails.
    bool continueSending(const EmailHandOver& handOver, const QString& tempFilesDirectory,
                         const QString& templateFilesDirectory, QString* error);
    // The PDF the last sending attached; empty without one.
    const QString& attachmentPath() const { return m_attachmentPath; }

    // Renders a document with `templateRecord` and hands it over at once, to "No Email" with an
    // empty subject and body, for the user to fill in the mail program. `attachmentPath` gets the
    // PDF's path.
    static bool sendEmailWithoutPrepare(store::Record* document, store::Record* templateRecord,
                                        const EmailHandOver& handOver, const QString& tempFilesDirectory,
                                        const QString& templateFilesDirectory, const QDateTime& now,
                                        QString* attachmentPath, QString* error);

private:
    store::Record* m_selected;
    documents::Clock m_clock;
    QString m_toEmail;
    store::Record* m_template = nullptr;
    QString m_subject;
    QString m_body;
    bool m_attach = true;
    QString m_attachmentPath;
};

} // namespace corvanta::exchange
