#include "browse/listkind.h"
#include "browse/predicaterows.h"
#include "browse/smartfolderpredicate.h"
#include "browsetestsupport.h"
#include "format/relativedates.h"

using namespace corvanta;
using namespace corvanta::browse::testing;
using browse::ListKind;
using browse::PredicateRow;
using browse::RowValueType;
using Op = predicate::Predicate::Operator;

Q_DECLARE_METATYPE(PredicateRow)

namespace {

PredicateRow row(const char* keyPath, Op op, const QVariant& value, RowValueType type = RowValueType::Text)
{
    return PredicateRow::comparison(s(keyPath), type, op, value);
}

PredicateRow all(QList<PredicateRow> rows)
{
    return PredicateRow::compound(PredicateRow::Kind::All, rows);
}

PredicateRow any(QList<PredicateRow> rows)
{
    return PredicateRow::compound(PredicateRow::Kind::Any, rows);
}

const QDateTime kNow(QDate(2024, 3, 15), QTime(10, 30));

} // namespace

class TestPredicateRows : public QObject
{
    Q_OBJECT

private:
    BrowseCompany m_company;

    store::EditingContext& main() { return m_company.main(); }
    browse::PredicateRows rowsOf(ListKind kind)
    {
        return browse::PredicateRows(browse::PredicateRowTemplates::forKind(kind, main()));
    }
    store::Record* smartFolder(ListKind kind, const QString& predicate, const QVariant& subtype = {})
    {
        return main().insertRecord(s("Categories"), {{s("name"), s("Smart")},
                                                     {s("type"), -qint64(kind)},
                                                     {s("predicate"), predicate},
                                                     {s("subtype"), subtype}});
    }

private Q_SLOTS:
    void initTestCase()
    {
        const auto add = [&](const char* entity, const QVariantMap& values) {
            return main().insertRecord(s(entity), values);
        };
        const auto taxNamed = [&](const char* name) {
            return QVariant::fromValue(m_company.named("Taxes", s(name))->ref());
        };
        store::Record* smith =
            add("Clients", {{s("type"), 0}, {s("company_name"), s("Smíth Ltd")}, {s("rating"), 5}});
        smith->addRelated(s("addresses"), add("Addresses", {{s("city"), s("Berlin")}}));
        add("Clients", {{s("type"), 1}, {s("company_name"), s("Ann Lee")}, {s("rating"), 4}});
        add("Clients", {{s("type"), 0}, {s("company_name"), s("Blacksmith \"Anvil\"")}, {s("status"), 2}});
        add("Items", {{s("name"), s("Widget")}, {s("tax"), taxNamed("10%")}, {s("custom_price01"), 25.0}});
        add("Items",
            {{s("name"), s("Gadget")}, {s("tax"), taxNamed("GST / PST")}, {s("custom_price01"), 8.0}});
        const auto document = [&](const char* number, QDateTime date, int clientType, const char* rowName) {
            store::Record* d = add("Documents", {{s("number_formatted"), s(number)},
                                                 {s("type"), 0},
                                                 {s("client_type"), clientType},
                                                 {s("date_creation"), date}});
            d->addRelated(s("rows"), add("DocumentRows", {{s("name"), s(rowName)}}));
        };
        const auto noon = [](int month, int day) { return QDateTime(QDate(2024, month, day), QTime(12, 0)); };
        document("INV-1", noon(3, 2), 0, "Blue widget");
        document("INV-2", noon(2, 20), 1, "Gadget");
        document("INV-3", noon(3, 14), 1, "Service");
        document("INV-4", QDateTime(QDate(2024, 3, 1), QTime(0, 0)), 0, "Service");
        add("ToDos", {{s("title"), s("Call Ann")}});
        add("ToDos", {{s("title"), s("Write offer")}});
        m_company.saveMain();
    }

