#pragma once

#include <QColor>
#include <QString>

namespace corvanta::browse {

// Text put into a detail page. Every record value goes through one of these before it becomes
// part of the page, so that a client named "<script>" shows as text.
class HtmlText
{
public:
    // Escaped for element content and for attribute values in either quote.
    static QString escaped(const QString& text);
    // Escaped, with each line break (CR LF, CR or LF) written as "<br>".
    static QString multiline(const QString& text);
    // A JavaScript string literal's content in single quotes, itself escaped for an HTML
    // attribute: what goes between the quotes of onclick="sendEmail('...')". Quotes,
    // backslashes, line breaks and the characters that end a tag or an attribute are written
    // as escapes, so the text can neither end the string nor the attribute.
    static QString scriptArgument(const QString& text);
    // A JavaScript string literal in double quotes, for scripts the desktop runs in the page.
    static QString scriptString(const QString& text);
    // "#rrggbb" of a stored colour; `fallback` for a missing or unreadable one.
    static QString colour(const QVariant& value, const QString& fallback);
};

} // namespace corvanta::browse
