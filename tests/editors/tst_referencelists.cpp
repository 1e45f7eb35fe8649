#include "../model/modeltestsupport.h"
#include "editors/defaultvaluetransformer.h"
#include "editors/referencelisteditor.h"
#include "editors/referencelistmodel.h"
#include "support/scriptedprompter.h"

#include <QAbstractItemModelTester>
#include <QSignalSpy>
#include <QTest>
#include <limits>

using namespace corvanta::editors;
using namespace corvanta::store;
using namespace corvanta::model::testing;

Q_DECLARE_METATYPE(ReferenceListType)

namespace {

const QList<ReferenceListType> kLists{ReferenceListType::Taxes,   ReferenceListType::Banks,
                                      ReferenceListType::DueDays, ReferenceListType::PaymentTypes,
                                      ReferenceListType::Units,   ReferenceListType::Currencies};

} // namespace

// The reference lists' editor and the item model their windows show: adding, copying and
// deleting with its guards, the company's default, typed numbers, and a model that stays
// consistent through every command.
class tst_ReferenceLists : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void everyCommandOfEveryList_data();
    void everyCommandOfEveryList();
    void deleteRefused_data();
    void deleteRefused();
    void dueDaysUsedByClientsAreDeleted();
    void numbersAreReadAndChecked_data();
    void numbersAreReadAndChecked();
    void savesOfOtherContextsReachTheList();
    void modelRowsFollowTheirRecordsWhenResorted();
    void modelCellsShowAndEditTheFields();

private:
    // A record of a list in the main context, named by its naming field.
    Record* insert(ReferenceListType type, const char* name, const QVariantMap& values = {})
    {
        const ReferenceList list(type);
        QVariantMap all = values;
        all.insert(list.namingKey(), QString::fromUtf8(name));
        return main().insertRecord(list.entity(), all);
    }
    EditingContext& main() { return m_store->main(); }
    Record* inMain(const Record* record) { return main().record(record->ref()); }
    Record* here(const Record* record) { return m_context->record(record->ref()); }
    void verifyOneAlert(const QString& title, const QString& text)
    {
        QCOMPARE(m_prompter.questions().size(), 1);
        QCOMPARE(m_prompter.questions().first().title, title);
        QCOMPARE(m_prompter.questions().first().text, text);
        QCOMPARE(m_prompter.questions().first().buttons, QStringList{s("OK")});
    }

    std::unique_ptr<ScratchCompany> m_store;
    std::unique_ptr<EditingContext> m_context; // the editor's own
    Record* m_company = nullptr;
    corvanta::support::ScriptedPrompter m_prompter;
};

// A company with a default currency ("," grouping, "." decimal, two fixed digits) and one
// default record in every other list.
void tst_ReferenceLists::init()
{
    m_store = std::make_unique<ScratchCompany>();
    m_company = main().insertRecord(s("MyCompany"), {{s("name"), s("Acme")}});
    m_company->setRelated(s("default_currency"),
                          main().insertRecord(s("Currencies"), {{s("code"), s("EUR")},
                                                                {s("grouping_separator"), s(",")},
                                                                {s("decimal_separator"), s(".")},
                                                                {s("digits"), 2},
                                                                {s("show_fixed_digits"), true}}));
    for (ReferenceListType type : kLists) {
        if (type != ReferenceListType::Currencies)
            m_company->setRelated(ReferenceList(type).companyKey(), insert(type, "Default"));
    }
    saveOrFail(main());
    m_context = m_store->store().newContext();
    m_prompter.clear();
}

void tst_ReferenceLists::cleanup()
{
    m_context.reset();
    m_store.reset();
}

void tst_ReferenceLists::everyCommandOfEveryList_data()
{
    QTest::addColumn<ReferenceListType>("type");
    for (ReferenceListType type : kLists)
        QTest::newRow(qPrintable(ReferenceList(type).entity())) << type;
}

