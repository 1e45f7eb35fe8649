#include "../model/modeltestsupport.h"
#include "store/record.h"
#include "templates/designmanager.h"
#include "templates/pdffilenames.h"
#include "templates/workingelements.h"

#include <QColor>
#include <QPainter>
#include <QPdfDocument>
#include <QPdfSelection>
#include <QProcess>
#include <QRegularExpression>

using namespace corvanta;
using namespace corvanta::model::testing;
using templates::DesignManager;
using templates::FilledTemplate;
using templates::TableEntry;

namespace {

// A document template built element by element in a scratch company, margins in points.
class TemplateFixture
{
public:
    TemplateFixture(const QString& heightsFirst, const QString& heightsFollowing,
                    QMarginsF margins = {30, 20, 30, 20})
    {
        m_template = m_company.main().insertRecord(s("Templates"),
                                                   {{s("type"), 0},
                                                    {s("unit"), 2},
                                                    {s("margin_left"), margins.left()},
                                                    {s("margin_top"), margins.top()},
                                                    {s("margin_right"), margins.right()},
                                                    {s("margin_bottom"), margins.bottom()},
                                                    {s("sections_height_first"), heightsFirst},
                                                    {s("sections_height_following"), heightsFollowing}});
    }

    store::Record* templ() const { return m_template; }

    // A line of text across the top margin of every page. Text extraction reads a page whose
    // text is mostly narrow columns as vertical writing; this line keeps it horizontal.
    void addRuler()
    {
        text(s("background"),
             s("Ruler line of a page layout test that runs across the whole width of the page"),
             {20, 2, 555, 12}, {{s("page_side"), 2}});
    }
    QString folder() const { return m_dir.path(); }

    // A text in Helvetica 10 on the first page unless `more` says otherwise.
    store::Record* text(const QString& section, const QString& format, const QRectF& frame,
                        QVariantMap more = {})
    {
        QVariantMap values{{s("type"), s("text")},
                           {s("format"), format},
                           {s("font_name"), s("Helvetica")},
                           {s("font_size"), 10.0}};
        values.insert(more);
        return element(section, frame, values);
    }

    store::Record* shape(const QString& section, const QString& type, const QRectF& frame,
                         QVariantMap more = {})
    {
        more.insert(s("type"), type);
        return element(section, frame, more);
    }

    void setType(qint64 type) { m_template->setValue(s("type"), type); }

    // The template filled without field substitution: "@row" in the details texts becomes each
    // row's text in turn. A row "section:text" is an entry drawn as that section.
    FilledTemplate filled(const QStringList& rows) const
    {
        const QList<store::Record*> elements = templates::templateElements(m_template);
        FilledTemplate filled;
        filled.page = templates::resetReplaceElements(elements);
        filled.tableFooter = templates::resetReplaceElements(elements);
        for (const QString& row : rows) {
            TableEntry entry;
            if (row.contains(QLatin1Char(':')))
                entry.sectionType = row.section(QLatin1Char(':'), 0, 0);
            entry.values = templates::resetReplaceElements(elements);
            for (templates::WorkingElement& value : entry.values)
                value.text.replace(s("@row"), row.section(QLatin1Char(':'), -1));
            filled.rows.append(entry);
        }
        return filled;
    }

    // The template filled with `rows` as a PDF; its path.
    QString render(const QStringList& rows)
    {
        DesignManager manager(m_template, folder());
        const QString path = QDir(m_dir.path()).filePath(s("out.pdf"));
        int pages = 0;
        QString error;
        if (!manager.writePdf(filled(rows), path, &pages, &error))
            qWarning("writePdf failed: %s", qPrintable(error));
        return path;
    }

private:
    store::Record* element(const QString& section, const QRectF& frame, QVariantMap values)
    {
        values.insert({{s("template"), QVariant::fromValue(m_template)},
                       {s("section"), section},
                       {s("zorder"), ++m_zorder},
                       {s("position_x"), frame.x()},
                       {s("position_y"), frame.y()},
                       {s("position_width"), frame.width()},
                       {s("position_height"), frame.height()}});
        if (!values.contains(s("page_side")))
            values.insert(s("page_side"), 0);
        return m_company.main().insertRecord(s("TemplateElements"), values);
    }

