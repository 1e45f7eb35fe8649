#include "editors/defaultvaluetransformer.h"
#include "editors/referencelisteditor.h"
#include "referencelisttestsupport.h"
#include "support/scriptedprompter.h"

#include <QSignalSpy>
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

void addListRows(bool withCurrencies)
{
    QTest::addColumn<ReferenceListType>("type");
    for (ReferenceListType type : ReferenceListFixture::allLists()) {
        if (withCurrencies || type != ReferenceListType::Currencies)
            QTest::newRow(qPrintable(ReferenceList(type).entity())) << type;
    }
}

} // namespace

class tst_ReferenceListEditor : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_fixture = std::make_unique<ReferenceListFixture>();
        m_context = m_fixture->store().store().newContext();
        m_prompter.clear();
    }
    void cleanup()
    {
        m_context.reset();
        m_fixture.reset();
    }

    void addDuplicateAndDelete_data() { addListRows(false); }
    void addDuplicateAndDelete();
    void deleteRefusedWhileInUse_data();
    void deleteRefusedWhileInUse();
    void deleteRefusedForTheDefault_data();
    void deleteRefusedForTheDefault();
    void dueDaysUsedByClientsAreDeleted();
    void makeDefaultAndEmptyTheName_data() { addListRows(true); }
    void makeDefaultAndEmptyTheName();
    void numbersAreReadAndChecked_data();
    void numbersAreReadAndChecked();
    void currenciesAreNeitherAddedNorDeleted();
    void savesOfOtherContextsReachTheList();

private:
    Record* inMain(const Record* record) { return m_fixture->main().record(record->ref()); }
    Record* here(const Record* record) { return m_context->record(record->ref()); }
    void verifyOneAlert(const QString& title, const QString& text)
    {
        QCOMPARE(m_prompter.questions().size(), 1);
        QCOMPARE(m_prompter.questions().first().title, title);
        QCOMPARE(m_prompter.questions().first().text, text);
        QCOMPARE(m_prompter.questions().first().buttons, QStringList{s("OK")});
    }

    std::unique_ptr<ReferenceListFixture> m_fixture;
    std::unique_ptr<EditingContext> m_context;
    ScriptedPrompter m_prompter;
};

void tst_ReferenceListEditor::addDuplicateAndDelete()
{
    QFETCH(ReferenceListType, type);
    ReferenceListEditor editor(type, *m_context, m_prompter);
    const QString naming = editor.list().namingKey();
    QSignalSpy announced(&m_fixture->store().store(), &Store::didSave);

    Record* added = editor.add();
    QVERIFY(added);
    QCOMPARE(announced.count(), 1);
    QCOMPARE(inMain(added)->value(naming), QVariant(s(" New ")));

    QCOMPARE(editor.duplicate({}), nullptr);
    const QString other = type == ReferenceListType::Taxes     ? s("rate1")
                          : type == ReferenceListType::Banks   ? s("line2")
                          : type == ReferenceListType::DueDays ? s("days")
                                                               : QString();
    if (!other.isEmpty())
        QVERIFY(editor.setValue(added, other, 8));
    Record* copy = editor.duplicate({added, editor.records().first()});
    QVERIFY(copy && copy != added);
    QCOMPARE(inMain(copy)->value(naming), QVariant(s(" New  Copy")));
    if (!other.isEmpty())
        QCOMPARE(inMain(copy)->value(other), added->value(other));
    // A copy is not the company's default.
    QCOMPARE(DefaultValueTransformer().transformedValue(QVariant::fromValue(copy)), QVariant(false));

    QVERIFY(editor.remove(copy));
    QVERIFY(!editor.records().contains(copy));
    QCOMPARE(m_fixture->main().count(FetchRequest(editor.list().entity())), 2);
    QVERIFY(m_prompter.questions().isEmpty());
    QVERIFY(!m_context->hasChanges());
}

void tst_ReferenceListEditor::deleteRefusedWhileInUse_data()
{
    QTest::addColumn<ReferenceListType>("type");
    QTest::addColumn<QList<int>>("usesPerDocument");
    QTest::addColumn<QString>("title");
    QTest::addColumn<QString>("text");

    // Taxes and units count document lines, not documents.
    QTest::newRow("tax in 2 + 1 lines")
        << ReferenceListType::Taxes << QList<int>{2, 1} << s("Tax cannot be deleted")
        << s("The chosen tax cannot be deleted, because it is in use in 3 document lines.");
    QTest::newRow("tax in 1 line")
        << ReferenceListType::Taxes << QList<int>{1} << s("Tax cannot be deleted")
        << s("The chosen tax cannot be deleted, because it is in use in 1 document lines.");
    QTest::newRow("unit in 7 lines")
        << ReferenceListType::Units << QList<int>{4, 3} << s("Unit cannot be deleted")
        << s("The chosen unit cannot be deleted, because it is in use in 7 document lines.");
    QTest::newRow("bank in 2 documents")
        << ReferenceListType::Banks << QList<int>{1, 1} << s("Bank cannot be deleted")
        << s("The chosen bank cannot be deleted, because it is in use in 2 documents.");
    QTest::newRow("payment type in 3 documents")
        << ReferenceListType::PaymentTypes << QList<int>{1, 1, 1} << s("Payment type cannot be deleted")
        << s("The chosen payment type cannot be deleted, because it is in use in 3 documents.");
}

