#pragma once

#include <QCoreApplication>
#include <QList>
#include <QString>

namespace corvanta::templates {

// The kinds of template by their `type` code: the eight document types (0 to 7, as documents
// number them) and the four reports.
class TemplateTypes
{
    Q_DECLARE_TR_FUNCTIONS(TemplateTypes)

public:
    enum Report {
        DocumentReport = 100,
        DocumentsGroupedReport = 110,
        ClientReport = 120,
        ItemReport = 130,
    };

    // Every template type, documents first, in the order the template list shows them.
    static const QList<qint64>& all();
    static bool isValid(qint64 type);
    static bool isReportTemplate(qint64 type);
    static bool isDocumentsGroupedReportTemplate(qint64 type);
    // "Invoice" ... "Item Report"; empty for an unknown code.
    static QString displayName(qint64 type);
    // The company's relationship that holds the default template of the type
    // ("default_template_invoice" ... "default_template_report_summary_item"); empty for an
    // unknown code.
    static QString defaultTemplateKey(qint64 type);
    // The type key ("invoice" ... "purchase_order", "report_documents" ...
    // "report_summary_item"): the default-template key without its "default_template_".
    static QString typeKey(qint64 type);
    // The type a key names, or its number written out ("3"); -1 for anything else.
    static qint64 typeFromText(const QString& text);
};

} // namespace corvanta::templates
