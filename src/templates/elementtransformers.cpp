#include "elementtransformers.h"

#include "model/companyrecord.h"
#include "newelement.h"
#include "store/record.h"
#include "templatetypes.h"

namespace corvanta::templates {

using store::Record;

namespace {

bool isType(const QVariant& type, const char* name)
{
    return type.toString() == QLatin1String(name);
}

} // namespace

QVariant PositionHeightValueTransformer::transformedValue(const QVariant& type) const
{
    return !isType(type, NewElement::kText) && !isType(type, NewElement::kHorizontalLine);
}

QVariant PositionHeightEditableValueTransformer::transformedValue(const QVariant& type) const
{
    // A type cannot be both, so this never fails.
    return !isType(type, NewElement::kText) || !isType(type, NewElement::kHorizontalLine);
}

QVariant PositionWidthValueTransformer::transformedValue(const QVariant& type) const
{
    return !isType(type, NewElement::kVerticalLine);
}

QVariant PositionWidthEditableValueTransformer::transformedValue(const QVariant& type) const
{
    return isType(type, NewElement::kVerticalLine);
}

QVariant MultipleNameValueTransformer::transformedValue(const QVariant& type) const
{
    if (isType(type, NewElement::kHorizontalLine))
        return tr("Horizontal Line");
    if (isType(type, NewElement::kVerticalLine))
        return tr("Vertical Line");
    if (isType(type, NewElement::kImage))
        return tr("Image");
    if (isType(type, NewElement::kBox))
        return tr("Box");
    return tr("Text");
}

QVariant TemplateTypeValueTransformer::transformedValue(const QVariant& type) const
{
    bool isNumber = false;
    const qint64 code = type.toLongLong(&isNumber);
    const QString name = isNumber ? TemplateTypes::displayName(code) : QString();
    return name.isEmpty() ? QVariant() : QVariant(name);
}

QVariant DefaultTemplateValueTransformer::transformedValue(const QVariant& templateRecord) const
{
    if (!templateRecord.canConvert<Record*>())
        return {};
    Record* record = templateRecord.value<Record*>();
    return record ? QVariant(transformedValue(record)) : QVariant();
}

bool DefaultTemplateValueTransformer::transformedValue(Record* templateRecord)
{
    if (!templateRecord || !templateRecord->context())
        return false;
    const Record* company = model::CompanyRecord::of(*templateRecord->context());
    const QString key =
        TemplateTypes::defaultTemplateKey(templateRecord->value(QStringLiteral("type")).toLongLong());
    return company && !key.isEmpty() && company->related(key) == templateRecord;
}

bool DefaultTemplateValueTransformer::isDefaultOfAnyType(Record* templateRecord)
{
    if (!templateRecord || !templateRecord->context())
        return false;
    const Record* company = model::CompanyRecord::of(*templateRecord->context());
    if (!company)
        return false;
    for (const qint64 type : TemplateTypes::all()) {
        if (company->related(TemplateTypes::defaultTemplateKey(type)) == templateRecord)
            return true;
    }
    return false;
}

} // namespace corvanta::templates
