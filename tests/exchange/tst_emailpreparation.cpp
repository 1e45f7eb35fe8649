#include "../documents/documenttestsupport.h"
#include "exchange/emailattachment.h"
#include "exchange/emailhandover.h"
#include "exchange/emailpreparation.h"
#include "exchange/emailtemplatelist.h"
#include "model/companyrecord.h"
#include "xdgemailstandin.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

using namespace corvanta;
using documents::testing::at;
using documents::testing::s;
using documents::testing::TestCompany;
using exchange::EmailPreparation;
using exchange::EmailTemplateList;
using exchange::testing::XdgEmailStandIn;
using store::Record;

namespace {

// A company with a client, an invoice of it that prints with an empty design template, and
// e-mail templates besides the default one.
class MailCompany : public TestCompany
{
public:
    MailCompany()
    {
        company()->setValue(s("name"), s("Corvanta Works"));
        client = add("Clients", {{s("type"), 0},
                                 {s("company_name"), s("Acme Ltd")},
                                 {s("emails"), s("first@acme.example,second@acme.example")}});
        const predicate::RecordRef item = addItem(s("Bolt"), 10);
        invoice = addDocument(0, client, item, 2);
        Record* design = main().insertRecord(s("Templates"), {{s("type"), 0}, {s("name"), s("Plain")}});
        record(invoice)->setRelated(s("template"), design);
        saveMain();
    }

    Record* company() { return model::CompanyRecord::of(main()); }
    Record* emailTemplate(const QString& name, const QString& subject, const QString& body)
    {
        return record(add("EmailTemplates", {{s("name"), name}, {s("subject"), subject}, {s("body"), body}}));
    }
    QStringList templateNames(const QList<Record*>& templates)
    {
        QStringList names;
        for (const Record* emailTemplate : templates)
            names << emailTemplate->value(s("name")).toString();
        return names;
    }

    predicate::RecordRef client;
    predicate::RecordRef invoice;
};

} // namespace

// An e-mail prepared for a client or a document: recipient, template, placeholders, the PDF
// that goes along and what reaches the mail program; and the list of e-mail templates.
class tst_EmailPreparation : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void recipient_data();
    void recipient();
    void placeholders_data();
    void placeholders();
    void templatesByNameDefaultFirst();
    void oldTemporaryFilesRemoved_data();
    void oldTemporaryFilesRemoved();
    void sendsWithoutPreparing();
    void templateListOperations_data();
    void templateListOperations();
    void insertFormula_data();
    void insertFormula();
};

void tst_EmailPreparation::initTestCase()
{
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
}

void tst_EmailPreparation::recipient_data()
{
    QTest::addColumn<bool>("document");
    QTest::addColumn<QString>("address"); // the client's `emails`, or the document's `client_email`
    QTest::addColumn<QString>("to");

    QTest::newRow("client: the first of two")
        << false << s("first@a.example,second@a.example") << s("first@a.example");
    QTest::newRow("client: blanks around the first")
        << false << s("  first@a.example , second@a.example") << s("first@a.example");
    QTest::newRow("client: one address") << false << s("only@a.example") << s("only@a.example");
    QTest::newRow("client: none") << false << QString() << s("No Email");
    QTest::newRow("client: the first is empty") << false << s(",second@a.example") << s("No Email");
    QTest::newRow("document: its client_email") << true << s("copy@a.example") << s("copy@a.example");
    QTest::newRow("document: none") << true << QString() << s("No Email");
}

void tst_EmailPreparation::recipient()
{
    QFETCH(bool, document);
    QFETCH(QString, address);
    QFETCH(QString, to);

    MailCompany company;
    Record* selected = company.record(document ? company.invoice : company.client);
    // The document keeps its own copy: the client's addresses do not count for it.
    company.record(company.client)->setValue(s("emails"), document ? s("client@a.example") : address);
    if (document)
        selected->setValue(s("client_email"), address);
    company.saveMain();

    EmailPreparation preparation(selected, company.clock());
    QCOMPARE(preparation.toEmail(), to);
    QCOMPARE(preparation.offersAttachment(), document);
    QCOMPARE(preparation.attachmentLabel(),
             document ? selected->value(s("number_formatted")).toString() : QString());
}

void tst_EmailPreparation::placeholders_data()
{
    QTest::addColumn<bool>("document");
    QTest::addColumn<QString>("subject");
    QTest::addColumn<QString>("body");
    QTest::addColumn<QString>("expected");

    QTest::newRow("both date placeholders")
        << false << s("On @TodayDate") << s("Sent @TodayDateAndTime, due @TodayDate")
        << s("Sent 3/15/24 10:30, due 3/15/24");
    QTest::newRow("client and company names")
        << false << s("For @ClientName") << s("Dear @ClientName,\nyours, @MyCompanyName")
        << s("Dear Acme Ltd,\nyours, Corvanta Works");
    QTest::newRow("document: the copied client name")
        << true << s("") << s("Dear @ClientName") << s("Dear Acme Copy");
    QTest::newRow("a lone @ and an unknown word stay")
        << false << s("") << s("me @ home, @Someone") << s("me @ home, @Someone");
    QTest::newRow("placeholders back to back")
        << false << s("") << s("@TodayDate@TodayDateAndTime@ClientName") << s("3/15/243/15/24 10:30Acme Ltd");
}

