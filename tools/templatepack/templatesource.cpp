#include "templatesource.h"

#include "store/valueconversion.h"
#include "templates/newelement.h"
#include "templates/templatepage.h"
#include "templates/templatetypes.h"

#include <QColor>
#include <QDir>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>
#include <QUuid>

namespace corvanta::templatepack {

using templates::TemplatePage;
using templates::TemplateTypes;

namespace {

enum class Kind { Number, Integer, Boolean, Text, Colour };

// The attributes a source may give, with what kind of value each takes.
const QMap<QString, Kind>& templateKeys()
{
    static const QMap<QString, Kind> keys{
        {QStringLiteral("name"), Kind::Text},
        {QStringLiteral("type"), Kind::Integer},
        {QStringLiteral("unit"), Kind::Integer},
        {QStringLiteral("margin_left"), Kind::Number},
        {QStringLiteral("margin_top"), Kind::Number},
        {QStringLiteral("margin_right"), Kind::Number},
        {QStringLiteral("margin_bottom"), Kind::Number},
        {QStringLiteral("sections_height_first"), Kind::Text},
        {QStringLiteral("sections_height_following"), Kind::Text},
        {QStringLiteral("show_grid"), Kind::Boolean},
        {QStringLiteral("grid_spacing"), Kind::Number},
        {QStringLiteral("zoom"), Kind::Integer},
    };
    return keys;
}

const QMap<QString, Kind>& elementKeys()
{
    static const QMap<QString, Kind> keys{
        {QStringLiteral("page_side"), Kind::Integer},
        {QStringLiteral("section"), Kind::Text},
        {QStringLiteral("type"), Kind::Text},
        {QStringLiteral("zorder"), Kind::Integer},
        {QStringLiteral("position_x"), Kind::Number},
        {QStringLiteral("position_y"), Kind::Number},
        {QStringLiteral("position_width"), Kind::Number},
        {QStringLiteral("position_height"), Kind::Number},
        {QStringLiteral("format"), Kind::Text},
        {QStringLiteral("alignment"), Kind::Integer},
        {QStringLiteral("font_family"), Kind::Text},
        {QStringLiteral("font_member"), Kind::Text},
        {QStringLiteral("font_name"), Kind::Text},
        {QStringLiteral("font_size"), Kind::Number},
        {QStringLiteral("font_color"), Kind::Colour},
        {QStringLiteral("font_underline"), Kind::Integer},
        {QStringLiteral("font_strikethrough"), Kind::Integer},
        {QStringLiteral("background_color"), Kind::Colour},
        {QStringLiteral("text_padding_left"), Kind::Number},
        {QStringLiteral("text_padding_right"), Kind::Number},
        {QStringLiteral("text_padding_top"), Kind::Number},
        {QStringLiteral("text_padding_bottom"), Kind::Number},
        {QStringLiteral("border_color"), Kind::Colour},
        {QStringLiteral("border_line_width"), Kind::Number},
        {QStringLiteral("border_style"), Kind::Integer},
        {QStringLiteral("border_left_show"), Kind::Boolean},
        {QStringLiteral("border_top_show"), Kind::Boolean},
        {QStringLiteral("border_right_show"), Kind::Boolean},
        {QStringLiteral("border_bottom_show"), Kind::Boolean},
        {QStringLiteral("fill_style"), Kind::Integer},
        {QStringLiteral("opacity"), Kind::Number},
        {QStringLiteral("scale_proportionally"), Kind::Boolean},
    };
    return keys;
}

// What an element is before its style and its own keys: a new element's values, with nothing
// drawn behind a text.
QJsonObject newElementDefaults()
{
    return QJsonObject{
        {QStringLiteral("page_side"), 0},
        {QStringLiteral("position_x"), 0},
        {QStringLiteral("position_y"), 0},
        {QStringLiteral("position_width"), 0},
        {QStringLiteral("position_height"), 0},
        {QStringLiteral("format"), QString()},
        {QStringLiteral("alignment"), 0},
        {QStringLiteral("font_family"), QStringLiteral("Helvetica")},
        {QStringLiteral("font_member"), QStringLiteral("Regular")},
        {QStringLiteral("font_size"), 12},
        {QStringLiteral("font_color"), QStringLiteral("#000000")},
        {QStringLiteral("font_underline"), 0},
        {QStringLiteral("font_strikethrough"), 0},
        {QStringLiteral("background_color"), QStringLiteral("#ffffff00")},
        {QStringLiteral("text_padding_left"), 0},
        {QStringLiteral("text_padding_right"), 0},
        {QStringLiteral("text_padding_top"), 0},
        {QStringLiteral("text_padding_bottom"), 0},
        {QStringLiteral("border_color"), QStringLiteral("#000000")},
        {QStringLiteral("border_line_width"), 1},
        {QStringLiteral("border_style"), 0},
        {QStringLiteral("border_left_show"), true},
        {QStringLiteral("border_top_show"), true},
        {QStringLiteral("border_right_show"), true},
        {QStringLiteral("border_bottom_show"), true},
        {QStringLiteral("fill_style"), 0},
        {QStringLiteral("opacity"), 1},
        {QStringLiteral("scale_proportionally"), true},
    };
}

// "#rrggbb" or "#rrggbbaa" as the store writes colours.
QVariant colourValue(const QString& text)
{
    static const QRegularExpression pattern(QStringLiteral("^#([0-9a-fA-F]{6})([0-9a-fA-F]{2})?$"));
    const QRegularExpressionMatch match = pattern.match(text);
    if (!match.hasMatch())
        return {};
    QColor colour(QLatin1Char('#') + match.captured(1));
    if (match.hasCaptured(2))
        colour.setAlpha(match.captured(2).toInt(nullptr, 16));
    return store::valueconversion::toSql(store::AttributeType::Colour, colour).toString().toUtf8();
}

// The JSON value as the property-list value of its kind, or invalid when it is of another kind.
QVariant plainValue(const QJsonValue& value, Kind kind)
{
    switch (kind) {
    case Kind::Number:
        return value.isDouble() ? QVariant(value.toDouble()) : QVariant();
    case Kind::Integer:
        if (!value.isDouble() || value.toDouble() != double(qint64(value.toDouble())))
            return {};
        return qint64(value.toDouble());
    case Kind::Boolean:
        return value.isBool() ? QVariant(value.toBool()) : QVariant();
    case Kind::Text:
        return value.isString() ? QVariant(value.toString()) : QVariant();
    case Kind::Colour:
        return value.isString() ? colourValue(value.toString()) : QVariant();
    }
    return {};
}

// The source's own identifiers stay the same from build to build, so that a rebuilt file
// differs only where its source did.
QString identifierFor(const QString& text)
{
    static const QUuid space(QStringLiteral("{5b0f3c1e-8d2a-4c57-9e64-3a1f0b7d2c90}"));
    return QUuid::createUuidV5(space, text).toString(QUuid::WithoutBraces).toUpper();
}

class Reader
{
public:
    explicit Reader(QString* error)
        : m_error(error)
    {}

