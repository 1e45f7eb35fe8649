#pragma once

#include <QCoreApplication>
#include <QList>
#include <QString>

namespace corvanta::store {
class EditingContext;
class Record;
} // namespace corvanta::store

namespace corvanta::cli {

// Finds the one record a command names: a client by its full name, an item, tax, unit or payment
// type by its name, a currency by its code, a document by its number or identifier. Names are
// matched exactly, as the editors match typed names. None or several matches give a message that
// says which, with the names that come close.
class RecordLookup
{
    Q_DECLARE_TR_FUNCTIONS(RecordLookup)

public:
    enum class Kind { Client, Item, Tax, Unit, PaymentType, Currency };

    explicit RecordLookup(store::EditingContext& context)
        : m_context(context)
    {}

    // The one record of `kind` with that name; null with `error` set otherwise.
    store::Record* find(Kind kind, const QString& name, QString* error);
    // The one document whose `number_formatted` or `identifier` is `key`.
    store::Record* document(const QString& key, QString* error);
    // The one design template whose `identifier`, or else whose `name`, is `key`.
    store::Record* designTemplate(const QString& key, QString* error);
    // The one to-do whose `identifier`, or else whose `title`, is `key`; a title that several
    // to-dos share is refused with their identifiers and starts.
    store::Record* todo(const QString& key, QString* error);

private:
    // The records of `entity` whose identifier is `key`, or else those whose `nameKey` is, in
    // `order` when given.
    QList<store::Record*> byIdentifierOrName(const char* entity, const char* nameKey, const QString& key,
                                             const char* order = nullptr);

    store::EditingContext& m_context;
};

} // namespace corvanta::cli