void tst_EmailPreparation::placeholders()
{
    QFETCH(bool, document);
    QFETCH(QString, subject);
    QFETCH(QString, body);
    QFETCH(QString, expected);

    MailCompany company;
    company.record(company.invoice)->setValue(s("client_full_name"), s("Acme Copy"));
    company.saveMain();
    Record* chosen = company.emailTemplate(s("Letter"), subject, body);
    EmailPreparation preparation(company.record(document ? company.invoice : company.client),
                                 company.clock());
    preparation.emailTemplatesChanged(chosen);
    QCOMPARE(preparation.body(), expected);
    QCOMPARE(preparation.subject(), subject);
}

// The templates by name, localized and ignoring case, the company's default chosen first; a client
// whose name is itself a placeholder is written as it is, not replaced again.
void tst_EmailPreparation::templatesByNameDefaultFirst()
{
    MailCompany company;
    company.emailTemplate(s("beta"), QString(), QString());
    company.emailTemplate(s("Zulu"), QString(), QString());
    company.emailTemplate(s("émile"), QString(), QString());
    Record* chosen = company.emailTemplate(s("Alpha"), s("Subject @ClientName"), s("Hello @ClientName"));
    company.company()->setRelated(s("default_email_template"), chosen);
    company.record(company.client)->setValue(s("company_name"), s("@TodayDate Ltd"));
    company.saveMain();

    EmailPreparation preparation(company.record(company.client), company.clock());
    QCOMPARE(company.templateNames(preparation.templates()),
             QStringList({s("Alpha"), s("beta"), s("émile"), s("Empty Template"), s("Zulu")}));
    QCOMPARE(preparation.selectedTemplate(), chosen);
    QCOMPARE(preparation.subject(), s("Subject @ClientName"));
    QCOMPARE(preparation.body(), s("Hello @TodayDate Ltd"));
}

void tst_EmailPreparation::oldTemporaryFilesRemoved_data()
{
    QTest::addColumn<QDateTime>("modified");
    QTest::addColumn<bool>("kept");

    // Now is 15 March 2024, 10:30: files from before 14 March go.
    QTest::newRow("a week old") << at(2024, 3, 8) << false;
    QTest::newRow("a minute before yesterday") << at(2024, 3, 13, 23, 59) << false;
    QTest::newRow("yesterday at midnight") << at(2024, 3, 14, 0, 0) << true;
    QTest::newRow("yesterday evening") << at(2024, 3, 14, 20, 0) << true;
    QTest::newRow("today") << at(2024, 3, 15, 9, 0) << true;
}

void tst_EmailPreparation::oldTemporaryFilesRemoved()
{
    QFETCH(QDateTime, modified);
    QFETCH(bool, kept);

    MailCompany company;
    QTemporaryDir temp;
    QFile old(temp.filePath(s("earlier.pdf")));
    QVERIFY(old.open(QIODevice::WriteOnly) && old.write("%PDF") == 4 && old.flush());
    QVERIFY(old.setFileTime(modified, QFileDevice::FileModificationTime));
    old.close();

    QString error;
    const QString path = exchange::EmailAttachment(temp.path(), temp.filePath(s("templates")))
                             .write(company.record(company.invoice), nullptr, company.now(), &error);
    QVERIFY2(!path.isEmpty(), qPrintable(error));
    QCOMPARE(QFileInfo(path).dir().absolutePath(), QDir(temp.path()).absolutePath());
    QCOMPARE(QFileInfo(path).fileName(),
             company.record(company.invoice)->value(s("number_formatted")).toString().replace(u'/', u'-') +
                 s(".pdf"));
    QFile written(path);
    QVERIFY(written.open(QIODevice::ReadOnly));
    QCOMPARE(written.read(4), QByteArray("%PDF"));
    QCOMPARE(QFileInfo::exists(old.fileName()), kept);
}

// Without the preparation the PDF goes to the mail program alone, for the user to address.
void tst_EmailPreparation::sendsWithoutPreparing()
{
    MailCompany company;
    XdgEmailStandIn standIn;
    QTemporaryDir temp;
    QString attachment;
    QString error;
    QVERIFY2(EmailPreparation::sendEmailWithoutPrepare(company.record(company.invoice), nullptr,
                                                       exchange::EmailHandOver(), temp.path(), temp.path(),
                                                       company.now(), &attachment, &error),
             qPrintable(error));
    QVERIFY(QFileInfo(attachment).size() > 0);
    QCOMPARE(standIn.arguments(),
             (QStringList{s("--utf8"), s("--to"), s("No Email"), s("--attach"), attachment}));
}