void tst_ReferenceLists::everyCommandOfEveryList()
{
    QFETCH(ReferenceListType, type);
    insert(type, "B");
    insert(type, "D");
    saveOrFail(main());
    ReferenceListEditor editor(type, *m_context, m_prompter);
    ReferenceListModel model(editor);
    QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::QtTest);
    QSignalSpy announced(&m_store->store(), &Store::didSave);
    const QString naming = editor.list().namingKey();
    const auto nameAt = [&](const Record* r) { return model.data(model.indexOf(r, model.namingColumn())); };
    QCOMPARE(model.rowCount(), 3);

    if (editor.list().canAddAndDelete()) {
        Record* added = editor.add();
        QCOMPARE(announced.count(), 1);
        QCOMPARE(inMain(added)->value(naming), QVariant(s(" New ")));
        QVERIFY(model.flags(model.indexOf(added, model.namingColumn())) & Qt::ItemIsEditable);
        QVERIFY(model.setData(model.indexOf(added, model.namingColumn()), s("C")));
        const QString other = type == ReferenceListType::Taxes     ? s("rate1")
                              : type == ReferenceListType::Banks   ? s("line2")
                              : type == ReferenceListType::DueDays ? s("days")
                                                                   : QString();
        if (!other.isEmpty())
            QVERIFY(editor.setValue(added, other, 8));
        QCOMPARE(editor.duplicate({}), nullptr);
        Record* copy = editor.duplicate({added, editor.records().first()});
        QCOMPARE(nameAt(copy), QVariant(s("C Copy")));
        if (!other.isEmpty())
            QCOMPARE(inMain(copy)->value(other), QVariant(8));
        // A copy is not the company's default.
        QCOMPARE(DefaultValueTransformer().transformedValue(QVariant::fromValue(copy)), QVariant(false));
        QVERIFY(editor.remove(copy));
        QVERIFY(!model.indexOf(copy).isValid());
        QCOMPARE(main().count(FetchRequest(editor.list().entity())), 4);
    } else {
        QCOMPARE(editor.add(), nullptr);
        QCOMPARE(editor.duplicate({editor.records().first()}), nullptr);
        QVERIFY(!editor.remove(editor.records().first()));
    }
    QStringList names;
    for (int row = 0; row < model.rowCount(); ++row)
        names << model.data(model.index(row, model.namingColumn())).toString();
    QStringList sorted = names;
    sorted.sort(Qt::CaseInsensitive);
    QCOMPARE(names, sorted);

    // One tick in the default column; it moves only by choosing another row.
    Record* previous = editor.defaultRecord();
    const QModelIndex first = model.index(0, model.defaultColumn());
    QVERIFY(model.setData(first, Qt::Checked, Qt::CheckStateRole));
    QVERIFY(!model.setData(first, Qt::Unchecked, Qt::CheckStateRole));
    int ticked = 0;
    for (int row = 0; row < model.rowCount(); ++row)
        ticked += model.index(row, model.defaultColumn()).data(Qt::CheckStateRole) == QVariant(Qt::Checked);
    QCOMPARE(ticked, 1);
    Record* chosen = model.recordAt(0);
    QVERIFY(chosen != previous);
    QCOMPARE(m_company->related(editor.list().companyKey()), inMain(chosen));
    QCOMPARE(DefaultValueTransformer().transformedValue(QVariant::fromValue(chosen)), QVariant(true));
    QCOMPARE(DefaultValueTransformer().transformedValue(QVariant::fromValue(previous)), QVariant(false));

    // An emptied naming field is stored as "-"; blanks are a name.
    for (const auto& [typed, kept] :
         QList<std::pair<QVariant, QString>>{{s(""), s("-")}, {QVariant(), s("-")}, {s(" "), s(" ")}}) {
        QVERIFY(editor.setValue(chosen, naming, typed));
        QCOMPARE(inMain(chosen)->value(naming), QVariant(kept));
    }
    QVERIFY(m_prompter.questions().isEmpty());
    QVERIFY(!m_context->hasChanges());
}

