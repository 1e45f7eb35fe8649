#include "../documents/documenttestsupport.h"
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
using exchange::EmailPreparation;
using exchange::EmailTemplateList;
using store::Record;

namespace {

// A company with a client, an invoice of it that prints with an empty design template, and
// e-mail templates besides the default one. The client's name is itself a placeholder, which an
// e-mail must write as it is.
class MailCompany : public documents::testing::TestCompany
{
public:
    MailCompany()
    {
        model::CompanyRecord::of(main())->setValue(s("name"), s("Corvanta Works"));
        client = record(addClient(s("@TodayDate Ltd")));
        invoice = record(addDocument(0, client->ref(), addItem(s("Bolt"), 10), 2));
        invoice->setRelated(s("template"),
                            main().insertRecord(s("Templates"), {{s("type"), 0}, {s("name"), s("Plain")}}));
        saveMain();
    }

    Record* emailTemplate(const QString& name, const QString& subject, const QString& body)
    {
        return record(add("EmailTemplates", {{s("name"), name}, {s("subject"), subject}, {s("body"), body}}));
    }

    Record* client;
    Record* invoice;
};

} // namespace

// An e-mail prepared for a client or a document: recipient, template, placeholders, the PDF
// that goes along and what reaches the mail program; and the list of e-mail templates.
class tst_EmailPreparation : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates)); }
    void prepared_data();
    void prepared();
    void templatesByNameDefaultFirst();
    void sendsWithoutPreparing_data();
    void sendsWithoutPreparing();
    void deleteTemplate_data();
    void deleteTemplate();
    void insertFormula_data();
    void insertFormula();
};

void tst_EmailPreparation::prepared_data()
{
    QTest::addColumn<bool>("document");
    QTest::addColumn<QString>("address"); // the client's `emails`, or the document's `client_email`
    QTest::addColumn<QString>("to");
    QTest::addColumn<QString>("body"); // the template's, and as prepared
    QTest::addColumn<QString>("expected");

    QTest::newRow("client: the first address, trimmed; both date placeholders")
        << false << s("  first@a.example , second@a.example") << s("first@a.example")
        << s("Sent @TodayDateAndTime, due @TodayDate") << s("Sent 3/15/24 10:30, due 3/15/24");
    QTest::newRow("client: no address; the names")
        << false << QString() << s("No Email") << s("Dear @ClientName,\nyours, @MyCompanyName")
        << s("Dear @TodayDate Ltd,\nyours, Corvanta Works");
    QTest::newRow("client: the first address empty; back to back, a lone @ and unknown words")
        << false << s(",second@a.example") << s("No Email")
        << s("@TodayDate@TodayDateAndTime@ClientName @ @Someone")
        << s("3/15/243/15/24 10:30@TodayDate Ltd @ @Someone");
    QTest::newRow("document: its client_email and client name")
        << true << s("copy@a.example") << s("copy@a.example") << s("Dear @ClientName") << s("Dear Acme Copy");
    QTest::newRow("document: no address")
        << true << QString() << s("No Email") << s("@MyCompanyName") << s("Corvanta Works");
}

void tst_EmailPreparation::prepared()
{
    QFETCH(bool, document);
    QFETCH(QString, address);
    QFETCH(QString, to);
    QFETCH(QString, body);
    QFETCH(QString, expected);

    MailCompany company;
    // A document keeps its own copies: the client's addresses and name do not count for it.
    company.client->setValue(s("emails"), document ? s("client@a.example") : address);
    company.invoice->setValue(s("client_email"), address);
    company.invoice->setValue(s("client_full_name"), s("Acme Copy"));
    company.saveMain();

    const QString subject = s("On @TodayDate for @ClientName");
    EmailPreparation preparation(document ? company.invoice : company.client, company.clock());
    QCOMPARE(preparation.toEmail(), to);
    QCOMPARE(preparation.offersAttachment(), document);
    preparation.emailTemplatesChanged(company.emailTemplate(s("Letter"), subject, body));
    QCOMPARE(preparation.body(), expected);
    QCOMPARE(preparation.subject(), subject);
}

// The templates by name, localized and ignoring case, the company's default chosen first.
void tst_EmailPreparation::templatesByNameDefaultFirst()
{
    MailCompany company;
    for (const char* name : {"beta", "Zulu", "émile"})
        company.emailTemplate(s(name), QString(), QString());
    Record* chosen = company.emailTemplate(s("Alpha"), s("Subject"), s("Hello @ClientName"));
    model::CompanyRecord::of(company.main())->setRelated(s("default_email_template"), chosen);
    company.saveMain();

    EmailPreparation preparation(company.client, company.clock());
    QStringList names;
    for (const Record* emailTemplate : preparation.templates())
        names << emailTemplate->value(s("name")).toString();
    QCOMPARE(names, QStringList({s("Alpha"), s("beta"), s("émile"), s("Empty Template"), s("Zulu")}));
    QCOMPARE(preparation.selectedTemplate(), chosen);
    QCOMPARE(preparation.subject() + u'|' + preparation.body(), s("Subject|Hello @TodayDate Ltd"));
}

