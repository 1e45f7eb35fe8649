#pragma once

#include <QColor>
#include <QFont>
#include <QHash>
#include <QRectF>
#include <QString>
#include <memory>
#include <vector>

class QPainter;
class QTextLayout;

namespace corvanta::templates {

// How a text element draws its text: font (with underline and strike-through), colour, the
// colour behind the glyphs, and paragraph alignment (`alignment`: 0 left, 1 right, 2 centre,
// 3 justified, 4 natural).
struct TextStyle
{
    QFont font;
    QColor color = Qt::black;
    QColor background; // invalid or transparent: nothing behind the glyphs
    int alignment = 0;

    // Measured once per style, so that a text that plainly fits on one line is measured without
    // being laid out: the height of one line, and the advance of every character met so far
    // (negative for one the font lacks).
    mutable double lineHeight = -1;
    mutable QHash<char16_t, double> advances;
};

// A text in its element's style, broken into lines by word wrap at a given width (a word wider
// than the line is broken where it must). A line feed starts a new paragraph. Lines follow each
// other at the font's line spacing; an empty text takes no height.
class StyledText
{
public:
    StyledText(const TextStyle& style, const QString& text);
    ~StyledText();
    StyledText(StyledText&&) noexcept;
    StyledText& operator=(StyledText&&) noexcept;

    // The height of the text's lines at `width`, however tall.
    double height(double width) const;
    // Draws the text's lines from the top-left corner of `rect` at its width.
    void draw(QPainter& painter, const QRectF& rect) const;

private:
    struct Paragraph;
    bool plainlyFitsOneLine(double width) const;
    const std::vector<Paragraph>& laidOut(double width) const;

    const TextStyle* m_style;
    QString m_text;
    mutable std::vector<Paragraph> m_paragraphs;
    mutable double m_width = -1;
    mutable double m_height = 0;
};

} // namespace corvanta::templates
