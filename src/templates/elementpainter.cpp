#include "elementpainter.h"

#include "templatepage.h"

#include <QDir>
#include <QFileInfo>
#include <QPainter>

namespace corvanta::templates {

namespace {

QPen borderPen(const ElementProperties& p)
{
    QPen pen(p.borderColor.isValid() ? p.borderColor : QColor(Qt::black));
    pen.setWidthF(p.borderLineWidth);
    pen.setCapStyle(Qt::FlatCap);
    return pen;
}

// The shown sides of a box around `rect`, each lengthened by half a line width where it meets
// another shown side, so that the corner is closed.
void strokeSides(QPainter& painter, const ElementProperties& p, const QRectF& rect)
{
    const double half = p.borderLineWidth / 2;
    const double l = rect.left();
    const double t = rect.top();
    const double r = rect.right();
    const double b = rect.bottom();
    if (p.borderTop)
        painter.drawLine(QPointF(l - (p.borderLeft ? half : 0), t),
                         QPointF(r + (p.borderRight ? half : 0), t));
    if (p.borderBottom)
        painter.drawLine(QPointF(l - (p.borderLeft ? half : 0), b),
                         QPointF(r + (p.borderRight ? half : 0), b));
    if (p.borderLeft)
        painter.drawLine(QPointF(l, t - (p.borderTop ? half : 0)),
                         QPointF(l, b + (p.borderBottom ? half : 0)));
    if (p.borderRight)
        painter.drawLine(QPointF(r, t - (p.borderTop ? half : 0)),
                         QPointF(r, b + (p.borderBottom ? half : 0)));
}

} // namespace

ElementPainter::ElementPainter(const QString& templateFilesDirectory)
    : m_directory(templateFilesDirectory)
{}

QRectF ElementPainter::topDown(const QRectF& pageRect)
{
    return QRectF(pageRect.x(), TemplatePage::kHeight - pageRect.y() - pageRect.height(), pageRect.width(),
                  pageRect.height());
}

void ElementPainter::draw(QPainter& painter, const FilledElement& element)
{
    const ElementProperties& p = element.entry->properties;
    const QRectF rect = topDown(element.rect);
    if (p.type == QLatin1String("shape_horizontal_line")) {
        painter.setPen(borderPen(p));
        painter.drawLine(rect.topLeft(), rect.topRight());
    } else if (p.type == QLatin1String("shape_vertical_line")) {
        painter.setPen(borderPen(p));
        painter.drawLine(rect.topLeft(), rect.bottomLeft());
    } else if (p.type == QLatin1String("shape_box")) {
        drawBox(painter, p, rect);
    } else if (p.type == QLatin1String("shape_image")) {
        drawImage(painter, p, rect);
    } else if (p.isText()) {
        const QRectF inner = rect.adjusted(p.paddingLeft, p.paddingTop, -p.paddingRight, -p.paddingBottom);
        StyledText(element.entry->style, element.text).draw(painter, inner);
    }
}

void ElementPainter::drawBox(QPainter& painter, const ElementProperties& p, const QRectF& rect)
{
    if (p.backgroundColor.isValid() && p.backgroundColor.alpha() > 0)
        painter.fillRect(rect, p.backgroundColor);
    if (!(p.borderLeft || p.borderTop || p.borderRight || p.borderBottom))
        return;
    painter.setPen(borderPen(p));
    strokeSides(painter, p, rect);
    if (p.borderStyle == 9) {
        // The second stroke runs inside the first, one line width clear of it.
        const double inset = 2 * p.borderLineWidth;
        strokeSides(painter, p, rect.adjusted(inset, inset, -inset, -inset));
    }
}

void ElementPainter::drawImage(QPainter& painter, const ElementProperties& p, const QRectF& rect)
{
    const QImage& image = picture(p.format);
    if (image.isNull())
        return;
    const double opacity = painter.opacity();
    painter.setOpacity(qBound(0.0, p.opacity, 1.0));
    painter.drawImage(rect, image);
    painter.setOpacity(opacity);
}

const QImage& ElementPainter::picture(const QString& fileName)
{
    const auto found = m_pictures.constFind(fileName);
    if (found != m_pictures.constEnd())
        return *found;
    // Pictures lie directly in the template files folder; a name never leads out of it.
    const QString name = QFileInfo(fileName).fileName();
    QImage image;
    if (!name.isEmpty() && !m_directory.isEmpty())
        image.load(QDir(m_directory).filePath(name));
    return *m_pictures.insert(fileName, image);
}

} // namespace corvanta::templates
