#include "editors/referencelisteditor.h"
#include "editors/referencelistmodel.h"
#include "referencelisttestsupport.h"
#include "support/scriptedprompter.h"

#include <QAbstractItemModelTester>
#include <QTest>
#include <limits>

using namespace corvanta::documents;
using namespace corvanta::editors;
using namespace corvanta::documents::testing;
using namespace corvanta::model;
using namespace corvanta::store;
using namespace corvanta::model::testing;
using corvanta::support::ScriptedPrompter;

namespace {

int column(const ReferenceList& list, const char* key)
{
    for (qsizetype i = 0; i < list.columns().size(); ++i) {
        if (list.columns().at(i).key == s(key))
            return int(i);
    }
    return -1;
}

} // namespace

class tst_ReferenceListModel : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_fixture = std::make_unique<ReferenceListFixture>();
        m_context = m_fixture->store().store().newContext();
    }
    void cleanup()
    {
        m_context.reset();
        m_fixture.reset();
    }

    void staysConsistentThroughEveryCommand_data();
    void staysConsistentThroughEveryCommand();
    void rowsFollowTheirRecordsWhenResorted();
    void cellsShowAndEditTheFields();

private:
    std::unique_ptr<ReferenceListFixture> m_fixture;
    std::unique_ptr<EditingContext> m_context;
    ScriptedPrompter m_prompter;
};

void tst_ReferenceListModel::staysConsistentThroughEveryCommand_data()
{
    QTest::addColumn<ReferenceListType>("type");
    for (ReferenceListType type : ReferenceListFixture::allLists())
        QTest::newRow(qPrintable(ReferenceList(type).entity())) << type;
}

void tst_ReferenceListModel::staysConsistentThroughEveryCommand()
{
    QFETCH(ReferenceListType, type);
    m_fixture->insert(type, "B");
    m_fixture->insert(type, "D");
    saveOrFail(m_fixture->main());

    ReferenceListEditor editor(type, *m_context, m_prompter);
    ReferenceListModel model(editor);
    QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::QtTest);
    QCOMPARE(model.rowCount(), 3);
    const int naming = model.namingColumn();

    if (editor.list().canAddAndDelete()) {
        Record* added = editor.add();
        QCOMPARE(model.data(model.indexOf(added, naming)).toString(), s(" New "));
        QVERIFY(model.flags(model.indexOf(added, naming)) & Qt::ItemIsEditable);
        QVERIFY(model.setData(model.indexOf(added, naming), s("C")));
        Record* copy = editor.duplicate({added});
        QCOMPARE(model.data(model.indexOf(copy, naming)).toString(), s("C Copy"));
        QVERIFY(editor.remove(copy));
        QCOMPARE(model.rowCount(), 4);
        QVERIFY(!model.indexOf(copy).isValid());
    }
    QStringList names;
    for (int row = 0; row < model.rowCount(); ++row)
        names << model.data(model.index(row, naming)).toString();
    QStringList sorted = names;
    sorted.sort(Qt::CaseInsensitive);
    QCOMPARE(names, sorted);

    // One tick in the default column; it moves only by choosing another row.
    const QModelIndex last = model.index(model.rowCount() - 1, model.defaultColumn());
    QVERIFY(model.setData(last, Qt::Checked, Qt::CheckStateRole));
    QVERIFY(!model.setData(last, Qt::Unchecked, Qt::CheckStateRole));
    int ticked = 0;
    for (int row = 0; row < model.rowCount(); ++row)
        ticked += model.index(row, model.defaultColumn()).data(Qt::CheckStateRole) == QVariant(Qt::Checked);
    QCOMPARE(ticked, 1);
    QCOMPARE(last.data(Qt::CheckStateRole), QVariant(Qt::Checked));
}