void tst_ReferenceLists::deleteRefused_data()
{
    QTest::addColumn<ReferenceListType>("type");
    QTest::addColumn<QList<int>>("usesPerDocument"); // none: the company's default is deleted
    QTest::addColumn<QString>("title");
    QTest::addColumn<QString>("text");

    // Taxes and units count document lines, not documents.
    const auto row = [](const char* name, ReferenceListType type, const QList<int>& uses, const char* title,
                        const char* text) { QTest::newRow(name) << type << uses << s(title) << s(text); };
    row("tax in 2 + 1 lines", ReferenceListType::Taxes, {2, 1}, "Tax cannot be deleted",
        "The chosen tax cannot be deleted, because it is in use in 3 document lines.");
    row("tax in 1 line", ReferenceListType::Taxes, {1}, "Tax cannot be deleted",
        "The chosen tax cannot be deleted, because it is in use in 1 document lines.");
    row("unit in 7 lines", ReferenceListType::Units, {4, 3}, "Unit cannot be deleted",
        "The chosen unit cannot be deleted, because it is in use in 7 document lines.");
    row("bank in 2 documents", ReferenceListType::Banks, {1, 1}, "Bank cannot be deleted",
        "The chosen bank cannot be deleted, because it is in use in 2 documents.");
    row("payment type in 3 documents", ReferenceListType::PaymentTypes, {1, 1, 1},
        "Payment type cannot be deleted",
        "The chosen payment type cannot be deleted, because it is in use in 3 documents.");
    row("default tax", ReferenceListType::Taxes, {}, "Tax cannot be deleted",
        "The chosen tax cannot be deleted, because it is a default tax.");
    row("default bank", ReferenceListType::Banks, {}, "Bank cannot be deleted",
        "The chosen bank cannot be deleted, because it is a default bank.");
    row("default due day", ReferenceListType::DueDays, {}, "Due Day cannot be deleted",
        "The chosen due day cannot be deleted, because it is a default due day.");
    row("default payment type", ReferenceListType::PaymentTypes, {}, "Payment type cannot be deleted",
        "The chosen payment type cannot be deleted, because it is a default payment type.");
    row("default unit", ReferenceListType::Units, {}, "Unit cannot be deleted",
        "The chosen unit cannot be deleted, because it is a default unit.");
}

void tst_ReferenceLists::deleteRefused()
{
    QFETCH(ReferenceListType, type);
    QFETCH(QList<int>, usesPerDocument);
    QFETCH(QString, title);
    QFETCH(QString, text);

    const ReferenceList list(type);
    Record* used = usesPerDocument.isEmpty() ? m_company->related(list.companyKey()) : insert(type, "Used");
    const QHash<ReferenceListType, QString> keys{{ReferenceListType::Taxes, s("tax")},
                                                 {ReferenceListType::Units, s("unit")},
                                                 {ReferenceListType::Banks, s("bank")},
                                                 {ReferenceListType::PaymentTypes, s("payment_type")}};
    const QString key = keys.value(type);
    const bool byRows = type == ReferenceListType::Taxes || type == ReferenceListType::Units;
    for (int uses : usesPerDocument) {
        Record* document = main().insertRecord(s("Documents"));
        if (!byRows)
            document->setRelated(key, used);
        for (int i = 0; byRows && i < uses; ++i) {
            Record* row = main().insertRecord(s("DocumentRows"));
            row->setRelated(s("document"), document);
            row->setRelated(key, used);
        }
    }
    saveOrFail(main());
    ReferenceListEditor editor(type, *m_context, m_prompter);

    QVERIFY(!editor.remove(here(used)));
    verifyOneAlert(title, text);
    QVERIFY(!m_context->hasChanges());
    QVERIFY(editor.records().contains(here(used)));
    QCOMPARE(editor.defaultRecord(), here(m_company->related(list.companyKey())));
}

