#include "../documents/documenttestsupport.h"
#include "editors/referencelisteditor.h"
#include "editors/referencelistmodel.h"

#include <QAbstractItemModelTester>
#include <limits>

using namespace corvanta::editors;
using namespace corvanta::store;
using namespace corvanta::model::testing;
using corvanta::documents::testing::ForcedFailure;
using Type = ReferenceListType;

Q_DECLARE_METATYPE(ReferenceListType)

// The reference lists' editor and the item model their windows show: adding, copying and deleting
// with its guards, the company's default, typed numbers and a failed save.
class tst_ReferenceLists : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void everyCommandOfEveryList_data();
    void everyCommandOfEveryList();
    void deleteRefused_data();
    void deleteRefused();
    void numbersAreReadAndChecked_data();
    void numbersAreReadAndChecked();
    void modelCellsShowAndEditTheFields();

private:
    // A record of a list in the main context, named by its naming field.
    Record* insert(Type type, const char* name, QVariantMap values = {})
    {
        const ReferenceList list(type);
        values.insert(list.namingKey(), QString::fromUtf8(name));
        return main().insertRecord(list.entity(), values);
    }
    EditingContext& main() { return m_store->main(); }
    Record* inMain(const Record* record) { return main().record(record->ref()); }
    Record* here(const Record* record) { return m_context->record(record->ref()); }
    QStringList asked() const { return corvanta::documents::testing::asked(m_prompter); }

    std::unique_ptr<ScratchCompany> m_store;
    std::unique_ptr<EditingContext> m_context; // the editor's own
    Record* m_company = nullptr;
    corvanta::support::ScriptedPrompter m_prompter;
};

// A company with a default currency ("," grouping, "." decimal, two fixed digits) and one
// default record in every other list.
void tst_ReferenceLists::init()
{
    m_context.reset(); // before its store
    m_store = std::make_unique<ScratchCompany>();
    m_company = main().insertRecord(s("MyCompany"), {{s("name"), s("Acme")}});
    m_company->setRelated(s("default_currency"),
                          main().insertRecord(s("Currencies"), {{s("code"), s("EUR")},
                                                                {s("grouping_separator"), s(",")},
                                                                {s("decimal_separator"), s(".")},
                                                                {s("digits"), 2},
                                                                {s("show_fixed_digits"), true}}));
    for (Type type : {Type::Taxes, Type::Banks, Type::DueDays, Type::PaymentTypes, Type::Units})
        m_company->setRelated(ReferenceList(type).companyKey(), insert(type, "Default"));
    saveOrFail(main());
    m_context = m_store->store().newContext();
    m_prompter.clear();
}

void tst_ReferenceLists::everyCommandOfEveryList_data()
{
    QTest::addColumn<Type>("type");
    QTest::addColumn<QString>("other"); // a second field, copied with the record
    QTest::addColumn<QString>("names"); // in the order of the list
    const auto row = [](Type type, const char* other, const char* names) {
        QTest::newRow(qPrintable(ReferenceList(type).entity())) << type << s(other) << s(names);
    };
    row(Type::Taxes, "rate1", "B C D Default");
    row(Type::Banks, "line2", "B C D Default");
    row(Type::DueDays, "days", "B C D Default");
    row(Type::PaymentTypes, "", "B C D Default");
    row(Type::Currencies, "", "B D EUR"); // never added, copied or deleted here
}

void tst_ReferenceLists::everyCommandOfEveryList()
{
    QFETCH(Type, type);
    QFETCH(QString, other);
    insert(type, "B");
    insert(type, "D");
    saveOrFail(main());
    ReferenceListEditor editor(type, *m_context, m_prompter);
    ReferenceListModel model(editor);
    QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::QtTest);
    const QString naming = editor.list().namingKey();

    if (editor.list().canAddAndDelete()) {
        Record* added = editor.add();
        QCOMPARE(inMain(added)->value(naming), QVariant(s(" New ")));
        QVERIFY(model.setData(model.indexOf(added, model.namingColumn()), s("C")));
        if (!other.isEmpty())
            QVERIFY(editor.setValue(added, other, 8));
        QCOMPARE(editor.duplicate({}), nullptr);
        Record* copy = editor.duplicate({added, editor.records().first()});
        QCOMPARE(model.data(model.indexOf(copy, model.namingColumn())), QVariant(s("C Copy")));
        if (!other.isEmpty())
            QCOMPARE(inMain(copy)->value(other), QVariant(8));
        QVERIFY(editor.remove(copy));
        QVERIFY(!model.indexOf(copy).isValid());
    } else {
        QVERIFY(!editor.add() && !editor.duplicate({editor.records().first()}));
        QVERIFY(!editor.remove(editor.records().first()));
    }
    QStringList names;
    for (int row = 0; row < model.rowCount(); ++row)
        names << model.data(model.index(row, model.namingColumn())).toString();
    QTEST(names.join(QLatin1Char(' ')), "names");
    QCOMPARE(main().count(FetchRequest(editor.list().entity())), names.size());

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
    // An emptied naming field is stored as "-".
    QVERIFY(editor.setValue(chosen, naming, QVariant()));
    QCOMPARE(inMain(chosen)->value(naming), QVariant(s("-")));
    QVERIFY(m_prompter.questions().isEmpty() && !m_context->hasChanges());
}

