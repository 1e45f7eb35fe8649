#include "browse/addtodocument.h"
#include "browse/commandavailability.h"
#include "browse/recordcommands.h"
#include "browse/recordmenus.h"
#include "browsetestsupport.h"
#include "documents/documentcanceller.h"
#include "editors/documentcontroller.h"
#include "model/companysettings.h"

using namespace corvanta;
using namespace corvanta::browse::testing;
using browse::RecordCommand;
using browse::RecordMenus;

namespace {

// A list of names, sorted.
QString tagNames(const QVariant& names)
{
    QStringList sorted = names.toStringList();
    sorted.sort();
    return sorted.join(s(", "));
}

QString choicesText(const QList<RecordMenus::Choice>& choices)
{
    QStringList texts;
    for (const RecordMenus::Choice& choice : choices)
        texts << choice.title + (choice.checked ? s(" [x]") : s(" [ ]"));
    return texts.join(s(", "));
}

// A company with a client in two invoices (one cancelled), an item on three document lines, a
// draft and an estimate, a to-do and some user tags.
class CommandCompany : public BrowseCompany
{
public:
    CommandCompany()
    {
        client = addClient(s("Alpha AG"));
        item = addItem(s("Widget"), 10);
        invoice = addDocument(0, client, item, 2);
        cancelled = addDocument(0, client, item, 1);
        draft = addDocument(0, {}, item, 1, false);
        estimate = addDocument(2, {}, item, 1);
        // The canceller asks once; the scripted prompter takes "Cancel Invoice".
        if (!make<documents::DocumentCanceller>().cancel(cancelled))
            qFatal("the invoice was not cancelled");
        prompter().clear();
        todo = add("ToDos", {{s("title"), s("Call Alpha")}, {s("identifier"), s("todo-1")}});
        vip = userTag(s("VIP"), 1)->ref();
        latePayer = userTag(s("Late payer"), 1)->ref();
        documentTag = userTag(s("Urgent"), 3)->ref();
        Record* alpha = record(client);
        alpha->addRelated(s("tags"), record(vip));
        alpha->addRelated(s("tags"), category(s("Company")));
        Record* address = main().insertRecord(s("Addresses"), {{s("street"), s("Main Street 1")}});
        address->setRelated(s("client"), alpha);
        alpha->setRelated(s("default_address"), address);
        record(item)->addRelated(s("tags"), category(s("Product")));
        saveMain();
    }

    RecordRef byName(const QString& name)
    {
        const QHash<QString, RecordRef> refs{{s("client"), client},   {s("item"), item},
                                             {s("invoice"), invoice}, {s("cancelled invoice"), cancelled},
                                             {s("draft"), draft},     {s("estimate"), estimate},
                                             {s("to-do"), todo}};
        return refs.value(name);
    }

    RecordRef client, item, invoice, cancelled, draft, estimate, todo;
    RecordRef vip, latePayer, documentTag;
};

} // namespace

// The browser's commands on the selected record: when they are offered, the questions before
// deleting and cancelling, duplicates, handing a client or item to the document editor, and the
// design-template and tag menus.
class tst_RecordCommands : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void lookUp();
    void availability_data();
    void availability();
    void deleteAsks_data();
    void deleteAsks();
    void cancelsOnlyDocuments();
    void duplicates_data();
    void duplicates();
    void addToDocument();
    void menus();
};

void tst_RecordCommands::lookUp()
{
    using browse::ListKind;
    CommandCompany company;
    const QString identifier = company.record(company.invoice)->value(s("identifier")).toString();
    QCOMPARE(browse::RecordCommands::lookUp(company.main(), ListKind::Documents, identifier),
             company.invoice);
    QCOMPARE(browse::RecordCommands::lookUp(company.main(), ListKind::ToDos, s("todo-1")), company.todo);
    QVERIFY(!browse::RecordCommands::lookUp(company.main(), ListKind::Clients, identifier));
    QVERIFY(!browse::RecordCommands::lookUp(company.main(), ListKind::Documents, QString()));
}

