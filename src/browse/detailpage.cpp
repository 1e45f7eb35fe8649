#include "browse/detailpage.h"

#include "browse/htmltext.h"
#include "browse/pageaddress.h"
#include "browse/tagrow.h"
#include "documents/customfields.h"
#include "format/currencyformatter.h"
#include "store/editingcontext.h"
#include "store/record.h"

#include <QFile>
#include <QLocale>
#include <QLoggingCategory>
#include <algorithm>

namespace corvanta::browse {

namespace {
Q_LOGGING_CATEGORY(lcDetailPage, "corvanta.browse.pages")
}

DetailPage::DetailPage(ListKind kind)
    : m_kind(kind)
{}

DetailPage::Element& DetailPage::element(const QString& id)
{
    for (Element& e : m_elements) {
        if (e.id == id)
            return e;
    }
    m_elements.append(Element{id, {}, false});
    return m_elements.last();
}

const DetailPage::Element* DetailPage::find(const QString& id) const
{
    for (const Element& e : m_elements) {
        if (e.id == id)
            return &e;
    }
    return nullptr;
}

void DetailPage::setContent(const QString& id, const QString& html)
{
    element(id).html = html;
}

void DetailPage::hide(const QString& id)
{
    element(id).hidden = true;
}

void DetailPage::addCall(const QString& script)
{
    m_calls.append(script);
}

QString DetailPage::content(const QString& id) const
{
    const Element* e = find(id);
    return e ? e->html : QString();
}

bool DetailPage::isHidden(const QString& id) const
{
    const Element* e = find(id);
    return e && e->hidden;
}

QString DetailPage::html() const
{
    return html(pageTemplate(m_kind));
}

QString DetailPage::html(const QString& pageTemplate) const
{
    // Places are found in the template first and filled from the last to the first, so that
    // inserted content is never searched and earlier places stay where they were.
    struct Place
    {
        qsizetype tagEnd; // the ">" of the element's opening tag
        const Element* element;
    };
    QList<Place> places;
    for (const Element& e : m_elements) {
        const qsizetype at = pageTemplate.indexOf(QStringLiteral("id=\"%1\"").arg(e.id));
        const qsizetype tagEnd = at < 0 ? -1 : pageTemplate.indexOf(QLatin1Char('>'), at);
        if (tagEnd < 0) {
            qCWarning(lcDetailPage, "The page has no element \"%s\".", qPrintable(e.id));
            continue;
        }
        places.append(Place{tagEnd, &e});
    }
    std::sort(places.begin(), places.end(),
              [](const Place& a, const Place& b) { return a.tagEnd > b.tagEnd; });
    QString result = pageTemplate;
    for (const Place& place : places) {
        result.insert(place.tagEnd + 1, place.element->html);
        if (place.element->hidden)
            result.insert(place.tagEnd, QLatin1String(" style=\"display:none;\""));
    }
    if (!m_calls.isEmpty()) {
        const QString calls =
            QStringLiteral("<script>\nwindow.addEventListener(\"load\", function () {\n%1\n});\n"
                           "</script>\n")
                .arg(m_calls.join(QLatin1String(";\n")) + QLatin1Char(';'));
        const qsizetype bodyEnd = result.lastIndexOf(QLatin1String("</body>"));
        result.insert(bodyEnd < 0 ? result.size() : bodyEnd, calls);
    }
    return result;
}

QString DetailPage::script() const
{
    QStringList statements;
    for (const Element& e : m_elements) {
        const QString target =
            QStringLiteral("document.getElementById(%1)").arg(HtmlText::scriptString(e.id));
        statements << QStringLiteral("%1.innerHTML = %2;").arg(target, HtmlText::scriptString(e.html));
        if (e.hidden)
            statements << QStringLiteral("%1.style.display = \"none\";").arg(target);
    }
    for (const QString& call : m_calls)
        statements << call + QLatin1Char(';');
    return statements.join(QLatin1Char('\n'));
}

QString DetailPage::resourcePath(const QString& fileName)
{
    return QStringLiteral(":/pages/") + fileName;
}

QString DetailPage::pageTemplate(ListKind kind)
{
    QFile file(resourcePath(PageAddress::pageName(kind)));
    if (!file.open(QIODevice::ReadOnly)) {
        qCWarning(lcDetailPage, "The page %s is missing from the program's resources.",
                  qPrintable(file.fileName()));
        return {};
    }
    return QString::fromUtf8(file.readAll());
}

DetailPage DetailPage::nothingSelected()
{
    DetailPage page(ListKind::None);
    page.setContent(QStringLiteral("message"), HtmlText::escaped(tr("No Selection")));
    return page;
}

QString DetailPage::propertyRow(const QString& label, const QString& valueHtml)
{
    return QStringLiteral("<tr><td style='padding-left:24px; padding-right:14px; vertical-align:top; "
                          "white-space:nowrap;'><b>%1</b></td><td>%2</td></tr>")
        .arg(HtmlText::escaped(label), valueHtml);
}

QString DetailPage::tagLabels(const store::Record* record)
{
    return record ? tagLabels(TagRow::shown(record)) : QString();
}

QString DetailPage::tagLabels(const QList<store::Record*>& tags)
{
    QString result;
    for (const store::Record* tag : tags) {
        result += QStringLiteral("<span style='padding:2px 4px 2px 4px; margin-right:4px; color:%1; "
                                 "background-color:%2'>%3</span>")
                      .arg(HtmlText::colour(tag->value(QStringLiteral("foreground_color")),
                                            QStringLiteral("#000000")),
                           HtmlText::colour(tag->value(QStringLiteral("background_color")),
                                            QStringLiteral("#ffffff")),
                           HtmlText::escaped(tag->value(QStringLiteral("name")).toString()));
    }
    return result;
}

QString DetailPage::customFieldRows(const store::Record* record, const QString& prefix,
                                    const store::Record* currency)
{
    if (!record)
        return {};
    const format::CurrencyFormatter amount(currency);
    QString rows;
    for (const store::Record* field : documents::CustomFields::group(*record->context(), prefix)) {
        if (field->value(QStringLiteral("hidden")).toBool())
            continue;
        const QString name = field->value(QStringLiteral("name")).toString();
        if (!name.startsWith(prefix))
            continue;
        const QString key = name.mid(prefix.size());
        const store::AttributeDescription* attribute = record->entity().attribute(key);
        const QVariant value = attribute ? record->value(key) : QVariant();
        if (value.isNull() || value.toString().isEmpty())
            continue;
        const QString text = attribute->type == store::AttributeType::Decimal
                                 ? HtmlText::escaped(amount.stringForObjectValue(value))
                                 : HtmlText::multiline(value.toString());
        rows += propertyRow(documents::CustomFields::displayName(field), text);
    }
    return rows;
}

QString DetailPage::shortDate(const QVariant& value, bool withTime)
{
    const QDateTime moment = value.toDateTime().toLocalTime();
    if (value.isNull() || !moment.isValid())
        return {};
    return withTime ? QLocale().toString(moment, QLocale::ShortFormat)
                    : QLocale().toString(moment.date(), QLocale::ShortFormat);
}

} // namespace corvanta::browse
