#pragma once

#include "predicate/recordref.h"

#include <QList>
#include <QObject>
#include <QString>

namespace corvanta::store {
class EditingContext;
class Store;
} // namespace corvanta::store
namespace corvanta::support {
class Prompter;
}

namespace corvanta::browse {

// The lists of a context menu that come from the store: the design templates of the selected
// document's type and the user tags of the list's kind, each checked when the selected record
// uses it, and what choosing one does. Changes are saved at once from a context of their own.
class RecordMenus : public QObject
{
    Q_OBJECT

public:
    struct Choice
    {
        predicate::RecordRef record;
        QString title;
        bool checked = false;
    };

    RecordMenus(store::Store& store, support::Prompter& prompter, QObject* parent = nullptr);

    // The templates of the document's type by name; the document's own is checked.
    QList<Choice> designTemplates(const predicate::RecordRef& document);
    // Prints the document with `designTemplate` from now on. False when the template is not
    // one of the document's type or the save failed.
    bool setDesignTemplate(const predicate::RecordRef& document, const predicate::RecordRef& designTemplate);

    // The user's tags of the selected record's kind (the program's own categories left out) by
    // name; those the record carries are checked.
    QList<Choice> tags(const predicate::RecordRef& selected);
    // A tag the first selected record carries is taken off every selected record, any other is
    // put on each. Only a user tag of the records' kind is accepted; no other category of a
    // record changes. False when refused or the save failed.
    bool toggleTag(const predicate::RecordRef& tag, const QList<predicate::RecordRef>& selection);

private:
    bool save(store::EditingContext& context);

    store::Store& m_store;
    support::Prompter& m_prompter;
};

} // namespace corvanta::browse