void tst_ReferenceLists::dueDaysUsedByClientsAreDeleted()
{
    Record* dueDay = insert(ReferenceListType::DueDays, "30 Days", {{s("days"), 30}});
    Record* client = main().insertRecord(s("Clients"));
    client->setRelated(s("default_due_day"), dueDay);
    saveOrFail(main());

    ReferenceListEditor editor(ReferenceListType::DueDays, *m_context, m_prompter);
    QVERIFY(editor.remove(here(dueDay)));
    QVERIFY(m_prompter.questions().isEmpty());
    QCOMPARE(client->related(s("default_due_day")), nullptr);
}

void tst_ReferenceLists::numbersAreReadAndChecked_data()
{
    QTest::addColumn<QString>("key"); // of a tax (rate 20, second rate 0) or of the currency (2 digits)
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<QVariant>("stored");
    QTest::addColumn<QString>("refusal");
    const QString notFinite = s("Only finite numbers can be entered: NaN and infinity are not amounts.");
    const auto row = [](const char* name, const char* key, const QVariant& value, const QVariant& stored,
                        const QString& refusal = {}) {
        QTest::newRow(name) << s(key) << value << stored << refusal;
    };
    row("number", "rate1", 27.5, 27.5);
    row("text in the currency's format", "rate1", s("1,027.5"), 1027.5);
    row("emptied", "rate1", s(""), QVariant());
    row("NaN", "rate1", std::numeric_limits<double>::quiet_NaN(), 20.0, notFinite);
    row("float NaN", "rate1", std::numeric_limits<float>::quiet_NaN(), 20.0, notFinite);
    row("minus infinity", "rate2", -std::numeric_limits<double>::infinity(), 0.0, notFinite);
    row("letters", "rate1", s("twenty"), 20.0, s("\u201ctwenty\u201d is not a valid number."));
    row("whole number as text", "digits", s("3"), qint64(3));
    row("whole number as letters", "digits", s("three"), qint64(2),
        s("\u201cthree\u201d is not a valid number."));
}

void tst_ReferenceLists::numbersAreReadAndChecked()
{
    QFETCH(QString, key);
    QFETCH(QVariant, value);
    QFETCH(QVariant, stored);
    QFETCH(QString, refusal);
    const bool currency = key == QLatin1String("digits");
    Record* record = currency
                         ? m_company->related(s("default_currency"))
                         : insert(ReferenceListType::Taxes, "VAT", {{s("rate1"), 20.0}, {s("rate2"), 0.0}});
    saveOrFail(main());
    ReferenceListEditor editor(currency ? ReferenceListType::Currencies : ReferenceListType::Taxes,
                               *m_context, m_prompter);

    QCOMPARE(editor.setValue(here(record), key, value), refusal.isEmpty());
    QCOMPARE(inMain(record)->value(key), stored);
    QVERIFY(!m_context->hasChanges());
    if (refusal.isEmpty())
        QVERIFY(m_prompter.questions().isEmpty());
    else
        verifyOneAlert(s("Invalid number"), refusal);
}

void tst_ReferenceLists::savesOfOtherContextsReachTheList()
{
    ReferenceListEditor editor(ReferenceListType::Units, *m_context, m_prompter);
    QSignalSpy changed(&editor, &ReferenceListEditor::listChanged);
    insert(ReferenceListType::Units, "kg");
    saveOrFail(main());
    QVERIFY(changed.count() >= 1);
    QCOMPARE(editor.records().size(), 2);
}

void tst_ReferenceLists::modelRowsFollowTheirRecordsWhenResorted()
{
    Record* a = insert(ReferenceListType::Units, "a");
    insert(ReferenceListType::Units, "m");
    saveOrFail(main());
    ReferenceListEditor editor(ReferenceListType::Units, *m_context, m_prompter);
    ReferenceListModel model(editor);
    QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::QtTest);

    Record* unit = here(a);
    const QPersistentModelIndex selected = model.indexOf(unit);
    QCOMPARE(selected.row(), 0);
    QVERIFY(model.setData(selected, s("z")));
    QCOMPARE(selected.row(), model.rowCount() - 1);
    QCOMPARE(model.recordAt(selected.row()), unit);
    QCOMPARE(selected.data().toString(), s("z"));
}

