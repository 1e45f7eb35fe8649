#include "referencelisteditor.h"

#include "format/numberformatter.h"
#include "format/numberinput.h"
#include "model/companyrecord.h"
#include "predicate/literal.h"
#include "store/editingcontext.h"
#include "store/store.h"
#include "support/prompter.h"

#include <QDebug>

namespace corvanta::editors {

using model::CompanyRecord;

using store::Record;

ReferenceListEditor::ReferenceListEditor(ReferenceListType type, store::EditingContext& context,
                                         support::Prompter& prompter, QObject* parent)
    : QObject(parent)
    , m_list(type)
    , m_context(context)
    , m_prompter(prompter)
{
    connect(&context.store(), &store::Store::didSave, this, &ReferenceListEditor::storeDidSave);
    // The main context announces its own saves and merges alike; another context announces a
    // merge only, and its own saves by didSave.
    connect(&context, &store::EditingContext::objectsDidChange, this, &ReferenceListEditor::contextDidChange);
    if (!context.isMain())
        connect(&context, &store::EditingContext::didSave, this, &ReferenceListEditor::contextDidChange);
}

QList<Record*> ReferenceListEditor::records() const
{
    const store::SortDescriptor order = m_list.type() == ReferenceListType::Currencies
                                            ? store::SortDescriptor{m_list.sortKey()}
                                            : store::SortDescriptor::localized(m_list.sortKey());
    return m_context.fetch(store::FetchRequest(m_list.entity(), {}, {order}));
}

Record* ReferenceListEditor::defaultRecord() const
{
    return CompanyRecord::defaultRecord(m_context, m_list.companyKey());
}

Record* ReferenceListEditor::defaultCurrency() const
{
    return CompanyRecord::defaultRecord(m_context, QStringLiteral("default_currency"));
}

bool ReferenceListEditor::belongsToList(const Record* record) const
{
    return record && record->context() == &m_context && !record->isDeleted() &&
           record->entityName() == m_list.entity();
}

void ReferenceListEditor::refuse(const QString& title, const QString& text)
{
    m_prompter.alert(title, text, {tr("OK")});
}

Record* ReferenceListEditor::add()
{
    if (!m_list.canAddAndDelete())
        return nullptr;
    Record* record = m_context.insertRecord(m_list.entity(), {{m_list.namingKey(), tr(" New ")}});
    return commit() ? record : nullptr;
}

Record* ReferenceListEditor::duplicate(const QList<Record*>& selection)
{
    if (!m_list.canAddAndDelete() || selection.isEmpty() || !belongsToList(selection.first()))
        return nullptr;
    const Record* original = selection.first();
    QVariantMap values;
    for (const store::AttributeDescription& attribute : original->entity().attributes()) {
        if (!attribute.transient)
            values.insert(attribute.name, original->value(attribute.name));
    }
    values.insert(m_list.namingKey(), tr("%1 Copy").arg(original->value(m_list.namingKey()).toString()));
    Record* copy = m_context.insertRecord(m_list.entity(), values);
    return commit() ? copy : nullptr;
}

bool ReferenceListEditor::remove(Record* record)
{
    if (!m_list.canAddAndDelete() || !belongsToList(record))
        return false;
    if (!m_list.inUseEntity().isEmpty()) {
        const predicate::Predicate inUse =
            predicate::literal(m_list.inUsePredicate(), {QVariant::fromValue(record->ref())});
        store::StoreError error;
        const int count = m_context.count(store::FetchRequest(m_list.inUseEntity(), inUse), &error);
        if (count < 0) {
            // Without a count the record may be in use: it stays.
            refuse(m_list.deleteRefusedTitle(), error.message());
            return false;
        }
        if (count != 0) {
            refuse(m_list.deleteRefusedTitle(), m_list.inUseText(count));
            return false;
        }
    }
    if (record == defaultRecord()) {
        refuse(m_list.deleteRefusedTitle(), m_list.defaultText());
        return false;
    }
    m_context.deleteRecord(record);
    return commit();
}

bool ReferenceListEditor::setDefault(Record* record)
{
    Record* company = CompanyRecord::of(m_context);
    if (!company || !belongsToList(record))
        return false;
    company->setRelated(m_list.companyKey(), record);
    return commit();
}

std::optional<QVariant> ReferenceListEditor::acceptedValue(const Record* record, const QString& key,
                                                           const QVariant& value)
{
    const store::AttributeDescription* attribute = record->entity().attribute(key);
    if (!attribute || attribute->transient)
        return std::nullopt;
    const bool decimal = attribute->type == store::AttributeType::Decimal;
    const bool integer = attribute->type == store::AttributeType::Integer;
    if ((!decimal && !integer) || value.isNull())
        return value;

    QString error;
    if (value.typeId() == QMetaType::QString) {
        const QString text = value.toString().trimmed();
        if (decimal) {
            QVariant number;
            if (format::NumberFormatter(defaultCurrency()).getObjectValue(&number, text, &error))
                return number;
        } else {
            bool ok = false;
            const qint64 number = text.toLongLong(&ok);
            if (ok || text.isEmpty())
                return text.isEmpty() ? QVariant() : QVariant(number);
            error = format::NumberInput::notANumberMessage(text);
        }
    } else if (format::NumberInput::finiteNumber(value, &error)) {
        return value;
    }
    refuse(format::NumberInput::alertTitle(), error);
    return std::nullopt;
}

bool ReferenceListEditor::setValue(Record* record, const QString& key, const QVariant& value)
{
    if (!belongsToList(record))
        return false;
    const std::optional<QVariant> accepted = acceptedValue(record, key, value);
    if (!accepted)
        return false;
    record->setValue(key, *accepted);
    return commit();
}

bool ReferenceListEditor::commit()
{
    for (Record* record : records()) {
        if (record->hasChanges() && record->value(m_list.namingKey()).toString().isEmpty())
            record->setValue(m_list.namingKey(), QStringLiteral("-"));
    }
    if (!m_context.hasChanges())
        return true;
    store::StoreError error;
    if (!m_context.save(&error)) {
        m_context.rollback();
        refuse(tr("The change could not be saved"), error.message());
        Q_EMIT listChanged();
        return false;
    }
    Q_EMIT committed();
    return true;
}

void ReferenceListEditor::storeDidSave(const store::ChangeSet& changes, store::EditingContext* origin)
{
    if (origin != &m_context && !m_context.automaticallyMergesChanges())
        m_context.mergeChanges(changes);
}

void ReferenceListEditor::contextDidChange(const store::ChangeSet& changes)
{
    // Currencies count for every list: the default currency's format shows its numbers.
    if (changes.touches(m_list.entity()) || changes.touches(QStringLiteral("MyCompany")) ||
        changes.touches(QStringLiteral("Currencies")))
        Q_EMIT listChanged();
}

} // namespace corvanta::editors