void tst_ReferenceListModel::rowsFollowTheirRecordsWhenResorted()
{
    Record* a = m_fixture->insert(ReferenceListType::Units, "a");
    m_fixture->insert(ReferenceListType::Units, "m");
    saveOrFail(m_fixture->main());
    ReferenceListEditor editor(ReferenceListType::Units, *m_context, m_prompter);
    ReferenceListModel model(editor);
    QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::QtTest);

    Record* unit = m_context->record(a->ref());
    const QPersistentModelIndex selected = model.indexOf(unit);
    QCOMPARE(selected.row(), 0);
    QVERIFY(model.setData(selected, s("z")));
    QCOMPARE(selected.row(), model.rowCount() - 1);
    QCOMPARE(model.recordAt(selected.row()), unit);
    QCOMPARE(selected.data().toString(), s("z"));
}

void tst_ReferenceListModel::cellsShowAndEditTheFields()
{
    Record* vat =
        m_fixture->insert(ReferenceListType::Taxes, "VAT", {{s("rate1"), 1234.5}, {s("cumulative"), true}});
    Record* due = m_fixture->insert(ReferenceListType::DueDays, "10 Days", {{s("days"), 10}, {s("type"), 0}});
    saveOrFail(m_fixture->main());

    ReferenceListEditor taxes(ReferenceListType::Taxes, *m_context, m_prompter);
    ReferenceListModel taxModel(taxes);
    QStringList headers;
    for (int c = 0; c < taxModel.columnCount(); ++c)
        headers << taxModel.headerData(c, Qt::Horizontal).toString();
    QCOMPARE(headers, (QStringList{s("Name"), s("Rate 1"), s("Rate 2"), s("Cumulative"), s("Default")}));
    const QModelIndex rate = taxModel.indexOf(m_context->record(vat->ref()), 1);
    // Numbers in the default currency's entry format, edited as numbers.
    QCOMPARE(rate.data(), QVariant(s("1,234.50")));
    QCOMPARE(rate.data(Qt::EditRole), QVariant(1234.5));
    QCOMPARE(rate.siblingAtColumn(3).data(Qt::CheckStateRole), QVariant(Qt::Checked));
    QVERIFY(!(taxModel.flags(rate.siblingAtColumn(3)) & Qt::ItemIsEditable));
    QVERIFY(taxModel.setData(rate.siblingAtColumn(3), Qt::Unchecked, Qt::CheckStateRole));
    QCOMPARE(m_fixture->main().record(vat->ref())->value(s("cumulative")), QVariant(false));
    QVERIFY(taxModel.setData(rate, s("7.25")));
    QCOMPARE(m_fixture->main().record(vat->ref())->value(s("rate1")), QVariant(7.25));
    QVERIFY(!taxModel.setData(rate, std::numeric_limits<double>::infinity()));
    QVERIFY(!taxModel.setData(rate, s("20 %")));
    QCOMPARE(rate.data(), QVariant(s("7.25")));
    QCOMPARE(m_prompter.titles(), (QStringList{s("Invalid number"), s("Invalid number")}));

    ReferenceListEditor dueDays(ReferenceListType::DueDays, *m_context, m_prompter);
    ReferenceListModel dueModel(dueDays);
    const QModelIndex days = dueModel.indexOf(m_context->record(due->ref()), 1);
    QCOMPARE(days.data(), QVariant(s("10")));
    QCOMPARE(days.siblingAtColumn(2).data(Qt::CheckStateRole), QVariant(Qt::Unchecked));
    QVERIFY(dueModel.setData(days.siblingAtColumn(2), Qt::Checked, Qt::CheckStateRole));
    QCOMPARE(m_fixture->main().record(due->ref())->value(s("type")), QVariant(qint64(1)));

    ReferenceListEditor currencies(ReferenceListType::Currencies, *m_context, m_prompter);
    ReferenceListModel currencyModel(currencies);
    const QModelIndex sample = currencyModel.index(0, column(currencies.list(), "sample"));
    QVERIFY(!(currencyModel.flags(sample) & Qt::ItemIsEditable));
    QVERIFY(!currencyModel.setData(sample, s("anything")));
    QCOMPARE(currencyModel.index(0, column(currencies.list(), "symbol_format"))
                 .data(ReferenceListModel::ChoicesRole)
                 .toStringList(),
             (QStringList{s("l"), s("ls"), s("r"), s("sr"), s("code"), s("no")}));
}

QTEST_GUILESS_MAIN(tst_ReferenceListModel)
#include "tst_referencelistmodel.moc"
