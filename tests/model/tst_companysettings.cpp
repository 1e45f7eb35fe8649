#include "model/companysettings.h"
#include "modeltestsupport.h"

using namespace corvanta::model;
using namespace corvanta::store;

using namespace corvanta::model::testing;

class tst_CompanySettings : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void readsEveryRowAfresh();
    void setsExistingKey();
    void unknownKeyStoresNothingButSaves();
    void namePositionRenamesStoredClients();
};

void tst_CompanySettings::readsEveryRowAfresh()
{
    ScratchCompany st;
    EditingContext& c = st.main();
    c.insertRecord(s("Settings"), {{s("key"), s("print_copy_invoice")}, {s("value"), 2}, {s("id"), 0}});
    c.insertRecord(s("Settings"),
                   {{s("key"), s("number_format_invoice")}, {s("value"), s("INVOICE/,YYYY,-,NNNN")}});
    saveOrFail(c);
    CompanySettings settings(c);
    QCOMPARE(settings.setting(s("print_copy_invoice")), QVariant(qlonglong(2)));
    QCOMPARE(settings.setting(s("number_format_invoice")).toString(), s("INVOICE/,YYYY,-,NNNN"));
    QVERIFY(settings.setting(s("absent")).isNull());
    QCOMPARE(settings.settingsDictionary().size(), 2);

    // Another context changes a value: the next read sees it.
    auto other = st.store().newContext();
    other
        ->fetchFirst(
            FetchRequest(s("Settings"), where(s("key"), corvanta::predicate::Predicate::Operator::Equal,
                                              s("print_copy_invoice"))))
        ->setValue(s("value"), 3);
    saveOrFail(*other);
    QCOMPARE(settings.setting(s("print_copy_invoice")).toInt(), 3);
}

void tst_CompanySettings::setsExistingKey()
{
    ScratchCompany st;
    EditingContext& c = st.main();
    c.insertRecord(s("Settings"), {{s("key"), s("use_warehouse")}, {s("value"), 1}});
    saveOrFail(c);
    CompanySettings settings(c);
    QVERIFY(settings.setSetting(s("use_warehouse"), 0));
    st.reopen();
    CompanySettings reread(st.main());
    QCOMPARE(reread.setting(s("use_warehouse")).toInt(), 0);
}

void tst_CompanySettings::unknownKeyStoresNothingButSaves()
{
    ScratchCompany st;
    EditingContext& c = st.main();
    CompanySettings settings(c);
    c.insertRecord(s("Units"), {{s("name"), s("Pending")}}); // an edit waiting in the main context
    QVERIFY(settings.setSetting(s("no_such_key"), s("x")));
    QVERIFY(!c.hasChanges());
    st.reopen();
    QCOMPARE(st.main().count(FetchRequest(s("Settings"))), 0);
    QCOMPARE(st.main().count(FetchRequest(s("Units"))), 1);
}

void tst_CompanySettings::namePositionRenamesStoredClients()
{
    ScratchCompany st;
    EditingContext& c = st.main();
    c.insertRecord(s("Settings"), {{s("key"), s("first_name_position")}, {s("value"), 0}});
    c.insertRecord(s("Clients"), {{s("type"), 2}, {s("first_name"), s("Ann")}, {s("last_name"), s("Lee")}});
    c.insertRecord(s("Clients"), {{s("type"), 0}, {s("company_name"), s("Acme")}});
    saveOrFail(c);
    CompanySettings settings(c);
    QVERIFY(settings.setSetting(s("first_name_position"), 1));
    // Lists select and sort by the stored name, so it must follow the setting.
    const auto byName = [&](const char* name) {
        return st.main().count(FetchRequest(
            s("Clients"), where(s("full_name"), corvanta::predicate::Predicate::Operator::Equal, s(name))));
    };
    QCOMPARE(byName("Lee Ann"), 1);
    QCOMPARE(byName("Acme"), 1);
    st.reopen();
    QCOMPARE(byName("Lee Ann"), 1);
}

QTEST_GUILESS_MAIN(tst_CompanySettings)
#include "tst_companysettings.moc"
