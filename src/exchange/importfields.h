#pragma once

#include <QCoreApplication>
#include <QList>
#include <QStringList>

namespace corvanta::store {
class EditingContext;
}

namespace corvanta::exchange {

// The compose pop-up of an import window: the record fields a column can be mapped to, each
// ticked on or off. The ticked fields, in the pop-up's order, take the file's columns in order.
class ImportFields
{
    Q_DECLARE_TR_FUNCTIONS(ImportFields)

public:
    struct Field
    {
        QString key;   // the attribute (custom fields with their "client_" or "item_" prefix)
        QString title; // as the pop-up shows it
        bool ticked = false;
    };

    // A column of the header table laid over the preview.
    struct HeaderColumn
    {
        QString identifier; // "column%ld" with the field's index in the pop-up
        QString key;
        QString title;
    };

    // The client fields: names, tax number, description, e-mail addresses and phones, the address
    // keys and the client custom fields that are not hidden. Company name is ticked.
    static ImportFields clients(store::EditingContext& context);
    // The item fields: name, code, description, unit price, the price levels and the item
    // custom fields that are not hidden. Name is ticked.
    static ImportFields items(store::EditingContext& context);

    const QList<Field>& fields() const { return m_fields; }
    QStringList keys() const;

    // Toggles the tick of the field at `index` in the pop-up, as choosing it does.
    void toggle(qsizetype index);

    // The client type changed: a company type (index 0 or 1) ticks the company name and unticks
    // first and last name; a person (above 1) the other way round.
    void clientTypeChanged(int typeIndex);

    // The ticked fields in pop-up order.
    QList<HeaderColumn> header() const;
    QStringList tickedKeys() const;

    // Whether a key names a field of the client's address rather than of the client.
    static bool isAddressKey(const QString& key);
    static const QStringList& addressKeys();
    // The attribute a field's value is stored under: a custom field's key without its "client_"
    // or "item_" prefix, any other key as it is.
    static QString attributeKey(const QString& key);

private:
    void setTicked(const QString& key, bool ticked);

    QList<Field> m_fields;
};

} // namespace corvanta::exchange
