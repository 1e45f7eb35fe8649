#include "printedoutput.h"

#include "demorecords.h"
#include "designmanager.h"
#include "documentfiller.h"
#include "documents/documenttypes.h"
#include "reportfiller.h"
#include "reportinput.h"
#include "store/editingcontext.h"
#include "store/record.h"
#include "store/store.h"
#include "templatetypes.h"

namespace corvanta::templates {

using store::Record;

PrintedOutput::PrintedOutput(const QString& templateFilesDirectory)
    : m_templateFilesDirectory(templateFilesDirectory)
{}

Record* PrintedOutput::templateOf(Record* document)
{
    if (Record* own = document->related(QStringLiteral("template")))
        return own;
    return documents::DocumentTypes::defaultTemplate(*document->context(),
                                                     document->value(QStringLiteral("type")).toLongLong());
}

bool PrintedOutput::writeDocument(Record* document, Record* templateRecord, const QString& path, int* pages,
                                  QString* error) const
{
    const store::Store::ReadSnapshot snapshot(document->context()->store());
    const FilledTemplate filled = DocumentFiller::fill(templateRecord, document);
    return DesignManager(templateRecord, m_templateFilesDirectory).writePdf(filled, path, pages, error);
}

bool PrintedOutput::writeReport(Record* templateRecord, const ReportInput& input, const QString& path,
                                int* pages, QString* error) const
{
    const store::Store::ReadSnapshot snapshot(templateRecord->context()->store());
    const FilledTemplate filled = ReportFiller::fill(templateRecord, input);
    return DesignManager(templateRecord, m_templateFilesDirectory).writePdf(filled, path, pages, error);
}

bool PrintedOutput::writePreview(Record* templateRecord, const QString& path, int* pages,
                                 QString* error) const
{
    // The demo records live in a context of their own that is never saved.
    const std::unique_ptr<store::EditingContext> scratch = templateRecord->context()->store().newContext();
    const qint64 type = templateRecord->value(QStringLiteral("type")).toLongLong();
    if (TemplateTypes::isReportTemplate(type))
        return writeReport(templateRecord, DemoRecords::demoReport(*scratch, int(type)), path, pages, error);
    return writeDocument(DemoRecords::testDocument(*scratch), templateRecord, path, pages, error);
}

} // namespace corvanta::templates
