#include "tagspopover.h"

#include "store/record.h"
#include "taglabel.h"

#include <QApplication>
#include <QKeyEvent>
#include <QLabel>
#include <QListWidget>
#include <QMouseEvent>
#include <QPainter>
#include <QScreen>
#include <QStyledItemDelegate>
#include <QVBoxLayout>

namespace corvanta::ui {

namespace {

constexpr int kTagRole = Qt::UserRole + 1;
constexpr int kForegroundRole = Qt::UserRole + 2;
constexpr int kBackgroundRole = Qt::UserRole + 3;
// Rows shown before the list scrolls.
constexpr int kVisibleRows = 12;

// A row of the list: the check box, then the tag drawn as its label. A click anywhere on the
// row ticks or unticks it, so the label itself is a target, not only the small box.
class TagRowDelegate : public QStyledItemDelegate
{
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override
    {
        QStyleOptionViewItem opt = option;
        initStyleOption(&opt, index);
        const QWidget* widget = opt.widget;
        QStyle* style = widget ? widget->style() : QApplication::style();
        const QString name = opt.text;
        opt.text.clear();
        style->drawControl(QStyle::CE_ItemViewItem, &opt, painter, widget);

        const QRect text = style->subElementRect(QStyle::SE_ItemViewItemText, &opt, widget);
        const QSize label = TagLabel::sizeHint(opt.fontMetrics, name);
        QRect area(0, 0, qMin(label.width(), text.width()), label.height());
        area.moveCenter(text.center());
        const bool rightToLeft = opt.direction == Qt::RightToLeft;
        if (rightToLeft)
            area.moveRight(text.right());
        else
            area.moveLeft(text.left());

        const QPalette::ColorGroup group =
            opt.state & QStyle::State_Enabled ? QPalette::Normal : QPalette::Disabled;
        const QColor foreground = index.data(kForegroundRole).value<QColor>();
        const QColor background = index.data(kBackgroundRole).value<QColor>();
        painter->save();
        painter->setFont(opt.font);
        TagLabel::paint(painter, area, name,
                        foreground.isValid() ? foreground : opt.palette.color(group, QPalette::Text),
                        background.isValid() ? background : opt.palette.color(group, QPalette::Dark));
        painter->restore();
    }

    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override
    {
        QSize size = QStyledItemDelegate::sizeHint(option, index);
        const QSize label = TagLabel::sizeHint(option.fontMetrics, index.data(Qt::DisplayRole).toString());
        const int spacing = option.fontMetrics.height() / 4;
        size.setHeight(qMax(size.height(), label.height() + spacing));
        return size;
    }

    bool editorEvent(QEvent* event, QAbstractItemModel* model, const QStyleOptionViewItem& option,
                     const QModelIndex& index) override
    {
        if (!(index.flags() & Qt::ItemIsUserCheckable) || !(index.flags() & Qt::ItemIsEnabled))
            return false;
        switch (event->type()) {
        case QEvent::MouseButtonPress:
        case QEvent::MouseButtonDblClick:
            return static_cast<QMouseEvent*>(event)->button() == Qt::LeftButton;
        case QEvent::MouseButtonRelease: {
            const auto* mouse = static_cast<QMouseEvent*>(event);
            if (mouse->button() != Qt::LeftButton || !option.rect.contains(mouse->position().toPoint()))
                return false;
            break;
        }
        case QEvent::KeyPress: {
            const int key = static_cast<QKeyEvent*>(event)->key();
            if (key != Qt::Key_Space && key != Qt::Key_Select)
                return false;
            break;
        }
        default:
            return false;
        }
        const bool checked = index.data(Qt::CheckStateRole).toInt() == Qt::Checked;
        return model->setData(index, checked ? Qt::Unchecked : Qt::Checked, Qt::CheckStateRole);
    }
};

} // namespace

TagsPopover::TagsPopover(store::Record* record, QWidget* parent)
    : QWidget(parent, Qt::Popup)
    , m_choices(record)
{
    setObjectName(QStringLiteral("TagsPopover"));
    setAccessibleName(tr("Tags"));

    m_list = new QListWidget(this);
    m_list->setObjectName(QStringLiteral("tagsList"));
    m_list->setAccessibleName(tr("Tags"));
    m_list->setItemDelegate(new TagRowDelegate(m_list));
    m_list->setSelectionMode(QAbstractItemView::SingleSelection);
    m_list->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_list->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_list->setUniformItemSizes(true);
    m_list->setFrameShape(QFrame::NoFrame);
    m_list->installEventFilter(this);

    m_emptyLabel =
        new QLabel(tr("There are no tags for this kind of record. Make one in the sidebar."), this);
    m_emptyLabel->setObjectName(QStringLiteral("noTagsLabel"));
    m_emptyLabel->setWordWrap(true);
    m_emptyLabel->setForegroundRole(QPalette::PlaceholderText);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(
        style()->pixelMetric(QStyle::PM_MenuHMargin) + 2, style()->pixelMetric(QStyle::PM_MenuVMargin) + 2,
        style()->pixelMetric(QStyle::PM_MenuHMargin) + 2, style()->pixelMetric(QStyle::PM_MenuVMargin) + 2);
    layout->addWidget(m_list);
    layout->addWidget(m_emptyLabel);

    connect(m_list, &QListWidget::itemChanged, this, &TagsPopover::itemChanged);
    reload();
}

QList<browse::TagChoices::Row> TagsPopover::rows() const
{
    return m_rows;
}

void TagsPopover::reload()
{
    const int current = m_list->currentRow();
    m_reloading = true;
    m_rows = m_choices.rows();
    m_list->clear();
    int widest = 0;
    const QFontMetrics metrics = m_list->fontMetrics();
    for (const browse::TagChoices::Row& row : std::as_const(m_rows)) {
        auto* item = new QListWidgetItem(row.name, m_list);
        item->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsUserCheckable);
        item->setCheckState(row.selected ? Qt::Checked : Qt::Unchecked);
        item->setData(kForegroundRole, row.foreground);
        item->setData(kBackgroundRole, row.background);
        item->setData(kTagRole, QVariant::fromValue(row.tag));
        widest = qMax(widest, TagLabel::sizeHint(metrics, row.name).width());
    }
    m_reloading = false;
    if (!m_rows.isEmpty())
        m_list->setCurrentRow(qBound(0, current, int(m_rows.size()) - 1));

