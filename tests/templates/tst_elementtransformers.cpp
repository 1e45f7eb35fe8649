#include "templates/elementtransformers.h"

#include <QTest>

using namespace corvanta::templates;

// The design editor's position fields and selection caption per element kind, and the template
// list's type names.
class tst_ElementTransformers : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void positionFieldsByKind_data();
    void positionFieldsByKind();
    void templateTypeNames_data();
    void templateTypeNames();
};

void tst_ElementTransformers::positionFieldsByKind_data()
{
    QTest::addColumn<QString>("type");
    QTest::addColumn<QString>("fields"); // height shown, height editable, width shown, width editable
    QTest::addColumn<QString>("caption");
    QTest::newRow("text") << QStringLiteral("text") << QStringLiteral("no yes yes no")
                          << QStringLiteral("Text");
    QTest::newRow("box") << QStringLiteral("shape_box") << QStringLiteral("yes yes yes no")
                         << QStringLiteral("Box");
    QTest::newRow("image") << QStringLiteral("shape_image") << QStringLiteral("yes yes yes no")
                           << QStringLiteral("Image");
    QTest::newRow("horizontal line") << QStringLiteral("shape_horizontal_line")
                                     << QStringLiteral("no yes yes no") << QStringLiteral("Horizontal Line");
    QTest::newRow("vertical line") << QStringLiteral("shape_vertical_line")
                                   << QStringLiteral("yes yes no yes") << QStringLiteral("Vertical Line");
    QTest::newRow("unknown") << QStringLiteral("shape_star") << QStringLiteral("yes yes yes no")
                             << QStringLiteral("Text");
}

void tst_ElementTransformers::positionFieldsByKind()
{
    QFETCH(QString, type);
    QFETCH(QString, fields);
    QFETCH(QString, caption);
    QStringList flags;
    for (const QVariant& flag : {PositionHeightValueTransformer().transformedValue(type),
                                 PositionHeightEditableValueTransformer().transformedValue(type),
                                 PositionWidthValueTransformer().transformedValue(type),
                                 PositionWidthEditableValueTransformer().transformedValue(type)})
        flags << (flag.toBool() ? QStringLiteral("yes") : QStringLiteral("no"));
    QCOMPARE(flags.join(QLatin1Char(' ')), fields);
    QCOMPARE(MultipleNameValueTransformer().transformedValue(type).toString(), caption);
}

void tst_ElementTransformers::templateTypeNames_data()
{
    QTest::addColumn<QVariant>("type");
    QTest::addColumn<QVariant>("name");
    QTest::newRow("invoice") << QVariant(0) << QVariant(QStringLiteral("Invoice"));
    QTest::newRow("purchase order") << QVariant(qint64(7)) << QVariant(QStringLiteral("Purchase Order"));
    QTest::newRow("grouped report") << QVariant(110) << QVariant(QStringLiteral("Document Grouped Report"));
    QTest::newRow("unknown code") << QVariant(8) << QVariant();
    QTest::newRow("no number") << QVariant(QStringLiteral("invoice")) << QVariant();
}

void tst_ElementTransformers::templateTypeNames()
{
    QFETCH(QVariant, type);
    QFETCH(QVariant, name);
    QCOMPARE(TemplateTypeValueTransformer().transformedValue(type), name);
}

QTEST_GUILESS_MAIN(tst_ElementTransformers)
#include "tst_elementtransformers.moc"
