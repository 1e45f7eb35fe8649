#pragma once

#include "editors/documentoutput.h"
#include "predicate/recordref.h"

#include <QCoreApplication>
#include <QHash>
#include <QPointer>

class QPrinter;
class QWidget;

namespace corvanta::store {
class Store;
}
namespace corvanta::support {
class Prompter;
}

namespace corvanta::ui {

class PreviewWindow;

// The program's output of documents: the preview window (one per document, shown again and
// re-rendered when asked again), printing through the print dialog, the PDF export through a
// file dialog and the e-mail preparation sheet. Every document is rendered with its own design
// template; what cannot be done is told to the user.
class DocumentOutputs : public editors::DocumentOutput
{
    Q_DECLARE_TR_FUNCTIONS(DocumentOutputs)

public:
    DocumentOutputs(store::Store& store, support::Prompter& prompter, QWidget* parentForDialogs);
    ~DocumentOutputs() override;
    DocumentOutputs(const DocumentOutputs&) = delete;
    DocumentOutputs& operator=(const DocumentOutputs&) = delete;

    void print(store::Record* document, int copies) override;
    void saveAs(store::Record* document) override;
    void sendEmail(store::Record* document) override;
    void preview(store::Record* document) override;

    // Prints the document on a printer already set up (PdfPrinter::setUp, or the print dialog).
    bool printTo(store::Record* document, QPrinter& printer);
    // Writes the document's PDF to `path`; false after telling the user why not.
    bool saveTo(store::Record* document, const QString& path);

    // The open preview of a document, or null.
    PreviewWindow* previewWindow(const predicate::RecordRef& document) const;
    // Renders the document again into its preview window, if one is shown, without bringing the
    // window to the front: the preview follows the editor while the user types there.
    void refreshPreview(store::Record* document);
    // Closes a document's preview, as saving or closing its editor does.
    void closePreview(const predicate::RecordRef& document);

    // The copies printing starts with: the setting "print_copy_" with the document's type name,
    // at least 1.
    int copiesSetting(const store::Record& document) const;

    // "Preview – " and the document's number, or its type before it has one.
    static QString previewTitle(const store::Record& document);

private:
    // The window the user works in (an editor, or the main window): dialogs and sheets belong there.
    QWidget* dialogParent() const;
    // Renders to the temporary folder; the path, or empty after telling the user why not.
    QString renderTemporary(store::Record* document, const QString& fileName, const QString& title);
    bool printFile(const QString& path, QPrinter& printer);

    store::Store& m_store;
    support::Prompter& m_prompter;
    QPointer<QWidget> m_parent;
    QHash<predicate::RecordRef, QPointer<PreviewWindow>> m_previews;
};

} // namespace corvanta::ui
