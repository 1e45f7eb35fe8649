#include "../model/modeltestsupport.h"
#include "templates/templatecommands.h"

#include <QColor>
#include <QRegularExpression>
#include <QUndoStack>
#include <functional>

using namespace corvanta;
using namespace corvanta::model::testing;
using namespace corvanta::store;
using namespace corvanta::templates;

// What the steps of a row do to a template with a text ("T") and a box ("B").
using Steps = std::function<void(QUndoStack&, Record* templ, Record* text, Record* box)>;
Q_DECLARE_METATYPE(Steps)

namespace {

// The template and its elements in drawing order, with the values the commands touch.
QString stateOf(Record* templ)
{
    QStringList parts{valuesOf(templ, {"unit", "margin_left", "sections_height_first"})};
    QList<Record*> elements = templ->relatedList(s("template_elements"));
    std::sort(elements.begin(), elements.end(), [](Record* a, Record* b) {
        return a->value(s("zorder")).toInt() < b->value(s("zorder")).toInt();
    });
    for (const Record* element : elements) {
        parts << valuesOf(element, {"identifier", "type", "zorder", "section", "position_x", "position_y",
                                    "font_size"}) +
                     s(" | ") + element->value(s("font_color")).value<QColor>().name();
    }
    return parts.join(s("\n"));
}

} // namespace

class tst_TemplateCommands : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void doUndoRedo_data();
    void doUndoRedo();
};

void tst_TemplateCommands::doUndoRedo_data()
{
    QTest::addColumn<Steps>("steps");
    QTest::addColumn<int>("count");        // the steps on the stack
    QTest::addColumn<QStringList>("done"); // the state after the steps, line by line
    const QString start = s("0 | 1 | 100,100,100,100,100");
    const QString text = s("T | text | 1 | Document Header | 10 | 20 | 12 | #000000");
    const QString box = s("B | shape_box | 2 | Table Header | 30 | 40 | - | #000000");

    QTest::newRow("insert a box") << Steps([](QUndoStack& stack, Record* templ, Record*, Record*) {
        stack.push(new InsertElementCommand(templ, s("shape_box"), 1, s("Table Footer"), QPointF(5, 6)));
    }) << 1 << QStringList{start, text, box, s("NEW | shape_box | 3 | Table Footer | 5 | 6 | - | #000000")};
    QTest::newRow("insert of an unknown kind is no step")
        << Steps([](QUndoStack& stack, Record* templ, Record*, Record*) {
               stack.push(new InsertElementCommand(templ, s("shape_star"), 0, s("Document Header")));
           })
        << 0 << QStringList{start, text, box};
    QTest::newRow("delete both") << Steps([](QUndoStack& stack, Record* templ, Record* t, Record* b) {
        stack.push(new DeleteElementsCommand(templ, {t, b}));
    }) << 1 << QStringList{start};
    QTest::newRow("colour and size of both")
        << Steps([](QUndoStack& stack, Record* templ, Record* t, Record* b) {
               stack.push(new ChangeElementValuesCommand(
                   templ, {t, b}, {{s("font_size"), 9.0}, {s("font_color"), QColor(Qt::red)}}));
           })
        << 1
        << QStringList{start, s("T | text | 1 | Document Header | 10 | 20 | 9 | #ff0000"),
                       s("B | shape_box | 2 | Table Header | 30 | 40 | 9 | #ff0000")};
    QTest::newRow("a drag is one step") << Steps([](QUndoStack& stack, Record* templ, Record* t, Record*) {
        for (int x = 11; x <= 15; ++x)
            stack.push(
                new ChangeElementValuesCommand(templ, {t}, {{s("position_x"), x}, {s("position_y"), 20}}));
    }) << 1 << QStringList{start, s("T | text | 1 | Document Header | 15 | 20 | 12 | #000000"), box};
    QTest::newRow("a drag back to the start is no step")
        << Steps([](QUndoStack& stack, Record* templ, Record* t, Record*) {
               for (int x : {11, 12, 10})
                   stack.push(new ChangeElementValuesCommand(templ, {t}, {{s("position_x"), x}}));
           })
        << 0 << QStringList{start, text, box};
    QTest::newRow("other keys or elements are steps of their own")
        << Steps([](QUndoStack& stack, Record* templ, Record* t, Record* b) {
               stack.push(new ChangeElementValuesCommand(templ, {t}, {{s("position_x"), 50}}));
               stack.push(new ChangeElementValuesCommand(templ, {t}, {{s("position_y"), 60}}));
               stack.push(new ChangeElementValuesCommand(templ, {b}, {{s("position_y"), 70}}));
           })
        << 3
        << QStringList{start, s("T | text | 1 | Document Header | 50 | 60 | 12 | #000000"),
                       s("B | shape_box | 2 | Table Header | 30 | 70 | - | #000000")};
    QTest::newRow("margins and unit") << Steps([](QUndoStack& stack, Record* templ, Record*, Record*) {
        stack.push(new ChangeTemplateValuesCommand(templ, {{s("unit"), 1}, {s("margin_left"), 0.5}}));
    }) << 1 << QStringList{s("1 | 0.5 | 100,100,100,100,100"), text, box};
    QTest::newRow("section heights dragged") << Steps([](QUndoStack& stack, Record* templ, Record*, Record*) {
        for (int h : {110, 120, 130})
            stack.push(new ChangeTemplateValuesCommand(
                templ, {{s("sections_height_first"), s("100,%1,100,100,100").arg(h)}}));
    }) << 1 << QStringList{s("0 | 1 | 100,130,100,100,100"), text, box};
    QTest::newRow("insert, change it, delete it") << Steps([](QUndoStack& stack, Record* templ, Record*,
                                                              Record*) {
        auto* insert = new InsertElementCommand(templ, s("text"), 0, s("Document Footer"));
        stack.push(insert);
        stack.push(new ChangeElementValuesCommand(templ, {insert->inserted()}, {{s("font_size"), 20}}));
        stack.push(new DeleteElementsCommand(templ, {insert->inserted()}));
    }) << 3 << QStringList{start, text, box};
}