void tst_ReferenceListEditor::deleteRefusedWhileInUse()
{
    QFETCH(ReferenceListType, type);
    QFETCH(QList<int>, usesPerDocument);
    QFETCH(QString, title);
    QFETCH(QString, text);

    EditingContext& c = m_fixture->main();
    Record* used = m_fixture->insert(type, "Used");
    const QHash<ReferenceListType, QString> keys{{ReferenceListType::Taxes, s("tax")},
                                                 {ReferenceListType::Units, s("unit")},
                                                 {ReferenceListType::Banks, s("bank")},
                                                 {ReferenceListType::PaymentTypes, s("payment_type")}};
    const bool byRows = type == ReferenceListType::Taxes || type == ReferenceListType::Units;
    for (int uses : usesPerDocument) {
        Record* document = c.insertRecord(s("Documents"));
        if (!byRows)
            document->setRelated(keys.value(type), used);
        for (int i = 0; byRows && i < uses; ++i) {
            Record* row = c.insertRecord(s("DocumentRows"));
            row->setRelated(s("document"), document);
            row->setRelated(keys.value(type), used);
        }
    }
    saveOrFail(c);
    ReferenceListEditor editor(type, *m_context, m_prompter);

    QVERIFY(!editor.remove(here(used)));
    verifyOneAlert(title, text);
    QVERIFY(!m_context->hasChanges());
    QVERIFY(editor.records().contains(here(used)));
}

void tst_ReferenceListEditor::deleteRefusedForTheDefault_data()
{
    QTest::addColumn<ReferenceListType>("type");
    QTest::addColumn<QString>("title");
    QTest::addColumn<QString>("text");
    QTest::newRow("Taxes") << ReferenceListType::Taxes << s("Tax cannot be deleted")
                           << s("The chosen tax cannot be deleted, because it is a default tax.");
    QTest::newRow("Banks") << ReferenceListType::Banks << s("Bank cannot be deleted")
                           << s("The chosen bank cannot be deleted, because it is a default bank.");
    QTest::newRow("DueDays") << ReferenceListType::DueDays << s("Due Day cannot be deleted")
                             << s("The chosen due day cannot be deleted, because it is a default due day.");
    QTest::newRow("PaymentTypes") << ReferenceListType::PaymentTypes << s("Payment type cannot be deleted")
                                  << s("The chosen payment type cannot be deleted, because it is a default "
                                       "payment type.");
    QTest::newRow("Units") << ReferenceListType::Units << s("Unit cannot be deleted")
                           << s("The chosen unit cannot be deleted, because it is a default unit.");
}

void tst_ReferenceListEditor::deleteRefusedForTheDefault()
{
    QFETCH(ReferenceListType, type);
    QFETCH(QString, title);
    QFETCH(QString, text);

    ReferenceListEditor editor(type, *m_context, m_prompter);
    Record* byDefault = editor.defaultRecord();
    QVERIFY(byDefault);
    QVERIFY(!editor.remove(byDefault));
    verifyOneAlert(title, text);
    QVERIFY(!byDefault->isDeleted());
    QCOMPARE(editor.defaultRecord(), byDefault);
}

void tst_ReferenceListEditor::dueDaysUsedByClientsAreDeleted()
{
    Record* dueDay = m_fixture->insert(ReferenceListType::DueDays, "30 Days", {{s("days"), 30}});
    Record* client = m_fixture->main().insertRecord(s("Clients"));
    client->setRelated(s("default_due_day"), dueDay);
    saveOrFail(m_fixture->main());

    ReferenceListEditor editor(ReferenceListType::DueDays, *m_context, m_prompter);
    QVERIFY(editor.remove(here(dueDay)));
    QVERIFY(m_prompter.questions().isEmpty());
    QCOMPARE(client->related(s("default_due_day")), nullptr);
}

