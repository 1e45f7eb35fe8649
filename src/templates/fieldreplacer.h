#pragma once

#include <QString>
#include <QStringList>
#include <QVariant>

namespace corvanta::store {
class EntityDescription;
class Record;
} // namespace corvanta::store

namespace corvanta::templates {

// Replaces field references ("@" + key) in an element's text by a record's values, formatted by
// the type the entity declares for the key.
class FieldReplacer
{
public:
    // Walks every attribute of `entity` except `skippedKeys`.
    explicit FieldReplacer(const store::EntityDescription& entity, const QStringList& skippedKeys = {});

    // Every attribute reference of `text` replaced by `record`'s value, amounts in `currency`.
    // Longer keys are replaced first, so that a key which begins another (`note` and
    // `note_header`) never cuts the longer reference apart.
    QString replaced(const QString& text, const store::Record& record, const store::Record* currency) const;

    // Every "@" + `key` of `text` replaced by `value` formatted by the attribute's type:
    // a string as it stands ("" for none); a decimal with `formattedNumber` for "quantity" and
    // "stock", as an amount in `currency` for every other key; a date in the locale's short date
    // style. Any other type, and a decimal or date without a value, leave the reference as it is.
    static QString replacedText(const store::EntityDescription& entity, const QString& key,
                                const QString& text, const QVariant& value, const store::Record* currency);

    // A quantity: never grouped, up to six fraction digits, the locale's decimal separator.
    static QString formattedNumber(double number, const store::Record* currency);
    // A date (or date and time) in the short date style of the user's locale; "" for none.
    static QString shortDate(const QVariant& value);

private:
    struct Key
    {
        QString name;
        QString token; // "@" + name
    };

    const store::EntityDescription& m_entity;
    QList<Key> m_keys; // longest first
};

} // namespace corvanta::templates