    ScratchCompany m_company;
    QTemporaryDir m_dir;
    store::Record* m_template = nullptr;
    int m_zorder = 0;
};

// The text of every page of a PDF and where a piece of it lies (points, top-down).
class PdfReader
{
public:
    explicit PdfReader(const QString& path) { m_document.load(path); }

    int pageCount() const { return m_document.pageCount(); }
    QString text(int page) { return m_document.getAllText(page).text(); }
    // Where `piece` lies, searched from `from` on; an empty rectangle when it is missing.
    QRectF box(int page, const QString& piece, qsizetype from = 0)
    {
        const qsizetype at = text(page).indexOf(piece, from);
        if (at < 0)
            return {};
        return m_document.getSelectionAtIndex(page, int(at), int(piece.size())).boundingRectangle();
    }
    // The page drawn on white paper at four pixels to the point.
    QImage image(int page)
    {
        QImage paper(595 * 4, 842 * 4, QImage::Format_RGB32);
        paper.fill(Qt::white);
        QPainter painter(&paper);
        painter.drawImage(0, 0, m_document.render(page, paper.size()));
        return paper;
    }

private:
    QPdfDocument m_document;
};

// The rows on each page as "first-last", "-" for a page without rows, pages joined by " | ".
QString rowsPerPage(PdfReader& pdf)
{
    static const QRegularExpression rowText(QStringLiteral("Row (\\d+)"));
    QStringList pages;
    for (int page = 0; page < pdf.pageCount(); ++page) {
        QStringList numbers;
        const QString text = pdf.text(page);
        for (const QRegularExpressionMatch& match : rowText.globalMatch(text))
            numbers << match.captured(1);
        if (numbers.isEmpty())
            pages << s("-");
        else
            pages << numbers.first() + (numbers.size() > 1 ? s("-") + numbers.last() : QString());
    }
    return pages.join(s(" | "));
}

QStringList numberedRows(int count)
{
    QStringList rows;
    for (int i = 1; i <= count; ++i)
        rows << QString::number(i);
    return rows;
}

// Fails the test unless `actual` lies within `tolerance` points of `expected`.
#define VERIFY_NEAR(actual, expected, tolerance)                                                             \
    QVERIFY2(qAbs((actual) - (expected)) <= (tolerance),                                                     \
             qPrintable(s("%1 where %2 was expected").arg(actual).arg(expected)))

// The fonts a PDF embeds, as `pdffonts` lists them (names without their subset prefix).
QStringList embeddedFonts(const QString& path)
{
    QProcess pdffonts;
    pdffonts.start(s("pdffonts"), {path});
    if (!pdffonts.waitForFinished() || pdffonts.exitCode() != 0)
        return {s("pdffonts failed")};
    QStringList fonts;
    const QStringList lines = QString::fromUtf8(pdffonts.readAllStandardOutput()).split(QLatin1Char('\n'));
    for (const QString& line : lines.mid(2)) {
        const QStringList columns = line.simplified().split(QLatin1Char(' '));
        if (columns.size() < 7)
            continue;
        const QString name = columns.first().section(QLatin1Char('+'), -1);
        const bool embedded = columns.at(columns.size() - 5) == s("yes");
        fonts << name + (embedded ? QString() : s(" (not embedded)"));
    }
    return fonts;
}

} // namespace

class tst_PageLayout : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void pagination_data();
    void pagination();
    void growth_data();
    void growth();
    void documentFooter_data();
    void documentFooter();
    void groupedEntries_data();
    void groupedEntries();
    void shapes_data();
    void shapes();
    void alignment_data();
    void alignment();
    void fonts_data();
    void fonts();
    void fileNames_data();
    void fileNames();
    void failedWriteLeavesNoFile();
};