void tst_RecordCommands::availability_data()
{
    QTest::addColumn<int>("command");
    QTest::addColumn<QStringList>("selection");
    QTest::addColumn<bool>("enabled");
    const int sort = int(RecordCommand::Sort);
    const int cancel = int(RecordCommand::Cancel);
    QTest::newRow("sort without a selection") << sort << QStringList{} << true;
    QTest::newRow("edit without a selection") << int(RecordCommand::Edit) << QStringList{} << false;
    QTest::newRow("delete with two") << int(RecordCommand::Delete) << QStringList{s("client"), s("item")}
                                     << false;
    QTest::newRow("duplicate one") << int(RecordCommand::Duplicate) << QStringList{s("client")} << true;
    QTest::newRow("cancel a final invoice") << cancel << QStringList{s("invoice")} << true;
    QTest::newRow("cancel a draft") << cancel << QStringList{s("draft")} << false;
    QTest::newRow("cancel a cancelled invoice") << cancel << QStringList{s("cancelled invoice")} << false;
    QTest::newRow("cancel an estimate") << cancel << QStringList{s("estimate")} << false;
}

void tst_RecordCommands::availability()
{
    QFETCH(int, command);
    QFETCH(QStringList, selection);
    CommandCompany company;
    QList<Record*> records;
    for (const QString& name : selection)
        records << company.record(company.byName(name));
    QTEST(browse::CommandAvailability::isEnabled(RecordCommand(command), records), "enabled");
}

void tst_RecordCommands::deleteAsks_data()
{
    QTest::addColumn<QString>("record");
    QTest::addColumn<QString>("nameKey");
    QTest::addColumn<QString>("question"); // what follows "Are you sure you want to delete the "
    QTest::addColumn<bool>("confirm");
    QTest::newRow("client in use") << s("client") << s("full_name")
                                   << s("client \"%1\"? | The chosen client is in use in 3 documents.")
                                   << true;
    // Two invoices, the cancellation, the draft and the estimate: five lines.
    QTest::newRow("item in use") << s("item") << s("name")
                                 << s("item \"%1\"? | The chosen item is in use in 5 document lines.")
                                 << true;
    QTest::newRow("document") << s("invoice") << s("number_formatted") << s("document \"%1\"? | This action")
                              << true;
    QTest::newRow("to-do, declined") << s("to-do") << s("title") << s("ToDo \"%1\"? | This action") << false;
}

void tst_RecordCommands::deleteAsks()
{
    QFETCH(QString, record);
    QFETCH(QString, nameKey);
    QFETCH(QString, question);
    QFETCH(bool, confirm);
    CommandCompany company;
    const RecordRef ref = company.byName(record);
    const QString name = company.record(ref)->value(nameKey).toString();
    if (!confirm)
        company.prompter().addAnswer(s("Cancel"));
    browse::RecordCommands commands(company.store(), company.prompter(), company.clock());
    QCOMPARE(commands.deleteRecord(ref), confirm);
    QCOMPARE(company.asked().size(), 1);
    QVERIFY2(company.question().startsWith(s("Are you sure you want to delete the ") + question.arg(name)),
             qPrintable(company.question()));
    QCOMPARE(company.stored(ref, "self").isNull(), confirm);
}

// The question and the cancellation itself are the canceller's; the command hands it documents only.
void tst_RecordCommands::cancelsOnlyDocuments()
{
    CommandCompany company;
    browse::RecordCommands commands(company.store(), company.prompter(), company.clock());
    QVERIFY(!commands.cancelDocument(company.client));
    QVERIFY(company.asked().isEmpty());
    const std::optional<RecordRef> twin = commands.cancelDocument(company.invoice);
    QVERIFY(twin);
    QCOMPARE(company.stored(company.invoice, "cancel_reference").value<RecordRef>(), *twin);
}

void tst_RecordCommands::duplicates_data()
{
    QTest::addColumn<QString>("record");
    QTest::addColumn<int>("firstNamePosition");
    QTest::addColumn<QString>("keyPaths");
    QTest::addColumn<QString>("copied");
    const QString client = s("full_name default_address.street created");
    QTest::newRow("company client")
        << s("client") << 0 << client
        << s("full_name=Alpha AG Copy default_address.street=Main Street 1 created=2024-03-15T10:30:00");
    QTest::newRow("individual, first name first")
        << s("individual") << 0 << client
        << s("full_name=Jane Doe Copy default_address.street= created=2024-03-15T10:30:00");
    QTest::newRow("individual, last name first")
        << s("individual") << 1 << client
        << s("full_name=Doe Jane Copy default_address.street= created=2024-03-15T10:30:00");
    QTest::newRow("item, without stock of its own")
        << s("item") << 0 << s("name code custom_price02 stock_current")
        << s("name=Widget Copy code=WID custom_price02=20 stock_current=0");
    QTest::newRow("to-do") << s("to-do") << 0 << s("title") << s("title=Call Alpha");
}

