#include "templatefilecheck.h"

#include "newelement.h"
#include "store/entitydescription.h"
#include "store/valueconversion.h"
#include "templatetypes.h"

#include <QBuffer>
#include <QColor>
#include <QImageReader>
#include <QXmlStreamReader>
#include <cmath>

namespace corvanta::templates {

using store::AttributeType;

namespace {

const QString kPlistPublicId = QStringLiteral("-//Apple//DTD PLIST 1.0//EN");
const QString kPlistSystemId = QStringLiteral("http://www.apple.com/DTDs/PropertyList-1.0.dtd");

bool isInteger(const QVariant& value)
{
    switch (value.typeId()) {
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
        return true;
    default:
        return false;
    }
}

bool isFiniteReal(const QVariant& value)
{
    return value.typeId() == QMetaType::Double && std::isfinite(value.toDouble());
}

bool isColour(const QVariant& value)
{
    QString text;
    if (value.typeId() == QMetaType::QString)
        text = value.toString();
    else if (value.typeId() == QMetaType::QByteArray)
        text = QString::fromUtf8(value.toByteArray());
    else
        return false;
    return store::valueconversion::toMemory(AttributeType::Colour, text).value<QColor>().isValid();
}

bool fitsType(AttributeType type, const QVariant& value)
{
    switch (type) {
    case AttributeType::String:
        return value.typeId() == QMetaType::QString;
    case AttributeType::Integer:
        // Some writers keep whole numbers as reals.
        return isInteger(value) || (isFiniteReal(value) && std::trunc(value.toDouble()) == value.toDouble());
    case AttributeType::Decimal:
        return isInteger(value) || isFiniteReal(value);
    case AttributeType::Boolean:
        return value.typeId() == QMetaType::Bool ||
               (isInteger(value) && (value.toLongLong() == 0 || value.toLongLong() == 1));
    case AttributeType::Colour:
        return isColour(value);
    case AttributeType::Date:
        return value.typeId() == QMetaType::QDateTime || isFiniteReal(value) || isInteger(value);
    case AttributeType::Image:
        return value.typeId() == QMetaType::QByteArray;
    case AttributeType::Variant:
    case AttributeType::IntegerSet:
        return value.typeId() != QMetaType::QVariantList && value.typeId() != QMetaType::QVariantMap;
    }
    return false;
}

} // namespace

QString TemplateFileCheck::compression(const QString& entry, qint64 size, qint64 compressedSize)
{
    if (size < kRatioCheckedFrom || size <= kMaxCompressionRatio * std::max<qint64>(compressedSize, 1))
        return {};
    return tr("Its entry \"%1\" is packed too densely.").arg(entry);
}

QString TemplateFileCheck::documentType(const QByteArray& propertyList)
{
    if (propertyList.startsWith("bplist"))
        return {};
    QXmlStreamReader reader(propertyList);
    while (!reader.atEnd()) {
        const QXmlStreamReader::TokenType token = reader.readNext();
        if (token == QXmlStreamReader::StartElement)
            break;
        if (token != QXmlStreamReader::DTD)
            continue;
        if (!reader.entityDeclarations().isEmpty() || !reader.notationDeclarations().isEmpty() ||
            reader.text().contains(QLatin1Char('[')))
            return tr("Its \"template_elements\" declares its own document type.");
        if (reader.dtdName() != QLatin1String("plist") || reader.dtdPublicId() != kPlistPublicId ||
            reader.dtdSystemId() != kPlistSystemId)
            return tr("Its \"template_elements\" has a document type other than a property list's.");
    }
    // What is not well-formed is left to the property-list reader to name.
    return {};
}

QString TemplateFileCheck::valueTypes(const store::EntityDescription& entity, const QVariantMap& values)
{
    for (const store::AttributeDescription& attribute : entity.attributes()) {
        if (attribute.transient || !values.contains(attribute.name))
            continue;
        if (!fitsType(attribute.type, values.value(attribute.name)))
            return tr("The value of \"%1\" is of the wrong kind.").arg(attribute.name);
    }
    return {};
}

QString TemplateFileCheck::templateValues(const QVariantMap& values)
{
    if (!TemplateTypes::isValid(values.value(QStringLiteral("type")).toLongLong()))
        return tr("It is of no known template type.");
    return {};
}

QString TemplateFileCheck::elementValues(const QVariantMap& values)
{
    if (!NewElement::isKnownType(values.value(QStringLiteral("type")).toString()))
        return tr("One of its elements is of no known kind.");
    const QVariant side = values.value(QStringLiteral("page_side"));
    if (side.isValid() && (side.toLongLong() < 0 || side.toLongLong() > 2))
        return tr("One of its elements is on no known page side.");
    return {};
}

QString TemplateFileCheck::picture(const QString& name, const QByteArray& data)
{
    QBuffer buffer;
    buffer.setData(data);
    buffer.open(QIODevice::ReadOnly);
    QImageReader reader(&buffer);
    reader.setDecideFormatFromContent(true);
    const QByteArray format = reader.canRead() ? reader.format().toLower() : QByteArray();
    if (format.isEmpty() || format.startsWith("svg"))
        return tr("The picture \"%1\" is not a picture.").arg(name);
    const QSize size = reader.size();
    if (size.isValid() && qint64(size.width()) * size.height() > kMaxPicturePixels)
        return tr("The picture \"%1\" is too large.").arg(name);
    if (reader.read().isNull())
        return tr("The picture \"%1\" is not a picture.").arg(name);
    return {};
}

} // namespace corvanta::templates