// Margins 20 top and bottom leave 802 points. First page: header 100, table header 40, footer 62,
// so 600 for rows of 20; following pages: header 60, so 640.
void tst_PageLayout::pagination_data()
{
    QTest::addColumn<int>("rows");
    QTest::addColumn<int>("tableFooter");
    QTest::addColumn<int>("followingDetails");
    QTest::addColumn<QString>("pages");

    QTest::newRow("no rows: one page") << 0 << 30 << 20 << "-";
    QTest::newRow("footer one point short of the page") << 29 << 19 << 20 << "1-29";
    QTest::newRow("footer exactly filling the page moves alone") << 29 << 20 << 20 << "1-29 | -";
    QTest::newRow("footer taller than the space left") << 26 << 100 << 20 << "1-26 | -";
    QTest::newRow("row exactly filling the page moves") << 30 << 10 << 20 << "1-29 | 30";
    QTest::newRow("following pages hold more rows") << 61 << 30 << 20 << "1-29 | 30-60 | 61";
    QTest::newRow("moved row measured for the new page") << 45 << 30 << 40 << "1-29 | 30-44 | 45";
}

void tst_PageLayout::pagination()
{
    QFETCH(int, rows);
    QFETCH(int, tableFooter);
    QFETCH(int, followingDetails);
    QFETCH(QString, pages);

    TemplateFixture t(s("100,40,20,%1,62").arg(tableFooter),
                      s("60,40,%1,%2,62").arg(followingDetails).arg(tableFooter));
    t.addRuler();
    t.text(s("document_header"), s("Header"), {0, 0, 200, 12});
    t.shape(s("details"), s("shape_box"), {0, 0, 535, 20},
            {{s("border_line_width"), 0.5}, {s("border_bottom_show"), true}});
    t.text(s("details"), s("Row @row"), {0, 4, 200, 12});
    t.text(s("table_footer"), s("Totals"), {300, 2, 200, 12});
    PdfReader pdf(t.render(numberedRows(rows)));

    QCOMPARE(rowsPerPage(pdf), pages);
    const int last = pdf.pageCount() - 1;
    for (int page = 0; page < last; ++page)
        QVERIFY2(!pdf.text(page).contains(s("Totals")), "the table footer only on the last page");

    // The table footer lies right under the last row, or under the table header on a page
    // without rows. Glyph tops lie a fixed distance under their line's top, taken from the header.
    const double glyph = pdf.box(0, s("Header")).top() - 20;
    const int header = last == 0 ? 100 : 60;
    const int rowHeight = last == 0 ? 20 : followingDetails;
    const int rowsOnLast = int(pdf.text(last).count(s("Row ")));
    const double expected = 20 + header + 40 + rowsOnLast * rowHeight + 2 + glyph;
    const double totals = pdf.box(last, s("Totals")).top();
    VERIFY_NEAR(totals, expected, 0.5);
}

// A details section whose first text grows by two lines. Positions are offsets from the row's
// top: a + b lines.
void tst_PageLayout::growth_data()
{
    QTest::addColumn<int>("storedHeight");
    QTest::addColumn<QString>("label");
    QTest::addColumn<double>("points");
    QTest::addColumn<int>("lines");

    QTest::newRow("grown text keeps its top") << 80 << "Alpha" << 5.0 << 0;
    QTest::newRow("text below keeps the designed gap") << 80 << "Below" << 13.0 << 3;
    QTest::newRow("side by side: not moved") << 80 << "Beside" << 25.0 << 0;
    QTest::newRow("touching the right edge: not moved") << 80 << "Touch" << 25.0 << 0;
    QTest::newRow("under a pushed text: pushed on") << 80 << "Chained" << 21.0 << 4;
    QTest::newRow("under a shrunk text: stays") << 80 << "Under" << 50.0 << 0;
    QTest::newRow("section keeps its blank space") << 80 << "Alpha 2" << 56.0 << 4;
    QTest::newRow("section ends at its lowest element") << 50 << "Alpha 2" << 26.0 << 5;
}

