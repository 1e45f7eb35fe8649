#include "recordlistview.h"

#include "browse/recordlistmodel.h"
#include "browse/sortmenu.h"
#include "store/record.h"
#include "store/store.h"

#include <QActionGroup>
#include <QContextMenuEvent>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QHelpEvent>
#include <QItemSelectionModel>
#include <QLabel>
#include <QMenu>
#include <QScopedValueRollback>
#include <QStyle>
#include <QTableView>
#include <QToolButton>
#include <QToolTip>
#include <QVBoxLayout>

namespace corvanta::ui {

using browse::RecordListModel;
using browse::SortMenu;
using predicate::RecordRef;

namespace {

// A page more than the selection needs is read at most this many times.
constexpr int kPagesToFind = 50;
// No column is made wider than this many average characters to fit its values.
constexpr int kWidestColumn = 40;

// The width of a column in average characters, by the attribute it shows.
int columnCharacters(const QString& key)
{
    static const QHash<QString, int> widths{
        {QStringLiteral("full_name"), 28},
        {QStringLiteral("name"), 28},
        {QStringLiteral("title"), 34},
        {QStringLiteral("emails"), 28},
        {QStringLiteral("phones"), 18},
        {QStringLiteral("code"), 12},
        {QStringLiteral("unit_price"), 12},
        {QStringLiteral("stock_current"), 10},
        {QStringLiteral("number_formatted"), 14},
        {QStringLiteral("date_creation"), 12},
        {QStringLiteral("date_start"), 12},
        {QStringLiteral("client_full_name"), 28},
        {QStringLiteral("sum_total"), 14},
        {QStringLiteral("done"), 8},
    };
    return widths.value(key, 16);
}

} // namespace

RecordListView::RecordListView(store::Store& store, support::Prompter& prompter, QWidget* parent)
    : QWidget(parent)
{
    // The list itself asks nothing: its commands, which BrowserCommands carries out, do.
    Q_UNUSED(prompter);
    setObjectName(QStringLiteral("RecordListView"));
    m_model = new RecordListModel(store.mainContext(), {}, this);

    m_sortMenu = new QMenu(this);
    m_sortMenu->setObjectName(QStringLiteral("sortMenu"));
    connect(m_sortMenu, &QMenu::aboutToShow, this, &RecordListView::fillSortMenu);

    m_sortButton = new QToolButton;
    m_sortButton->setObjectName(QStringLiteral("sortButton"));
    m_sortButton->setPopupMode(QToolButton::InstantPopup);
    m_sortButton->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    m_sortButton->setAutoRaise(true);
    m_sortButton->setMenu(m_sortMenu);
    m_sortButton->setToolTip(tr("Order of the list"));
    m_sortButton->setAccessibleName(tr("Sort"));
    m_sortLabel = new QLabel(tr("Sort &by:"));
    m_sortLabel->setBuddy(m_sortButton);

    m_table = new QTableView;
    m_table->setObjectName(QStringLiteral("recordTable"));
    m_table->setAccessibleName(tr("Records"));
    m_table->setModel(m_model);
    m_table->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_table->setSelectionMode(QAbstractItemView::ExtendedSelection);
    m_table->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_table->setShowGrid(false);
    m_table->setAlternatingRowColors(true);
    m_table->setWordWrap(false);
    m_table->setTextElideMode(Qt::ElideRight);
    m_table->setCornerButtonEnabled(false);
    m_table->setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
    m_table->verticalHeader()->hide();
    m_table->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    m_table->verticalHeader()->setDefaultSectionSize(
        fontMetrics().height() + 2 * style()->pixelMetric(QStyle::PM_FocusFrameVMargin) + 4);
    m_table->horizontalHeader()->setStretchLastSection(true);
    m_table->horizontalHeader()->setHighlightSections(false);
    m_table->horizontalHeader()->setSectionsClickable(false);
    m_table->horizontalHeader()->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    m_table->setContextMenuPolicy(Qt::CustomContextMenu);
    m_table->viewport()->installEventFilter(this);

    auto* header = new QHBoxLayout;
    header->addStretch();
    header->addWidget(m_sortLabel);
    header->addWidget(m_sortButton);

    header->setContentsMargins(style()->pixelMetric(QStyle::PM_LayoutLeftMargin), 0,
                               style()->pixelMetric(QStyle::PM_LayoutRightMargin) / 2, 0);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addLayout(header);
    layout->addWidget(m_table, 1);

    connect(m_model, &QAbstractItemModel::modelAboutToBeReset, this, &RecordListView::modelAboutToBeReset);
    connect(m_model, &QAbstractItemModel::modelReset, this, &RecordListView::modelWasReset);
    connect(m_table->selectionModel(), &QItemSelectionModel::selectionChanged, this,
            &RecordListView::tableSelectionChanged);
    connect(m_table, &QWidget::customContextMenuRequested, this, &RecordListView::contextMenuAt);

    updateSortButton();
}

RecordListView::~RecordListView() = default;

void RecordListView::setCategory(store::Record* category)
{
    const bool hadSelection = m_table->selectionModel()->hasSelection();
    {
        // Another node starts without a selection, even where it lists the same records.
        const QScopedValueRollback keep(m_keepSelection, false);
        m_model->setCategory(category);
    }
    m_table->scrollToTop();
    updateSortButton();
    if (hadSelection)
        Q_EMIT selectionChanged();
}

browse::ListKind RecordListView::kind() const
{
    return m_model->kind();
}

QList<store::Record*> RecordListView::selectedRecords() const
{
    QModelIndexList rows = m_table->selectionModel()->selectedRows();
    std::sort(rows.begin(), rows.end(),
              [](const QModelIndex& a, const QModelIndex& b) { return a.row() < b.row(); });
    QList<store::Record*> records;
    for (const QModelIndex& row : std::as_const(rows)) {
        if (store::Record* record = m_model->recordAt(row.row()))
            records << record;
    }
    return records;
}

QList<RecordRef> RecordListView::selectedRefs() const
{
    QList<RecordRef> refs;
    for (const store::Record* record : selectedRecords())
        refs << record->ref();
    return refs;
}

bool RecordListView::selectRecord(const RecordRef& record)
{
    int row = m_model->rowOf(record);
    for (int page = 0; row < 0 && page < kPagesToFind && m_model->canFetchMore(); ++page) {
        m_model->fetchMore();
        row = m_model->rowOf(record);
    }
    if (row < 0)
        return false;
    const QModelIndex index = m_model->index(row, 0);
    m_table->selectionModel()->setCurrentIndex(index, QItemSelectionModel::ClearAndSelect |
                                                          QItemSelectionModel::Rows);
    m_table->scrollTo(index);
    return true;
}

void RecordListView::fillSortMenu()
{
    m_sortMenu->clear();
    qDeleteAll(m_sortMenu->findChildren<QActionGroup*>(Qt::FindDirectChildrenOnly));
    const QList<SortMenu::Entry> entries = SortMenu::entries(kind(), m_model->sortDescriptors());
    auto* keys = new QActionGroup(m_sortMenu);
    auto* directions = new QActionGroup(m_sortMenu);
    bool separated = false;
    for (const SortMenu::Entry& entry : entries) {
        const bool isDirection = entry.tag >= 0;
        if (isDirection && !separated) {
            m_sortMenu->addSeparator();
            separated = true;
        }
        QAction* action = m_sortMenu->addAction(entry.title);
        action->setCheckable(true);
        action->setChecked(entry.checked);
        action->setData(entry.tag);
        action->setActionGroup(isDirection ? directions : keys);
        const int tag = entry.tag;
        connect(action, &QAction::triggered, this, [this, tag] { sortChosen(tag); });
    }
}

void RecordListView::sortChosen(int tag)
{
    m_model->setSortDescriptors(SortMenu::changed(kind(), m_model->sortDescriptors(), tag));
    updateSortButton();
    const QModelIndex current = m_table->currentIndex();
    if (current.isValid())
        m_table->scrollTo(current);
    else
        m_table->scrollToTop();
}

void RecordListView::updateSortButton()
{
    const bool sortable = kind() != browse::ListKind::None;
    const QString title = sortable ? SortMenu::buttonTitle(m_model->sortDescriptors()) : QString();
    m_sortButton->setText(sortable && title.isEmpty() ? tr("Sort") : title);
    const QList<store::SortDescriptor> sort = m_model->sortDescriptors();
    const bool ascending = sort.isEmpty() || sort.first().ascending;
    m_sortButton->setIcon(QIcon::fromTheme(ascending ? QStringLiteral("view-sort-ascending")
                                                     : QStringLiteral("view-sort-descending")));
    m_sortButton->setEnabled(sortable);
    m_sortLabel->setEnabled(sortable);
}

void RecordListView::modelAboutToBeReset()
{
    m_heldSelection = m_keepSelection ? selectedRefs() : QList<RecordRef>();
    m_resetting = true;
}

void RecordListView::modelWasReset()
{
    if (m_model->kind() != m_sizedKind || (!m_sizedWithRows && m_model->rowCount() > 0))
        sizeColumns();
    QItemSelection selection;
    QModelIndex current;
    QList<RecordRef> kept;
    for (const RecordRef& ref : std::as_const(m_heldSelection)) {
        const int row = m_model->rowOf(ref);
        if (row < 0)
            continue;
        kept << ref;
        selection.select(m_model->index(row, 0), m_model->index(row, m_model->columnCount() - 1));
        if (!current.isValid())
            current = m_model->index(row, 0);
    }
    QItemSelectionModel* selectionModel = m_table->selectionModel();
    if (current.isValid())
        selectionModel->setCurrentIndex(current, QItemSelectionModel::NoUpdate);
    selectionModel->select(selection, QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
    m_resetting = false;
    const bool changed = kept != m_heldSelection;
    m_heldSelection.clear();
    // With the selection kept as it was, the page shown stays and nobody needs to hear of it.
    if (changed)
        Q_EMIT selectionChanged();
}

void RecordListView::tableSelectionChanged()
{
    if (!m_resetting)
        Q_EMIT selectionChanged();
}

void RecordListView::contextMenuAt(const QPoint& position)
{
    // A right click on a row selects that row alone; the menu key acts on the selection there is.
    const QModelIndex index = m_table->indexAt(position);
    if (index.isValid()) {
        const QModelIndexList selected = m_table->selectionModel()->selectedRows();
        if (selected.size() != 1 || selected.first().row() != index.row())
            m_table->selectionModel()->setCurrentIndex(index, QItemSelectionModel::ClearAndSelect |
                                                                  QItemSelectionModel::Rows);
    } else if (!m_table->selectionModel()->hasSelection()) {
        return;
    }
    m_table->setFocus(Qt::MouseFocusReason);
    Q_EMIT contextMenuRequested(m_table->viewport()->mapToGlobal(position));
}

void RecordListView::sizeColumns()
{
    m_sizedKind = m_model->kind();
    m_sizedWithRows = m_model->rowCount() > 0;
    const QStringList keys = m_model->columnKeys();
    const int character = fontMetrics().averageCharWidth();
    QHeaderView* header = m_table->horizontalHeader();
    // The last column takes the rest of the width; the others fit the first page's values, within
    // reason, or a width for their kind of value while the list is empty.
    for (int column = 0; column + 1 < keys.size(); ++column) {
        int width = columnCharacters(keys.at(column)) * character;
        if (m_sizedWithRows) {
            m_table->resizeColumnToContents(column);
            width = qMin(header->sectionSize(column) + 2 * character, kWidestColumn * character);
        }
        header->resizeSection(column, width);
    }
}

bool RecordListView::showElidedText(const QPoint& position, const QPoint& globalPosition)
{
    const QModelIndex index = m_table->indexAt(position);
    const QString text = index.data(Qt::DisplayRole).toString();
    if (text.isEmpty())
        return false;
    // The cell's text margins are the style's focus frame on either side.
    const int margins = 2 * (style()->pixelMetric(QStyle::PM_FocusFrameHMargin, nullptr, m_table) + 1);
    if (m_table->fontMetrics().horizontalAdvance(text) + margins <= m_table->visualRect(index).width())
        return false;
    QToolTip::showText(globalPosition, text, m_table->viewport(), m_table->visualRect(index));
    return true;
}

bool RecordListView::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == m_table->viewport() && event->type() == QEvent::ToolTip) {
        const auto* help = static_cast<QHelpEvent*>(event);
        if (!showElidedText(help->pos(), help->globalPos()))
            QToolTip::hideText();
        return true;
    }
    return QWidget::eventFilter(watched, event);
}

} // namespace corvanta::ui
