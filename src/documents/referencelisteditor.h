#pragma once

#include "referencelist.h"

#include <QObject>
#include <QVariant>
#include <optional>

namespace corvanta::model {
class ChangeSet;
class EditingContext;
class Prompter;
class Record;
} // namespace corvanta::model

namespace corvanta::documents {

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
    ReferenceListEditor(ReferenceListType type, model::EditingContext& context, model::Prompter& prompter,
                        QObject* parent = nullptr);

    const ReferenceList& list() const { return m_list; }
    model::EditingContext& context() const { return m_context; }

    // The records of the list in their shown order (by the naming field; currencies by code).
    QList<model::Record*> records() const;
    // The company's default of this list, or null.
    model::Record* defaultRecord() const;
    // The company's default currency, whose format the number columns use.
    model::Record* defaultCurrency() const;

    // A new record named " New ", to be selected and opened for editing; null for the
    // currencies, which are not added here.
    model::Record* add();
    // A copy of every attribute of the first selected record, named "<name> Copy"; null (and
    // nothing happens) without a selection.
    model::Record* duplicate(const QList<model::Record*>& selection);
    // Deletes the record unless it is in use or is the company's default; a refusal is told to
    // the user with the list's title, text and "OK", and the record stays.
    bool remove(model::Record* record);
    // Makes the record the company's default of this list.
    bool setDefault(model::Record* record);
    // Sets an attribute of a record of the list. Numbers must be finite; text for a number
    // attribute is read with the entry-field formatter of the default currency. Anything else
    // is refused with a message to the user.
    bool setValue(model::Record* record, const QString& key, const QVariant& value);

Q_SIGNALS:
    // The records of the list, their order or the company's default may have changed.
    void listChanged();
    // A change of this editor was saved.
    void committed();

private:
    bool commit();
    bool belongsToList(const model::Record* record) const;
    void refuse(const QString& title, const QString& text);
    std::optional<QVariant> acceptedValue(const model::Record* record, const QString& key,
                                          const QVariant& value);
    void storeDidSave(const model::ChangeSet& changes, model::EditingContext* origin);
    void contextDidChange(const model::ChangeSet& changes);

    ReferenceList m_list;
    model::EditingContext& m_context;
    model::Prompter& m_prompter;
};

} // namespace corvanta::documents
