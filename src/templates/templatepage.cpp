#include "templatepage.h"

#include "store/record.h"
#include "templatetypes.h"

namespace corvanta::templates {

namespace {

struct SectionInfo
{
    const char* name;
    const char* caption;
};

constexpr SectionInfo kSections[] = {
    {"document_header", QT_TRANSLATE_NOOP("TemplatePage", "Document Header")},
    {"table_header", QT_TRANSLATE_NOOP("TemplatePage", "Table Header")},
    {"details_header", QT_TRANSLATE_NOOP("TemplatePage", "Details Group Header")},
    {"details", QT_TRANSLATE_NOOP("TemplatePage", "Details")},
    {"details_footer", QT_TRANSLATE_NOOP("TemplatePage", "Details Group Footer")},
    {"table_footer", QT_TRANSLATE_NOOP("TemplatePage", "Table Footer")},
    {"document_footer", QT_TRANSLATE_NOOP("TemplatePage", "Document Footer")},
    {"background", QT_TRANSLATE_NOOP("TemplatePage", "Background")},
};

QString s(const char* text)
{
    return QString::fromLatin1(text);
}

} // namespace

double TemplatePage::pointsPerUnit(qint64 unit)
{
    switch (unit) {
    case 0:
        return 28.35;
    case 1:
        return 72;
    case 3:
        return 12;
    default:
        return 1;
    }
}

QString TemplatePage::unitLabel(qint64 unit)
{
    switch (unit) {
    case 0:
        return s("cm");
    case 1:
        return s("in");
    case 3:
        return s("pc");
    default:
        return s("pt");
    }
}

QMarginsF TemplatePage::calculatedMargins(const store::Record& templ)
{
    const double factor = pointsPerUnit(templ.value(s("unit")).toLongLong());
    const auto margin = [&](const char* key) { return templ.value(s(key)).toDouble() * factor; };
    return {margin("margin_left"), margin("margin_top"), margin("margin_right"), margin("margin_bottom")};
}

double TemplatePage::sectionWidth(int pageSide, const QMarginsF& margins)
{
    return pageSide == Background ? kWidth : kWidth - margins.left() - margins.right();
}

QStringList TemplatePage::sections(qint64 type)
{
    QStringList names;
    const bool grouped = TemplateTypes::isDocumentsGroupedReportTemplate(type);
    for (const SectionInfo& section : kSections) {
        const QString name = s(section.name);
        if (name == QLatin1String("background") || (!grouped && (name == QLatin1String("details_header") ||
                                                                 name == QLatin1String("details_footer"))))
            continue;
        names << name;
    }
    return names;
}

QString TemplatePage::caption(const QString& section)
{
    for (const SectionInfo& info : kSections) {
        if (section == QLatin1String(info.name))
            return tr(info.caption);
    }
    return {};
}

QString TemplatePage::defaultHeights(qint64 type)
{
    return TemplateTypes::isDocumentsGroupedReportTemplate(type) ? s("100,100,50,50,50,100,100")
                                                                 : s("100,100,100,100,100");
}

QList<TemplatePage::Band> TemplatePage::layout(qint64 type, int pageSide, const QString& heights)
{
    if (pageSide == Background)
        return {{s("background"), 0, kHeight}};
    const QStringList pieces = heights.split(QLatin1Char(','));
    QList<Band> bands;
    double top = 0;
    for (const QString& section : sections(type)) {
        bool ok = false;
        double height = pieces.value(bands.size()).trimmed().toDouble(&ok);
        if (!ok)
            height = 0;
        bands.append({section, top, height});
        top += height;
    }
    return bands;
}

QString TemplatePage::editorLabel(int pageSide, int number, const QString& section)
{
    return pageSide == FollowingPages
               ? tr(" Following Page | Section %1 - %2").arg(number).arg(caption(section))
               : tr(" Section %1 - %2").arg(number).arg(caption(section));
}

} // namespace corvanta::templates