void tst_EmailPreparation::templateListOperations_data()
{
    QTest::addColumn<QString>("operation");
    QTest::addColumn<QString>("answer"); // the button chosen in a question
    QTest::addColumn<QString>("names");  // the list afterwards, ";"-joined, the default marked "*"
    QTest::addColumn<QString>("asked");

    const QString deleteQuestion = s(
        "Are you sure you want to delete the email template \"Reminder\"? | This action cannot be undone. | "
        "Delete Email Template, Cancel");
    QTest::newRow("new") << s("new") << QString() << s(" New ;Empty Template*;Reminder") << QString();
    QTest::newRow("duplicate: subject and body copied")
        << s("duplicate") << QString() << s("Empty Template*;Reminder;Reminder Copy") << QString();
    QTest::newRow("default") << s("default") << QString() << s("Empty Template;Reminder*") << QString();
    QTest::newRow("delete confirmed")
        << s("delete") << s("Delete Email Template") << s("Empty Template*") << deleteQuestion;
    QTest::newRow("delete cancelled")
        << s("delete") << s("Cancel") << s("Empty Template*;Reminder") << deleteQuestion;
    QTest::newRow("the default is never deleted")
        << s("delete default") << QString() << s("Empty Template*;Reminder")
        << s("Email Template cannot be deleted | The chosen email template cannot be deleted, because it is "
             "a "
             "default email template. | OK");
    QTest::newRow("rename") << s("rename") << QString() << s("Empty Template*;Letter") << QString();
}

void tst_EmailPreparation::templateListOperations()
{
    QFETCH(QString, operation);
    QFETCH(QString, answer);
    QFETCH(QString, names);
    QFETCH(QString, asked);

    MailCompany company;
    Record* reminder = company.emailTemplate(s("Reminder"), s("Open invoice"), s("Dear @ClientName"));
    if (!answer.isEmpty())
        company.prompter().addAnswer(answer);
    EmailTemplateList list(company.main(), company.prompter());

    Record* result = nullptr;
    bool done = true;
    if (operation == s("new"))
        result = list.addRow();
    else if (operation == s("duplicate"))
        result = list.duplicateRow(reminder);
    else if (operation == s("default"))
        done = list.defaultChanged(reminder);
    else if (operation == s("delete"))
        done = list.deleteRow(reminder);
    else if (operation == s("delete default"))
        done = list.deleteRow(list.defaultTemplate());
    else if (operation == s("rename"))
        done = list.rename(reminder, s("Letter"));
    QCOMPARE(done, answer.isEmpty() ? !operation.startsWith(s("delete")) : answer != s("Cancel"));
    if (operation == s("duplicate")) {
        QVERIFY(result);
        QCOMPARE(result->value(s("subject")).toString(), s("Open invoice"));
        QCOMPARE(result->value(s("body")).toString(), s("Dear @ClientName"));
    }

    // What the store holds now, as another window reads it.
    std::unique_ptr<store::EditingContext> fresh = company.store().newContext();
    EmailTemplateList stored(*fresh, company.prompter());
    QStringList shown;
    for (const Record* emailTemplate : stored.templates())
        shown << emailTemplate->value(s("name")).toString() +
                     (stored.isDefault(emailTemplate) ? s("*") : QString());
    QCOMPARE(shown.join(u';'), names);
    QCOMPARE(company.asked().join(u'\n'), asked);
}

void tst_EmailPreparation::insertFormula_data()
{
    QTest::addColumn<QString>("body");
    QTest::addColumn<int>("position");
    QTest::addColumn<int>("index");
    QTest::addColumn<QString>("expected");
    QTest::addColumn<int>("after");

    QTest::newRow("company name at the start") << s("Hello") << 0 << 0 << s("@MyCompanyNameHello") << 14;
    QTest::newRow("client name in the middle") << s("Dear ,") << 5 << 1 << s("Dear @ClientName,") << 16;
    QTest::newRow("date and time at the end") << s("On ") << 3 << 2 << s("On @TodayDateAndTime") << 20;
    QTest::newRow("date into an empty body") << QString() << 0 << 3 << s("@TodayDate") << 10;
    QTest::newRow("position past the end: appended") << s("ab") << 99 << 3 << s("ab@TodayDate") << 12;
    QTest::newRow("unknown placeholder: unchanged") << s("ab") << 1 << 4 << s("ab") << 1;
}

void tst_EmailPreparation::insertFormula()
{
    QFETCH(QString, body);
    QFETCH(int, position);
    QFETCH(int, index);
    QFETCH(QString, expected);
    QFETCH(int, after);

    const EmailTemplateList::Insertion inserted = EmailTemplateList::insertFormula(body, position, index);
    QCOMPARE(inserted.body, expected);
    QCOMPARE(inserted.position, qsizetype(after));
}

QTEST_MAIN(tst_EmailPreparation)
#include "tst_emailpreparation.moc"
