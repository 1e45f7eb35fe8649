#include "sidebardelegate.h"

#include "browse/sidebarmodel.h"
#include "taglabel.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QHelpEvent>
#include <QLineEdit>
#include <QPainter>
#include <QPainterPath>
#include <QToolTip>
#include <algorithm>
#include <cmath>

namespace corvanta::ui {

using browse::SidebarModel;

namespace {

// The first of the names that the icon theme has; the last one otherwise.
QIcon themeIcon(std::initializer_list<const char*> names)
{
    for (const char* name : names) {
        const QString iconName = QString::fromLatin1(name);
        if (QIcon::hasThemeIcon(iconName))
            return QIcon::fromTheme(iconName);
    }
    return QIcon::fromTheme(QString::fromLatin1(*std::prev(names.end())));
}

// A folder with a small magnifier in its lower right corner, for themes that draw no saved
// search of their own.
QIcon searchFolderIcon(const QIcon& folder)
{
    const QIcon lens = themeIcon({"edit-find", "system-search"});
    if (lens.isNull() || folder.isNull())
        return folder;
    QIcon icon;
    for (const int extent : {16, 22, 32, 48}) {
        for (const QIcon::Mode mode : {QIcon::Normal, QIcon::Selected}) {
            QPixmap pixmap(extent, extent);
            pixmap.fill(Qt::transparent);
            QPainter painter(&pixmap);
            folder.paint(&painter, pixmap.rect(), Qt::AlignCenter, mode);
            // The folder's corner is cleared first, so that the lens does not run into its lines.
            const int badge = extent * 5 / 8;
            const QRect corner(extent - badge, extent - badge, badge, badge);
            painter.setRenderHint(QPainter::Antialiasing, true);
            painter.setCompositionMode(QPainter::CompositionMode_Clear);
            painter.setPen(Qt::NoPen);
            painter.setBrush(Qt::black);
            painter.drawRoundedRect(corner.adjusted(-1, -1, 1, 1), 2, 2);
            painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
            lens.paint(&painter, corner, Qt::AlignCenter, mode);
            painter.end();
            icon.addPixmap(pixmap, mode);
        }
    }
    return icon;
}

double luminance(const QColor& colour)
{
    const auto channel = [](double c) {
        return c <= 0.03928 ? c / 12.92 : std::pow((c + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * channel(colour.redF()) + 0.7152 * channel(colour.greenF()) +
           0.0722 * channel(colour.blueF());
}

double contrast(const QColor& a, const QColor& b)
{
    const double x = luminance(a);
    const double y = luminance(b);
    return (std::max(x, y) + 0.05) / (std::min(x, y) + 0.05);
}

// Of the candidates, the one that reads best on `fill`.
QColor readableOn(const QColor& fill, const QColor& first, const QColor& second)
{
    return contrast(fill, first) >= contrast(fill, second) ? first : second;
}

QColor mixed(const QColor& a, const QColor& b, double share)
{
    return QColor::fromRgbF(float(a.redF() * (1 - share) + b.redF() * share),
                            float(a.greenF() * (1 - share) + b.greenF() * share),
                            float(a.blueF() * (1 - share) + b.blueF() * share));
}

QPalette::ColorGroup colourGroup(const QStyleOptionViewItem& option)
{
    if (!(option.state & QStyle::State_Enabled))
        return QPalette::Disabled;
    return option.state & QStyle::State_Active ? QPalette::Active : QPalette::Inactive;
}

QFont groupFont(const QFont& base)
{
    QFont font = base;
    font.setBold(true);
    font.setCapitalization(QFont::SmallCaps);
    return font;
}

QFont badgeFont(const QFont& base)
{
    QFont font = base;
    font.setPointSizeF(base.pointSizeF() > 0 ? base.pointSizeF() * 0.85 : 8);
    return font;
}

bool isGroup(const QModelIndex& index)
{
    return index.data(SidebarModel::IsGroupRole).toBool();
}

int margin(const QStyleOptionViewItem& option)
{
    const QStyle* style = option.widget ? option.widget->style() : QApplication::style();
    return style->pixelMetric(QStyle::PM_FocusFrameHMargin, &option, option.widget) + 2;
}

int iconExtent(const QStyleOptionViewItem& option)
{
    const QStyle* style = option.widget ? option.widget->style() : QApplication::style();
    return style->pixelMetric(QStyle::PM_SmallIconSize, &option, option.widget);
}

// Room above a group's heading, setting the groups apart.
int groupSpacing(const QFontMetrics& metrics)
{
    return metrics.height() / 2;
}

} // namespace

SidebarDelegate::SidebarDelegate(QObject* parent)
    : QStyledItemDelegate(parent)
    , m_folderIcon(themeIcon({"folder"}))
{
    // Themes without a saved-search folder would otherwise hand out their plain folder for it.
    const QIcon saved = QIcon::fromTheme(QStringLiteral("folder-saved-search"));
    m_smartFolderIcon =
        saved.name() == QStringLiteral("folder-saved-search") ? saved : searchFolderIcon(m_folderIcon);
}

SidebarDelegate::Layout SidebarDelegate::layoutOf(const QStyleOptionViewItem& option,
                                                  const QModelIndex& index) const
{
    Layout layout;
    const bool group = isGroup(index);
    const QFont font = group ? groupFont(option.font) : option.font;
    const QFontMetrics metrics(font);
    const int gap = margin(option);
    layout.content = option.rect.adjusted(0, group ? groupSpacing(option.fontMetrics) : 0, 0, 0);
    const QRect inner = layout.content.adjusted(gap, 0, -gap, 0);

    int right = inner.right() + 1;
    layout.count = index.data(SidebarModel::CountRole).toString();
    if (!layout.count.isEmpty()) {
        const QFontMetrics small(badgeFont(option.font));
        const int height = qMin(small.height() + 2, inner.height());
        const int width = qMax(small.horizontalAdvance(layout.count) + small.height(), height * 3 / 2);
        layout.badge = QRect(right - width, inner.center().y() - height / 2 + 1, width, height);
        right = layout.badge.left() - gap;
    }

    int left = inner.left();
    const qint64 type = index.data(SidebarModel::TypeRole).toLongLong();
    const bool tag = index.data(SidebarModel::IsTagRole).toBool();
    if (!group && !tag && type <= 0) {
        const int extent = iconExtent(option);
        layout.icon = QRect(left, inner.center().y() - extent / 2 + 1, extent, extent);
        left = layout.icon.right() + 1 + gap;
    }

    const QString name = index.data(SidebarModel::NameRole).toString();
    const int available = qMax(0, right - left);
    if (tag) {
        // One pixel more than the label asks for: names are measured in whole pixels but laid
        // out in fractions, and a name that fits exactly would otherwise lose its last letters.
        const QSize label = TagLabel::sizeHint(metrics, name) + QSize(1, 0);
        layout.elided = label.width() > available;
        const int height = qMin(label.height(), inner.height());
        layout.name =
            QRect(left, inner.center().y() - height / 2 + 1, qMin(label.width(), available), height);
        layout.shownName = name; // the label elides it itself
    } else {
        layout.shownName = metrics.elidedText(name, Qt::ElideRight, available);
        layout.elided = layout.shownName != name;
        layout.name = QRect(left, inner.top(), available, inner.height());
    }
    return layout;
}

bool SidebarDelegate::isElided(const QStyleOptionViewItem& option, const QModelIndex& index) const
{
    return layoutOf(option, index).elided;
}

void SidebarDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                            const QModelIndex& index) const
{
    QStyleOptionViewItem opt(option);
    initStyleOption(&opt, index);
    const Layout layout = layoutOf(opt, index);
    const QWidget* widget = opt.widget;
    const QStyle* style = widget ? widget->style() : QApplication::style();
    const QPalette::ColorGroup group = colourGroup(opt);
    const bool selected = opt.state & QStyle::State_Selected;

    // The selection and hover background, drawn by the style under the row's content only.
    QStyleOptionViewItem panel(opt);
    panel.rect = layout.content;
    panel.text.clear();
    panel.icon = QIcon();
    style->drawPrimitive(QStyle::PE_PanelItemViewItem, &panel, painter, widget);

    painter->save();
    const bool heading = isGroup(index);
    const QColor text = selected  ? opt.palette.color(group, QPalette::HighlightedText)
                        : heading ? opt.palette.color(group, QPalette::PlaceholderText)
                                  : opt.palette.color(group, QPalette::Text);

    if (!layout.icon.isNull()) {
        const bool smart = index.data(SidebarModel::IsSmartFolderRole).toBool();
        const QIcon& icon = smart ? m_smartFolderIcon : m_folderIcon;
        if (selected) {
            // On the highlight the icon is drawn as a silhouette in the highlighted text's colour.
            QPixmap pixmap = icon.pixmap(layout.icon.size(), painter->device()->devicePixelRatioF());
            QPainter tint(&pixmap);
            tint.setCompositionMode(QPainter::CompositionMode_SourceIn);
            tint.fillRect(pixmap.rect(), text);
            tint.end();
            painter->drawPixmap(layout.icon, pixmap);
        } else {
            icon.paint(painter, layout.icon, Qt::AlignCenter, QIcon::Normal);
        }
    }

    if (index.data(SidebarModel::IsTagRole).toBool()) {
        const QColor foreground(index.data(SidebarModel::ForegroundColorRole).toString());
        const QColor background(index.data(SidebarModel::BackgroundColorRole).toString());
        painter->setFont(opt.font);
        TagLabel::paint(painter, layout.name, layout.shownName,
                        foreground.isValid() ? foreground : opt.palette.color(group, QPalette::Text),
                        background.isValid() ? background : opt.palette.color(group, QPalette::Dark));
        if (selected) {
            // A thin ring in the selected text's colour keeps the label apart from the highlight.
            painter->setRenderHint(QPainter::Antialiasing, true);
            painter->setPen(QPen(text, 1));
            painter->setBrush(Qt::NoBrush);
            const QRectF ring = QRectF(layout.name).adjusted(-0.5, -0.5, 0.5, 0.5);
            painter->drawRoundedRect(ring, ring.height() / 2, ring.height() / 2);
        }
    } else {
        painter->setFont(heading ? groupFont(opt.font) : opt.font);
        painter->setPen(text);
        painter->drawText(layout.name, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine,
                          layout.shownName);
    }

    if (!layout.badge.isNull() && layout.count == QStringLiteral("0")) {
        // Nothing to list: the number stays, quietly, without its badge.
        painter->setFont(badgeFont(opt.font));
        painter->setPen(selected ? text : opt.palette.color(group, QPalette::PlaceholderText));
        painter->drawText(layout.badge, Qt::AlignCenter | Qt::TextSingleLine, layout.count);
    } else if (!layout.badge.isNull()) {
        const QColor highlight = opt.palette.color(group, QPalette::Highlight);
        const QColor fill =
            selected ? mixed(highlight, text, 0.25) : opt.palette.color(group, QPalette::Midlight);
        const QColor number = selected ? text
                                       : readableOn(fill, opt.palette.color(group, QPalette::Text),
                                                    opt.palette.color(group, QPalette::Base));
        painter->setRenderHint(QPainter::Antialiasing, true);
        QPainterPath shape;
        const QRectF area(layout.badge);
        shape.addRoundedRect(area, area.height() / 2, area.height() / 2);
        painter->fillPath(shape, fill);
        painter->setFont(badgeFont(opt.font));
        painter->setPen(number);
        painter->drawText(layout.badge, Qt::AlignCenter | Qt::TextSingleLine, layout.count);
    }
    painter->restore();

    if (opt.state & QStyle::State_HasFocus) {
        QStyleOptionFocusRect focus;
        focus.QStyleOption::operator=(opt);
        focus.rect = layout.content;
        focus.state |= QStyle::State_KeyboardFocusChange;
        focus.backgroundColor = opt.palette.color(group, selected ? QPalette::Highlight : QPalette::Base);
        style->drawPrimitive(QStyle::PE_FrameFocusRect, &focus, painter, widget);
    }
}

QSize SidebarDelegate::sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const
{
    QStyleOptionViewItem opt(option);
    initStyleOption(&opt, index);
    const QFontMetrics& metrics = opt.fontMetrics;
    // Every row as high as a tag label, so that the rows keep one rhythm whatever they show.
    const int row = std::max({TagLabel::sizeHint(metrics, QStringLiteral("X")).height(), iconExtent(opt),
                              metrics.height()}) +
                    4;
    const bool group = isGroup(index);
    const QString name = index.data(SidebarModel::NameRole).toString();
    const QFontMetrics nameMetrics(group ? groupFont(opt.font) : opt.font);
    const int gap = margin(opt);
    int width = 2 * gap + nameMetrics.horizontalAdvance(name) + iconExtent(opt) + gap;
    const QString count = index.data(SidebarModel::CountRole).toString();
    if (!count.isEmpty())
        width += gap + QFontMetrics(badgeFont(opt.font)).horizontalAdvance(count) + metrics.height();
    return {width, row + (group ? groupSpacing(metrics) : 0)};
}

QWidget* SidebarDelegate::createEditor(QWidget* parent, const QStyleOptionViewItem& option,
                                       const QModelIndex& index) const
{
    // Folders, tags and smart folders are edited in their sheets; only a group's name is typed
    // into its row.
    if (!isGroup(index))
        return nullptr;
    QWidget* editor = QStyledItemDelegate::createEditor(parent, option, index);
    if (editor)
        editor->setObjectName(QStringLiteral("groupNameEditor"));
    return editor;
}

void SidebarDelegate::updateEditorGeometry(QWidget* editor, const QStyleOptionViewItem& option,
                                           const QModelIndex& index) const
{
    const Layout layout = layoutOf(option, index);
    const int right = layout.badge.isNull() ? layout.content.right() : layout.badge.left() - 1;
    editor->setGeometry(
        QRect(QPoint(layout.name.left() - 2, layout.content.top()), QPoint(right, layout.content.bottom())));
}

bool SidebarDelegate::helpEvent(QHelpEvent* event, QAbstractItemView* view,
                                const QStyleOptionViewItem& option, const QModelIndex& index)
{
    if (event && view && index.isValid() && event->type() == QEvent::ToolTip) {
        const Layout layout = layoutOf(option, index);
        if (layout.elided) {
            QToolTip::showText(event->globalPos(), index.data(SidebarModel::NameRole).toString(), view,
                               view->visualRect(index));
            return true;
        }
    }
    return QStyledItemDelegate::helpEvent(event, view, option, index);
}

} // namespace corvanta::ui
