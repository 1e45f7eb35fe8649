#include "previewwindow.h"

#include "app/commandrules.h"
#include "mainwindow.h"
#include "pdfprinter.h"
#include "support/prompter.h"
#include "windowplacement.h"

#include <QAction>
#include <QCloseEvent>
#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QLabel>
#include <QPdfDocument>
#include <QPdfPageNavigator>
#include <QPdfView>
#include <QPrintDialog>
#include <QPrinter>
#include <QSaveFile>
#include <QStandardPaths>
#include <QStyle>
#include <QToolBar>
#include <QToolButton>

namespace corvanta::ui {

namespace {

QString s(const char* text)
{
    return QString::fromLatin1(text);
}

} // namespace

PreviewWindow::PreviewWindow(support::Prompter& prompter, QWidget* parent)
    : QMainWindow(parent, Qt::Window)
    , m_prompter(prompter)
{
    setObjectName(s("PreviewWindow"));
    setAttribute(Qt::WA_DeleteOnClose);
    setProperty(MainWindow::windowKindProperty(), int(app::WindowKind::Other));

    m_document = new QPdfDocument(this);
    m_view = new QPdfView(this);
    m_view->setObjectName(s("pdfView"));
    m_view->setDocument(m_document);
    m_view->setPageMode(QPdfView::PageMode::MultiPage);
    m_view->setZoomMode(QPdfView::ZoomMode::FitToWidth);
    m_view->setPageSpacing(style()->pixelMetric(QStyle::PM_LayoutVerticalSpacing) * 2);
    m_view->setFocusPolicy(Qt::StrongFocus);
    setCentralWidget(m_view);

    QToolBar* toolBar = addToolBar(tr("Preview"));
    toolBar->setObjectName(s("previewToolBar"));
    toolBar->setMovable(false);
    toolBar->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    m_printAction =
        toolBar->addAction(QIcon::fromTheme(s("document-print")), tr("Print…"), this, &PreviewWindow::print);
    m_printAction->setObjectName(s("printAction"));
    m_saveAction = toolBar->addAction(QIcon::fromTheme(s("document-save-as")), tr("Save as PDF…"), this,
                                      &PreviewWindow::saveAs);
    m_saveAction->setObjectName(s("saveAsAction"));
    toolBar->addSeparator();
    m_previousAction = toolBar->addAction(QIcon::fromTheme(s("go-previous")), tr("Previous Page"), this,
                                          &PreviewWindow::previousPage);
    m_previousAction->setObjectName(s("previousPageAction"));
    m_previousAction->setShortcut(QKeySequence(Qt::Key_PageUp));
    m_nextAction =
        toolBar->addAction(QIcon::fromTheme(s("go-next")), tr("Next Page"), this, &PreviewWindow::nextPage);
    m_nextAction->setObjectName(s("nextPageAction"));
    m_nextAction->setShortcut(QKeySequence(Qt::Key_PageDown));
    // The arrows speak for themselves; their names stay as tool tips.
    for (QAction* action : {m_previousAction, m_nextAction}) {
        if (QWidget* button = toolBar->widgetForAction(action)) {
            qobject_cast<QToolButton*>(button)->setToolButtonStyle(Qt::ToolButtonIconOnly);
            button->setAccessibleName(action->text());
            button->setToolTip(action->text());
        }
    }
    m_pageLabel = new QLabel(this);
    m_pageLabel->setObjectName(s("pageLabel"));
    m_pageLabel->setContentsMargins(style()->pixelMetric(QStyle::PM_LayoutHorizontalSpacing), 0, 0, 0);
    toolBar->addWidget(m_pageLabel);

    connect(m_view->pageNavigator(), &QPdfPageNavigator::currentPageChanged, this,
            &PreviewWindow::updatePageActions);
    connect(m_document, &QPdfDocument::pageCountChanged, this, &PreviewWindow::updatePageActions);

    if (!WindowPlacement::restore(this)) {
        // About an A4 page at a readable width.
        const int width = fontMetrics().averageCharWidth() * 100;
        resize(width, width * 1414 / 1000);
    }
    updatePageActions();
}

PreviewWindow::~PreviewWindow()
{
    // The document tells of its pages going when it is deleted with the window's children.
    disconnect(m_document, nullptr, this, nullptr);
}

bool PreviewWindow::showPdf(const QString& pdfPath, const QString& title, const QString& fileName, int copies)
{
    // The file may have been written anew since it was shown: load it again from scratch.
    m_document->close();
    if (m_document->load(pdfPath) != QPdfDocument::Error::None)
        return false;
    m_pdfPath = pdfPath;
    m_fileName = fileName;
    m_copies = std::max(1, copies);
    setWindowTitle(title);
    m_view->pageNavigator()->jump(0, QPointF(), 0);
    updatePageActions();
    return true;
}

int PreviewWindow::currentPage() const
{
    return m_view->pageNavigator()->currentPage();
}

void PreviewWindow::updatePageActions()
{
    const int count = m_document->pageCount();
    const int page = currentPage();
    m_previousAction->setEnabled(page > 0);
    m_nextAction->setEnabled(page + 1 < count);
    m_printAction->setEnabled(count > 0);
    m_saveAction->setEnabled(count > 0);
    m_pageLabel->setText(count > 0 ? tr("Page %1 of %2").arg(page + 1).arg(count) : QString());
}

void PreviewWindow::previousPage()
{
    if (currentPage() > 0)
        m_view->pageNavigator()->jump(currentPage() - 1, QPointF(), 0);
}

void PreviewWindow::nextPage()
{
    if (currentPage() + 1 < m_document->pageCount())
        m_view->pageNavigator()->jump(currentPage() + 1, QPointF(), 0);
}

void PreviewWindow::print()
{
    if (m_pdfPath.isEmpty())
        return;
    QPrinter printer(QPrinter::HighResolution);
    PdfPrinter::setUp(printer, m_copies);
    printer.setDocName(QFileInfo(m_fileName).completeBaseName());
    QPrintDialog dialog(&printer, this);
    dialog.setObjectName(s("printDialog"));
    dialog.setMinMax(1, m_document->pageCount());
    if (dialog.exec() != QDialog::Accepted)
        return;
    QString error;
    if (!PdfPrinter::print(m_pdfPath, printer, &error))
        m_prompter.alert(tr("Print"), error, {tr("OK")});
}

void PreviewWindow::saveAs()
{
    if (m_pdfPath.isEmpty())
        return;
    const QString suggested =
        QDir(QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation)).filePath(m_fileName);
    const QString path =
        QFileDialog::getSaveFileName(this, tr("Save as PDF"), suggested, tr("PDF documents (*.pdf)"));
    if (path.isEmpty())
        return;
    QFile source(m_pdfPath);
    QSaveFile target(path);
    if (!source.open(QIODevice::ReadOnly) || !target.open(QIODevice::WriteOnly) ||
        target.write(source.readAll()) < 0 || !target.commit()) {
        m_prompter.alert(tr("Save as PDF"),
                         tr("The file \"%1\" could not be written: %2").arg(path, target.errorString()),
                         {tr("OK")});
    }
}

void PreviewWindow::closeEvent(QCloseEvent* event)
{
    WindowPlacement::save(this);
    QMainWindow::closeEvent(event);
}

} // namespace corvanta::ui
