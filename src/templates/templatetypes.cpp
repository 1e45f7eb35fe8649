#include "templatetypes.h"

#include <array>

namespace corvanta::templates {

namespace {

struct TypeInfo
{
    qint64 type;
    const char* name;
    const char* defaultKey;
};

constexpr std::array<TypeInfo, 12> kTypes = {{
    {0, QT_TRANSLATE_NOOP("TemplateTypes", "Invoice"), "default_template_invoice"},
    {1, QT_TRANSLATE_NOOP("TemplateTypes", "Pro Forma"), "default_template_proforma"},
    {2, QT_TRANSLATE_NOOP("TemplateTypes", "Estimate"), "default_template_estimate"},
    {3, QT_TRANSLATE_NOOP("TemplateTypes", "Quotation"), "default_template_quotation"},
    {4, QT_TRANSLATE_NOOP("TemplateTypes", "Delivery Note"), "default_template_delivery_note"},
    {5, QT_TRANSLATE_NOOP("TemplateTypes", "Credit Note"), "default_template_credit_note"},
    {6, QT_TRANSLATE_NOOP("TemplateTypes", "Credit Memo"), "default_template_credit_memo"},
    {7, QT_TRANSLATE_NOOP("TemplateTypes", "Purchase Order"), "default_template_purchase_order"},
    {100, QT_TRANSLATE_NOOP("TemplateTypes", "Document Report"), "default_template_report_documents"},
    {110, QT_TRANSLATE_NOOP("TemplateTypes", "Document Grouped Report"),
     "default_template_report_documents_grouped"},
    {120, QT_TRANSLATE_NOOP("TemplateTypes", "Client Report"), "default_template_report_summary_client"},
    {130, QT_TRANSLATE_NOOP("TemplateTypes", "Item Report"), "default_template_report_summary_item"},
}};

const TypeInfo* find(qint64 type)
{
    for (const TypeInfo& info : kTypes) {
        if (info.type == type)
            return &info;
    }
    return nullptr;
}

} // namespace

const QList<qint64>& TemplateTypes::all()
{
    static const QList<qint64> types = [] {
        QList<qint64> list;
        for (const TypeInfo& info : kTypes)
            list << info.type;
        return list;
    }();
    return types;
}

bool TemplateTypes::isValid(qint64 type)
{
    return find(type) != nullptr;
}

bool TemplateTypes::isReportTemplate(qint64 type)
{
    return type == DocumentReport || type == DocumentsGroupedReport || type == ClientReport ||
           type == ItemReport;
}

bool TemplateTypes::isDocumentsGroupedReportTemplate(qint64 type)
{
    return type == DocumentsGroupedReport;
}

QString TemplateTypes::displayName(qint64 type)
{
    const TypeInfo* info = find(type);
    return info ? tr(info->name) : QString();
}

QString TemplateTypes::defaultTemplateKey(qint64 type)
{
    const TypeInfo* info = find(type);
    return info ? QString::fromLatin1(info->defaultKey) : QString();
}

QString TemplateTypes::typeKey(qint64 type)
{
    return defaultTemplateKey(type).mid(int(qstrlen("default_template_")));
}

qint64 TemplateTypes::typeFromText(const QString& text)
{
    bool isNumber = false;
    const qint64 number = text.toLongLong(&isNumber);
    if (isNumber)
        return isValid(number) ? number : -1;
    for (const TypeInfo& info : kTypes) {
        if (typeKey(info.type) == text)
            return info.type;
    }
    return -1;
}

} // namespace corvanta::templates
