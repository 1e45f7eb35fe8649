#include "recordjson.h"

#include "documents/documenttypes.h"
#include "documentstatus.h"
#include "model/documentrowsrecord.h"
#include "store/record.h"

#include <QColor>
#include <QDateTime>
#include <QJsonArray>
#include <algorithm>

namespace corvanta::cli {

using store::AttributeType;
using store::Record;

namespace {

QString s(const char* key)
{
    return QString::fromLatin1(key);
}

QJsonValue jsonValue(const QVariant& value, AttributeType type)
{
    if (value.isNull() || !value.isValid())
        return QJsonValue::Null;
    switch (type) {
    case AttributeType::String:
        return value.toString();
    case AttributeType::Integer:
        return value.toLongLong();
    case AttributeType::Decimal:
        return value.toDouble();
    case AttributeType::Boolean:
        return value.toBool();
    case AttributeType::Date: {
        const QDateTime local = value.toDateTime().toLocalTime();
        return local.toOffsetFromUtc(local.offsetFromUtc()).toString(Qt::ISODate);
    }
    case AttributeType::Colour:
        return value.value<QColor>().name(QColor::HexArgb);
    case AttributeType::Image:
        return QJsonValue::Null;
    case AttributeType::Variant:
    case AttributeType::IntegerSet:
        return QJsonValue::fromVariant(value);
    }
    return QJsonValue::Null;
}

// The linked record's name under `nameKey`, or null without a link.
QJsonValue linkName(const Record* record, const char* link, const char* nameKey)
{
    const Record* target = record->related(s(link));
    return target ? jsonValue(target->value(s(nameKey)), AttributeType::String)
                  : QJsonValue(QJsonValue::Null);
}

// Summaries by their `order`, payments and deliveries by their `date`; equal ones as stored.
QList<Record*> sortedBy(QList<Record*> records, const char* key)
{
    std::stable_sort(records.begin(), records.end(), [key](const Record* a, const Record* b) {
        const QVariant left = a->value(s(key));
        const QVariant right = b->value(s(key));
        if (left.typeId() == QMetaType::QDateTime || right.typeId() == QMetaType::QDateTime)
            return left.toDateTime() < right.toDateTime();
        return left.toLongLong() < right.toLongLong();
    });
    return records;
}

} // namespace

QJsonObject RecordJson::attributes(const Record* record)
{
    QJsonObject object;
    for (const store::AttributeDescription& attribute : record->entity().attributes())
        object.insert(attribute.name, jsonValue(record->value(attribute.name), attribute.type));
    return object;
}

QJsonObject RecordJson::document(const Record* document)
{
    QJsonObject object = attributes(document);
    const qint64 type = document->value(s("type")).toLongLong();
    object.insert(s("type_name"), documents::DocumentTypes::isValid(type)
                                      ? QJsonValue(documents::DocumentTypes::typeNameByNumber(type))
                                      : QJsonValue(QJsonValue::Null));
    object.insert(s("status"), DocumentStatus::of(document));
    object.insert(s("client"), linkName(document, "client", "full_name"));
    object.insert(s("currency"), linkName(document, "currency", "code"));
    object.insert(s("default_currency"), linkName(document, "default_currency", "code"));
    object.insert(s("payment_type"), linkName(document, "payment_type", "name"));
    object.insert(s("bank"), linkName(document, "bank", "line1"));
    object.insert(s("template"), linkName(document, "template", "name"));
    object.insert(s("cancel_reference"), linkName(document, "cancel_reference", "number_formatted"));

    QJsonArray rows;
    for (const Record* row : model::DocumentRowsRecord::displayOrder(document)) {
        QJsonObject rowObject = attributes(row);
        rowObject.insert(s("item"), linkName(row, "item", "name"));
        rowObject.insert(s("tax"), linkName(row, "tax", "name"));
        rowObject.insert(s("unit"), linkName(row, "unit", "name"));
        rows << rowObject;
    }
    object.insert(s("rows"), rows);

    QJsonArray summaries;
    for (const Record* summary : sortedBy(document->relatedList(s("summaries")), "order"))
        summaries << attributes(summary);
    object.insert(s("summaries"), summaries);

    QJsonArray payments;
    for (const Record* payment : sortedBy(document->relatedList(s("payments")), "date")) {
        QJsonObject paymentObject = attributes(payment);
        paymentObject.insert(s("payment"), linkName(payment, "payment", "name"));
        payments << paymentObject;
    }
    object.insert(s("payments"), payments);
    return object;
}

QJsonObject RecordJson::client(const Record* client)
{
    QJsonObject object = attributes(client);
    const auto owned = [&](const char* list) {
        QJsonArray array;
        for (const Record* record : client->relatedList(s(list)))
            array << attributes(record);
        return array;
    };
    object.insert(s("addresses"), owned("addresses"));
    object.insert(s("contacts"), owned("contacts"));
    object.insert(s("default_payment_type"), linkName(client, "default_payment_type", "name"));
    object.insert(s("default_bank"), linkName(client, "default_bank", "line1"));
    object.insert(s("default_due_day"), linkName(client, "default_due_day", "name"));
    return object;
}

QJsonObject RecordJson::item(const Record* item)
{
    QJsonObject object = attributes(item);
    object.insert(s("unit"), linkName(item, "unit", "name"));
    object.insert(s("tax"), linkName(item, "tax", "name"));
    QJsonArray deliveries;
    for (const Record* delivery : sortedBy(item->relatedList(s("warehouse")), "date")) {
        QJsonObject deliveryObject = attributes(delivery);
        deliveryObject.insert(s("client"), linkName(delivery, "client", "full_name"));
        deliveries << deliveryObject;
    }
    object.insert(s("warehouse"), deliveries);
    return object;
}

} // namespace corvanta::cli
