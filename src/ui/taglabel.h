#pragma once

#include <QColor>
#include <QWidget>

class QPainter;

namespace corvanta::ui {

// A tag drawn the one way the program draws tags: its name in its font colour on a rounded
// label of its background colour. The sidebar's tree, the record lists and the tag sheet's
// preview all draw through here, so that a tag looks the same wherever it appears.
class TagLabel
{
public:
    // Draws the label filling `rect` (its height is the label's); a name too long for the
    // width is elided at its end.
    static void paint(QPainter* painter, const QRect& rect, const QString& text, const QColor& fg,
                      const QColor& bg);
    // The size of the label of `text` in the font measured by `metrics`.
    static QSize sizeHint(const QFontMetrics& metrics, const QString& text);
};

// One tag label on its own, as the tag sheet previews the tag being edited. Its accessible name
// and, when the name does not fit, its tool tip carry the full text.
class TagLabelWidget : public QWidget
{
    Q_OBJECT

public:
    explicit TagLabelWidget(QWidget* parent = nullptr);

    QString text() const { return m_text; }
    QColor foreground() const { return m_foreground; }
    QColor background() const { return m_background; }

    void setText(const QString& text);
    void setColors(const QColor& foreground, const QColor& background);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    QSize labelSize() const;
    void updateToolTip();

    QString m_text;
    QColor m_foreground = Qt::white;
    QColor m_background = Qt::gray;
};

} // namespace corvanta::ui
