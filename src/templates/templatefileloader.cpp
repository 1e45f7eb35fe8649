#include "templatefileloader.h"

#include "store/editingcontext.h"
#include "store/store.h"
#include "store/valueconversion.h"
#include "support/propertylist.h"
#include "support/uuid.h"
#include "support/zipreader.h"
#include "templatefilecheck.h"

#include <QColor>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <algorithm>

namespace corvanta::templates {

using store::AttributeType;
using store::EntityDescription;
using store::Record;

namespace {

const QString kElementsEntry = QStringLiteral("template_elements");
const QString kImageType = QStringLiteral("shape_image");

// A colour as template files keep it: the store's RGBA text, as a string or as data.
QVariant colourValue(const QVariant& stored)
{
    QString text;
    if (stored.typeId() == QMetaType::QString)
        text = stored.toString();
    else if (stored.typeId() == QMetaType::QByteArray)
        text = QString::fromUtf8(stored.toByteArray());
    else
        return {};
    const QColor colour = store::valueconversion::toMemory(AttributeType::Colour, text).value<QColor>();
    return colour.isValid() ? QVariant(colour) : QVariant();
}

// Sets every stored attribute of the record's entity that the dictionary holds; relationships and
// keys the entity does not know are left alone.
void setAttributes(Record* record, const QVariantMap& values)
{
    for (const store::AttributeDescription& attribute : record->entity().attributes()) {
        if (attribute.transient || !values.contains(attribute.name))
            continue;
        const QVariant value = values.value(attribute.name);
        if (value.typeId() == QMetaType::QVariantList || value.typeId() == QMetaType::QVariantMap)
            continue;
        if (attribute.type == AttributeType::Colour) {
            const QVariant colour = colourValue(value);
            if (colour.isValid())
                record->setValue(attribute.name, colour);
            continue;
        }
        record->setValue(attribute.name, value);
    }
}

} // namespace

TemplateFileLoader::TemplateFileLoader(store::EditingContext& context, const QString& templateFilesDirectory)
    : m_context(context)
    , m_templateFilesDirectory(templateFilesDirectory)
{}

Record* TemplateFileLoader::load(const QString& file, QString* error)
{
    const auto fail = [&](const QString& why) -> Record* {
        if (error)
            *error = why;
        return nullptr;
    };
    const QString wrongFormat = tr("The file format is wrong.");

    support::ZipReader zip(support::ZipReader::Limits{kMaxEntries, kMaxEntrySize, kMaxTotalSize});
    QString why;
    if (!zip.open(file, &why))
        return fail(wrongFormat + QLatin1Char(' ') + why);

    // The archive holds one folder (or, from other writers, the files at its top).
    QString elementsEntry;
    for (const support::ZipReader::Entry& entry : zip.entries()) {
        if (entry.isFolder)
            continue;
        const QString packing = TemplateFileCheck::compression(entry.name, entry.size, entry.compressedSize);
        if (!packing.isEmpty())
            return fail(wrongFormat + QLatin1Char(' ') + packing);
        const QStringList parts = entry.name.split(QLatin1Char('/'));
        if (parts.last() != kElementsEntry || parts.size() > 2)
            continue;
        if (!elementsEntry.isEmpty())
            return fail(wrongFormat + QLatin1Char(' ') + tr("It holds more than one template."));
        elementsEntry = entry.name;
    }
    if (elementsEntry.isEmpty())
        return fail(wrongFormat + QLatin1Char(' ') + tr("It holds no \"template_elements\"."));
    const QString folder = elementsEntry.left(elementsEntry.size() - kElementsEntry.size());

    const std::optional<QByteArray> data = zip.read(elementsEntry, &why);
    if (!data)
        return fail(wrongFormat + QLatin1Char(' ') + why);
    const QString documentType = TemplateFileCheck::documentType(*data);
    if (!documentType.isEmpty())
        return fail(wrongFormat + QLatin1Char(' ') + documentType);
    const QVariant root = support::PropertyList::parse(*data, &why);
    if (!root.isValid())
        return fail(wrongFormat + QLatin1Char(' ') +
                    tr("Its \"template_elements\" cannot be read: %1.").arg(why));
    if (root.typeId() != QMetaType::QVariantMap)
        return fail(wrongFormat + QLatin1Char(' ') + tr("Its \"template_elements\" is not a dictionary."));
    const QVariantMap templateValues = root.toMap();
    const QVariant elementsValue = templateValues.value(kElementsEntry);
    if (elementsValue.isValid() && elementsValue.typeId() != QMetaType::QVariantList)
        return fail(wrongFormat + QLatin1Char(' ') + tr("Its elements are not a list."));

    // Everything is checked before anything is inserted.
    const store::DataModel& model = m_context.store().model();
    QString problem =
        TemplateFileCheck::valueTypes(*model.entity(QStringLiteral("Templates")), templateValues);
    if (problem.isEmpty())
        problem = TemplateFileCheck::templateValues(templateValues);
    if (!problem.isEmpty())
        return fail(wrongFormat + QLatin1Char(' ') + problem);
    QList<QVariantMap> elements;
    for (const QVariant& element : elementsValue.toList()) {
        if (element.typeId() != QMetaType::QVariantMap)
            return fail(wrongFormat + QLatin1Char(' ') + tr("One of its elements is not a dictionary."));
        const QVariantMap values = element.toMap();
        problem = TemplateFileCheck::valueTypes(*model.entity(QStringLiteral("TemplateElements")), values);
        if (problem.isEmpty())
            problem = TemplateFileCheck::elementValues(values);
        if (!problem.isEmpty())
            return fail(wrongFormat + QLatin1Char(' ') + problem);
        if (values.value(QStringLiteral("type")).toString() == kImageType) {
            const QString picture = values.value(QStringLiteral("format")).toString();
            if (picture.isEmpty())
                continue;
            if (picture.contains(QLatin1Char('/')) || !support::ZipReader::isSafeName(picture))
                return fail(wrongFormat + QLatin1Char(' ') +
                            tr("The picture name \"%1\" is not allowed.").arg(picture));
            const bool present =
                std::any_of(zip.entries().cbegin(), zip.entries().cend(),
                            [&](const auto& entry) { return entry.name == folder + picture; });
            if (!present)
                return fail(wrongFormat + QLatin1Char(' ') +
                            tr("The picture \"%1\" is missing.").arg(picture));
            const std::optional<QByteArray> pictureData = zip.read(folder + picture, &why);
            if (!pictureData)
                return fail(wrongFormat + QLatin1Char(' ') + why);
            problem = TemplateFileCheck::picture(picture, *pictureData);
            if (!problem.isEmpty())
                return fail(wrongFormat + QLatin1Char(' ') + problem);
        }
        elements.append(values);
    }

    QList<Record*> inserted;
    QStringList copiedPictures;
    const auto undo = [&](const QString& reason) -> Record* {
        for (auto it = inserted.crbegin(); it != inserted.crend(); ++it)
            m_context.deleteRecord(*it);
        for (const QString& picture : copiedPictures)
            QFile::remove(picture);
        return fail(reason);
    };

    Record* templateRecord = m_context.insertRecord(QStringLiteral("Templates"));
    inserted.append(templateRecord);
    setAttributes(templateRecord, templateValues);
    templateRecord->setValue(QStringLiteral("identifier"), support::UUID());

    for (const QVariantMap& values : elements) {
        Record* element = m_context.insertRecord(QStringLiteral("TemplateElements"));
        inserted.append(element);
        setAttributes(element, values);
        const QString identifier = support::UUID();
        element->setValue(QStringLiteral("identifier"), identifier);
        element->setRelated(QStringLiteral("template"), templateRecord);

        const QString picture = values.value(QStringLiteral("format")).toString();
        if (values.value(QStringLiteral("type")).toString() != kImageType || picture.isEmpty())
            continue;
        if (!QDir().mkpath(m_templateFilesDirectory))
            return undo(tr("The folder \"%1\" cannot be created.").arg(m_templateFilesDirectory));
        const QString suffix = QFileInfo(picture).suffix();
        const QString name = suffix.isEmpty() ? identifier : identifier + QLatin1Char('.') + suffix;
        const QString target = QDir(m_templateFilesDirectory).filePath(name);
        if (!zip.extract(folder + picture, target, &why))
            return undo(why);
        copiedPictures.append(target);
        element->setValue(QStringLiteral("format"), name);
    }
    return templateRecord;
}

} // namespace corvanta::templates