void tst_ReferenceLists::modelCellsShowAndEditTheFields()
{
    Record* vat = insert(ReferenceListType::Taxes, "VAT", {{s("rate1"), 1234.5}, {s("cumulative"), true}});
    Record* due = insert(ReferenceListType::DueDays, "10 Days", {{s("days"), 10}, {s("type"), 0}});
    saveOrFail(main());

    ReferenceListEditor taxes(ReferenceListType::Taxes, *m_context, m_prompter);
    ReferenceListModel taxModel(taxes);
    QStringList headers;
    for (int c = 0; c < taxModel.columnCount(); ++c)
        headers << taxModel.headerData(c, Qt::Horizontal).toString();
    QCOMPARE(headers, (QStringList{s("Name"), s("Rate 1"), s("Rate 2"), s("Cumulative"), s("Default")}));
    const QModelIndex rate = taxModel.indexOf(here(vat), 1);
    // Numbers in the default currency's entry format, edited as numbers.
    QCOMPARE(rate.data(), QVariant(s("1,234.50")));
    QCOMPARE(rate.data(Qt::EditRole), QVariant(1234.5));
    QCOMPARE(rate.siblingAtColumn(3).data(Qt::CheckStateRole), QVariant(Qt::Checked));
    QVERIFY(!(taxModel.flags(rate.siblingAtColumn(3)) & Qt::ItemIsEditable));
    QVERIFY(taxModel.setData(rate.siblingAtColumn(3), Qt::Unchecked, Qt::CheckStateRole));
    QCOMPARE(inMain(vat)->value(s("cumulative")), QVariant(false));
    QVERIFY(taxModel.setData(rate, s("7.25")));
    QCOMPARE(inMain(vat)->value(s("rate1")), QVariant(7.25));
    QVERIFY(!taxModel.setData(rate, std::numeric_limits<double>::infinity()));
    QVERIFY(!taxModel.setData(rate, s("20 %")));
    QCOMPARE(rate.data(), QVariant(s("7.25")));
    QCOMPARE(m_prompter.titles(), (QStringList{s("Invalid number"), s("Invalid number")}));

    ReferenceListEditor dueDays(ReferenceListType::DueDays, *m_context, m_prompter);
    ReferenceListModel dueModel(dueDays);
    const QModelIndex days = dueModel.indexOf(here(due), 1);
    QCOMPARE(days.data(), QVariant(s("10")));
    QCOMPARE(days.siblingAtColumn(2).data(Qt::CheckStateRole), QVariant(Qt::Unchecked));
    QVERIFY(dueModel.setData(days.siblingAtColumn(2), Qt::Checked, Qt::CheckStateRole));
    QCOMPARE(inMain(due)->value(s("type")), QVariant(qint64(1)));

    ReferenceListEditor currencies(ReferenceListType::Currencies, *m_context, m_prompter);
    ReferenceListModel currencyModel(currencies);
    const auto column = [&](const char* key) {
        const QList<ReferenceListColumn>& columns = currencies.list().columns();
        return int(
            std::find_if(columns.begin(), columns.end(), [&](const auto& c) { return c.key == s(key); }) -
            columns.begin());
    };
    const QModelIndex sample = currencyModel.index(0, column("sample"));
    QVERIFY(!(currencyModel.flags(sample) & Qt::ItemIsEditable));
    QVERIFY(!currencyModel.setData(sample, s("anything")));
    QCOMPARE(
        currencyModel.index(0, column("symbol_format")).data(ReferenceListModel::ChoicesRole).toStringList(),
        (QStringList{s("l"), s("ls"), s("r"), s("sr"), s("code"), s("no")}));
}

QTEST_GUILESS_MAIN(tst_ReferenceLists)
#include "tst_referencelists.moc"