void tst_EmailPreparation::sendsWithoutPreparing_data()
{
    QTest::addColumn<QDateTime>("modified"); // of a PDF already in the folder of temporary files
    QTest::addColumn<bool>("kept");

    // Now is 15 March 2024, 10:30: files from before 14 March go.
    QTest::newRow("a minute before yesterday") << at(2024, 3, 13, 23, 59) << false;
    QTest::newRow("yesterday at midnight") << at(2024, 3, 14, 0, 0) << true;
}

// Without the preparation the PDF goes to the mail program alone, for the user to address.
void tst_EmailPreparation::sendsWithoutPreparing()
{
    QFETCH(QDateTime, modified);
    QFETCH(bool, kept);

    MailCompany company;
    exchange::testing::XdgEmailStandIn standIn;
    QTemporaryDir temp;
    QFile old(temp.filePath(s("earlier.pdf")));
    QVERIFY(old.open(QIODevice::WriteOnly) && old.setFileTime(modified, QFileDevice::FileModificationTime));
    old.close();

    QString attachment;
    QString error;
    QVERIFY2(EmailPreparation::sendEmailWithoutPrepare(company.invoice, nullptr, exchange::EmailHandOver(),
                                                       temp.path(), temp.filePath(s("templates")),
                                                       company.now(), &attachment, &error),
             qPrintable(error));
    const QString number = company.invoice->value(s("number_formatted")).toString();
    QCOMPARE(attachment, QDir(temp.path()).filePath(QString(number).replace(u'/', u'-') + s(".pdf")));
    QFile written(attachment);
    QVERIFY(written.open(QIODevice::ReadOnly));
    QCOMPARE(written.read(4), QByteArray("%PDF"));
    QCOMPARE(QFileInfo::exists(old.fileName()), kept);
    QCOMPARE(standIn.arguments(),
             (QStringList{s("--utf8"), s("--to"), s("No Email"), s("--attach"), attachment}));
}

void tst_EmailPreparation::deleteTemplate_data()
{
    QTest::addColumn<bool>("ofDefault");
    QTest::addColumn<QString>("answer"); // the button chosen in the question
    QTest::addColumn<bool>("deleted");
    QTest::addColumn<QString>("asked");

    const QString question =
        s("Are you sure you want to delete the email template \"Reminder\"? | This action "
          "cannot be undone. | Delete Email Template, Cancel");
    QTest::newRow("confirmed") << false << s("Delete Email Template") << true << question;
    QTest::newRow("cancelled") << false << s("Cancel") << false << question;
    QTest::newRow("the default is never deleted") << true << QString() << false
                                                  << s("Email Template cannot be deleted | The chosen email "
                                                       "template cannot be deleted, because it is a "
                                                       "default email template. | OK");
}

void tst_EmailPreparation::deleteTemplate()
{
    QFETCH(bool, ofDefault);
    QFETCH(QString, answer);
    QFETCH(bool, deleted);
    QFETCH(QString, asked);

    MailCompany company;
    Record* reminder = company.emailTemplate(s("Reminder"), QString(), QString());
    if (!answer.isEmpty())
        company.prompter().addAnswer(answer);
    EmailTemplateList list(company.main(), company.prompter());
    Record* chosen = ofDefault ? list.defaultTemplate() : reminder;
    const QString name = chosen->value(s("name")).toString();
    QCOMPARE(list.deleteRow(chosen), deleted);
    QCOMPARE(company.asked().join(u'\n'), asked);

    // What the store holds now, as another window reads it.
    std::unique_ptr<store::EditingContext> fresh = company.store().newContext();
    QCOMPARE(EmailTemplateList(*fresh, company.prompter()).named(name).size(), deleted ? 0 : 1);
}

void tst_EmailPreparation::insertFormula_data()
{
    QTest::addColumn<QString>("body");
    QTest::addColumn<int>("position");
    QTest::addColumn<int>("index");
    QTest::addColumn<QString>("expected");
    QTest::addColumn<int>("after");

    QTest::newRow("client name in the middle") << s("Dear ,") << 5 << 1 << s("Dear @ClientName,") << 16;
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
