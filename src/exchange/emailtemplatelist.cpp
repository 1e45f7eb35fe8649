#include "emailtemplatelist.h"

#include "documents/savefailure.h"
#include "emailplaceholders.h"
#include "model/companyrecord.h"
#include "predicate/literal.h"
#include "store/editingcontext.h"
#include "support/prompter.h"

#include <algorithm>

namespace corvanta::exchange {

using store::Record;

namespace {

QString s(const char* text)
{
    return QString::fromLatin1(text);
}

} // namespace

EmailTemplateList::EmailTemplateList(store::EditingContext& context, support::Prompter& prompter)
    : m_context(context)
    , m_prompter(prompter)
{}

QList<Record*> EmailTemplateList::templates() const
{
    return m_context.fetch(
        store::FetchRequest(s("EmailTemplates"), {}, {store::SortDescriptor::localized(s("name"))}));
}

QList<Record*> EmailTemplateList::named(const QString& name) const
{
    return m_context.fetch(
        store::FetchRequest(s("EmailTemplates"), predicate::literal("name == %@", {name})));
}

Record* EmailTemplateList::defaultTemplate() const
{
    return model::CompanyRecord::defaultRecord(m_context, s("default_email_template"));
}

bool EmailTemplateList::isDefault(const Record* emailTemplate) const
{
    return emailTemplate && emailTemplate == defaultTemplate();
}

Record* EmailTemplateList::addRow()
{
    Record* made = m_context.insertRecord(s("EmailTemplates"), {{s("name"), tr(" New ")}});
    return save() ? made : nullptr;
}

Record* EmailTemplateList::duplicateRow(Record* emailTemplate)
{
    Record* copy = m_context.insertRecord(
        s("EmailTemplates"), {{s("name"), tr("%1 Copy").arg(emailTemplate->value(s("name")).toString())},
                              {s("subject"), emailTemplate->value(s("subject"))},
                              {s("body"), emailTemplate->value(s("body"))}});
    return save() ? copy : nullptr;
}

bool EmailTemplateList::deleteRow(Record* emailTemplate)
{
    if (isDefault(emailTemplate)) {
        m_prompter.alert(tr("Email Template cannot be deleted"),
                         tr("The chosen email template cannot be deleted, because it is a default email "
                            "template."),
                         {tr("OK")});
        return false;
    }
    const QString confirm = tr("Delete Email Template");
    const QString answer = m_prompter.alert(tr("Are you sure you want to delete the email template \"%1\"?")
                                                .arg(emailTemplate->value(s("name")).toString()),
                                            tr("This action cannot be undone."), {confirm, tr("Cancel")});
    if (answer != confirm)
        return false;
    m_context.deleteRecord(emailTemplate);
    return save();
}

bool EmailTemplateList::defaultChanged(Record* emailTemplate)
{
    Record* company = model::CompanyRecord::of(m_context);
    if (!company)
        return false;
    company->setRelated(s("default_email_template"), emailTemplate);
    return save();
}

bool EmailTemplateList::rename(Record* emailTemplate, const QString& name)
{
    emailTemplate->setValue(s("name"), name);
    return save();
}

bool EmailTemplateList::setSubject(Record* emailTemplate, const QString& subject)
{
    emailTemplate->setValue(s("subject"), subject);
    return save();
}

bool EmailTemplateList::setBody(Record* emailTemplate, const QString& body)
{
    emailTemplate->setValue(s("body"), body);
    return save();
}

EmailTemplateList::Insertion EmailTemplateList::insertFormula(const QString& body, qsizetype position,
                                                              int index)
{
    const QStringList& placeholders = EmailPlaceholders::all();
    const qsizetype at = std::clamp<qsizetype>(position, 0, body.size());
    if (index < 0 || index >= placeholders.size())
        return {body, at};
    const QString& placeholder = placeholders.at(index);
    return {QString(body).insert(at, placeholder), at + placeholder.size()};
}

bool EmailTemplateList::save()
{
    return documents::SaveFailure::save(m_context, m_prompter);
}

} // namespace corvanta::exchange