void tst_PageLayout::growth()
{
    QFETCH(int, storedHeight);
    QFETCH(QString, label);
    QFETCH(double, points);
    QFETCH(int, lines);

    TemplateFixture t(s("100,40,%1,30,62").arg(storedHeight), s("100,40,%1,30,62").arg(storedHeight));
    t.addRuler();
    t.text(s("details"), s("Alpha @row\nTwo\nThree"), {0, 5, 100, 12});
    t.text(s("details"), s("Below @row"), {0, 25, 100, 12});
    t.text(s("details"), s("Beside @row"), {150, 25, 100, 12});
    t.text(s("details"), s("Touch @row"), {100, 25, 40, 12});
    t.text(s("details"), s("Chained @row"), {60, 45, 100, 12});
    t.text(s("details"), s("Shrunk @row"), {300, 5, 100, 40});
    t.text(s("details"), s("Under @row"), {300, 50, 100, 12});
    PdfReader pdf(t.render({s("1"), s("2")}));
    QCOMPARE(pdf.pageCount(), 1);

    const double rowTop = pdf.box(0, s("Alpha 1")).top() - 5;
    const double line = (pdf.box(0, s("Three")).top() - pdf.box(0, s("Alpha 1")).top()) / 2;
    QVERIFY2(line > 10 && line < 13, qPrintable(s("line height %1").arg(line)));
    const QString wanted = label.contains(QLatin1Char(' ')) ? label : label + s(" 1");
    const QRectF box = pdf.box(0, wanted);
    QVERIFY2(!box.isEmpty(), qPrintable(wanted));
    const double expected = rowTop + points + lines * line;
    VERIFY_NEAR(box.top(), expected, 0.5);
}

// The footer's top lies its own height above the page's bottom edge, whatever the bottom margin;
// the following pages use their own footer. Both count the pages.
void tst_PageLayout::documentFooter_data()
{
    QTest::addColumn<double>("bottomMargin");
    QTest::addColumn<int>("page");
    QTest::addColumn<QString>("label");
    QTest::addColumn<double>("top");

    QTest::newRow("bottom margin not applied") << 50.0 << 0 << "First footer" << 842.0 - 62 + 40;
    QTest::newRow("following page's own footer") << 50.0 << 1 << "Following footer" << 842.0 - 30 + 10;
}

void tst_PageLayout::documentFooter()
{
    QFETCH(double, bottomMargin);
    QFETCH(int, page);
    QFETCH(QString, label);
    QFETCH(double, top);

    TemplateFixture t(s("100,40,20,30,62"), s("100,40,20,30,30"), {30, 20, 30, bottomMargin});
    t.addRuler();
    t.text(s("document_header"), s("Header"), {0, 0, 200, 12}, {{s("page_side"), 0}});
    t.text(s("document_header"), s("Header"), {0, 0, 200, 12}, {{s("page_side"), 1}});
    t.text(s("details"), s("Row @row"), {0, 4, 200, 12});
    t.text(s("document_footer"), s("First footer @page_number of @page_number_total"), {0, 40, 200, 12},
           {{s("page_side"), 0}});
    t.text(s("document_footer"), s("Following footer @page_number of @page_number_total"), {0, 10, 200, 12},
           {{s("page_side"), 1}});
    PdfReader pdf(t.render(numberedRows(70)));
    QCOMPARE(pdf.pageCount(), 3);
    QVERIFY(pdf.text(0).contains(s("First footer 1 of 3")));
    QVERIFY(pdf.text(1).contains(s("Following footer 2 of 3")));
    QVERIFY(pdf.text(2).contains(s("Following footer 3 of 3")));

    const double glyph = pdf.box(page, s("Header")).top() - 20;
    const double actual = pdf.box(page, label).top();
    VERIFY_NEAR(actual, top + glyph, 0.5);
}

// A grouped report draws each entry as its own section, with that section's height; any other
// template draws every entry as details (30 high by the five heights a document reads).
void tst_PageLayout::groupedEntries_data()
{
    QTest::addColumn<qint64>("type");
    QTest::addColumn<QString>("text");
    QTest::addColumn<double>("footerBelowHeader"); // the group footer's distance under its header

    QTest::newRow("grouped report: own sections") << qint64(110) << "Group A\r\nItem 1\r\nSum A" << 30.0 + 20;
    QTest::newRow("document: all details") << qint64(0) << "Item A\r\nItem 1\r\nItem A" << 60.0;
}