    // Every row of every kind, with each of its operators, is a condition the store can run.
    void everyRowRunsInTheStore()
    {
        for (ListKind kind : browse::ListKinds::all()) {
            const browse::PredicateRows rows = rowsOf(kind);
            QVERIFY(!rows.templates().rows().isEmpty());
            for (const browse::PredicateRowTemplate& field : rows.templates().rows()) {
                const QVariant value = field.valueType == RowValueType::Date ? QVariant(kNow)
                                       : field.choices.isEmpty()             ? QVariant(s("1"))
                                                                 : field.choices.constLast().value;
                for (Op op : browse::PredicateOperators::of(field.operators)) {
                    QVERIFY(!browse::PredicateOperators::label(field.operators, op).isEmpty());
                    QString error;
                    const auto text = rows.toText(
                        all({PredicateRow::comparison(field.keyPath, field.valueType, op, value)}), &error);
                    QVERIFY2(text, qPrintable(error));
                    store::Record* folder = smartFolder(kind, *text);
                    const auto request = browse::CategoryFetch::of(folder, kNow, &error);
                    QVERIFY2(request, qPrintable(*text + s(": ") + error));
                    store::StoreError storeError;
                    QVERIFY2(main().count(*request, &storeError) >= 0,
                             qPrintable(*text + s(": ") + storeError.message()));
                    main().deleteRecord(folder);
                }
            }
        }
        main().rollback();
    }

    void roundTrip_data()
    {
        using enum ListKind;
        using enum RowValueType;
        using enum Op;
        QTest::addColumn<ListKind>("kind");
        QTest::addColumn<PredicateRow>("rows");
        QTest::addColumn<QString>("text");
        QTest::addColumn<QStringList>("selected");

        const QString smith = s("Smíth Ltd");
        QTest::newRow("client name contains, ignoring case and accents")
            << Clients << all({row("company_name", Contains, s("SMITH"))})
            << s("company_name CONTAINS[cd] \"SMITH\"") << QStringList{s("Blacksmith \"Anvil\""), smith};
        QTest::newRow("quotes in a value are escaped")
            << Clients << all({row("company_name", EndsWith, s("\"Anvil\""))})
            << s("company_name ENDSWITH[cd] \"\\\"Anvil\\\"\"") << QStringList{s("Blacksmith \"Anvil\"")};
        QTest::newRow("client type individual")
            << Clients << all({row("type", Equal, 1, Choice)}) << s("type == 1") << QStringList{s("Ann Lee")};
        QTest::newRow("city of any address") << Clients << all({row("addresses.city", Equal, s("berlin"))})
                                             << s("addresses.city ==[cd] \"berlin\"") << QStringList{smith};
        QTest::newRow("nested any under all")
            << Clients
            << all({row("company_name", Like, s("*smith*")),
                    any({row("status", Equal, 2, Choice), row("rating", GreaterOrEqual, 5, Choice)})})
            << s("company_name LIKE[cd] \"*smith*\" AND (status == 2 OR rating >= 5)")
            << QStringList{s("Blacksmith \"Anvil\""), smith};
        // Read as text, 10 would sort before 5.
        QTest::newRow("tax rate compared as a number")
            << Items << all({row("tax.rate1", Greater, s("5"))}) << s("tax.rate1 >[cd] \"5\"")
            << QStringList{s("Widget")};
        QTest::newRow("price field without options")
            << Items << all({row("custom_price01", GreaterOrEqual, s("20"))}) << s("custom_price01 >= \"20\"")
            << QStringList{s("Widget")};
        // A relative date stands for one instant: this month is its first.
        QTest::newRow("creation date this month")
            << Documents << all({row("date_creation", Equal, s("@this_month"), RelativeDate)})
            << s("date_creation == \"@this_month\"") << QStringList{s("INV-4")};
        QTest::newRow("creation date after a fixed date")
            << Documents
            << all({row("date_creation", Greater, QDateTime(QDate(2024, 3, 1), QTime(12, 0), Qt::UTC), Date)})
            << s("date_creation > CAST(730987200.0, \"NSDate\")") << QStringList{s("INV-1"), s("INV-3")};
        QTest::newRow("any of item name or document type")
            << Documents
            << any({row("rows.name", Contains, s("widget")), row("number_formatted", Equal, s("inv-3"))})
            << s("rows.name CONTAINS[cd] \"widget\" OR number_formatted ==[cd] \"inv-3\"")
            << QStringList{s("INV-1"), s("INV-3")};
        QTest::newRow("to-do event begins with")
            << ToDos << all({row("title", BeginsWith, s("call"))}) << s("title BEGINSWITH[cd] \"call\"")
            << QStringList{s("Call Ann")};
    }