void tst_ReferenceListEditor::makeDefaultAndEmptyTheName()
{
    QFETCH(ReferenceListType, type);
    Record* other = m_fixture->insert(type, "Other");
    saveOrFail(m_fixture->main());
    ReferenceListEditor editor(type, *m_context, m_prompter);
    const QString naming = editor.list().namingKey();
    Record* previous = editor.defaultRecord();

    QVERIFY(editor.setDefault(here(other)));
    QCOMPARE(m_fixture->company()->related(editor.list().companyKey()), other);
    const DefaultValueTransformer isDefault;
    QCOMPARE(isDefault.transformedValue(QVariant::fromValue(here(other))), QVariant(true));
    QCOMPARE(isDefault.transformedValue(QVariant::fromValue(previous)), QVariant(false));

    // An emptied naming field is stored as "-"; blanks are a name.
    QVERIFY(editor.setValue(here(other), naming, s("")));
    QCOMPARE(inMain(other)->value(naming), QVariant(s("-")));
    QVERIFY(editor.setValue(here(other), naming, QVariant()));
    QCOMPARE(inMain(other)->value(naming), QVariant(s("-")));
    QVERIFY(editor.setValue(here(other), naming, s(" ")));
    QCOMPARE(inMain(other)->value(naming), QVariant(s(" ")));
    QVERIFY(!m_context->hasChanges());
}

void tst_ReferenceListEditor::numbersAreReadAndChecked_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<QVariant>("stored");
    QTest::addColumn<QString>("refusal");

    const QString notFinite = s("Only finite numbers can be entered: NaN and infinity are not amounts.");
    const QString huge(400, QLatin1Char('9'));
    QTest::newRow("number") << s("rate1") << QVariant(27.5) << QVariant(27.5) << QString();
    QTest::newRow("text in the currency's format")
        << s("rate1") << QVariant(s("1,027.5")) << QVariant(1027.5) << QString();
    QTest::newRow("emptied") << s("rate1") << QVariant(s("")) << QVariant() << QString();
    QTest::newRow("NaN") << s("rate1") << QVariant(std::numeric_limits<double>::quiet_NaN()) << QVariant(20.0)
                         << notFinite;
    QTest::newRow("minus infinity") << s("rate2") << QVariant(-std::numeric_limits<double>::infinity())
                                    << QVariant(0.0) << notFinite;
    QTest::newRow("float NaN") << s("rate1") << QVariant(std::numeric_limits<float>::quiet_NaN())
                               << QVariant(20.0) << notFinite;
    QTest::newRow("text nan") << s("rate1") << QVariant(s("nan")) << QVariant(20.0)
                              << s("\u201cnan\u201d is not a valid number.");
    QTest::newRow("text too large") << s("rate1") << QVariant(huge) << QVariant(20.0)
                                    << s("\u201c%1\u201d is too large to be used as a number.").arg(huge);
    QTest::newRow("letters") << s("rate1") << QVariant(s("twenty")) << QVariant(20.0)
                             << s("\u201ctwenty\u201d is not a valid number.");
}

void tst_ReferenceListEditor::numbersAreReadAndChecked()
{
    QFETCH(QString, key);
    QFETCH(QVariant, value);
    QFETCH(QVariant, stored);
    QFETCH(QString, refusal);

    Record* tax = m_fixture->insert(ReferenceListType::Taxes, "VAT", {{s("rate1"), 20.0}, {s("rate2"), 0.0}});
    saveOrFail(m_fixture->main());
    ReferenceListEditor editor(ReferenceListType::Taxes, *m_context, m_prompter);

    QCOMPARE(editor.setValue(here(tax), key, value), refusal.isEmpty());
    QCOMPARE(inMain(tax)->value(key), stored);
    QVERIFY(!m_context->hasChanges());
    if (refusal.isEmpty())
        QVERIFY(m_prompter.questions().isEmpty());
    else
        verifyOneAlert(s("Invalid number"), refusal);
}

void tst_ReferenceListEditor::currenciesAreNeitherAddedNorDeleted()
{
    ReferenceListEditor editor(ReferenceListType::Currencies, *m_context, m_prompter);
    Record* euro = editor.records().first();
    QCOMPARE(editor.add(), nullptr);
    QCOMPARE(editor.duplicate({euro}), nullptr);
    QVERIFY(!editor.remove(euro));
    QCOMPARE(editor.records().size(), 1);
    // Their format and whether documents offer them are edited like any field.
    QVERIFY(editor.setValue(euro, s("selectable"), true));
    QCOMPARE(inMain(euro)->value(s("selectable")), QVariant(true));
    QVERIFY(editor.setValue(euro, s("digits"), s("3")));
    QCOMPARE(inMain(euro)->value(s("digits")), QVariant(qint64(3)));
    QVERIFY(!editor.setValue(euro, s("digits"), s("three")));
    verifyOneAlert(s("Invalid number"), s("\u201cthree\u201d is not a valid number."));
}

void tst_ReferenceListEditor::savesOfOtherContextsReachTheList()
{
    ReferenceListEditor editor(ReferenceListType::Units, *m_context, m_prompter);
    QSignalSpy changed(&editor, &ReferenceListEditor::listChanged);
    m_fixture->insert(ReferenceListType::Units, "kg");
    saveOrFail(m_fixture->main());
    QVERIFY(changed.count() >= 1);
    QCOMPARE(editor.records().size(), 2);
}

QTEST_GUILESS_MAIN(tst_ReferenceListEditor)
#include "tst_referencelisteditor.moc"