void tst_RecordCommands::duplicates()
{
    QFETCH(QString, record);
    QFETCH(int, firstNamePosition);
    QFETCH(QString, keyPaths);
    CommandCompany company;
    QVERIFY(model::CompanySettings(company.main()).setSetting(s("first_name_position"), firstNamePosition));
    RecordRef original = company.byName(record);
    if (record == s("individual")) {
        original = company.add("Clients",
                               {{s("type"), 2}, {s("first_name"), s("Jane")}, {s("last_name"), s("Doe")}});
    } else if (record == s("item")) {
        company.record(original)->setValue(s("stock_current"), 5);
        company.saveMain();
    }

    browse::RecordCommands commands(company.store(), company.prompter(), company.clock());
    const std::optional<RecordRef> copy = commands.duplicate(original);
    QVERIFY(copy);
    QVERIFY(*copy != original);
    QTEST(company.storedText(*copy, keyPaths), "copied");
    QCOMPARE(tagNames(company.stored(*copy, "tags.name")), tagNames(company.stored(original, "tags.name")));
    QVERIFY(company.stored(*copy, "identifier") != company.stored(original, "identifier"));
}

void tst_RecordCommands::addToDocument()
{
    CommandCompany company;
    Record* term =
        company.record(company.add("DueDays", {{s("name"), s("14 days")}, {s("days"), 14}, {s("type"), 0}}));
    Record* paymentType = company.record(company.add("PaymentTypes", {{s("name"), s("Cash")}}));
    Record* alpha = company.record(company.client);
    alpha->setRelated(s("default_due_day"), term);
    alpha->setRelated(s("default_payment_type"), paymentType);
    company.saveMain();

    editors::DocumentController editor(company.store(), company.prompter(), company.clock());
    QVERIFY(!browse::AddToDocument::add(company.invoice, editor));
    QVERIFY(!editor.document());
    // A client opens a new invoice first and gives it its terms.
    QVERIFY(browse::AddToDocument::add(company.client, editor));
    QVERIFY(editor.document());
    QCOMPARE(editor.document()->value(s("type")).toInt(), 0);
    QCOMPARE(TestCompany::text(editor.document(), s("client.full_name payment_type.name")),
             s("client.full_name=Alpha AG payment_type.name=Cash"));
    QCOMPARE(editor.document()->value(s("date_due")).toDateTime().date(), QDate(2024, 3, 29));

    // An item becomes a row at the third price level.
    editor.defaultPriceChanged(3);
    QVERIFY(browse::AddToDocument::add(company.item, editor));
    QCOMPARE(editor.rows().size(), 1);
    QCOMPARE(TestCompany::text(editor.rows().first(), s("name code unit_price item.name")),
             s("name=Widget code=WID unit_price=30 item.name=Widget"));
}

void tst_RecordCommands::menus()
{
    CommandCompany company;
    for (const char* name : {"Modern", "classic"})
        company.add("Templates", {{s("name"), s(name)}, {s("type"), 0}});
    const RecordRef quotation = company.add("Templates", {{s("name"), s("Quotation")}, {s("type"), 3}});
    company.record(company.invoice)->setRelated(s("template"), company.named("Templates", s("Modern")));
    company.saveMain();
    RecordMenus menus(company.store(), company.prompter());

    // Design templates of the document's own type only.
    QCOMPARE(choicesText(menus.designTemplates(company.invoice)), s("classic [ ], Modern [x]"));
    QVERIFY(!menus.setDesignTemplate(company.invoice, quotation));
    QVERIFY(menus.setDesignTemplate(company.invoice, company.named("Templates", s("classic"))->ref()));
    QCOMPARE(company.storedText(company.invoice, s("template.name")), s("template.name=classic"));
    QCOMPARE(choicesText(menus.designTemplates(company.invoice)), s("classic [x], Modern [ ]"));

    // The user tags of the record's kind, toggled and saved.
    QCOMPARE(choicesText(menus.tags(company.client)), s("Late payer [ ], VIP [x]"));
    QCOMPARE(choicesText(menus.tags(company.invoice)), s("Urgent [ ]"));
    QVERIFY(menus.toggleTag(company.vip, {company.client}));
    QCOMPARE(company.storedText(company.client, s("tags.name")), s("tags.name=Company"));
    QVERIFY(menus.toggleTag(company.latePayer, {company.client}));
    QVERIFY(!menus.toggleTag(company.documentTag, {company.client})); // another kind's tag
    QCOMPARE(choicesText(menus.tags(company.client)), s("Late payer [x], VIP [ ]"));
}

QTEST_GUILESS_MAIN(tst_RecordCommands)
#include "tst_recordcommands.moc"