void tst_PageLayout::groupedEntries()
{
    QFETCH(qint64, type);
    QFETCH(QString, text);
    QFETCH(double, footerBelowHeader);

    // Document header, table header, group header, details, group footer, table footer, footer.
    TemplateFixture t(s("100,40,30,20,25,30,62"), s("100,40,30,20,25,30,62"));
    t.setType(type);
    t.addRuler();
    t.text(s("details_header"), s("Group @row"), {0, 2, 200, 12});
    t.text(s("details"), s("Item @row"), {0, 2, 200, 12});
    t.text(s("details_footer"), s("Sum @row"), {0, 2, 200, 12});
    PdfReader pdf(t.render({s("details_header:A"), s("details:1"), s("details_footer:A")}));
    QCOMPARE(pdf.text(0).section(s("\r\n"), 1), text);
    const QString first = text.section(s("\r\n"), 0, 0);
    const QString last = text.section(s("\r\n"), 2, 2);
    const QString page = pdf.text(0);
    const double distance = pdf.box(0, last, page.lastIndexOf(last)).top() - pdf.box(0, first, 20).top();
    VERIFY_NEAR(distance, footerBelowHeader, 0.5);
}

// Elements on the background (page coordinates, no margins), probed in points on the drawn page.
void tst_PageLayout::shapes_data()
{
    QTest::addColumn<QString>("type");
    QTest::addColumn<QVariantMap>("values");
    QTest::addColumn<QPointF>("probe");
    QTest::addColumn<QColor>("colour");

    const QColor black(Qt::black);
    const QColor white(Qt::white);
    const QVariantMap sides{{s("border_line_width"), 4.0},   {s("border_left_show"), true},
                            {s("border_top_show"), true},    {s("border_right_show"), true},
                            {s("border_bottom_show"), true}, {s("border_color"), black}};
    QVariantMap noLeft = sides;
    noLeft.insert(s("border_left_show"), false);
    QVariantMap thin = sides;
    thin.insert(s("border_line_width"), 2.0);
    QVariantMap doubled = thin;
    doubled.insert(s("border_style"), 9);
    QVariantMap filled = sides;
    filled.insert(s("background_color"), QColor(Qt::red));

    QTest::newRow("box: closed corner") << "shape_box" << sides << QPointF(98.5, 98.5) << black;
    QTest::newRow("box: open corner beside a hidden side")
        << "shape_box" << noLeft << QPointF(98.5, 98.5) << white;
    QTest::newRow("box: single border, nothing inside") << "shape_box" << thin << QPointF(104, 125) << white;
    QTest::newRow("box: double border, outer line") << "shape_box" << doubled << QPointF(100, 125) << black;
    QTest::newRow("box: double border, gap") << "shape_box" << doubled << QPointF(102, 125) << white;
    QTest::newRow("box: double border, inner line") << "shape_box" << doubled << QPointF(104, 125) << black;
    QTest::newRow("box: fill") << "shape_box" << filled << QPointF(150, 125) << QColor(Qt::red);
    const QVariantMap line{{s("border_line_width"), 2.0}};
    const QVariantMap image{{s("format"), s("blue.png")}};
    QTest::newRow("horizontal line at its top")
        << "shape_horizontal_line" << line << QPointF(150, 100) << black;
    QTest::newRow("horizontal line: nothing below")
        << "shape_horizontal_line" << line << QPointF(150, 110) << white;
    QTest::newRow("vertical line at its left") << "shape_vertical_line" << line << QPointF(100, 140) << black;
    QVariantMap halfOpaque = image;
    halfOpaque.insert(s("opacity"), 0.5);
    QTest::newRow("image at half opacity")
        << "shape_image" << halfOpaque << QPointF(150, 125) << QColor(127, 127, 255);
    QTest::newRow("image without opacity: opaque")
        << "shape_image" << image << QPointF(150, 125) << QColor(Qt::blue);
    const QVariantMap lined{{s("format"), s("MM MM")},
                            {s("font_size"), 20.0},
                            {s("font_underline"), 1},
                            {s("font_strikethrough"), 1}};
    QVariantMap plain = lined;
    plain.insert({{s("font_underline"), 0}, {s("font_strikethrough"), 0}});
    QTest::newRow("underline under the space") << "text" << lined << QPointF(136, 119.4) << black;
    QTest::newRow("strike-through across the space") << "text" << lined << QPointF(136, 111.9) << black;
    QTest::newRow("no lines without the styles") << "text" << plain << QPointF(136, 119.4) << white;
    QTest::newRow("text background behind the glyphs")
        << "text"
        << QVariantMap{{s("format"), s("MMMM")},
                       {s("background_color"), QColor(Qt::yellow)},
                       {s("font_color"), QColor(Qt::white)},
                       {s("font_size"), 20.0}}
        << QPointF(110, 108) << QColor(Qt::yellow);
}

