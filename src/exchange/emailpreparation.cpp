#include "emailpreparation.h"

#include "emailattachment.h"
#include "emailhandover.h"
#include "emailplaceholders.h"
#include "emailrecipient.h"
#include "model/companyrecord.h"
#include "store/editingcontext.h"

namespace corvanta::exchange {

namespace {

QString s(const char* text)
{
    return QString::fromLatin1(text);
}

} // namespace

EmailPreparation::EmailPreparation(store::Record* selected, documents::Clock clock)
    : m_selected(selected)
    , m_clock(std::move(clock))
    , m_toEmail(EmailRecipient::toEmail(selected))
{
    emailTemplatesChanged(
        model::CompanyRecord::defaultRecord(*selected->context(), s("default_email_template")));
}

QList<store::Record*> EmailPreparation::templates() const
{
    return m_selected->context()->fetch(
        store::FetchRequest(s("EmailTemplates"), {}, {store::SortDescriptor::localized(s("name"))}));
}

void EmailPreparation::emailTemplatesChanged(store::Record* emailTemplate)
{
    m_template = emailTemplate;
    if (!emailTemplate) {
        m_subject.clear();
        m_body.clear();
        return;
    }
    const store::Record* company = model::CompanyRecord::of(*m_selected->context());
    m_subject = emailTemplate->value(s("subject")).toString();
    m_body = EmailPlaceholders::replaced(
        emailTemplate->value(s("body")).toString(), EmailRecipient::clientName(m_selected),
        company ? company->value(s("name")).toString() : QString(), m_clock());
}

bool EmailPreparation::offersAttachment() const
{
    return EmailRecipient::isDocument(m_selected);
}

QString EmailPreparation::attachmentLabel() const
{
    return offersAttachment() ? m_selected->value(s("number_formatted")).toString() : QString();
}

bool EmailPreparation::continueSending(const EmailHandOver& handOver, const QString& tempFilesDirectory,
                                       const QString& templateFilesDirectory, QString* error)
{
    m_attachmentPath.clear();
    // A recipient that is refused anyway needs no PDF.
    if (const QString refusal = EmailHandOver::recipientRefusal(m_toEmail); !refusal.isEmpty()) {
        *error = refusal;
        return false;
    }
    if (attaches()) {
        m_attachmentPath = EmailAttachment(tempFilesDirectory, templateFilesDirectory)
                               .write(m_selected, nullptr, m_clock(), error);
        if (m_attachmentPath.isEmpty())
            return false;
    }
    return handOver.sendEmailTo(m_toEmail, m_subject, m_body, m_attachmentPath, error);
}

bool EmailPreparation::sendEmailWithoutPrepare(store::Record* document, store::Record* templateRecord,
                                               const EmailHandOver& handOver,
                                               const QString& tempFilesDirectory,
                                               const QString& templateFilesDirectory, const QDateTime& now,
                                               QString* attachmentPath, QString* error)
{
    const QString path = EmailAttachment(tempFilesDirectory, templateFilesDirectory)
                             .write(document, templateRecord, now, error);
    if (attachmentPath)
        *attachmentPath = path;
    if (path.isEmpty())
        return false;
    return handOver.sendEmailTo(EmailRecipient::noEmail(), QString(), QString(), path, error);
}

} // namespace corvanta::exchange