    // Rows become the stored text, the text becomes the same rows, and the text selects the records.
    void roundTrip()
    {
        QFETCH(ListKind, kind);
        QFETCH(PredicateRow, rows);
        QFETCH(QString, text);

        const browse::PredicateRows converter = rowsOf(kind);
        QString error;
        QCOMPARE(converter.toText(rows, &error).value_or(error), text);
        const std::optional<PredicateRow> read = converter.fromText(text, &error);
        QVERIFY2(read, qPrintable(error));
        QVERIFY(*read == rows);

        store::Record* folder = smartFolder(kind, text);
        const auto request = browse::CategoryFetch::of(folder, kNow, &error);
        QVERIFY2(request, qPrintable(error));
        QStringList names;
        for (const store::Record* record : main().fetch(*request)) {
            const char* key = kind == ListKind::Clients     ? "full_name"
                              : kind == ListKind::Documents ? "number_formatted"
                              : kind == ListKind::ToDos     ? "title"
                                                            : "name";
            names << record->value(s(key)).toString();
        }
        names.sort();
        QTEST(names, "selected");
        main().rollback();
    }

    void outsideTheRows_data()
    {
        using enum ListKind;
        QTest::addColumn<ListKind>("kind");
        QTest::addColumn<QString>("text");

        QTest::newRow("negation") << Clients << s("NOT (type == 1)");
        QTest::newRow("text without [cd]") << Clients << s("company_name CONTAINS \"x\"");
        QTest::newRow("choice out of its list") << Clients << s("type == 7");
        QTest::newRow("operator the row lacks") << Clients << s("type > 0");
        QTest::newRow("key path compared with key path")
            << Documents << s("sum_total == payments.@sum.amount");
        QTest::newRow("explicit ANY") << Clients << s("ANY addresses.city ==[cd] \"x\"");
        QTest::newRow("relative date on clients") << Clients << s("created == \"@today\"");
        QTest::newRow("relative date with another operator") << Documents << s("date_creation > \"@today\"");
        QTest::newRow("no date rows for to-dos") << ToDos << s("date_start > CAST(730944000.0, \"NSDate\")");
        QTest::newRow("not a predicate") << ToDos << s("title CONTAINS[cd]");
    }

    void outsideTheRows()
    {
        QFETCH(ListKind, kind);
        QFETCH(QString, text);
        QString error;
        QVERIFY(!rowsOf(kind).fromText(text, &error));
        QVERIFY(!error.isEmpty());
    }

    void customFieldRows_data()
    {
        using enum ListKind;
        QTest::addColumn<ListKind>("kind");
        QTest::addColumn<QString>("keyPath");
        QTest::addColumn<QString>("label"); // empty: no row
        QTest::addColumn<bool>("numberOperators");
        QTest::addColumn<bool>("ignoresCase");

        QTest::newRow("client field") << Clients << s("custom01") << s("Region") << false << true;
        QTest::newRow("hidden client field") << Clients << s("custom06") << QString() << false << false;
        QTest::newRow("document copy of client field")
            << Documents << s("client_custom01") << s("Client Region") << false << true;
        QTest::newRow("hidden on documents too")
            << Documents << s("client_custom06") << QString() << false << false;
        QTest::newRow("item text field") << Items << s("custom02") << s("Custom Field 2") << false << true;
        QTest::newRow("item price field") << Items << s("custom_price01") << s("Unit Price") << true << false;
    }

