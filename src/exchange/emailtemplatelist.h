#pragma once

#include <QCoreApplication>
#include <QList>
#include <QString>
#include <QStringList>

namespace corvanta::store {
class EditingContext;
class Record;
} // namespace corvanta::store
namespace corvanta::support {
class Prompter;
}

namespace corvanta::exchange {

// The list of e-mail templates as its window offers it: new, duplicate, delete with its guard
// and question, the company's default, renaming and editing, and the placeholders inserted into
// a body. Every change is saved at once; a save the database refuses is forgotten and told to
// the user.
class EmailTemplateList
{
    Q_DECLARE_TR_FUNCTIONS(EmailTemplateList)

public:
    EmailTemplateList(store::EditingContext& context, support::Prompter& prompter);

    // By name, localized and ignoring case.
    QList<store::Record*> templates() const;
    // The templates with exactly this name.
    QList<store::Record*> named(const QString& name) const;
    store::Record* defaultTemplate() const;
    bool isDefault(const store::Record* emailTemplate) const;

    // A new template named " New ".
    store::Record* addRow();
    // A copy of the subject and body named "<name> Copy".
    store::Record* duplicateRow(store::Record* emailTemplate);
    // Deletes a template after asking; the default template is refused. False when it stays.
    bool deleteRow(store::Record* emailTemplate);
    // Makes the template the company's default.
    bool defaultChanged(store::Record* emailTemplate);
    bool rename(store::Record* emailTemplate, const QString& name);
    bool setSubject(store::Record* emailTemplate, const QString& subject);
    bool setBody(store::Record* emailTemplate, const QString& body);

    // A body with a placeholder inserted, and the insertion point after it.
    struct Insertion
    {
        QString body;
        qsizetype position = 0;
    };
    // Inserts the placeholder at `index` of EmailPlaceholders::all() (the menu's order) at
    // `position` of `body` (kept within the body). An unknown index changes nothing.
    static Insertion insertFormula(const QString& body, qsizetype position, int index);

private:
    bool save();

    store::EditingContext& m_context;
    support::Prompter& m_prompter;
};

} // namespace corvanta::exchange