void tst_ReferenceLists::deleteRefused_data()
{
    QTest::addColumn<Type>("type");
    QTest::addColumn<QString>("key");                // by which documents, or their lines, use it
    QTest::addColumn<QList<int>>("usesPerDocument"); // lines for taxes and units
    QTest::addColumn<QString>("title");
    QTest::addColumn<QString>("inUse"); // empty: a record in use is deleted
    QTest::addColumn<QString>("isDefault");
    const auto row = [](Type type, const char* key, const QList<int>& uses, const char* title,
                        const char* inUse, const char* isDefault) {
        QTest::newRow(qPrintable(ReferenceList(type).entity()))
            << type << s(key) << uses << s(title) << s(inUse) << s(isDefault);
    };
    row(Type::Taxes, "tax", {2, 1}, "Tax cannot be deleted",
        "The chosen tax cannot be deleted, because it is in use in 3 document lines.",
        "The chosen tax cannot be deleted, because it is a default tax.");
    row(Type::Units, "unit", {4, 3}, "Unit cannot be deleted",
        "The chosen unit cannot be deleted, because it is in use in 7 document lines.",
        "The chosen unit cannot be deleted, because it is a default unit.");
    row(Type::Banks, "bank", {1, 1}, "Bank cannot be deleted",
        "The chosen bank cannot be deleted, because it is in use in 2 documents.",
        "The chosen bank cannot be deleted, because it is a default bank.");
    row(Type::PaymentTypes, "payment_type", {1, 1, 1}, "Payment type cannot be deleted",
        "The chosen payment type cannot be deleted, because it is in use in 3 documents.",
        "The chosen payment type cannot be deleted, because it is a default payment type.");
    // Due days used by clients are deleted; the clients lose them.
    row(Type::DueDays, "", {}, "Due Day cannot be deleted", "",
        "The chosen due day cannot be deleted, because it is a default due day.");
}

void tst_ReferenceLists::deleteRefused()
{
    QFETCH(Type, type);
    QFETCH(QString, key);
    QFETCH(QList<int>, usesPerDocument);
    QFETCH(QString, title);
    QFETCH(QString, inUse);
    QFETCH(QString, isDefault);
    Record* used = insert(type, "Used");
    Record* client = main().insertRecord(s("Clients"));
    if (type == Type::DueDays)
        client->setRelated(s("default_due_day"), used);
    const bool byLines = type == Type::Taxes || type == Type::Units;
    for (int uses : usesPerDocument) {
        Record* document = main().insertRecord(s("Documents"));
        if (!byLines)
            document->setRelated(key, used);
        for (int i = 0; byLines && i < uses; ++i) {
            Record* row = main().insertRecord(s("DocumentRows"));
            row->setRelated(s("document"), document);
            row->setRelated(key, used);
        }
    }
    saveOrFail(main());
    ReferenceListEditor editor(type, *m_context, m_prompter);

    QCOMPARE(editor.remove(here(used)), inUse.isEmpty());
    QVERIFY(!editor.remove(editor.defaultRecord()));
    QStringList expected{title + s(" | ") + isDefault + s(" | OK")};
    if (!inUse.isEmpty())
        expected.prepend(title + s(" | ") + inUse + s(" | OK"));
    QCOMPARE(asked(), expected);
    QVERIFY(!m_context->hasChanges());
    QCOMPARE(editor.records().size(), inUse.isEmpty() ? 1 : 2);
    if (inUse.isEmpty())
        QCOMPARE(client->related(s("default_due_day")), nullptr);
}