    // Labels and visibility come from the definitions at the time the rows are built.
    void customFieldRows()
    {
        QFETCH(ListKind, kind);
        QFETCH(QString, keyPath);
        QFETCH(QString, label);

        m_company.named("Compose", s("client_custom01"))->setValue(s("label"), s("Region"));
        const auto templates = browse::PredicateRowTemplates::forKind(kind, main());
        const browse::PredicateRowTemplate* field = templates.find(keyPath, RowValueType::Text);
        main().rollback();
        if (label.isEmpty()) {
            QVERIFY(!field);
            return;
        }
        QVERIFY(field);
        QCOMPARE(field->label, label);
        QTEST(field->operators == browse::OperatorSet::Number, "numberOperators");
        QTEST(field->options.testFlag(predicate::Predicate::CaseInsensitive), "ignoresCase");
    }

    void relativeDateTokensAreSubstituted()
    {
        QStringList known;
        for (const auto& token : format::dates::relativeDateTokens(kNow))
            known << token.token;
        for (const browse::RowChoice& range : browse::PredicateOperators::relativeDates())
            QVERIFY2(known.contains(range.value.toString()), qPrintable(range.value.toString()));
        QCOMPARE(browse::PredicateOperators::relativeDates().size(), known.size());
    }

    void editingKeepsOneRow()
    {
        browse::SmartFolderPredicate editor(smartFolder(ListKind::Clients, QString()));
        QVERIFY(editor.isBound());
        QCOMPARE(editor.shownRowCount(), 2); // "All of the following are true" and one row
        QVERIFY(!editor.removeRow({0}));

        QVERIFY(editor.insertRow({}, -1, any({row("status", Op::Equal, 1, RowValueType::Choice)})));
        QCOMPARE(editor.shownRowCount(), 4);
        // A copy is changed on its own, as a trial removal on it must be.
        browse::SmartFolderPredicate trial = editor;
        QVERIFY(trial.removeRow({1, 0}));
        QCOMPARE(editor.shownRowCount(), 4);
        QVERIFY(editor.removeRow({0}));
        QVERIFY(!editor.removeRow({0, 0})); // the last row, nested
        QVERIFY(editor.insertRow({}, 0, row("company_name", Op::Contains, s("a"))));
        QVERIFY(editor.removeRow({1, 0})); // the emptied compound goes with its row
        QCOMPARE(editor.root(), all({row("company_name", Op::Contains, s("a"))}));
        main().rollback();
    }

    void saving_data()
    {
        QTest::addColumn<QString>("stored");
        QTest::addColumn<QVariant>("subtype");
        QTest::addColumn<bool>("readable");
        QTest::addColumn<QString>("saved");

        QTest::newRow("new folder gets its row")
            << QString() << QVariant() << true << s("type == 0 AND rating > 3");
        QTest::newRow("edited folder")
            << s("type == 1") << QVariant() << true << s("type == 1 AND rating > 3");
        QTest::newRow("system folder kept") << s("type == 1") << QVariant(-1) << true << s("type == 1");
        QTest::newRow("unreadable condition kept")
            << s("rating > 9") << QVariant() << false << s("rating > 9");
    }

    void saving()
    {
        QFETCH(QString, stored);
        QFETCH(QVariant, subtype);

        std::unique_ptr<store::EditingContext> scratch = m_company.store().newContext();
        store::Record* folder = scratch->insertRecord(
            s("Categories"),
            {{s("name"), s("Smart")}, {s("type"), -1}, {s("predicate"), stored}, {s("subtype"), subtype}});
        browse::SmartFolderPredicate editor(folder);
        QTEST(editor.openError().isEmpty(), "readable");
        editor.insertRow({}, -1, row("rating", Op::Greater, 3, RowValueType::Choice));
        QString error;
        QVERIFY2(editor.save(&error), qPrintable(error));
        std::unique_ptr<store::EditingContext> fresh = m_company.store().newContext();
        const store::Record* reread = fresh->fetchRecord(s("Categories"), folder->ref());
        QVERIFY(reread);
        QTEST(reread->value(s("predicate")).toString(), "saved");
    }
};

QTEST_GUILESS_MAIN(TestPredicateRows)
#include "tst_predicaterows.moc"
