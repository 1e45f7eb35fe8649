#include "referencelisteditor.h"

#include "companyrecord.h"
#include "format/numberformatter.h"
#include "format/numberinput.h"
#include "model/editingcontext.h"
#include "model/prompter.h"
#include "model/store.h"
#include "predicate/parser.h"

#include <QDebug>

namespace corvanta::documents {

using model::Record;

ReferenceListEditor::ReferenceListEditor(ReferenceListType type, model::EditingContext& context,
                                         model::Prompter& prompter, QObject* parent)
    : QObject(parent)
    , m_list(type)
    , m_context(context)
    , m_prompter(prompter)
{
    connect(&context.store(), &model::Store::didSave, this, &ReferenceListEditor::storeDidSave);
    // The main context announces its own saves and merges alike; another context announces a
    // merge only, and its own saves by didSave.
    connect(&context, &model::EditingContext::objectsDidChange, this, &ReferenceListEditor::contextDidChange);
    if (!context.isMain())
        connect(&context, &model::EditingContext::didSave, this, &ReferenceListEditor::contextDidChange);
}

QList<Record*> ReferenceListEditor::records() const
{
    const model::SortDescriptor order = m_list.type() == ReferenceListType::Currencies
                                            ? model::SortDescriptor{m_list.sortKey()}
                                            : model::SortDescriptor::localized(m_list.sortKey());
    return m_context.fetch(model::FetchRequest(m_list.entity(), {}, {order}));
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
    for (const model::AttributeDescription& attribute : original->entity().attributes()) {
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
        predicate::ParseError parseError;
        const std::optional<predicate::Predicate> inUse = predicate::Parser::parse(
            m_list.inUsePredicate(), {QVariant::fromValue(record->ref())}, &parseError);
        model::StoreError error;
        const int count =
            inUse ? m_context.count(model::FetchRequest(m_list.inUseEntity(), *inUse), &error) : -1;
        if (count < 0) {
            // Without a count the record may be in use: it stays.
            qWarning() << "ReferenceListEditor: cannot count the uses of" << record->entityName()
                       << parseError.message() << error.message();
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
    const model::AttributeDescription* attribute = record->entity().attribute(key);
    if (!attribute || attribute->transient)
        return std::nullopt;
    const bool decimal = attribute->type == model::AttributeType::Decimal;
    const bool integer = attribute->type == model::AttributeType::Integer;
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
    model::StoreError error;
    if (!m_context.save(&error)) {
        m_context.rollback();
        refuse(tr("The change could not be saved"), error.message());
        Q_EMIT listChanged();
        return false;
    }
    Q_EMIT committed();
    return true;
}

void ReferenceListEditor::storeDidSave(const model::ChangeSet& changes, model::EditingContext* origin)
{
    if (origin != &m_context && !m_context.automaticallyMergesChanges())
        m_context.mergeChanges(changes);
}

void ReferenceListEditor::contextDidChange(const model::ChangeSet& changes)
{
    // Currencies count for every list: the default currency's format shows its numbers.
    if (changes.touches(m_list.entity()) || changes.touches(QStringLiteral("MyCompany")) ||
        changes.touches(QStringLiteral("Currencies")))
        Q_EMIT listChanged();
}

} // namespace corvanta::documents
