#pragma once

#include "sectionfiller.h"

#include <QHash>
#include <QImage>
#include <QString>

class QPainter;

namespace corvanta::templates {

// Draws filled elements on a page painted top-down in points: lines, boxes (with closed corners
// and double borders), pictures from the template files folder, and texts inside their paddings.
class ElementPainter
{
public:
    explicit ElementPainter(const QString& templateFilesDirectory);

    void draw(QPainter& painter, const FilledElement& element);

    // An element's page rectangle (origin bottom-left) as the painter's top-down rectangle.
    static QRectF topDown(const QRectF& pageRect);

private:
    void drawBox(QPainter& painter, const ElementProperties& p, const QRectF& rect);
    void drawImage(QPainter& painter, const ElementProperties& p, const QRectF& rect);
    const QImage& picture(const QString& fileName);

    QString m_directory;
    QHash<QString, QImage> m_pictures;
};

} // namespace corvanta::templates