    bool fail(const QString& why)
    {
        if (m_error)
            *m_error = why;
        return false;
    }

    bool readTemplate(const QJsonObject& source, QVariantMap* dictionary)
    {
        for (auto it = source.constBegin(); it != source.constEnd(); ++it) {
            const QString key = it.key();
            if (key == QLatin1String("styles") || key == QLatin1String("elements") ||
                key == QLatin1String("comment"))
                continue;
            if (key == QLatin1String("type")) {
                const qint64 type = TemplateTypes::typeFromText(
                    it.value().isString() ? it.value().toString() : QString::number(it.value().toInt(-1)));
                if (!TemplateTypes::isValid(type))
                    return fail(QStringLiteral("\"type\" names no template type"));
                dictionary->insert(key, type);
                continue;
            }
            if (!templateKeys().contains(key))
                return fail(QStringLiteral("the template has no attribute \"%1\"").arg(key));
            const QVariant value = plainValue(it.value(), templateKeys().value(key));
            if (!value.isValid())
                return fail(QStringLiteral("\"%1\" has a value of the wrong kind").arg(key));
            dictionary->insert(key, value);
        }
        for (const QString& key : templateKeys().keys()) {
            if (!dictionary->contains(key))
                return fail(QStringLiteral("the template's \"%1\" is missing").arg(key));
        }
        const qint64 type = dictionary->value(QStringLiteral("type")).toLongLong();
        for (const char* key : {"sections_height_first", "sections_height_following"}) {
            const QStringList heights =
                dictionary->value(QLatin1String(key)).toString().split(QLatin1Char(','));
            if (heights.size() != TemplatePage::sections(type).size())
                return fail(QStringLiteral("\"%1\" needs %2 heights")
                                .arg(QLatin1String(key))
                                .arg(TemplatePage::sections(type).size()));
        }
        return true;
    }

