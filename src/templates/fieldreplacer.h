#pragma once

#include <QString>
#include <QStringList>
#include <QVariant>
#include <memory>
#include <optional>

namespace corvanta::store {
struct AttributeDescription;
class EntityDescription;
class Record;
} // namespace corvanta::store

namespace corvanta::templates {

// Replaces field references ("@" + key) in an element's text by a record's values, formatted by
// the type the entity declares for the key.
class FieldReplacer
{
public:
    // Walks every attribute of `entity` except `skippedKeys`, writing amounts in `currency`.
    FieldReplacer(const store::EntityDescription& entity, const store::Record* currency,
                  const QStringList& skippedKeys = {});
    ~FieldReplacer();
    FieldReplacer(const FieldReplacer&) = delete;
    FieldReplacer& operator=(const FieldReplacer&) = delete;

    // Every attribute reference of `text` replaced by `record`'s value, as replacedText does key
    // by key with the longer keys first: a key that begins another (`note` of `note_header`)
    // never cuts the longer reference apart. The values put in are not searched again, so a
    // value holding an "@" stays as it is.
    QString replaced(const QString& text, const store::Record& record) const;

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
    struct Writers; // the formatters of one currency

    // The value as the attribute's type writes it; nothing when the reference is to stay.
    static std::optional<QString> formattedValue(const store::AttributeDescription& attribute,
                                                 const QVariant& value, const Writers& writers);

    QList<const store::AttributeDescription*> m_keys; // longest name first
    std::unique_ptr<Writers> m_writers;
};

} // namespace corvanta::templates
