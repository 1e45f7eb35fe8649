// The template library's pictures: the company's templates by type with the default invoice
// template selected and previewed, and the same window with its duplicate menu open.
#include "librarypictures.h"

#include "model/companyrecord.h"
#include "pictures.h"
#include "store/editingcontext.h"
#include "store/record.h"
#include "store/store.h"
#include "support/scriptedprompter.h"
#include "ui/documentpdf.h"
#include "ui/templatelibrarywindow.h"

#include <QAction>
#include <QApplication>
#include <QMenu>
#include <QPainter>
#include <QPdfDocument>
#include <QTest>
#include <QTreeWidget>

namespace corvanta::uipictures {

namespace {

// The window with its open menus drawn where they opened, as one picture.
void saveWithMenus(QWidget* window, const QList<QWidget*>& menus, const char* name)
{
    QRect area(QPoint(0, 0), window->size());
    const QPoint origin = window->mapToGlobal(QPoint(0, 0));
    for (const QWidget* menu : menus)
        area |= QRect(menu->mapToGlobal(QPoint(0, 0)) - origin, menu->size());
    QPixmap picture(area.size());
    picture.fill(window->palette().color(QPalette::Window));
    QPainter painter(&picture);
    painter.drawPixmap(0, 0, window->grab());
    for (QWidget* menu : menus) {
        const QPoint at = menu->mapToGlobal(QPoint(0, 0)) - origin;
        painter.drawPixmap(at, menu->grab());
        painter.setPen(window->palette().color(QPalette::Mid));
        painter.drawRect(QRect(at, menu->size()).adjusted(0, 0, -1, -1));
    }
    painter.end();
    save(picture, name);
}

// Waits until the preview shows the selected template.
void waitForPreview(ui::TemplateLibraryWindow& window)
{
    for (int tries = 0; tries < 100 && window.previewDocument()->pageCount() == 0; ++tries)
        QTest::qWait(50);
    if (window.previewDocument()->pageCount() == 0)
        qFatal("the template preview is not drawn");
    QTest::qWait(300);
}

} // namespace

void takeLibraryPictures(store::Store& store)
{
    // The pictures ask nothing; a question would end in the log, not on the screen.
    support::ScriptedPrompter prompter;
    ui::TemplateLibraryWindow window(store, prompter, ui::DocumentPdf::templateFilesDirectory(store));
    window.setAttribute(Qt::WA_DeleteOnClose, false);
    window.resize(1180, 780);
    window.show();
    if (!QTest::qWaitForWindowExposed(&window))
        qFatal("the template library is not shown");

    store::Record* company = model::CompanyRecord::of(store.mainContext());
    store::Record* invoice = company ? company->related(s("default_template_invoice")) : nullptr;
    if (!invoice || !window.selectTemplate(invoice->ref()))
        qFatal("the company has no invoice template");
    window.tree()->setFocus();
    waitForPreview(window);
    save(&window, "template-library");

    QMenu* menu = window.duplicateMenu();
    QWidget* button = window.findChild<QWidget*>(s("duplicateButton"));
    menu->popup(button->mapToGlobal(QPoint(0, button->height())));
    QTest::qWait(200);
    QAction* duplicateAs = nullptr;
    for (QAction* action : menu->actions()) {
        if (action->menu())
            duplicateAs = action;
    }
    menu->setActiveAction(duplicateAs);
    QMenu* types = duplicateAs->menu();
    const QRect row = menu->actionGeometry(duplicateAs);
    types->popup(menu->mapToGlobal(row.topRight()));
    QTest::qWait(200);
    types->setActiveAction(types->actions().value(3));
    QTest::qWait(100);
    saveWithMenus(&window, {menu, types}, "template-library-duplicate-menu");
    types->close();
    menu->close();
    window.close();
    if (!prompter.questions().isEmpty())
        qFatal("the template library asked: %s", qPrintable(prompter.titles().join(s(", "))));
}

} // namespace corvanta::uipictures
