#include "designmanager.h"

#include "elementpainter.h"
#include "pagepainter.h"
#include "paginator.h"
#include "store/record.h"
#include "templatepage.h"
#include "templatetypes.h"

#include <QBuffer>
#include <QGuiApplication>
#include <QPainter>
#include <QPdfWriter>
#include <QSaveFile>
#include <cmath>

namespace corvanta::templates {

namespace {

constexpr int kPointsPerInch = 72;

QString s(const char* text)
{
    return QString::fromLatin1(text);
}

// A writer whose device unit is the point, on an A4 portrait page of exactly 595 x 842 points.
void setUpPage(QPdfWriter& writer)
{
    writer.setResolution(kPointsPerInch);
    writer.setPageSize(QPageSize(QSizeF(TemplatePage::kWidth, TemplatePage::kHeight), QPageSize::Point,
                                 QString(), QPageSize::ExactMatch));
    writer.setPageMargins(QMarginsF(0, 0, 0, 0), QPageLayout::Point);
    writer.setCreator(s("Corvanta"));
}

} // namespace

DesignManager::DesignManager(store::Record* templateRecord, const QString& templateFilesDirectory)
    : m_template(templateRecord)
    , m_templateFilesDirectory(templateFilesDirectory)
    , m_type(templateRecord ? templateRecord->value(s("type")).toLongLong() : 0)
    , m_measuringBuffer(std::make_unique<QBuffer>())
    , m_measuringDevice(std::make_unique<QPdfWriter>(m_measuringBuffer.get()))
{
    setUpPage(*m_measuringDevice);
    m_catalogue = std::make_unique<ElementCatalogue>(m_measuringDevice.get());
    initMargins();
}

DesignManager::~DesignManager() = default;

bool DesignManager::isReportTemplate() const
{
    return TemplateTypes::isReportTemplate(m_type);
}

bool DesignManager::isDocumentsGroupedReportTemplate() const
{
    return TemplateTypes::isDocumentsGroupedReportTemplate(m_type);
}

void DesignManager::initMargins()
{
    m_margins = m_template ? TemplatePage::calculatedMargins(*m_template) : QMarginsF();
    const QString first = m_template ? m_template->value(s("sections_height_first")).toString() : QString();
    const QString following =
        m_template ? m_template->value(s("sections_height_following")).toString() : QString();
    m_filler = std::make_unique<SectionFiller>(*m_catalogue, m_type, m_margins, first, following);
}

int DesignManager::heightOfSection(const QString& section, const WorkingElements& elements, int pageSide)
{
    return static_cast<int>(std::trunc(m_filler->fill(section, elements, pageSide, 0, 0, 0).sectionHeight));
}

FilledSection DesignManager::fillElements(const QString& section, const WorkingElements& elements,
                                          int pageSide, int pageNumber, int pageCount, double lineY)
{
    return m_filler->fill(section, elements, pageSide, pageNumber, pageCount, lineY);
}

QString DesignManager::tableEntrySection(const TableEntry& entry) const
{
    return isDocumentsGroupedReportTemplate() ? entry.sectionType : s("details");
}

QList<DocumentPDFPage> DesignManager::createPages(const FilledTemplate& filled)
{
    const auto overhead = [&](int pageSide) {
        return heightOfSection(s("document_header"), filled.page, pageSide) +
               heightOfSection(s("table_header"), filled.page, pageSide) +
               heightOfSection(s("document_footer"), filled.page, pageSide);
    };
    const double page = TemplatePage::kHeight - m_margins.top() - m_margins.bottom();
    Paginator::Heights heights;
    heights.availableFirst = page - overhead(TemplatePage::FirstPage);
    heights.availableFollowing = page - overhead(TemplatePage::FollowingPages);
    heights.tableFooter = heightOfSection(s("table_footer"), filled.tableFooter, TemplatePage::FirstPage);
    heights.entry = [&](const TableEntry& entry, int pageIndex) {
        return heightOfSection(tableEntrySection(entry), entry.values,
                               pageIndex == 0 ? TemplatePage::FirstPage : TemplatePage::FollowingPages);
    };
    return Paginator::paginate(filled.rows, heights);
}

bool DesignManager::writePdf(const FilledTemplate& filled, QIODevice* device, int* pageCount, QString* error)
{
    // Fonts are known only to a graphical application object (offscreen will do); without one
    // Qt would abort at the first text.
    if (!qobject_cast<QGuiApplication*>(QCoreApplication::instance())) {
        if (error)
            *error = tr("PDF files can only be made by a program started as a graphical application.");
        return false;
    }
    const QList<DocumentPDFPage> pages = createPages(filled);
    QPdfWriter writer(device);
    setUpPage(writer);
    QPainter painter;
    if (!painter.begin(&writer)) {
        if (error)
            *error = tr("The PDF could not be started.");
        return false;
    }
    ElementPainter elements(m_templateFilesDirectory);
    PagePainter pagePainter(*m_filler, elements, m_margins.top(), isDocumentsGroupedReportTemplate());
    for (const DocumentPDFPage& page : pages) {
        if (page.pageIndex > 0)
            writer.newPage();
        pagePainter.paint(painter, page, filled);
    }
    if (!painter.end()) {
        if (error)
            *error = tr("The PDF could not be finished.");
        return false;
    }
    if (pageCount)
        *pageCount = static_cast<int>(pages.size());
    return true;
}

bool DesignManager::writePdf(const FilledTemplate& filled, const QString& path, int* pageCount,
                             QString* error)
{
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly)) {
        if (error)
            *error = tr("The file \"%1\" could not be written: %2").arg(path, file.errorString());
        return false;
    }
    if (!writePdf(filled, &file, pageCount, error)) {
        file.cancelWriting();
        return false;
    }
    if (!file.commit()) {
        if (error)
            *error = tr("The file \"%1\" could not be written: %2").arg(path, file.errorString());
        return false;
    }
    return true;
}

} // namespace corvanta::templates
