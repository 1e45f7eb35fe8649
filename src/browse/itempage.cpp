#include "browse/itempage.h"

#include "browse/eventhistory.h"
#include "browse/htmltext.h"
#include "format/nodigitlimitnumberformatter.h"
#include "model/companyrecord.h"
#include "store/record.h"

namespace corvanta::browse {

using store::Record;

namespace {

QString s(const char* text)
{
    return QString::fromLatin1(text);
}

QString nameOf(const Record* record)
{
    return record ? record->value(s("name")).toString() : QString();
}

} // namespace

DetailPage ItemPage::fill(Record* item, int eventsFilter, int eventsCount)
{
    DetailPage page(ListKind::Items);
    if (!item)
        return page;
    const Record* currency = model::CompanyRecord::defaultRecord(*item->context(), s("default_currency"));
    const bool product = item->value(s("type")).toLongLong() == 1;
    page.setContent(s("name"), HtmlText::escaped(item->value(s("name")).toString()));
    page.setContent(s("tags"), DetailPage::tagLabels(item));

    QString properties;
    const auto add = [&properties](const QString& label, const QString& text) {
        if (!text.isEmpty())
            properties += DetailPage::propertyRow(label, HtmlText::escaped(text));
    };
    add(tr("Code"), item->value(s("code")).toString());
    add(tr("Type"), product ? tr("Product") : tr("Service"));
    add(tr("Unit"), nameOf(item->related(s("unit"))));
    add(tr("Tax"), nameOf(item->related(s("tax"))));
    properties += DetailPage::customFieldRows(item, s("item_"), currency);
    if (product) {
        const format::NoDigitLimitNumberFormatter quantity(currency);
        add(tr("Stock"), quantity.stringForObjectValue(item->value(s("stock_current"))));
        add(tr("Critical Stock"), quantity.stringForObjectValue(item->value(s("stock_critical"))));
    }
    if (const QString desc = item->value(s("desc")).toString(); !desc.isEmpty())
        properties += DetailPage::propertyRow(tr("Description"), HtmlText::multiline(desc));
    page.setContent(s("properties"), properties);

    if (product) {
        page.setContent(s("warehouse"),
                        QStringLiteral("<a href='' onclick='openWarehouse(); return false;'>%1</a>")
                            .arg(HtmlText::escaped(tr("Warehouse"))));
    } else {
        page.hide(s("warehouse"));
    }
    page.setContent(s("events"), EventHistory(item).html(eventsFilter, eventsCount));
    return page;
}

} // namespace corvanta::browse
