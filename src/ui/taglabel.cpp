#include "taglabel.h"

#include <QPainter>
#include <QPainterPath>

namespace corvanta::ui {

namespace {

// The room left and right of the name: the round ends take half the height each.
int sidePadding(const QFontMetrics& metrics)
{
    return metrics.height() / 2;
}

int topPadding(const QFontMetrics& metrics)
{
    return qMax(1, metrics.height() / 8);
}

// The preview shows a long name elided rather than widening its sheet without end.
constexpr int kPreviewCharacters = 40;

} // namespace

void TagLabel::paint(QPainter* painter, const QRect& rect, const QString& text, const QColor& fg,
                     const QColor& bg)
{
    if (rect.isEmpty())
        return;
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing, true);
    const QRectF area = QRectF(rect).adjusted(0.5, 0.5, -0.5, -0.5);
    const qreal radius = area.height() / 2;
    QPainterPath shape;
    shape.addRoundedRect(area, radius, radius);
    painter->fillPath(shape, bg);

    const QFontMetrics metrics = painter->fontMetrics();
    const int padding = qMin(sidePadding(metrics), rect.width() / 4);
    const QRect textRect = rect.adjusted(padding, 0, -padding, 0);
    // Whole pixels measure a name that fits its label exactly a fraction short: only a name
    // wider than its label is elided.
    const QString shown = metrics.horizontalAdvance(text) <= textRect.width()
                              ? text
                              : metrics.elidedText(text, Qt::ElideRight, textRect.width());
    painter->setPen(fg);
    painter->drawText(textRect, Qt::AlignCenter | Qt::TextSingleLine, shown);
    painter->restore();
}

QSize TagLabel::sizeHint(const QFontMetrics& metrics, const QString& text)
{
    return {metrics.horizontalAdvance(text) + 2 * sidePadding(metrics),
            metrics.height() + 2 * topPadding(metrics)};
}

TagLabelWidget::TagLabelWidget(QWidget* parent)
    : QWidget(parent)
{
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
}

void TagLabelWidget::setText(const QString& text)
{
    if (text == m_text)
        return;
    m_text = text;
    setAccessibleName(text);
    updateToolTip();
    updateGeometry();
    update();
}

void TagLabelWidget::setColors(const QColor& foreground, const QColor& background)
{
    m_foreground = foreground;
    m_background = background;
    update();
}

QSize TagLabelWidget::labelSize() const
{
    return TagLabel::sizeHint(fontMetrics(), m_text);
}

QSize TagLabelWidget::sizeHint() const
{
    const QSize label = labelSize();
    return {qMin(label.width(), fontMetrics().averageCharWidth() * kPreviewCharacters), label.height()};
}

QSize TagLabelWidget::minimumSizeHint() const
{
    const QSize label = labelSize();
    return {qMin(label.width(), label.height() * 2), label.height()};
}

void TagLabelWidget::paintEvent(QPaintEvent* event)
{
    Q_UNUSED(event)
    QPainter painter(this);
    const QSize label = labelSize();
    const int width = qMin(label.width(), contentsRect().width());
    QRect area(QPoint(0, 0), QSize(width, label.height()));
    area.moveTop(contentsRect().top() + (contentsRect().height() - label.height()) / 2);
    area.moveLeft(layoutDirection() == Qt::RightToLeft ? contentsRect().right() - width + 1
                                                       : contentsRect().left());
    TagLabel::paint(&painter, area, m_text, m_foreground, m_background);
}

void TagLabelWidget::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    updateToolTip();
}

void TagLabelWidget::updateToolTip()
{
    setToolTip(labelSize().width() > contentsRect().width() ? m_text : QString());
}

} // namespace corvanta::ui
