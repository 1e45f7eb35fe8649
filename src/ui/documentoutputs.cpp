#include "documentoutputs.h"

#include "documentpdf.h"
#include "documents/documenttypes.h"
#include "emailpreparationwindow.h"
#include "model/companycache.h"
#include "pdfprinter.h"
#include "previewwindow.h"
#include "store/editingcontext.h"
#include "store/record.h"
#include "store/store.h"
#include "support/prompter.h"
#include "templates/pdffilenames.h"

#include <QApplication>
#include <QDir>
#include <QFileDialog>
#include <QPdfDocument>
#include <QPrintDialog>
#include <QPrinter>
#include <QStandardPaths>

namespace corvanta::ui {

using store::Record;

namespace {

QString s(const char* text)
{
    return QString::fromLatin1(text);
}

} // namespace

DocumentOutputs::DocumentOutputs(store::Store& store, support::Prompter& prompter, QWidget* parentForDialogs)
    : m_store(store)
    , m_prompter(prompter)
    , m_parent(parentForDialogs)
{}

DocumentOutputs::~DocumentOutputs()
{
    for (const QPointer<PreviewWindow>& window : std::as_const(m_previews)) {
        if (window)
            window->close();
    }
}

QString DocumentOutputs::previewTitle(const Record& document)
{
    QString name = document.value(s("number_formatted")).toString();
    if (name.isEmpty())
        name = documents::DocumentTypes::displayName(document.value(s("type")).toLongLong());
    return tr("Preview – %1").arg(name);
}

int DocumentOutputs::copiesSetting(const Record& document) const
{
    const QString type = documents::DocumentTypes::typeNameByNumber(document.value(s("type")).toLongLong());
    return std::max(1, model::CompanyCache::of(m_store).value(s("print_copy_") + type).toInt());
}

QString DocumentOutputs::renderTemporary(Record* document, const QString& fileName, const QString& title)
{
    const QString path = QDir(DocumentPdf::tempFilesDirectory(m_store)).filePath(fileName);
    QString error;
    if (!DocumentPdf::write(document, path, &error)) {
        m_prompter.alert(title, error, {tr("OK")});
        return {};
    }
    return path;
}

QWidget* DocumentOutputs::dialogParent() const
{
    if (QWidget* active = QApplication::activeWindow())
        return active;
    return m_parent ? m_parent->window() : nullptr;
}

void DocumentOutputs::preview(Record* document)
{
    if (!document)
        return;
    // A document without a number yet (an unsaved one, a draft) still needs a file of its own.
    const QString fileName = s("preview-%1.pdf").arg(document->pk());
    const QString path = renderTemporary(document, fileName, tr("Preview"));
    if (path.isEmpty())
        return;
    QPointer<PreviewWindow>& window = m_previews[document->ref()];
    if (!window)
        window = new PreviewWindow(m_prompter, m_parent ? m_parent->window() : nullptr);
    if (!window->showPdf(path, previewTitle(*document), templates::PdfFileNames::documentFileName(*document),
                         copiesSetting(*document))) {
        m_prompter.alert(tr("Preview"), tr("The PDF \"%1\" could not be read.").arg(path), {tr("OK")});
        return;
    }
    window->show();
    window->raise();
    window->activateWindow();
}

void DocumentOutputs::refreshPreview(Record* document)
{
    PreviewWindow* window = document ? m_previews.value(document->ref()) : nullptr;
    if (!window || !window->isVisible())
        return;
    const QString path = renderTemporary(document, s("preview-%1.pdf").arg(document->pk()), tr("Preview"));
    if (!path.isEmpty())
        window->showPdf(path, previewTitle(*document), templates::PdfFileNames::documentFileName(*document),
                        copiesSetting(*document));
}

PreviewWindow* DocumentOutputs::previewWindow(const predicate::RecordRef& document) const
{
    return m_previews.value(document);
}

void DocumentOutputs::closePreview(const predicate::RecordRef& document)
{
    if (const QPointer<PreviewWindow> window = m_previews.take(document))
        window->close();
}

bool DocumentOutputs::printTo(Record* document, QPrinter& printer)
{
    const QString path =
        renderTemporary(document, templates::PdfFileNames::documentFileName(*document), tr("Print"));
    return !path.isEmpty() && printFile(path, printer);
}

bool DocumentOutputs::printFile(const QString& path, QPrinter& printer)
{
    QString error;
    if (PdfPrinter::print(path, printer, &error))
        return true;
    m_prompter.alert(tr("Print"), error, {tr("OK")});
    return false;
}

void DocumentOutputs::print(Record* document, int copies)
{
    if (!document)
        return;
    // Rendered first, so that the dialog knows the pages there are to choose from.
    const QString path =
        renderTemporary(document, templates::PdfFileNames::documentFileName(*document), tr("Print"));
    if (path.isEmpty())
        return;
    QPrinter printer(QPrinter::HighResolution);
    PdfPrinter::setUp(printer, copies);
    printer.setDocName(document->value(s("number_formatted")).toString());
    QPrintDialog dialog(&printer, dialogParent());
    dialog.setObjectName(s("printDialog"));
    QPdfDocument pdf;
    if (pdf.load(path) == QPdfDocument::Error::None && pdf.pageCount() > 0)
        dialog.setMinMax(1, pdf.pageCount());
    if (dialog.exec() == QDialog::Accepted)
        printFile(path, printer);
}

bool DocumentOutputs::saveTo(Record* document, const QString& path)
{
    QString error;
    if (DocumentPdf::write(document, path, &error))
        return true;
    m_prompter.alert(tr("Save as PDF"), error, {tr("OK")});
    return false;
}

void DocumentOutputs::saveAs(Record* document)
{
    if (!document)
        return;
    QFileDialog dialog(dialogParent(), tr("Save as PDF"),
                       QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation),
                       tr("PDF documents (*.pdf)"));
    dialog.setObjectName(s("saveAsDialog"));
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setFileMode(QFileDialog::AnyFile);
    dialog.setDefaultSuffix(s("pdf"));
    dialog.selectFile(templates::PdfFileNames::documentFileName(*document));
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty())
        return;
    saveTo(document, dialog.selectedFiles().constFirst());
}

void DocumentOutputs::sendEmail(Record* document)
{
    if (!document)
        return;
    // The sheet reads the document as stored; the editor saves it before handing it over.
    {
        const std::unique_ptr<store::EditingContext> stored = m_store.newContext();
        if (!stored->fetchRecord(s("Documents"), document->ref())) {
            m_prompter.alert(tr("Send by Email"), tr("The document has to be saved before it can be sent."),
                             {tr("OK")});
            return;
        }
    }
    auto* sheet = new EmailPreparationWindow(m_store, m_prompter, document->ref(), dialogParent());
    sheet->setAttribute(Qt::WA_DeleteOnClose);
    sheet->open();
}

} // namespace corvanta::ui
