#pragma once

#include "referencelist.h"

#include <QObject>
#include <QVariant>
#include <optional>

namespace corvanta::store {
class ChangeSet;
class EditingContext;
class Record;
} // namespace corvanta::store
namespace corvanta::support {
class Prompter;
}

namespace corvanta::editors {

// The editing of one reference list (taxes, banks, due days, payment types, units, currencies)
// as its window offers it: add, duplicate, delete with its guards, choose the company's default,
// and edit a field. Every change is committed at once: records of the list whose naming field
// was emptied are named "-", the context is saved (so that the store announces the change and
// open editors merge it), and listChanged() tells the list's views.
//
// The editor works in the context it is given, normally a context of its own; saves of other
// contexts are merged into it. It asks the user through the prompter.
class ReferenceListEditor : public QObject
{
    Q_OBJECT

public:
    ReferenceListEditor(ReferenceListType type, store::EditingContext& context, support::Prompter& prompter,
                        QObject* parent = nullptr);

    const ReferenceList& list() const { return m_list; }
    store::EditingContext& context() const { return m_context; }

    // The records of the list in their shown order (by the naming field; currencies by code).
    QList<store::Record*> records() const;
    // The company's default of this list, or null.
    store::Record* defaultRecord() const;
    // The company's default currency, whose format the number columns use.
    store::Record* defaultCurrency() const;

    // A new record named " New ", to be selected and opened for editing; null for the
    // currencies, which are not added here.
    store::Record* add();
    // A copy of every attribute of the first selected record, named "<name> Copy"; null (and
    // nothing happens) without a selection.
    store::Record* duplicate(const QList<store::Record*>& selection);
    // Deletes the record unless it is in use or is the company's default; a refusal is told to
    // the user with the list's title, text and "OK", and the record stays.
    bool remove(store::Record* record);
    // Makes the record the company's default of this list.
    bool setDefault(store::Record* record);
    // Sets an attribute of a record of the list. Numbers must be finite; text for a number
    // attribute is read with the entry-field formatter of the default currency. Anything else
    // is refused with a message to the user.
    bool setValue(store::Record* record, const QString& key, const QVariant& value);

Q_SIGNALS:
    // The records of the list, their order or the company's default may have changed.
    void listChanged();
    // A change of this editor was saved.
    void committed();

private:
    bool commit();
    bool belongsToList(const store::Record* record) const;
    void refuse(const QString& title, const QString& text);
    std::optional<QVariant> acceptedValue(const store::Record* record, const QString& key,
                                          const QVariant& value);
    void storeDidSave(const store::ChangeSet& changes, store::EditingContext* origin);
    void contextDidChange(const store::ChangeSet& changes);

    ReferenceList m_list;
    store::EditingContext& m_context;
    support::Prompter& m_prompter;
};

} // namespace corvanta::editors