void tst_ReferenceLists::numbersAreReadAndChecked_data()
{
    QTest::addColumn<QString>("key"); // of a tax (rate 20) or of the currency (2 digits)
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<QVariant>("stored");
    QTest::addColumn<QString>("refusal");
    const auto row = [](const char* name, const char* key, const QVariant& value, const QVariant& stored,
                        const char* refusal = "") {
        QTest::newRow(name) << s(key) << value << stored << s(refusal);
    };
    row("emptied", "rate1", s(""), QVariant());
    row("NaN", "rate1", std::numeric_limits<double>::quiet_NaN(), 20.0,
        "Only finite numbers can be entered: NaN and infinity are not amounts.");
    row("whole number as text", "digits", s("3"), qint64(3));
    row("whole number as letters", "digits", s("three"), qint64(2),
        "\u201cthree\u201d is not a valid number.");
}

void tst_ReferenceLists::numbersAreReadAndChecked()
{
    QFETCH(QString, key);
    QFETCH(QVariant, value);
    QFETCH(QVariant, stored);
    QFETCH(QString, refusal);
    const bool currency = key == QLatin1String("digits");
    Record* record = currency ? m_company->related(s("default_currency"))
                              : insert(Type::Taxes, "VAT", {{s("rate1"), 20.0}});
    saveOrFail(main());
    ReferenceListEditor editor(currency ? Type::Currencies : Type::Taxes, *m_context, m_prompter);
    QCOMPARE(editor.setValue(here(record), key, value), refusal.isEmpty());
    QCOMPARE(inMain(record)->value(key), stored);
    QVERIFY(!m_context->hasChanges());
    QCOMPARE(asked(),
             refusal.isEmpty() ? QStringList() : QStringList{s("Invalid number | ") + refusal + s(" | OK")});
}

void tst_ReferenceLists::modelCellsShowAndEditTheFields()
{
    Record* vat = insert(Type::Taxes, "VAT", {{s("rate1"), 1234.5}, {s("cumulative"), true}});
    Record* due = insert(Type::DueDays, "10 Days", {{s("days"), 10}, {s("type"), 0}});
    saveOrFail(main());
    ReferenceListEditor taxes(Type::Taxes, *m_context, m_prompter);
    ReferenceListModel taxModel(taxes);
    QAbstractItemModelTester tester(&taxModel, QAbstractItemModelTester::FailureReportingMode::QtTest);
    // What another context saves reaches the list.
    insert(Type::Taxes, "GST");
    saveOrFail(main());
    QCOMPARE(taxModel.rowCount(), 3);

    // Numbers in the default currency's entry format, edited as numbers; ticks for booleans.
    const QModelIndex rate = taxModel.indexOf(here(vat), 1);
    QCOMPARE(rate.data(), QVariant(s("1,234.50")));
    QCOMPARE(rate.data(Qt::EditRole), QVariant(1234.5));
    QCOMPARE(rate.siblingAtColumn(3).data(Qt::CheckStateRole), QVariant(Qt::Checked));
    QVERIFY(!(taxModel.flags(rate.siblingAtColumn(3)) & Qt::ItemIsEditable));
    QVERIFY(taxModel.setData(rate.siblingAtColumn(3), Qt::Unchecked, Qt::CheckStateRole));
    QCOMPARE(inMain(vat)->value(s("cumulative")), QVariant(false));
    QVERIFY(taxModel.setData(rate, s("7.25")));
    QVERIFY(!taxModel.setData(rate, s("20 %")));
    QCOMPARE(rate.data(), QVariant(s("7.25")));

    // A change the store refuses is undone, and the list shown again as stored.
    {
        ForcedFailure failure(m_store->path(), s("MyCompany"), s("UPDATE"));
        QVERIFY(!taxModel.setData(rate.siblingAtColumn(4), Qt::Checked, Qt::CheckStateRole));
    }
    QVERIFY(asked().last().startsWith(s("The change could not be saved | ")));
    QVERIFY(!m_context->hasChanges());
    QCOMPARE(rate.siblingAtColumn(4).data(Qt::CheckStateRole), QVariant(Qt::Unchecked));
    QCOMPARE(m_company->related(s("default_tax"))->value(s("name")), QVariant(s("Default")));

    // The due days' business-days tick is their type.
    ReferenceListEditor dueDays(Type::DueDays, *m_context, m_prompter);
    ReferenceListModel dueModel(dueDays);
    QVERIFY(dueModel.setData(dueModel.indexOf(here(due), 2), Qt::Checked, Qt::CheckStateRole));
    QCOMPARE(inMain(due)->value(s("type")), QVariant(qint64(1)));
}

QTEST_GUILESS_MAIN(tst_ReferenceLists)
#include "tst_referencelists.moc"