void tst_PageLayout::shapes()
{
    QFETCH(QString, type);
    QFETCH(QVariantMap, values);
    QFETCH(QPointF, probe);
    QFETCH(QColor, colour);

    TemplateFixture t(s("100,40,20,30,62"), s("100,40,20,30,62"));
    QImage blue(8, 8, QImage::Format_RGB32);
    blue.fill(Qt::blue);
    QVERIFY(blue.save(QDir(t.folder()).filePath(s("blue.png"))));
    values.insert(s("page_side"), 2);
    if (type == s("text"))
        t.text(s("background"), values.value(s("format")).toString(), {100, 100, 100, 50}, values);
    else
        t.shape(s("background"), type, {100, 100, 100, 50}, values);
    PdfReader pdf(t.render({}));
    const QImage page = pdf.image(0);
    const QColor actual = page.pixelColor((probe * 4).toPoint());
    const auto close = [](int a, int b) { return qAbs(a - b) <= 24; };
    QVERIFY2(close(actual.red(), colour.red()) && close(actual.green(), colour.green()) &&
                 close(actual.blue(), colour.blue()),
             qPrintable(s("%1 where %2 was expected").arg(actual.name(), colour.name())));
}

// A text in a frame from 100 to 300 with paddings of 10 on both sides; where its first line lies.
void tst_PageLayout::alignment_data()
{
    QTest::addColumn<int>("alignment");
    QTest::addColumn<QString>("edge");
    QTest::addColumn<double>("at");

    QTest::newRow("0 left") << 0 << "left" << 110.0;
    QTest::newRow("4 natural, left to right") << 4 << "left" << 110.0;
    QTest::newRow("1 right") << 1 << "right" << 290.0;
    QTest::newRow("2 centre") << 2 << "centre" << 200.0;
    QTest::newRow("3 justified: the first line from the left") << 3 << "left" << 110.0;
    QTest::newRow("3 justified: the first line to the right") << 3 << "right" << 290.0;
}

void tst_PageLayout::alignment()
{
    QFETCH(int, alignment);
    QFETCH(QString, edge);
    QFETCH(double, at);

    TemplateFixture t(s("100,40,20,30,62"), s("100,40,20,30,62"));
    t.addRuler();
    const QString words = s("Amid wide fields the quiet river runs on toward the sea and the town");
    t.text(s("background"), words, {100, 100, 200, 12},
           {{s("page_side"), 2},
            {s("alignment"), alignment},
            {s("text_padding_left"), 10.0},
            {s("text_padding_right"), 10.0}});
    PdfReader pdf(t.render({}));
    const QString page = pdf.text(0);
    const qsizetype start = page.indexOf(s("Amid"));
    const QRectF whole = pdf.box(0, page.mid(start, page.indexOf(s("\r\n"), start) - start));
    QVERIFY2(!page.endsWith(s("Amid wide")), "the text wraps");
    const double measured = edge == s("left")    ? whole.left()
                            : edge == s("right") ? whole.right()
                                                 : whole.center().x();
    VERIFY_NEAR(measured, at, 1.5);
}

