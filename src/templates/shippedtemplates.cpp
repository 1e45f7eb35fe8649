#include "shippedtemplates.h"

#include "model/record.h"
#include "templatefileloader.h"

#include <QDir>
#include <QFileInfo>

namespace corvanta::templates {

ShippedTemplates::ShippedTemplates(const QString& shippedFolder, const QString& templateFilesDirectory)
    : m_shippedFolder(shippedFolder)
    , m_templateFilesDirectory(templateFilesDirectory)
{}

const QStringList& ShippedTemplates::names()
{
    static const QStringList names = {
        QStringLiteral("invoice1"),
        QStringLiteral("invoice2"),
        QStringLiteral("proforma"),
        QStringLiteral("estimate"),
        QStringLiteral("quotation"),
        QStringLiteral("delivery_note"),
        QStringLiteral("credit_note"),
        QStringLiteral("credit_memo"),
        QStringLiteral("purchase_order"),
        QStringLiteral("report_documents"),
        QStringLiteral("report_documents_grouped"),
        QStringLiteral("report_summary_client"),
        QStringLiteral("report_summary_item"),
    };
    return names;
}

const QStringList& ShippedTemplates::typeKeys()
{
    static const QStringList keys = {
        QStringLiteral("invoice"),
        QStringLiteral("invoice"),
        QStringLiteral("proforma"),
        QStringLiteral("estimate"),
        QStringLiteral("quotation"),
        QStringLiteral("delivery_note"),
        QStringLiteral("credit_note"),
        QStringLiteral("credit_memo"),
        QStringLiteral("purchase_order"),
        QStringLiteral("report_documents"),
        QStringLiteral("report_documents_grouped"),
        QStringLiteral("report_summary_client"),
        QStringLiteral("report_summary_item"),
    };
    return keys;
}

int ShippedTemplates::install(model::EditingContext& context, model::Record* myCompany)
{
    TemplateFileLoader loader(context, m_templateFilesDirectory);
    int loaded = 0;
    for (qsizetype i = 0; i < names().size(); ++i) {
        const QString file = QDir(m_shippedFolder).filePath(names().at(i) + QStringLiteral(".corvanta"));
        if (!QFileInfo(file).isFile())
            continue;
        QString why;
        model::Record* loadedTemplate = loader.load(file, &why);
        if (!loadedTemplate) {
            qWarning("The template file %s is skipped: %s", qPrintable(file), qPrintable(why));
            continue;
        }
        if (myCompany)
            myCompany->setRelated(QStringLiteral("default_template_") + typeKeys().at(i), loadedTemplate);
        ++loaded;
    }
    return loaded;
}

} // namespace corvanta::templates
