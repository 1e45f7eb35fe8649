#pragma once

#include <QMainWindow>

class QAction;
class QLabel;
class QPdfDocument;
class QPdfView;
class QPrinter;

namespace corvanta::support {
class Prompter;
}

namespace corvanta::ui {

// Shows a rendered PDF: the pages one under another at the window's width, a tool bar with
// Print, Save as PDF and the page navigation. The window shows a copy of the file it was given,
// so that a new rendering of the same document can replace it while the window is open.
class PreviewWindow : public QMainWindow
{
    Q_OBJECT

public:
    explicit PreviewWindow(support::Prompter& prompter, QWidget* parent = nullptr);
    ~PreviewWindow() override;

    // Loads `pdfPath`; `fileName` is the name Save as PDF offers, `copies` the number Print
    // starts with. False (the window unchanged) when the PDF cannot be read.
    bool showPdf(const QString& pdfPath, const QString& title, const QString& fileName, int copies);

    QPdfDocument* document() const { return m_document; }
    QPdfView* view() const { return m_view; }
    int currentPage() const;
    QString suggestedFileName() const { return m_fileName; }
    int copies() const { return m_copies; }

public Q_SLOTS:
    void print();
    void saveAs();
    void previousPage();
    void nextPage();

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    void updatePageActions();

    support::Prompter& m_prompter;
    QPdfDocument* m_document = nullptr;
    QPdfView* m_view = nullptr;
    QString m_pdfPath;
    QString m_fileName;
    int m_copies = 1;
    QAction* m_printAction = nullptr;
    QAction* m_saveAction = nullptr;
    QAction* m_previousAction = nullptr;
    QAction* m_nextAction = nullptr;
    QLabel* m_pageLabel = nullptr;
};

} // namespace corvanta::ui
