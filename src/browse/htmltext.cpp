#include "browse/htmltext.h"

#include <QRegularExpression>
#include <QVariant>

namespace corvanta::browse {

QString HtmlText::escaped(const QString& text)
{
    QString result = text.toHtmlEscaped();
    return result.replace(QLatin1Char('\''), QLatin1String("&#39;"));
}

QString HtmlText::multiline(const QString& text)
{
    static const QRegularExpression lineBreak(QStringLiteral("\r\n|\r|\n"));
    QStringList lines = text.split(lineBreak);
    for (QString& line : lines)
        line = escaped(line);
    return lines.join(QLatin1String("<br>"));
}

QString HtmlText::scriptString(const QString& text)
{
    QString result;
    result.reserve(text.size() + 2);
    result += QLatin1Char('"');
    for (const QChar c : text) {
        const char16_t u = c.unicode();
        // Characters that could end the literal, the script element or a line are written as
        // \uXXXX; everything else stays as it is.
        if (u < 0x20 || u == '"' || u == '\'' || u == '\\' || u == '<' || u == '>' || u == '&' ||
            u == 0x2028 || u == 0x2029)
            result += QStringLiteral("\\u%1").arg(int(u), 4, 16, QLatin1Char('0'));
        else
            result += c;
    }
    result += QLatin1Char('"');
    return result;
}

QString HtmlText::scriptArgument(const QString& text)
{
    // The escapes of a double-quoted literal keep single quotes out as well; the attribute's
    // own escaping comes on top (it leaves nothing to do after the \u escapes, but costs little).
    const QString literal = scriptString(text);
    return escaped(literal.mid(1, literal.size() - 2));
}

QString HtmlText::colour(const QVariant& value, const QString& fallback)
{
    if (value.isNull())
        return fallback;
    const QColor c = value.value<QColor>();
    return c.isValid() ? c.name(QColor::HexRgb) : fallback;
}

} // namespace corvanta::browse