    bool readStyles(const QJsonValue& value)
    {
        if (value.isUndefined())
            return true;
        if (!value.isObject())
            return fail(QStringLiteral("\"styles\" is not an object"));
        const QJsonObject styles = value.toObject();
        for (auto it = styles.constBegin(); it != styles.constEnd(); ++it) {
            if (!it.value().isObject())
                return fail(QStringLiteral("the style \"%1\" is not an object").arg(it.key()));
            m_styles.insert(it.key(), it.value().toObject());
        }
        return true;
    }

    // The element's keys after its defaults and styles.
    bool resolve(const QJsonObject& element, QJsonObject* resolved)
    {
        const auto apply = [resolved](const QJsonObject& keys) {
            for (auto it = keys.constBegin(); it != keys.constEnd(); ++it)
                resolved->insert(it.key(), it.value());
        };
        *resolved = newElementDefaults();
        apply(m_styles.value(QStringLiteral("default")));
        const QJsonValue style = element.value(QStringLiteral("style"));
        const QJsonArray names = style.isArray()       ? style.toArray()
                                 : style.isUndefined() ? QJsonArray()
                                                       : QJsonArray{style};
        for (const QJsonValue& name : names) {
            if (!name.isString() || !m_styles.contains(name.toString()))
                return fail(QStringLiteral("the style %1 is not defined")
                                .arg(QString::fromUtf8(
                                    QJsonDocument(QJsonArray{name}).toJson(QJsonDocument::Compact))));
            apply(m_styles.value(name.toString()));
        }
        apply(element);
        resolved->remove(QStringLiteral("style"));
        resolved->remove(QStringLiteral("comment"));
        if (!element.contains(QStringLiteral("font_name"))) {
            const QString family = resolved->value(QStringLiteral("font_family")).toString();
            const QString member = resolved->value(QStringLiteral("font_member")).toString();
            resolved->insert(QStringLiteral("font_name"), member == QLatin1String("Regular")
                                                              ? family
                                                              : family + QLatin1Char('-') + member);
        }
        return true;
    }

    bool readElement(const QJsonObject& element, const QVariantMap& templ, QVariantMap* values)
    {
        QJsonObject resolved;
        if (!resolve(element, &resolved))
            return false;
        for (auto it = resolved.constBegin(); it != resolved.constEnd(); ++it) {
            if (!elementKeys().contains(it.key()))
                return fail(QStringLiteral("an element has no attribute \"%1\"").arg(it.key()));
            const QVariant value = plainValue(it.value(), elementKeys().value(it.key()));
            if (!value.isValid())
                return fail(QStringLiteral("\"%1\" has a value of the wrong kind").arg(it.key()));
            values->insert(it.key(), value);
        }
        if (!templates::NewElement::isKnownType(values->value(QStringLiteral("type")).toString()))
            return fail(QStringLiteral("an element's \"type\" is missing or unknown"));
        return checkPlace(*values, templ);
    }

