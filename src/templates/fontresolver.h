#pragma once

#include <QFont>
#include <QHash>
#include <QString>

class QPaintDevice;

namespace corvanta::templates {

// Turns an element's `font_name` (a full or PostScript name such as "Helvetica-Bold" or
// "Arial Italic") and `font_size` into the font that draws it. Helvetica and Arial are drawn with
// the metric-compatible Liberation Sans, Times with Liberation Serif, Courier with Liberation
// Mono; any other installed family is used as it is. An unknown font falls back to Arial at 12
// points whatever size was asked. Fonts are resolved for `device`, the device that measures and
// draws, and kept, so that a long document looks each font up once.
class FontResolver
{
public:
    explicit FontResolver(const QPaintDevice* device);

    QFont font(const QString& fontName, double size);

    // The installed family that draws a family name, or empty when none does.
    static QString installedFamily(const QString& family);

private:
    QFont resolve(const QString& fontName, double size) const;

    const QPaintDevice* m_device;
    QHash<QString, QFont> m_fonts;
};

} // namespace corvanta::templates
