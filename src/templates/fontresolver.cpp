#include "fontresolver.h"

#include <QFontDatabase>
#include <QRegularExpression>
#include <QSet>

namespace corvanta::templates {

namespace {

constexpr double kFallbackSize = 12;

QString squeezed(const QString& name)
{
    QString key = name.toLower();
    key.remove(QLatin1Char(' '));
    return key;
}

// Families named by documents that are drawn with a metric-compatible stand-in.
QString standIn(const QString& squeezedFamily)
{
    static const QHash<QString, QString> standIns{
        {QStringLiteral("helvetica"), QStringLiteral("Liberation Sans")},
        {QStringLiteral("arial"), QStringLiteral("Liberation Sans")},
        {QStringLiteral("helveticaneue"), QStringLiteral("Liberation Sans")},
        {QStringLiteral("times"), QStringLiteral("Liberation Serif")},
        {QStringLiteral("timesnewroman"), QStringLiteral("Liberation Serif")},
        {QStringLiteral("courier"), QStringLiteral("Liberation Mono")},
        {QStringLiteral("couriernew"), QStringLiteral("Liberation Mono")},
    };
    return standIns.value(squeezedFamily);
}

struct NameParts
{
    QString family;
    QString style;
};

// "Arial-BoldItalicMT" -> "Arial" + "BoldItalic"; "Helvetica Bold" -> "Helvetica" + "Bold".
NameParts split(const QString& fontName)
{
    static const QRegularExpression vendorSuffix(QStringLiteral("(PSMT|MT|PS)$"));
    static const QRegularExpression trailingStyle(
        QStringLiteral("^(.*?)\\s+((?:(?:Regular|Roman|Book|Medium|Bold|Semibold|Black|Heavy|Light|Italic|"
                       "Oblique)\\s*)+)$"),
        QRegularExpression::CaseInsensitiveOption);
    NameParts parts;
    const qsizetype dash = fontName.indexOf(QLatin1Char('-'));
    if (dash > 0) {
        parts.family = fontName.left(dash).trimmed();
        parts.style = fontName.mid(dash + 1).trimmed();
    } else if (const QRegularExpressionMatch match = trailingStyle.match(fontName.trimmed());
               match.hasMatch()) {
        parts.family = match.captured(1);
        parts.style = match.captured(2);
    } else {
        parts.family = fontName.trimmed();
    }
    parts.family.remove(vendorSuffix);
    parts.style.remove(vendorSuffix);
    return parts;
}

void applyStyle(QFont& font, const QString& style)
{
    const QString lower = style.toLower();
    if (lower.contains(QLatin1String("black")) || lower.contains(QLatin1String("heavy")))
        font.setWeight(QFont::Black);
    else if (lower.contains(QLatin1String("semibold")))
        font.setWeight(QFont::DemiBold);
    else if (lower.contains(QLatin1String("bold")))
        font.setWeight(QFont::Bold);
    else if (lower.contains(QLatin1String("light")))
        font.setWeight(QFont::Light);
    else if (lower.contains(QLatin1String("medium")))
        font.setWeight(QFont::Medium);
    font.setItalic(lower.contains(QLatin1String("italic")) || lower.contains(QLatin1String("oblique")));
}

} // namespace

FontResolver::FontResolver(const QPaintDevice* device)
    : m_device(device)
{}

QFont FontResolver::font(const QString& fontName, double size)
{
    const QString key = fontName + QLatin1Char('\n') + QString::number(size);
    const auto found = m_fonts.constFind(key);
    if (found != m_fonts.constEnd())
        return *found;
    const QFont resolved = resolve(fontName, size);
    m_fonts.insert(key, resolved);
    return resolved;
}

QString FontResolver::installedFamily(const QString& family)
{
    static const QHash<QString, QString> installed = [] {
        QHash<QString, QString> families;
        for (const QString& name : QFontDatabase::families())
            families.insert(squeezed(name), name);
        return families;
    }();
    const QString key = squeezed(family);
    const QString replacement = standIn(key);
    return replacement.isEmpty() ? installed.value(key) : installed.value(squeezed(replacement));
}

QFont FontResolver::resolve(const QString& fontName, double size) const
{
    NameParts parts = split(fontName);
    QString family = installedFamily(parts.family);
    if (family.isEmpty()) {
        // A family whose name itself holds a dash ("Noto-Sans") or a style word.
        family = installedFamily(fontName);
        parts.style.clear();
    }
    if (family.isEmpty()) {
        family = installedFamily(QStringLiteral("Arial"));
        parts.style.clear();
        size = kFallbackSize;
    } else if (size <= 0) {
        size = kFallbackSize;
    }
    QFont font(family);
    font.setPointSizeF(size);
    applyStyle(font, parts.style);
    font.setHintingPreference(QFont::PreferNoHinting);
    font.setKerning(true);
    return m_device ? QFont(font, m_device) : font;
}

} // namespace corvanta::templates
