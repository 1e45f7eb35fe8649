#pragma once

#include <QColor>
#include <QRectF>
#include <QString>

namespace corvanta::store {
class Record;
}

namespace corvanta::templates {

// The stored values of one `TemplateElements` record that placing and drawing need, read once
// per rendering so that a thousand rows do not read the same element a thousand times.
struct ElementProperties
{
    QString type;
    QString section;
    QString format;
    int pageSide = 0;
    qint64 zorder = 0;
    QRectF designed; // position_x, position_y, position_width, position_height

    int alignment = 0;
    QString fontName;
    double fontSize = 0;
    QColor fontColor;
    bool underline = false;
    bool strikethrough = false;
    QColor backgroundColor;
    double paddingLeft = 0;
    double paddingTop = 0;
    double paddingRight = 0;
    double paddingBottom = 0;

    QColor borderColor;
    double borderLineWidth = 0;
    int borderStyle = 0;
    bool borderLeft = false;
    bool borderTop = false;
    bool borderRight = false;
    bool borderBottom = false;
    double opacity = 1;

    static ElementProperties read(const store::Record& element);

    bool isText() const { return !type.startsWith(QLatin1String("shap")); }
    // Whether the element is placed on a page side: background elements on every side; the
    // elements of the details sections and of the table footer whatever side they were drawn on.
    bool belongsTo(const QString& askedSection, int askedPageSide) const;
};

} // namespace corvanta::templates