void tst_PageLayout::fonts_data()
{
    QTest::addColumn<QString>("fontName");
    QTest::addColumn<QString>("embedded");
    QTest::addColumn<double>("drawnSize"); // the size the text is drawn at
    QTest::addColumn<double>("capHeight"); // of the face, per point of size

    QTest::newRow("Helvetica: Liberation Sans") << s("Helvetica") << s("LiberationSans") << 20.0 << 0.7;
    QTest::newRow("Arial: Liberation Sans") << s("ArialMT") << s("LiberationSans") << 20.0 << 0.7;
    QTest::newRow("Helvetica-Bold: bold") << s("Helvetica-Bold") << s("LiberationSans-Bold") << 20.0 << 0.7;
    QTest::newRow("Arial Italic: italic") << s("Arial Italic") << s("LiberationSans-Italic") << 20.0 << 0.7;
    QTest::newRow("Times-Roman: Liberation Serif")
        << s("Times-Roman") << s("LiberationSerif") << 20.0 << 0.665;
    QTest::newRow("unknown font: Arial 12") << s("NoSuchFont-Regular") << s("LiberationSans") << 12.0 << 0.7;
}

void tst_PageLayout::fonts()
{
    QFETCH(QString, fontName);
    QFETCH(QString, embedded);
    QFETCH(double, drawnSize);
    QFETCH(double, capHeight);

    TemplateFixture t(s("100,40,20,30,62"), s("100,40,20,30,62"));
    t.text(s("background"), s("HHHH"), {100, 100, 200, 12},
           {{s("page_side"), 2}, {s("font_name"), fontName}, {s("font_size"), 20.0}});
    const QString path = t.render({});
    QCOMPARE(embeddedFonts(path), QStringList{embedded});
    PdfReader pdf(path);
    QCOMPARE(pdf.text(0), s("HHHH"));
    const double height = pdf.box(0, s("HHHH")).height();
    VERIFY_NEAR(height, drawnSize * capHeight, 0.4);
}

void tst_PageLayout::fileNames_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("cleared");

    QTest::newRow("slashes") << s("2014/001234") << s("2014-001234.pdf");
    QTest::newRow("control characters") << s("INV\t12\n3\x01") << s("INV123.pdf");
    QTest::newRow("leading dots after blanks") << s("  . .x ") << s("x.pdf");
    QTest::newRow("empty") << QString() << s("Untitled.pdf");
    QTest::newRow("only dots and slashes") << s("./") << s("-.pdf");
    QTest::newRow("letters kept") << s("Rechnung Nr. 5 – Müller") << s("Rechnung Nr. 5 – Müller.pdf");
    // Two bytes a letter: 125 of them and ".pdf" are the most that fit in 255 bytes.
    QTest::newRow("cut to 255 bytes")
        << QString(300, QChar(0x00FC)) << QString(125, QChar(0x00FC)) + s(".pdf");
}

void tst_PageLayout::fileNames()
{
    QFETCH(QString, name);
    QFETCH(QString, cleared);
    QCOMPARE(templates::PdfFileNames::clearedPDFFileName(name), cleared);
}

void tst_PageLayout::failedWriteLeavesNoFile()
{
    TemplateFixture t(s("100,40,20,30,62"), s("100,40,20,30,62"));
    t.text(s("details"), s("Row @row"), {0, 4, 200, 12});
    DesignManager manager(t.templ(), t.folder());
    const QString missingFolder = QDir(t.folder()).filePath(s("missing/out.pdf"));
    int pages = -1;
    QString error;
    QVERIFY(!manager.writePdf(t.filled({s("1")}), missingFolder, &pages, &error));
    QVERIFY(!error.isEmpty());
    QCOMPARE(pages, -1);
    QVERIFY(!QFileInfo::exists(QDir(t.folder()).filePath(s("missing"))));

    // A good write replaces an older file whole.
    const QString path = QDir(t.folder()).filePath(s("out.pdf"));
    QFile old(path);
    QVERIFY(old.open(QIODevice::WriteOnly));
    old.write("old");
    old.close();
    QVERIFY(manager.writePdf(t.filled({s("1")}), path, &pages, &error));
    QCOMPARE(pages, 1);
    QFile written(path);
    QVERIFY(written.open(QIODevice::ReadOnly));
    QVERIFY(written.readAll().startsWith("%PDF-"));
    QCOMPARE(QDir(t.folder()).entryList({s("out.pdf*")}, QDir::Files), QStringList{s("out.pdf")});
}

QTEST_MAIN(tst_PageLayout)
#include "tst_pagelayout.moc"
