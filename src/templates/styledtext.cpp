#include "styledtext.h"

#include <QFontMetricsF>
#include <QPainter>
#include <QRegularExpression>
#include <QTextLayout>
#include <optional>

namespace corvanta::templates {

struct StyledText::Paragraph
{
    std::unique_ptr<QTextLayout> layout;
    double top = 0;
};

namespace {

Qt::Alignment horizontalAlignment(int alignment)
{
    switch (alignment) {
    case 1:
        return Qt::AlignRight | Qt::AlignAbsolute;
    case 2:
        return Qt::AlignHCenter;
    case 3:
        return Qt::AlignJustify;
    case 4:
        return Qt::AlignLeading; // natural: the start of the writing direction
    default:
        return Qt::AlignLeft | Qt::AlignAbsolute; // left even in right-to-left writing
    }
}

QStringList paragraphsOf(const QString& text)
{
    static const QRegularExpression breaks(QStringLiteral("\r\n|[\r\n\u2029]"));
    if (!text.contains(QLatin1Char('\n')) && !text.contains(QLatin1Char('\r')) &&
        !text.contains(QChar::ParagraphSeparator))
        return {text};
    return text.split(breaks);
}

} // namespace

StyledText::StyledText(const TextStyle& style, const QString& text)
    : m_style(&style)
    , m_text(text)
{}

StyledText::~StyledText() = default;
StyledText::StyledText(StyledText&&) noexcept = default;
StyledText& StyledText::operator=(StyledText&&) noexcept = default;

const std::vector<StyledText::Paragraph>& StyledText::laidOut(double width) const
{
    if (width == m_width)
        return m_paragraphs;
    m_width = width;
    m_paragraphs.clear();
    m_height = 0;
    if (m_text.isEmpty())
        return m_paragraphs;

    QTextOption option(horizontalAlignment(m_style->alignment));
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    option.setUseDesignMetrics(true);
    const double lineWidth = qMax(0.0, width);
    for (const QString& text : paragraphsOf(m_text)) {
        Paragraph paragraph;
        paragraph.top = m_height;
        paragraph.layout = std::make_unique<QTextLayout>(text, m_style->font);
        paragraph.layout->setTextOption(option);
        paragraph.layout->setCacheEnabled(true);
        double y = 0;
        paragraph.layout->beginLayout();
        for (QTextLine line = paragraph.layout->createLine(); line.isValid();
             line = paragraph.layout->createLine()) {
            line.setLeadingIncluded(true);
            line.setLineWidth(lineWidth);
            line.setPosition(QPointF(0, y));
            y += line.height();
        }
        paragraph.layout->endLayout();
        m_height += y;
        m_paragraphs.push_back(std::move(paragraph));
    }
    return m_paragraphs;
}

bool StyledText::plainlyFitsOneLine(double width) const
{
    // Shaping never makes a line of these characters much wider than their advances added up
    // (kerning mostly narrows it); a text well inside the width keeps to one line.
    constexpr double kShapingAllowance = 0.97;
    std::optional<QFontMetricsF> metrics;
    double advance = 0;
    for (const QChar c : m_text) {
        if (c.isSurrogate() || c.category() == QChar::Mark_NonSpacing ||
            c.category() == QChar::Other_Control || c == QChar::LineSeparator ||
            c == QChar::ParagraphSeparator)
            return false;
        auto found = m_style->advances.constFind(c.unicode());
        if (found == m_style->advances.constEnd()) {
            if (!metrics)
                metrics.emplace(m_style->font);
            found = m_style->advances.insert(c.unicode(),
                                             metrics->inFont(c) ? metrics->horizontalAdvance(c) : -1);
        }
        if (*found < 0)
            return false;
        advance += *found;
        if (advance > width * kShapingAllowance)
            return false;
    }
    return true;
}

double StyledText::height(double width) const
{
    if (m_width != width && !m_text.isEmpty() && plainlyFitsOneLine(width)) {
        if (m_style->lineHeight < 0) {
            const StyledText sample(*m_style, QStringLiteral("X"));
            sample.laidOut(width);
            m_style->lineHeight = sample.m_height;
        }
        return m_style->lineHeight;
    }
    laidOut(width);
    return m_height;
}

void StyledText::draw(QPainter& painter, const QRectF& rect) const
{
    const std::vector<Paragraph>& paragraphs = laidOut(rect.width());
    if (paragraphs.empty())
        return;
    const bool shaded = m_style->background.isValid() && m_style->background.alpha() > 0;
    painter.setPen(m_style->color);
    for (const Paragraph& paragraph : paragraphs) {
        const QPointF origin = rect.topLeft() + QPointF(0, paragraph.top);
        if (shaded) {
            for (int i = 0; i < paragraph.layout->lineCount(); ++i) {
                const QTextLine line = paragraph.layout->lineAt(i);
                if (line.textLength() > 0)
                    painter.fillRect(line.naturalTextRect().translated(origin), m_style->background);
            }
        }
        paragraph.layout->draw(&painter, origin);
    }
}

} // namespace corvanta::templates
