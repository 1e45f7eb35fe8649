#include "browserview.h"

#include "browse/pageaddress.h"
#include "browse/pagebridge.h"
#include "browse/sidebarmodel.h"
#include "browsercommands.h"
#include "detailpane.h"
#include "recordlistview.h"
#include "sidebarview.h"
#include "store/record.h"

#include <QHBoxLayout>
#include <QSettings>
#include <QSplitter>

namespace corvanta::ui {

BrowserView::BrowserView(store::Store& store, support::Prompter& prompter, EditorWindows* editors,
                         QWidget* parent)
    : QWidget(parent)
{
    setObjectName(QStringLiteral("BrowserView"));
    m_sidebar = new SidebarView(store, prompter);
    m_list = new RecordListView(store, prompter);
    m_detail = new DetailPane(store);
    m_detail->setPrompter(&prompter);
    m_commands = new BrowserCommands(store, prompter, *m_list, this, editors);

    m_inner = new QSplitter(Qt::Horizontal);
    m_inner->setObjectName(QStringLiteral("listDetailSplitter"));
    m_inner->addWidget(m_list);
    m_inner->addWidget(m_detail);
    m_inner->setStretchFactor(0, 1);
    m_inner->setStretchFactor(1, 1);
    m_inner->setChildrenCollapsible(false);

    m_outer = new QSplitter(Qt::Horizontal);
    m_outer->setObjectName(QStringLiteral("sidebarSplitter"));
    m_outer->addWidget(m_sidebar);
    m_outer->addWidget(m_inner);
    m_outer->setStretchFactor(0, 0);
    m_outer->setStretchFactor(1, 1);
    m_outer->setChildrenCollapsible(false);
    const int character = fontMetrics().averageCharWidth();
    m_outer->setSizes({character * 38, character * 160});
    m_inner->setSizes({character * 85, character * 75});

    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_outer);

    connect(m_sidebar, &SidebarView::categorySelected, this, &BrowserView::categorySelected);
    connect(m_list, &RecordListView::selectionChanged, this, &BrowserView::selectionChanged);
    connect(m_sidebar->model(), &QAbstractItemModel::dataChanged, this, &BrowserView::stateChanged);

    m_sidebar->restoreState();
}

BrowserView::~BrowserView() = default;

void BrowserView::categorySelected(store::Record* category)
{
    m_list->setCategory(category);
    selectionChanged();
}

void BrowserView::selectionChanged()
{
    const QList<store::Record*> selected = m_list->selectedRecords();
    m_detail->showRecord(selected.isEmpty() ? nullptr : selected.first());
    Q_EMIT stateChanged();
}

int BrowserView::selectionCount() const
{
    return int(m_list->selectedRecords().size());
}

int BrowserView::shownKind() const
{
    const std::optional<browse::PageAddress> shown = m_detail->bridge().currentTypeAndIdentifier();
    return shown ? int(shown->kind) : 0;
}

QString BrowserView::selectedNodeTitle() const
{
    store::Record* node = m_sidebar->selectedCategory();
    if (!node)
        return {};
    const QModelIndex index = m_sidebar->model()->indexOf(node);
    const QString name = index.data(browse::SidebarModel::NameRole).toString();
    const QString count = index.data(browse::SidebarModel::CountRole).toString();
    if (count.isEmpty())
        return name;
    return tr("%1 (%2)").arg(name, QLocale().toString(count.toLongLong()));
}

void BrowserView::saveLayout(QSettings& settings) const
{
    settings.setValue(QStringLiteral("browser/sidebarSplitter"), m_outer->saveState());
    settings.setValue(QStringLiteral("browser/listDetailSplitter"), m_inner->saveState());
}

void BrowserView::restoreLayout(const QSettings& settings)
{
    m_outer->restoreState(settings.value(QStringLiteral("browser/sidebarSplitter")).toByteArray());
    m_inner->restoreState(settings.value(QStringLiteral("browser/listDetailSplitter")).toByteArray());
}

} // namespace corvanta::ui