void tst_TemplateCommands::doUndoRedo()
{
    QFETCH(Steps, steps);
    QFETCH(int, count);
    QFETCH(QStringList, done);
    ScratchCompany st;
    Record* templ =
        st.main().insertRecord(s("Templates"), {{s("type"), 0},
                                                {s("unit"), 0},
                                                {s("margin_left"), 1},
                                                {s("sections_height_first"), s("100,100,100,100,100")}});
    const auto element = [&](const QVariantMap& values) {
        Record* made = st.main().insertRecord(s("TemplateElements"), values);
        made->setRelated(s("template"), templ);
        return made;
    };
    Record* text = element({{s("identifier"), s("T")},
                            {s("type"), s("text")},
                            {s("zorder"), 1},
                            {s("section"), s("Document Header")},
                            {s("position_x"), 10},
                            {s("position_y"), 20},
                            {s("font_size"), 12},
                            {s("font_color"), QColor(Qt::black)}});
    Record* box = element({{s("identifier"), s("B")},
                           {s("type"), s("shape_box")},
                           {s("zorder"), 2},
                           {s("section"), s("Table Header")},
                           {s("position_x"), 30},
                           {s("position_y"), 40},
                           {s("font_color"), QColor(Qt::black)}});
    saveOrFail(st.main());
    const QString start = stateOf(templ);

    QUndoStack stack;
    steps(stack, templ, text, box);
    QCOMPARE(stack.count(), count);
    // An inserted element's identifier is new; it stays the same through undo and redo.
    const QString after = stateOf(templ);
    QCOMPARE(
        QString(after).replace(QRegularExpression(s("[0-9A-F]{8}(-[0-9A-F]{4}){3}-[0-9A-F]{12}")), s("NEW")),
        done.join(s("\n")));

    while (stack.canUndo())
        stack.undo();
    QCOMPARE(stateOf(templ), start);
    while (stack.canRedo())
        stack.redo();
    QCOMPARE(stateOf(templ), after);

    // What is done can be stored, and undone again after that.
    saveOrFail(st.main());
    while (stack.canUndo())
        stack.undo();
    saveOrFail(st.main());
    QCOMPARE(stateOf(templ), start);
}

QTEST_GUILESS_MAIN(tst_TemplateCommands)
#include "tst_templatecommands.moc"
