#include "templatefilewriter.h"

#include "newelement.h"
#include "store/record.h"
#include "store/valueconversion.h"
#include "support/propertylist.h"
#include "support/zipreader.h"
#include "support/zipwriter.h"
#include "workingelements.h"

#include <QDir>
#include <QFileInfo>

namespace corvanta::templates {

using store::AttributeType;
using store::Record;

namespace {

const QString kElementsKey = QStringLiteral("template_elements");

// The stored attributes of a record as plain property-list values. Missing values are left out
// (a property list has no null); colours become data holding the store's RGBA text.
QVariantMap attributesOf(const Record* record)
{
    QVariantMap values;
    for (const store::AttributeDescription& attribute : record->entity().attributes()) {
        if (attribute.transient)
            continue;
        const QVariant value = record->value(attribute.name);
        if (value.isNull() || !value.isValid())
            continue;
        if (attribute.type == AttributeType::Colour)
            values.insert(attribute.name,
                          store::valueconversion::toSql(AttributeType::Colour, value).toString().toUtf8());
        else
            values.insert(attribute.name, value);
    }
    return values;
}

// The archive's folder: the template's name, made into one safe path part.
QString folderName(const QVariantMap& dictionary)
{
    QString name = dictionary.value(QStringLiteral("name")).toString().trimmed();
    name.replace(QLatin1Char('/'), QLatin1Char('_')).replace(QLatin1Char('\\'), QLatin1Char('_'));
    name.remove(QChar(0)).remove(QLatin1Char(':'));
    if (!support::ZipReader::isSafeName(name))
        return QStringLiteral("template");
    return name;
}

} // namespace

QVariantMap TemplateFileWriter::dictionaryOf(Record* templateRecord)
{
    QVariantMap dictionary = attributesOf(templateRecord);
    QVariantList elements;
    for (const Record* element : templateElements(templateRecord))
        elements.append(attributesOf(element));
    dictionary.insert(kElementsKey, elements);
    return dictionary;
}

bool TemplateFileWriter::write(const QVariantMap& dictionary, const QMap<QString, QString>& pictures,
                               const QString& path, QString* error)
{
    const QString folder = folderName(dictionary) + QLatin1Char('/');
    support::ZipWriter zip;
    if (!zip.open(path, error))
        return false;
    if (!zip.addData(folder + kElementsKey, support::PropertyList::toXml(dictionary), error)) {
        zip.discard();
        return false;
    }
    for (auto it = pictures.cbegin(); it != pictures.cend(); ++it) {
        if (it.key().contains(QLatin1Char('/')) || !support::ZipReader::isSafeName(it.key())) {
            if (error)
                *error = tr("The picture name \"%1\" is not allowed.").arg(it.key());
            zip.discard();
            return false;
        }
        if (!QFileInfo(it.value()).isFile()) {
            if (error)
                *error = tr("The picture \"%1\" cannot be found.").arg(QDir::toNativeSeparators(it.value()));
            zip.discard();
            return false;
        }
        if (!zip.addFile(folder + it.key(), it.value(), error)) {
            zip.discard();
            return false;
        }
    }
    return zip.close(error);
}

bool TemplateFileWriter::write(Record* templateRecord, const QString& templateFilesDirectory,
                               const QString& path, QString* error)
{
    const QVariantMap dictionary = dictionaryOf(templateRecord);
    QMap<QString, QString> pictures;
    for (const QVariant& element : dictionary.value(kElementsKey).toList()) {
        const QVariantMap values = element.toMap();
        const QString picture = values.value(QStringLiteral("format")).toString();
        if (values.value(QStringLiteral("type")).toString() == QLatin1String(NewElement::kImage) &&
            !picture.isEmpty())
            pictures.insert(picture, QDir(templateFilesDirectory).filePath(picture));
    }
    return write(dictionary, pictures, path, error);
}

} // namespace corvanta::templates
