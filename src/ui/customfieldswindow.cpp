#include "customfieldswindow.h"

#include "app/commandrules.h"
#include "editors/customfieldsmodel.h"
#include "mainwindow.h"
#include "store/editingcontext.h"
#include "store/store.h"
#include "windowplacement.h"

#include <QAbstractItemDelegate>
#include <QCloseEvent>
#include <QHeaderView>
#include <QStyle>
#include <QTabWidget>
#include <QTableView>
#include <QVBoxLayout>

namespace corvanta::ui {

using editors::CustomFieldsModel;

namespace {

QString s(const char* text)
{
    return QString::fromLatin1(text);
}

} // namespace

CustomFieldsWindow::CustomFieldsWindow(store::Store& store, support::Prompter& prompter, QWidget* parent)
    : QWidget(parent, Qt::Window)
    , m_context(store.newContext())
{
    setObjectName(s("CustomFieldsWindow"));
    setAttribute(Qt::WA_DeleteOnClose);
    setProperty(MainWindow::windowKindProperty(), int(app::WindowKind::Other));
    setWindowTitle(tr("Custom Fields"));
    setWindowIcon(QIcon::fromTheme(s("document-properties")));

    m_tabs = new QTabWidget(this);
    m_tabs->setObjectName(s("tabs"));
    m_tabs->setDocumentMode(true);
    struct GroupOf
    {
        const char* prefix;
        const char* name;
        QString title;
    };
    const GroupOf groups[GroupCount] = {{"my_", "myCompanyView", tr("&My Company")},
                                        {"client_", "clientsView", tr("&Clients")},
                                        {"item_", "itemsView", tr("&Items")}};
    for (int group = 0; group < GroupCount; ++group) {
        auto* model = new CustomFieldsModel(*m_context, s(groups[group].prefix), prompter, this);
        auto* view = new QTableView(m_tabs);
        view->setObjectName(s(groups[group].name));
        view->setModel(model);
        view->setSelectionBehavior(QAbstractItemView::SelectRows);
        view->setSelectionMode(QAbstractItemView::SingleSelection);
        view->setEditTriggers(QAbstractItemView::DoubleClicked | QAbstractItemView::EditKeyPressed |
                              QAbstractItemView::AnyKeyPressed);
        view->setAlternatingRowColors(true);
        view->setWordWrap(false);
        view->verticalHeader()->hide();
        view->verticalHeader()->setDefaultSectionSize(
            fontMetrics().lineSpacing() + 2 * style()->pixelMetric(QStyle::PM_FocusFrameVMargin) + 6);
        view->horizontalHeader()->setHighlightSections(false);
        view->horizontalHeader()->setSectionResizeMode(CustomFieldsModel::Field,
                                                       QHeaderView::ResizeToContents);
        view->horizontalHeader()->setSectionResizeMode(CustomFieldsModel::Label, QHeaderView::Stretch);
        // Typing starts on the label, the only column that is edited.
        view->setCurrentIndex(model->index(0, CustomFieldsModel::Label));
        m_tabs->addTab(view, groups[group].title);
        m_views[group] = view;
        m_models[group] = model;
    }

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(m_tabs);

    if (!WindowPlacement::restore(this))
        resize(fontMetrics().averageCharWidth() * 70, fontMetrics().lineSpacing() * 26);
}

CustomFieldsWindow::~CustomFieldsWindow()
{
    // The views and the models go before the context whose records they show.
    delete m_tabs;
    for (editors::CustomFieldsModel* model : m_models)
        delete model;
}

void CustomFieldsWindow::closeEvent(QCloseEvent* event)
{
    // A label still being typed is saved as leaving its cell would.
    for (QTableView* view : m_views) {
        if (QWidget* editor = view->indexWidget(view->currentIndex()))
            Q_EMIT view->itemDelegate()->commitData(editor);
    }
    WindowPlacement::save(this);
    event->accept();
}

} // namespace corvanta::ui
