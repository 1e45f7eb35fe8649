#include "shippedtemplates.h"

#include "store/record.h"
#include "templatefileloader.h"
#include "templateslog.h"

#include <QDir>
#include <QFileInfo>

namespace corvanta::templates {

ShippedTemplates::ShippedTemplates(const QString& shippedFolder, const QString& templateFilesDirectory)
    : m_shippedFolder(shippedFolder)
    , m_templateFilesDirectory(templateFilesDirectory)
{}

const QList<ShippedTemplates::File>& ShippedTemplates::files()
{
    static const QList<File> files = [] {
        const char* const table[][2] = {
            {"invoice1", "invoice"},
            {"invoice2", "invoice"},
            {"proforma", "proforma"},
            {"estimate", "estimate"},
            {"quotation", "quotation"},
            {"delivery_note", "delivery_note"},
            {"credit_note", "credit_note"},
            {"credit_memo", "credit_memo"},
            {"purchase_order", "purchase_order"},
            {"report_documents", "report_documents"},
            {"report_documents_grouped", "report_documents_grouped"},
            {"report_summary_client", "report_summary_client"},
            {"report_summary_item", "report_summary_item"},
        };
        QList<File> list;
        for (const auto& [name, typeKey] : table)
            list.append({QString::fromLatin1(name), QString::fromLatin1(typeKey)});
        return list;
    }();
    return files;
}

int ShippedTemplates::install(store::EditingContext& context, store::Record* myCompany)
{
    TemplateFileLoader loader(context, m_templateFilesDirectory);
    int loaded = 0;
    for (const File& shipped : files()) {
        const QString file = QDir(m_shippedFolder).filePath(shipped.name + QStringLiteral(".corvanta"));
        if (!QFileInfo(file).isFile())
            continue;
        QString why;
        store::Record* loadedTemplate = loader.load(file, &why);
        if (!loadedTemplate) {
            qCWarning(lcTemplates, "The template file %s is skipped: %s", qPrintable(file), qPrintable(why));
            continue;
        }
        if (myCompany)
            myCompany->setRelated(QStringLiteral("default_template_") + shipped.typeKey, loadedTemplate);
        ++loaded;
    }
    return loaded;
}

} // namespace corvanta::templates