    const bool empty = m_rows.isEmpty();
    m_list->setVisible(!empty);
    m_emptyLabel->setVisible(empty);
    if (!empty) {
        // As wide as the widest label and its check box, within reason; as tall as the rows
        // up to a dozen, the rest scroll.
        const int check = style()->pixelMetric(QStyle::PM_IndicatorWidth) + 4 * metrics.averageCharWidth();
        const int width =
            qBound(metrics.averageCharWidth() * 20, widest + check, metrics.averageCharWidth() * 48);
        const int rowHeight = m_list->sizeHintForRow(0);
        const int shown = qMin(int(m_rows.size()), kVisibleRows);
        const int scrollBar =
            m_rows.size() > kVisibleRows ? style()->pixelMetric(QStyle::PM_ScrollBarExtent) : 0;
        m_list->setFixedSize(width + scrollBar + 2 * m_list->frameWidth(),
                             rowHeight * shown + 2 * m_list->frameWidth());
    } else {
        m_emptyLabel->setFixedWidth(metrics.averageCharWidth() * 32);
    }
    layout()->activate();
    resize(sizeHint());
}

void TagsPopover::itemChanged(QListWidgetItem* item)
{
    if (m_reloading)
        return;
    auto* tag = item->data(kTagRole).value<store::Record*>();
    const bool selected = item->checkState() == Qt::Checked;
    const bool changed = m_choices.setSelected(tag, selected);
    // Rebuilt from the record so that the rows always say what it carries.
    const int row = m_list->row(item);
    reload();
    m_list->setCurrentRow(row);
    if (changed)
        Q_EMIT tagsChanged();
}

void TagsPopover::toggleRow(int row)
{
    QListWidgetItem* item = m_list->item(row);
    if (!item)
        return;
    item->setCheckState(item->checkState() == Qt::Checked ? Qt::Unchecked : Qt::Checked);
}

void TagsPopover::showUnder(QWidget* button)
{
    reload();
    QPoint below = button->mapToGlobal(QPoint(0, button->height()));
    const QSize size = sizeHint().expandedTo(minimumSizeHint());
    if (const QScreen* screen = button->screen()) {
        const QRect available = screen->availableGeometry();
        if (below.y() + size.height() > available.bottom())
            below.setY(button->mapToGlobal(QPoint(0, 0)).y() - size.height());
        below.setX(
            qBound(available.left(), below.x(), qMax(available.left(), available.right() - size.width())));
    }
    move(below);
    show();
    if (m_rows.isEmpty()) {
        setFocus();
    } else {
        m_list->setFocus();
        if (m_list->currentRow() < 0)
            m_list->setCurrentRow(0);
    }
}

void TagsPopover::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Escape) {
        event->accept();
        close();
        return;
    }
    QWidget::keyPressEvent(event);
}

bool TagsPopover::eventFilter(QObject* watched, QEvent* event)
{
    // The list would keep Escape to itself; here it closes the popover.
    if (watched == m_list && event->type() == QEvent::KeyPress &&
        static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape) {
        close();
        return true;
    }
    return QWidget::eventFilter(watched, event);
}

} // namespace corvanta::ui
