#include "templatelibrary.h"

#include "documents/savefailure.h"
#include "elementtransformers.h"
#include "model/companyrecord.h"
#include "newelement.h"
#include "predicate/literal.h"
#include "store/editingcontext.h"
#include "support/prompter.h"
#include "support/uuid.h"
#include "templatefileloader.h"
#include "templatefilewriter.h"
#include "templatepage.h"
#include "templateslog.h"
#include "templatetypes.h"
#include "workingelements.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>

namespace corvanta::templates {

using store::FetchRequest;
using store::Record;

namespace {

const QString kTemplates = QStringLiteral("Templates");
const QString kElements = QStringLiteral("TemplateElements");

bool isDocumentType(int type)
{
    return TemplateTypes::isValid(type) && !TemplateTypes::isReportTemplate(type);
}

bool isPicture(const Record* element)
{
    return element->value(QStringLiteral("type")).toString() == QLatin1String(NewElement::kImage) &&
           !element->value(QStringLiteral("format")).toString().isEmpty();
}

// A new record of the same entity holding every stored attribute value of `source`.
Record* copyOf(store::EditingContext& context, const Record* source)
{
    Record* copy = context.insertRecord(source->entityName());
    for (const store::AttributeDescription& attribute : source->entity().attributes()) {
        if (!attribute.transient)
            copy->setValue(attribute.name, source->value(attribute.name));
    }
    copy->setValue(QStringLiteral("identifier"), support::UUID());
    return copy;
}

} // namespace

TemplateLibrary::TemplateLibrary(store::EditingContext& context, support::Prompter& prompter,
                                 const QString& templateFilesDirectory)
    : m_context(context)
    , m_prompter(prompter)
    , m_templateFilesDirectory(templateFilesDirectory)
{}

QList<Record*> TemplateLibrary::templates()
{
    return m_context.fetch(FetchRequest(
        kTemplates, {},
        {{QStringLiteral("type"), true}, store::SortDescriptor::localized(QStringLiteral("name"))}));
}

bool TemplateLibrary::save()
{
    return documents::SaveFailure::save(m_context, m_prompter);
}

Record* TemplateLibrary::addRow(int type)
{
    if (!TemplateTypes::isValid(type))
        return nullptr;
    const QString heights = TemplatePage::defaultHeights(type);
    Record* templ =
        m_context.insertRecord(kTemplates, {{QStringLiteral("name"), tr(" New ")},
                                            {QStringLiteral("type"), type},
                                            {QStringLiteral("identifier"), support::UUID()},
                                            {QStringLiteral("sections_height_first"), heights},
                                            {QStringLiteral("sections_height_following"), heights},
                                            // Centimetres, with room on the left for filing.
                                            {QStringLiteral("unit"), 0},
                                            {QStringLiteral("margin_left"), 2.0},
                                            {QStringLiteral("margin_top"), 1.0},
                                            {QStringLiteral("margin_right"), 1.5},
                                            {QStringLiteral("margin_bottom"), 1.0},
                                            {QStringLiteral("show_grid"), true},
                                            {QStringLiteral("grid_spacing"), 10.0},
                                            // The zoom level 1.0.
                                            {QStringLiteral("zoom"), 2}});
    return save() ? templ : nullptr;
}

bool TemplateLibrary::rename(Record* templ, const QString& name)
{
    templ->setValue(QStringLiteral("name"), name);
    return save();
}

Record* TemplateLibrary::duplicateRow(Record* templ, int tag)
{
    if (tag != kPlainCopy && !isDocumentType(tag))
        return nullptr;
    if (tag >= 0 && TemplateTypes::isReportTemplate(templ->value(QStringLiteral("type")).toLongLong())) {
        m_prompter.alert(tr("Report templates cannot be duplicated"),
                         tr("Report templates cannot be duplicated as document types."), {tr("OK")});
        return nullptr;
    }

    Record* copy = copyOf(m_context, templ);
    copy->setValue(QStringLiteral("name"),
                   tr("%1 Copy").arg(templ->value(QStringLiteral("name")).toString()));
    if (tag >= 0)
        copy->setValue(QStringLiteral("type"), tag);

    const QDir folder(m_templateFilesDirectory);
    QStringList copiedPictures;
    for (const Record* element : templateElements(templ)) {
        Record* elementCopy = copyOf(m_context, element);
        elementCopy->setRelated(QStringLiteral("template"), copy);
        if (!isPicture(element))
            continue;
        const QString source = element->value(QStringLiteral("format")).toString();
        const QString suffix = QFileInfo(source).suffix();
        const QString identifier = elementCopy->value(QStringLiteral("identifier")).toString();
        const QString name = suffix.isEmpty() ? identifier : identifier + QLatin1Char('.') + suffix;
        if (source.contains(QLatin1Char('/')) ||
            !QFile::copy(folder.filePath(source), folder.filePath(name))) {
            m_context.rollback();
            removePictures(copiedPictures);
            m_prompter.alert(tr("Design Template cannot be duplicated"),
                             tr("The picture \"%1\" cannot be copied.").arg(source), {tr("OK")});
            return nullptr;
        }
        copiedPictures << name;
        elementCopy->setValue(QStringLiteral("format"), name);
    }
    if (!save()) {
        removePictures(copiedPictures);
        return nullptr;
    }
    return copy;
}

QString TemplateLibrary::deleteRefusal(Record* templ)
{
    const QVariant self = QVariant::fromValue(templ->ref());
    const int documents = m_context.count(
        FetchRequest(QStringLiteral("Documents"), predicate::literal("template == %@", {self})));
    if (documents > 0)
        return tr("The chosen design template cannot be deleted, because it is in use in %1 document(s).")
            .arg(documents);
    const int sameType = m_context.count(
        FetchRequest(kTemplates, predicate::literal("type == %@", {templ->value(QStringLiteral("type"))})));
    if (sameType <= 1)
        return tr("The chosen design template cannot be deleted. At least one design template is required "
                  "from this type.");
    if (DefaultTemplateValueTransformer::isDefaultOfAnyType(templ))
        return tr("The chosen design template cannot be deleted, because it is a default design template.");
    return {};
}

bool TemplateLibrary::deleteRow(Record* templ)
{
    const QString refusal = deleteRefusal(templ);
    if (!refusal.isEmpty()) {
        m_prompter.alert(tr("Design Template cannot be deleted"), refusal, {tr("OK")});
        return false;
    }
    const QStringList pictures = pictureNames(templ);
    m_context.deleteRecord(templ);
    // The pictures go once the records are gone for certain.
    if (!save())
        return false;
    removePictures(pictures);
    return true;
}

bool TemplateLibrary::defaultChanged(Record* templ)
{
    Record* company = model::CompanyRecord::of(m_context);
    const QString key = TemplateTypes::defaultTemplateKey(templ->value(QStringLiteral("type")).toLongLong());
    if (!company || key.isEmpty())
        return false;
    company->setRelated(key, templ);
    return save();
}

bool TemplateLibrary::isDefault(Record* templ) const
{
    return DefaultTemplateValueTransformer::transformedValue(templ);
}

QString TemplateLibrary::exportFileName(const QString& templateName)
{
    QString name = templateName;
    name.replace(QLatin1Char('/'), QLatin1Char('_')).replace(QChar(0), QLatin1Char('_'));
    return name + QStringLiteral(".corvanta");
}

QString TemplateLibrary::exportTemplate(Record* templ, const QString& folder)
{
    const QString fileName = exportFileName(templ->value(QStringLiteral("name")).toString());
    const QString path = QDir(folder).filePath(fileName);
    QString error;
    if (!TemplateFileWriter::write(templ, m_templateFilesDirectory, path, &error)) {
        m_prompter.alert(tr("Design Template export failed"), error, {tr("OK")});
        return {};
    }
    const QString desktop = QStandardPaths::writableLocation(QStandardPaths::DesktopLocation);
    const bool toDesktop = QFileInfo(folder).canonicalFilePath() == QFileInfo(desktop).canonicalFilePath();
    m_prompter.alert(tr("Design Template export completed successfully"),
                     toDesktop
                         ? tr("The \"%1\" file has been exported successfully to the desktop.").arg(fileName)
                         : tr("The \"%1\" file has been exported successfully to the folder \"%2\".")
                               .arg(fileName, QDir::toNativeSeparators(folder)),
                     {tr("OK")});
    return path;
}

QList<Record*> TemplateLibrary::importFiles(const QStringList& files)
{
    QList<Record*> imported;
    TemplateFileLoader loader(m_context, m_templateFilesDirectory);
    for (const QString& file : files) {
        QString error;
        Record* templ = loader.load(file, &error);
        if (!templ) {
            qCWarning(lcTemplates) << file << "is not imported:" << error;
            m_prompter.alert(tr("Unsuccessful Import"), tr("The file format is wrong."), {tr("OK")});
            return imported;
        }
        templ->setValue(QStringLiteral("name"),
                        tr("Import %1").arg(templ->value(QStringLiteral("name")).toString()));
        const QStringList pictures = pictureNames(templ);
        if (!save()) {
            removePictures(pictures);
            return imported;
        }
        imported << templ;
    }
    if (!imported.isEmpty())
        m_prompter.alert(tr("Import successfully"), tr("Design Template(s) import completed successfully."),
                         {tr("OK")});
    return imported;
}

QStringList TemplateLibrary::pictureNames(Record* templ) const
{
    QStringList names;
    for (const Record* element : templ->relatedList(QStringLiteral("template_elements"))) {
        if (isPicture(element))
            names << element->value(QStringLiteral("format")).toString();
    }
    return names;
}

void TemplateLibrary::removePictures(const QStringList& names) const
{
    const QDir folder(m_templateFilesDirectory);
    for (const QString& name : names) {
        // Only a file of the folder itself, whatever a stored name says.
        if (!name.contains(QLatin1Char('/')) && name != QLatin1String("..") && name != QLatin1String("."))
            QFile::remove(folder.filePath(name));
    }
}

} // namespace corvanta::templates