    // The element lies within its section as designed: what grows does so when filled.
    bool checkPlace(const QVariantMap& element, const QVariantMap& templ)
    {
        const qint64 type = templ.value(QStringLiteral("type")).toLongLong();
        const int pageSide = element.value(QStringLiteral("page_side")).toInt();
        const QString section = element.value(QStringLiteral("section")).toString();
        const QString where = QStringLiteral("\"%1\" on page side %2").arg(section).arg(pageSide);
        if (pageSide < 0 || pageSide > 2)
            return fail(QStringLiteral("an element's page side is not 0, 1 or 2"));
        if ((pageSide == TemplatePage::Background) != (section == QLatin1String("background")) ||
            (pageSide != TemplatePage::Background && !TemplatePage::sections(type).contains(section)))
            return fail(QStringLiteral("this template has no section %1").arg(where));

        const double unit = TemplatePage::pointsPerUnit(templ.value(QStringLiteral("unit")).toLongLong());
        const QMarginsF margins(templ.value(QStringLiteral("margin_left")).toDouble() * unit, 0,
                                templ.value(QStringLiteral("margin_right")).toDouble() * unit, 0);
        const QString heights =
            templ
                .value(pageSide == TemplatePage::FollowingPages ? QStringLiteral("sections_height_following")
                                                                : QStringLiteral("sections_height_first"))
                .toString();
        double sectionHeight = 0;
        for (const TemplatePage::Band& band : TemplatePage::layout(type, pageSide, heights)) {
            if (band.section == section)
                sectionHeight = band.height;
        }
        const double width = TemplatePage::sectionWidth(pageSide, margins);
        const double x = element.value(QStringLiteral("position_x")).toDouble();
        const double y = element.value(QStringLiteral("position_y")).toDouble();
        const double right = x + element.value(QStringLiteral("position_width")).toDouble();
        const double bottom = y + element.value(QStringLiteral("position_height")).toDouble();
        constexpr double slack = 0.01;
        if (x < -slack || y < -slack || right > width + slack || bottom > sectionHeight + slack)
            return fail(QStringLiteral("an element at %1, %2 in %3 reaches beyond its section (%4 x %5)")
                            .arg(x)
                            .arg(y)
                            .arg(where)
                            .arg(width)
                            .arg(sectionHeight));
        return true;
    }

private:
    QString* m_error;
    QMap<QString, QJsonObject> m_styles;
};

} // namespace

bool TemplateSource::read(const QByteArray& json, const QString& folder, QString* error)
{
    m_dictionary.clear();
    m_pictures.clear();
    QJsonParseError parseError;
    const QJsonDocument document = QJsonDocument::fromJson(json, &parseError);
    Reader reader(error);
    if (document.isNull())
        return reader.fail(
            QStringLiteral("it is no JSON (at %1: %2)").arg(parseError.offset).arg(parseError.errorString()));
    if (!document.isObject())
        return reader.fail(QStringLiteral("it is no JSON object"));
    const QJsonObject source = document.object();

    QVariantMap dictionary;
    if (!reader.readTemplate(source, &dictionary) ||
        !reader.readStyles(source.value(QStringLiteral("styles"))))
        return false;
    const QString name = dictionary.value(QStringLiteral("name")).toString();
    dictionary.insert(QStringLiteral("identifier"), identifierFor(name));

    const QJsonValue elements = source.value(QStringLiteral("elements"));
    if (!elements.isArray())
        return reader.fail(QStringLiteral("\"elements\" is not an array"));
    QVariantList elementValues;
    QMap<QString, QString> pictures;
    qint64 zorder = 0;
    for (const QJsonValue& element : elements.toArray()) {
        const QString number = QString::number(elementValues.size() + 1);
        if (!element.isObject())
            return reader.fail(QStringLiteral("element %1 is not an object").arg(number));
        QVariantMap values;
        if (!reader.readElement(element.toObject(), dictionary, &values)) {
            if (error)
                *error = QStringLiteral("element %1: %2").arg(number, *error);
            return false;
        }
        // Elements are drawn in the order the source lists them unless one says otherwise.
        zorder = values.contains(QStringLiteral("zorder"))
                     ? values.value(QStringLiteral("zorder")).toLongLong()
                     : zorder + 1;
        values.insert(QStringLiteral("zorder"), zorder);
        values.insert(QStringLiteral("identifier"), identifierFor(name + QLatin1Char('/') + number));
        if (values.value(QStringLiteral("type")).toString() == QLatin1String(templates::NewElement::kImage)) {
            const QString picture = values.value(QStringLiteral("format")).toString();
            const QString file = QDir(folder).filePath(picture);
            if (picture.isEmpty() || picture.contains(QLatin1Char('/')) || !QFileInfo(file).isFile())
                return reader.fail(QStringLiteral("the picture \"%1\" of element %2 is not beside the source")
                                       .arg(picture, number));
            pictures.insert(picture, file);
        }
        elementValues.append(values);
    }
    dictionary.insert(QStringLiteral("template_elements"), elementValues);
    m_dictionary = dictionary;
    m_pictures = pictures;
    return true;
}

} // namespace corvanta::templatepack
