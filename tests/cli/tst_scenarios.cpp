#include "../exchange/xdgemailstandin.h"
#include "clitestsupport.h"

#include <QRegularExpression>

using namespace corvanta::cli::testing;

// Whole roads through corvanta-cli on fresh company databases: each command reaches the core and
// reports what it did. The rules themselves are tested with the documents library.
class tst_Scenarios : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void invoiceToCancelledAndForeignQuotation();
    void numberingWithStartNumberAndDrafts();
    void templatesAndPdf();
    void sidebarFoldersAndTags();
    void reportsOverAPeriod();
    void vcardImport_data();
    void vcardImport();
    void csvImport_data();
    void csvImport();
    void emailHandOver_data();
    void emailHandOver();
    void emailTemplates();
    void todosInTheCalendar_data();
    void todosInTheCalendar();
    void todosDoneDeletedAndExported();

private:
    std::unique_ptr<Cli> m_cli;
};

void tst_Scenarios::init()
{
    m_cli = std::make_unique<Cli>();
    m_cli->addClientAndItems();
}

void tst_Scenarios::invoiceToCancelledAndForeignQuotation()
{
    QCOMPARE(m_cli->run("items receive Bolt --quantity 10").exitCode, 0);
    // Bolt: 3 x 10 with 10% tax; Labour: 100 without tax.
    const QJsonObject created = m_cli->json(invoice("--row Bolt;3 --row Labour;1")).toObject();
    QCOMPARE(created.value(s("sum_total")).toDouble(), 133.0);
    const QString number = created.value(s("number_formatted")).toString();
    QCOMPARE(m_cli->stock("Bolt"), 7.0);

    // Paid in part by the payment type given, then settled: the rest is paid.
    QCOMPARE(m_cli->run(s("documents pay %1 --amount 33 --payment-type Cash").arg(number)).exitCode, 0);
    QCOMPARE(m_cli->run(s("documents settle ") + number).exitCode, 0);
    const QJsonObject paid = m_cli->document(number);
    QCOMPARE(paid.value(s("status")).toString(), s("paid"));
    const QJsonArray payments = paid.value(s("payments")).toArray();
    QCOMPARE(payments.size(), 2);
    QCOMPARE(payments.first()[s("payment")].toString(), s("Cash"));
    QCOMPARE(payments.last()[s("amount")].toDouble(), 100.0);
    const Run list = m_cli->run("documents list --type invoice");
    QVERIFY2(list.line(1).startsWith(number) && list.line(1).endsWith(s(" paid")), qPrintable(list.out));

    // The cancellation is a twin that points back and gives the bolts back.
    const Run cancelled = m_cli->run(s("documents cancel ") + number);
    QCOMPARE(cancelled.exitCode, 0);
    const QJsonObject twin = m_cli->document(cancelled.line(0));
    QCOMPARE(twin.value(s("status")).toString(), s("cancelled"));
    QCOMPARE(twin.value(s("cancel_reference")).toString(), number);
    QCOMPARE(m_cli->stock("Bolt"), 10.0);

    // A quotation in a foreign currency also gives its tax in the default currency, at its rate.
    const QString quotation = s("documents new --type quotation --client Acme --row Bolt;10");
    const QJsonObject foreign = m_cli->json(quotation + s(" --currency EUR --rate 0.5")).toObject();
    const QJsonValue summary = foreign.value(s("summaries"))[0];
    QCOMPARE(summary[s("tax1_value")].toDouble(), 10.0);
    QCOMPARE(summary[s("default_currency_tax1_value")].toDouble(), 5.0);
}

void tst_Scenarios::numberingWithStartNumberAndDrafts()
{
    const auto dated = [&](const char* date, const char* more = "") {
        return m_cli->run(invoice(s("--row Bolt;1 --date %1 %2").arg(s(date), s(more))));
    };
    // The number, then the identifier.
    Run run = dated("2024-03-15", "--start-number 500");
    QCOMPARE(run.exitCode, 0);
    QCOMPARE(run.out, s("INVOICE/2024-0500\n%1\n").arg(run.line(1)));
    // The start number is asked for once a year; a draft takes its number when finalised.
    QCOMPARE(dated("2024-06-01", "--start-number 900").line(0), s("INVOICE/2024-0501"));
    const QString draft = dated("2024-06-02", "--draft").line(1);
    QCOMPARE(dated("2025-01-02").line(0), s("INVOICE/2025-0001"));
    QCOMPARE(m_cli->run(s("documents finalize ") + draft).line(0), s("INVOICE/2024-0502"));
    // Finalising again is no error: it is said on standard error.
    run = m_cli->run(s("documents finalize ") + draft);
    QCOMPARE(run.exitCode, 0);
    QVERIFY2(run.err.contains(s("INVOICE/2024-0502 is final already.")), qPrintable(run.err));
}

void tst_Scenarios::templatesAndPdf()
{
    // A new company has the shipped templates, one default per type; the later invoice design is
    // the default invoice template.
    const QJsonArray shipped = m_cli->json("templates list").toArray();
    QCOMPARE(shipped.size(), 13);
    QString defaultInvoice;
    QString invoiceTemplate;
    QString reportTemplate;
    int defaults = 0;
    for (const QJsonValue& entry : shipped) {
        defaults += entry[s("default")].toBool() ? 1 : 0;
        if (entry[s("type")].toString() == s("invoice") && entry[s("default")].toBool()) {
            defaultInvoice = entry[s("name")].toString();
            invoiceTemplate = entry[s("identifier")].toString();
        }
        if (entry[s("type")].toString() == s("report_documents"))
            reportTemplate = entry[s("identifier")].toString();
    }
    QCOMPARE(defaults, 12);
    QVERIFY(!defaultInvoice.isEmpty());

    // A document prints with its template; without -o into the temporary files folder.
    const QString number =
        m_cli->json(invoice("--row Bolt;3 --row Labour;1")).toObject()[s("number_formatted")].toString();
    QJsonObject pdf = m_cli->json(s("documents pdf %1 -o invoice.pdf").arg(number)).toObject();
    QCOMPARE(pdf[s("path")].toString(), m_cli->path("invoice.pdf"));
    QCOMPARE(pdf[s("pages")].toInt(), 1);
    QVERIFY(QFile(m_cli->path("invoice.pdf")).size() > 1000);
    pdf = m_cli->json(s("documents pdf ") + number).toObject();
    QCOMPARE(pdf[s("path")].toString(),
             m_cli->path("temp/") + QString(number).replace(u'/', u'-') + s(".pdf"));
    QVERIFY(QFileInfo::exists(pdf[s("path")].toString()));

    // Copied into another type, exported, imported back and previewed.
    const QJsonObject copy =
        m_cli->json(s("templates duplicate ") + invoiceTemplate + s(" --as-type quotation")).toObject();
    QCOMPARE(copy[s("name")].toString(), defaultInvoice + s(" Copy"));
    QCOMPARE(copy[s("type")].toString(), s("quotation"));
    const QString exported =
        m_cli->json(s("templates export %1 --to %2").arg(copy[s("identifier")].toString(), m_cli->home()))
            .toObject()[s("path")]
            .toString();
    QCOMPARE(exported, m_cli->path(defaultInvoice + s(" Copy.corvanta")));
    const QJsonArray imported = m_cli->json(QStringList{s("templates"), s("import"), exported}).toArray();
    QCOMPARE(imported.size(), 1);
    QCOMPARE(imported[0][s("name")].toString(), s("Import ") + defaultInvoice + s(" Copy"));
    QCOMPARE(imported[0][s("elements")].toInt(), copy[s("elements")].toInt());
    pdf = m_cli->json(s("templates preview %1 -o report.pdf").arg(reportTemplate)).toObject();
    QVERIFY(pdf[s("pages")].toInt() >= 1);

    // Refusals change nothing: a report template into a document type, the default template,
    // a file that is no template.
    Run run = m_cli->run(s("templates duplicate %1 --as-type invoice").arg(reportTemplate));
    QCOMPARE(run.exitCode, 1);
    QVERIFY2(run.err.contains(s("Report templates cannot be duplicated")), qPrintable(run.err));
    run = m_cli->run(s("templates delete ") + invoiceTemplate);
    QCOMPARE(run.exitCode, 1);
    QVERIFY2(run.err.contains(s("because it is in use in 1 document(s).")), qPrintable(run.err));
    run = m_cli->run(s("templates delete ") + reportTemplate);
    QCOMPARE(run.exitCode, 1);
    QVERIFY2(run.err.contains(s("At least one design template is required from this type.")),
             qPrintable(run.err));
    QFile bogus(m_cli->path("bogus.corvanta"));
    QVERIFY(bogus.open(QIODevice::WriteOnly) && bogus.write("not a zip") > 0);
    bogus.close();
    run = m_cli->run(QStringList{s("templates"), s("import"), bogus.fileName()});
    QCOMPARE(run.exitCode, 1);
    QVERIFY2(run.err.contains(s("The file format is wrong.")), qPrintable(run.err));
    QCOMPARE(m_cli->json("templates list").toArray().size(), 15);
    QCOMPARE(m_cli->run(s("templates new --type cheque")).exitCode, 2);
}

void tst_Scenarios::sidebarFoldersAndTags()
{
    QCOMPARE(m_cli->run(invoice("--row Bolt;1")).exitCode, 0);
    const auto node = [&](const QString& name) {
        // The nodes of the tree, depth first, found by name.
        QJsonArray pending = m_cli->json("folders").toArray();
        while (!pending.isEmpty()) {
            const QJsonObject next = pending.takeAt(0).toObject();
            if (next[s("name")].toString() == name)
                return next;
            for (const QJsonValue& child : next[s("children")].toArray())
                pending.append(child);
        }
        return QJsonObject();
    };
    QCOMPARE(node(s("Company"))[s("count")].toInt(), 1);
    QCOMPARE(node(s("Unpaid Invoices"))[s("count")].toInt(), 1);
    QCOMPARE(node(s("Supplier"))[s("subtype")].toInt(), 1);
    QVERIFY(node(s("My Folder"))[s("count")].isNull());

    // Relative dates are fixed at each count: the invoice was made today.
    QCOMPARE(
        m_cli
            ->run(QStringList{s("folders"), s("new-smart"), s("Today"), s("--kind"), s("documents"),
                              s("--where"), s("date_creation >= \"@today\""), s("--parent"), s("Documents")})
            .line(0),
        s("002013 Today"));
    QCOMPARE(node(s("Today"))[s("count")].toInt(), 1);
    Run refused = m_cli->run("folders new-smart Broken --kind items --where name==");
    QCOMPARE(refused.exitCode, 1);
    QVERIFY2(refused.err.contains(s("malformed")), qPrintable(refused.err));

    // Refusals change nothing.
    const QJsonValue before = m_cli->json("folders");
    refused = m_cli->run("folders delete Clients");
    QCOMPARE(refused.exitCode, 1);
    QVERIFY2(refused.err.startsWith(s("Cannot be deleted")), qPrintable(refused.err));
    QCOMPARE(m_cli->run("folders move 004 --to 004000").exitCode, 1);
    QCOMPARE(m_cli->run("folders move 004000 --to Invoice").exitCode, 1);
    QCOMPARE(m_cli->json("folders"), before);

    QCOMPARE(m_cli->run("folders move Cancellation --to 004 --position 0").line(0), s("004000 Cancellation"));
    QCOMPARE(node(s("My Folder"))[s("indexpath")].toString(), s("004001"));
    QCOMPARE(node(s("Today"))[s("indexpath")].toString(), s("002012"));

    // A tag of the user's own beside the client's system tag, which stays.
    QCOMPARE(m_cli->run("folders new-tag VIP --kind clients --parent 000 --colors #FFFFFF AA0000").line(0),
             s("000004 VIP"));
    QCOMPARE(node(s("VIP"))[s("background_color")].toString(), s("#AA0000"));
    const QJsonArray tagged = m_cli->json("tags add VIP Acme").toArray();
    QCOMPARE(tagged.first()[s("tags")].toArray(), (QJsonArray{s("VIP"), s("Company")}));
    QCOMPARE(m_cli->run("tags remove Company Acme").exitCode, 1);
    QCOMPARE(m_cli->run("folders list VIP").out, s("Acme\n"));
    QCOMPARE(m_cli->run("tags remove VIP Acme").out, s("Acme: Company\n"));
}

// Reports on the documents of a period: drafts and other periods left out, sums per client with
// a client that has none, the zoom a long period allows, the chart's periods and a refused tag.
void tst_Scenarios::reportsOverAPeriod()
{
    for (const QString& line :
         {s("clients add --kind company --name Zed"), invoice("--row Bolt;3 --date 2024-03-01"),
          invoice("--row Labour;1 --date 2024-03-20"), invoice("--row Bolt;50 --date 2024-03-21 --draft"),
          invoice("--row Bolt;7 --date 2024-05-02"),
          s("documents new --type quotation --client Acme --row Bolt;2 --date 2024-03-05")})
        QVERIFY2(m_cli->run(line).exitCode == 0, qPrintable(line));

    const QString march = s("reports show --from 2024-03-01 --to 2024-03-31 ");
    const QJsonObject documents = m_cli->json(march + s("--tags Invoice --zoom month")).toObject();
    const QJsonArray rows = documents.value(s("rows")).toArray();
    QCOMPARE(rows.size(), 2);
    QCOMPARE(rows.at(1)[s("sum_total")].toDouble(), 100.0);
    QCOMPARE(documents.value(s("sums"))[s("total")].toDouble(), 133.0);
    QCOMPARE(documents.value(s("chart"))[s("labels")].toArray(), QJsonArray{s("March")});

    // Labour has no tax: the client's sums are its documents' sums all the same.
    const QJsonObject clients = m_cli->json(march + s("--view clients")).toObject();
    QStringList sums;
    for (const QJsonValue client : clients.value(s("rows")).toArray())
        sums << client[s("full_name")].toString() + QLatin1Char(' ') +
                    QString::number(client[s("documents_sum_net")].toDouble()) + QLatin1Char(' ') +
                    QString::number(client[s("documents_sum_total")].toDouble());
    QCOMPARE(sums, (QStringList{s("Acme 150 155"), s("Zed 0 0")}));

    // 51 days: no day step, so a day moves to the week; the weeks run from the first day on.
    const QJsonObject weeks =
        m_cli->json(s("reports show --from 2024-03-01 --to 2024-04-21 --zoom day --all-payment-types"))
            .toObject();
    QCOMPARE(weeks.value(s("zoom")).toString(), s("week"));
    QCOMPARE(weeks.value(s("zoom_steps")).toArray(), (QJsonArray{s("week"), s("month"), s("year")}));
    const QJsonArray value = weeks.value(s("chart"))[s("value")].toArray();
    QCOMPARE(value.size(), 8); // ISO weeks 9 to 16
    QCOMPARE(value.at(0).toDouble(), 30.0);
    QCOMPARE(value.at(1).toDouble(), 20.0);

    const Run refused = m_cli->run(march + s("--tags Nope"));
    QCOMPARE(refused.exitCode, 1);
    QVERIFY2(refused.err.contains(s("\"Nope\"")), qPrintable(refused.err));

    const Run pdf =
        m_cli->run(s("reports pdf --from 2024-03-01 --to 2024-03-31 --view clients -o clients.pdf"));
    QVERIFY2(pdf.exitCode == 0 && QFileInfo(m_cli->path("clients.pdf")).size() > 0, qPrintable(pdf.err));
}

void tst_Scenarios::emailHandOver_data()
{
    QTest::addColumn<QString>("command");
    QTest::addColumn<int>("standInStatus");
    QTest::addColumn<int>("exitCode");
    // What xdg-email got, joined by "|"; empty when it was not called. "ATTACHMENT" stands for the
    // PDF's path.
    QTest::addColumn<QString>("handedOver");
    QTest::addColumn<QString>("printed"); // the JSON's to, subject, body and attachment, joined by "|"
    QTest::addColumn<QString>("error");

    QTest::newRow("client: the first address, the named template")
        << s("email client Beta --template Reminder") << 0 << 0
        << s("--utf8|--to|first@beta.example|--subject|Hello @ClientName|--body|Dear Beta, from My "
             "Company\n\n\n")
        << s("first@beta.example|Hello @ClientName|Dear Beta, from My Company|") << QString();
    QTest::newRow("client without an address: the default, empty template")
        << s("email client Acme") << 0 << 0 << s("--utf8|--to|No Email") << s("No Email|||") << QString();
    QTest::newRow("document with its PDF")
        << s("email document NUMBER") << 0 << 0 << s("--utf8|--to|first@beta.example|--attach|ATTACHMENT")
        << s("first@beta.example|||ATTACHMENT") << QString();
    QTest::newRow("document without its PDF")
        << s("email document NUMBER --no-attachment") << 0 << 0 << s("--utf8|--to|first@beta.example")
        << s("first@beta.example|||") << QString();
    const QString dash = s("The recipient \"-x@y\" is not handed to the mail program: it begins with \"-\"");
    QTest::newRow("recipient that would be an option")
        << s("email client Dash") << 0 << 1 << QString() << QString() << dash;
    QTest::newRow("document to such a recipient: no PDF made")
        << s("email document DASH") << 0 << 1 << QString() << QString() << dash;
    QTest::newRow("unknown e-mail template") << s("email client Beta --template Nope") << 0 << 1 << QString()
                                             << QString() << s("No e-mail template is named \"Nope\".");
    QTest::newRow("mail program fails")
        << s("email client Acme") << 3 << 1 << s("--utf8|--to|No Email") << QString()
        << s("The mail program ended with status 3: stand-in says no");
}

// An e-mail reaches xdg-email with exactly the arguments of its recipient, template and PDF;
// a hostile recipient never reaches it, and a failing one is a refusal.
void tst_Scenarios::emailHandOver()
{
    QFETCH(QString, command);
    QFETCH(int, standInStatus);
    QFETCH(int, exitCode);
    QFETCH(QString, handedOver);
    QFETCH(QString, printed);
    QFETCH(QString, error);

    for (const QStringList& line :
         {words("clients add --kind company --name Beta --email first@beta.example --email "
                "second@beta.example"),
          words("clients add --kind company --name Dash --email -x@y"),
          words("email-templates new --name Reminder"),
          QStringList{s("email-templates"), s("edit"), s("Reminder"), s("--subject"), s("Hello @ClientName"),
                      s("--body"), s("Dear @ClientName, from @MyCompanyName")}}) {
        const Run done = m_cli->run(line);
        QVERIFY2(done.exitCode == 0, qPrintable(done.err));
    }
    const QString number =
        m_cli->json("documents new --type invoice --client Beta --row Bolt;1")[s("number_formatted")]
            .toString();
    const QString dash =
        m_cli->json("documents new --type invoice --client Dash --row Bolt;1")[s("number_formatted")]
            .toString();
    // A PDF of three days ago in the temporary files folder goes when the attachment is made.
    QDir().mkpath(m_cli->path("temp"));
    QFile old(m_cli->path("temp/old.pdf"));
    QVERIFY(old.open(QIODevice::WriteOnly) &&
            old.setFileTime(QDateTime::currentDateTime().addDays(-3), QFileDevice::FileModificationTime));
    old.close();

    corvanta::exchange::testing::XdgEmailStandIn standIn(standInStatus);
    const Run run = m_cli->run(s("--json ") + command.replace(s("NUMBER"), number).replace(s("DASH"), dash));
    QCOMPARE(run.exitCode, exitCode);
    QVERIFY2(run.err.contains(error), qPrintable(run.err));
    const QString pdf = QString(number).replace(u'/', u'-') + s(".pdf");
    const QString attachment = m_cli->path("temp/") + pdf;
    QCOMPARE(standIn.callCount(), handedOver.isEmpty() ? 0 : 1);
    QCOMPARE(standIn.arguments().join(u'|'), handedOver.replace(s("ATTACHMENT"), attachment));
    QCOMPARE(QDir(m_cli->path("temp")).entryList(QDir::Files),
             QStringList{handedOver.contains(attachment) ? pdf : s("old.pdf")});
    const QJsonObject json = run.json().toObject();
    const QStringList fields{json[s("to")].toString(), json[s("subject")].toString(),
                             json[s("body")].toString(), json[s("attachment")].toString()};
    QCOMPARE(run.out.isEmpty() ? QString() : fields.join(u'|'), printed.replace(s("ATTACHMENT"), attachment));
}

// The e-mail templates' commands: their JSON, the default refused with nothing changed, and
// usage errors.
void tst_Scenarios::emailTemplates()
{
    QCOMPARE(m_cli->json("email-templates new").toObject()[s("name")].toString(), s(" New "));
    QCOMPARE(m_cli->run("email-templates new --name Reminder").exitCode, 0);
    QCOMPARE(m_cli->run("email-templates edit Reminder --subject Hello --body @ClientName").exitCode, 0);
    QCOMPARE(m_cli->json("email-templates duplicate Reminder").toObject(),
             (QJsonObject{{s("name"), s("Reminder Copy")},
                          {s("default"), false},
                          {s("subject"), s("Hello")},
                          {s("body"), s("@ClientName")}}));
    const QJsonValue before = m_cli->json("email-templates list");
    const Run refused = m_cli->run(QStringList{s("email-templates"), s("delete"), s("Empty Template")});
    QVERIFY2(refused.exitCode == 1 && refused.err.contains(s("because it is a default email template.")),
             qPrintable(refused.err));
    QCOMPARE(m_cli->json("email-templates list"), before);
    QCOMPARE(m_cli->run("email-templates default Reminder").exitCode, 0);
    QCOMPARE(m_cli->json(QStringList{s("email-templates"), s("delete"), s("Empty Template")}).toObject(),
             (QJsonObject{{s("deleted"), s("Empty Template")}}));
    QStringList names; // the default marked "*"
    for (const QJsonValue emailTemplate : m_cli->json("email-templates list").toArray())
        names << emailTemplate[s("name")].toString() +
                     (emailTemplate[s("default")].toBool() ? s("*") : QString());
    QCOMPARE(names, (QStringList{s(" New "), s("Reminder*"), s("Reminder Copy")}));
    QCOMPARE(m_cli->run("email-templates edit Reminder").exitCode, 2);
    QCOMPARE(m_cli->run("email-templates default Nope").exitCode, 1);
}

// Clients and items from delimited text files: the plain dialect's line ends, quotes and
// separators, prices, duplicates of the records every scenario starts with, and refusals that
// add nothing.
void tst_Scenarios::csvImport_data()
{
    QTest::addColumn<QByteArray>("file");
    QTest::addColumn<QString>("command"); // FILE stands for the file
    QTest::addColumn<int>("exitCode");
    QTest::addColumn<QString>("message"); // how the output, or the errors, begin
    QTest::addColumn<QString>("records"); // the clients, or the items with their unit prices

    // The scenarios' items carry their prices as price levels: their unit price is not set.
    QTest::newRow("clients, Windows line ends, quoted separator")
        << QByteArray("\"Zeta; Ltd\";Main\r\nAcme;x\r\n\r\nOmega\r\n")
        << s("clients FILE --fields company_name,city") << 0
        << s("Import Clients: 2 clients successfully added.") << s("Acme,Omega,Zeta");
    QTest::newRow("persons, Latin-1")
        << QByteArray("M\xfcller;Hans\n")
        << s("clients FILE --fields last_name,first_name --type 2 --encoding ISO-8859-1") << 0
        << s("Import Clients: 1 clients successfully added.") << s("Acme,Hans Müller");
    QTest::newRow("wrong encoding") << QByteArray("M\xfcller;Hans\n")
                                    << s("clients FILE --fields last_name,first_name") << 1 << s("Warning: ")
                                    << s("Acme");
    QTest::newRow("unknown field") << QByteArray("Zeta\n") << s("clients FILE --fields company,city") << 1
                                   << s("There is no field \"company\"") << s("Acme");
    QTest::newRow("items, tab, blanks and commas in prices")
        << QByteArray("Nut\t1 234,50\nBolt\t3\n") << s("items FILE --fields name,unit_price --separator tab")
        << 0 << s("Import Items: 1 items successfully added.") << s("Bolt -,Labour -,Nut 1234.5");
    QTest::newRow("items, two-character separator, single precision")
        << QByteArray("Washer::0,1\n") << s("items FILE --fields name,unit_price --separator ::") << 0
        << s("Import Items: 1 items successfully added.") << s("Bolt -,Labour -,Washer 0.10000000149011612");
    QTest::newRow("unknown tax") << QByteArray("Nut;1\n")
                                 << s("items FILE --fields name,unit_price --tax 99%") << 1
                                 << s("No tax is named \"99%\"") << s("Bolt -,Labour -");
}

void tst_Scenarios::csvImport()
{
    QFETCH(QByteArray, file);
    QFETCH(QString, command);
    QFETCH(int, exitCode);
    QFETCH(QString, message);
    QFETCH(QString, records);
    QFile csv(m_cli->path("import.csv"));
    QVERIFY(csv.open(QIODevice::WriteOnly) && csv.write(file) == file.size());
    csv.close();
    const Run run = m_cli->run(s("import ") + command.replace(s("FILE"), csv.fileName()));
    QCOMPARE(run.exitCode, exitCode);
    QVERIFY2((exitCode == 0 ? run.out : run.err).startsWith(message), qPrintable(run.out + run.err));

    const bool items = command.startsWith(s("items"));
    QStringList stored;
    for (const QJsonValue record : m_cli->json(items ? s("items list") : s("clients list")).toArray()) {
        const QJsonValue price = record[s("unit_price")];
        stored << (items ? record[s("name")].toString() + QLatin1Char(' ') +
                               (price.isNull() ? s("-") : QString::number(price.toDouble(), 'g', 17))
                         : record[s("full_name")].toString());
    }
    stored.sort();
    QCOMPARE(stored.join(QLatin1Char(',')), records);
}

// Every person of every file named, each file read before anything is added; a second import
// adds nothing.
void tst_Scenarios::vcardImport_data()
{
    QTest::addColumn<QStringList>("files"); // name, then content (none: missing), for each file
    QTest::addColumn<int>("status");
    QTest::addColumn<QString>("output");  // what the first import prints, or its message
    QTest::addColumn<QString>("clients"); // the clients then, by full name, with kind and phones

    const QString people =
        s("BEGIN:VCARD\r\nVERSION:2.1\r\nUID:p-1\r\nN;CHARSET=UTF-8;ENCODING=QUOTED-PRINTABLE:M=C3=BCller;J="
          "C3=BCrgen\r\n"
          "TEL;WORK:1\r\nTEL;CELL:2\r\nTEL;HOME:3\r\nEND:VCARD\r\n"
          "BEGIN:VCARD\r\nVERSION:3.0\r\nUID:p-1\r\nN:M\u00fcller;J\u00fcrgen\r\nEND:VCARD\r\n");
    const QString companies = s("BEGIN:VCARD\nVERSION:4.0\nUID:c-1\nKIND:org\nORG:Globex\n"
                                "TEL;VALUE=uri:tel:+1-555-0100\nEND:VCARD\n");
    QTest::newRow("two files of three versions")
        << QStringList{s("people.vcf"), people, s("companies.vcf"), companies} << 0
        << s("Import Address Book: 2 clients successfully added.")
        << s("Acme 0 ,Globex 0 +1-555-0100,J\u00fcrgen M\u00fcller 2 1,2,3");
    QTest::newRow("a file without a card adds nothing from the others")
        << QStringList{s("companies.vcf"), companies, s("clients.csv"), s("name;phone\nAnn;555\n")} << 1
        << s("clients.csv\" holds no vCard") << s("Acme 0 ");
    QTest::newRow("a missing file") << QStringList{s("companies.vcf"), companies, s("missing.vcf"), QString()}
                                    << 1 << s("missing.vcf\" cannot be read") << s("Acme 0 ");
}

void tst_Scenarios::vcardImport()
{
    QFETCH(QStringList, files);
    QFETCH(int, status);
    QFETCH(QString, output);
    QFETCH(QString, clients);
    QStringList arguments{s("import"), s("vcard")};
    for (qsizetype i = 0; i < files.size(); i += 2) {
        QFile file(arguments.emplace_back(m_cli->path(files.at(i))));
        QVERIFY(files.at(i + 1).isNull() ||
                (file.open(QIODevice::WriteOnly) && file.write(files.at(i + 1).toUtf8())));
    }
    const Run first = m_cli->run(arguments);
    QCOMPARE(first.exitCode, status);
    QVERIFY2((status == 0 ? first.out.trimmed() == output : first.err.contains(output)),
             qPrintable(first.out + first.err));
    if (status == 0)
        QCOMPARE(m_cli->json(arguments)[s("added")].toInt(), 0);

    QStringList listed;
    for (const QJsonValue client : m_cli->json("clients list").toArray())
        listed << client[s("full_name")].toString() + QLatin1Char(' ') +
                      QString::number(client[s("type")].toInt()) + QLatin1Char(' ') +
                      client[s("phones")].toString();
    listed.sort();
    QCOMPARE(listed.join(QLatin1Char(',')), clients);
}

void tst_Scenarios::todosInTheCalendar_data()
{
    QTest::addColumn<QString>("options");
    QTest::addColumn<QString>("around");
    QTest::addColumn<QString>("summary");
    QTest::addColumn<QString>("starts");

    QTest::newRow("weekly, frequency 2, until a date")
        << s("--start 2026-06-01T08:00 --repeat-type 2 --repeat-frequency 2 --repeat-weekdays 2 "
             "--repeat-end-type 2 --repeat-end-date 2026-06-23")
        << s("2026-06-01") << s("Every 2 weeks on Monday, until 23 Jun 2026")
        << s("2026-06-01 08:00, 2026-06-08 08:00, 2026-06-15 08:00, 2026-06-22 08:00");
    QTest::newRow("monthly on the 31st, a count cut by the window")
        << s("--start 2026-01-31T09:00 --repeat-type 3 --repeat-end-type 1 --repeat-occurrences 3")
        << s("2026-03-01") << s("Monthly on day 31, 1 times") << s("2026-01-31 09:00, 2026-03-31 09:00");
    QTest::newRow("fifth Friday, by weekday") << s("--start 2026-01-30T12:00 --repeat-type 3 "
                                                   "--repeat-monthly-day-of 1 --repeat-end-date 2026-05-01")
                                              << s("2026-03-01") << s("Monthly on the last Friday")
                                              << s("2026-01-30 12:00, 2026-02-27 12:00, 2026-03-27 12:00");
    QTest::newRow("not recurring") << s("--start 2026-05-01T10:00") << s("2026-05-01") << QString()
                                   << QString();
}

void tst_Scenarios::todosInTheCalendar()
{
    QFETCH(QString, options);
    QFETCH(QString, around);
    QFETCH(QString, summary);
    QFETCH(QString, starts);
    const Run added = m_cli->run(s("todos add Visit ") + options);
    QVERIFY2(added.exitCode == 0, qPrintable(added.err));
    const QString identifier = added.line(0);
    QCOMPARE(m_cli->json(s("todos show ") + identifier)[s("repeat_summary")].toString(), summary);

    const QJsonArray calendar = m_cli->json(s("calendar --around ") + around).toArray();
    QCOMPARE(calendar.size(), 1);
    QCOMPARE(calendar.at(0)[s("identifier")].toString(), identifier);
    const QString events = calendar.at(0)[s("events")].toString();
    static const QRegularExpression start(s("start:'([^']*)'"));
    QStringList found;
    for (const QRegularExpressionMatch& match : start.globalMatch(events))
        found << match.captured(1);
    QCOMPARE(found.join(s(", ")), starts);
    // The plain form: the identifier, a tab and the same text.
    QCOMPARE(m_cli->run(s("calendar --around ") + around).line(0), identifier + QLatin1Char('\t') + events);
}

void tst_Scenarios::todosDoneDeletedAndExported()
{
    const Run added = m_cli->run(
        QStringList{s("todos"), s("add"), s("Bob's call"), s("--start"), s("2026-06-01T08:00"), s("--client"),
                    s("Acme"), s("--colors"), s("#FFFFFF"), s("#AA0000"), s("--repeat-type"), s("1"),
                    s("--repeat-end-type"), s("1"), s("--repeat-occurrences"), s("2")});
    QVERIFY2(added.exitCode == 0, qPrintable(added.err));
    const QString first = added.line(0);
    const QJsonObject todo = m_cli->json(s("todos show ") + first).toObject();
    QCOMPARE(todo[s("client")].toString(), s("Acme"));
    QCOMPARE(todo[s("tags")].toArray(), QJsonArray{s("Pending")});
    QCOMPARE(todo[s("date_end")].toString(), s("2026-06-01T09:00:00Z"));
    // The colours are given foreground first; two days' entries follow one another.
    const QString entry =
        s("{id:'%1', title:'Bob\\'s call', start:'2026-06-0%2 08:00', end:'2026-06-0%2 09:00', "
          "backgroundColor:'#AA0000', borderColor:'#AA0000', textColor:'#FFFFFF', allDay:false, "
          "editable:false},");
    QCOMPARE(m_cli->run(s("calendar --around 2026-06-01")).line(0),
             first + QLatin1Char('\t') + entry.arg(first, s("1")) + entry.arg(first, s("2")));

    // Refusals change nothing.
    const QJsonValue before = m_cli->json("todos list");
    for (const char* refused :
         {"todos add Late --start 2026-02-30", "todos add Late --start 2026-06-01 --colors red blue",
          "todos add Late --start 2026-06-01 --repeat-type weekly",
          "todos add Late --start 2026-06-01T10:00 --end 2026-06-01T09:00"})
        QCOMPARE(m_cli->run(refused).exitCode, 2);
    QCOMPARE(m_cli->run("todos add Late --start 2026-06-01 --client Nobody").exitCode, 1);
    QCOMPARE(m_cli->json("todos list"), before);

    // A title two to-dos share names neither.
    const QString second = m_cli->run("todos add Review --start 2026-06-03 --all-day").line(0);
    const QString third = m_cli->run("todos add Review --start 2026-06-04 --all-day").line(0);
    const Run ambiguous = m_cli->run("todos done Review");
    QCOMPARE(ambiguous.exitCode, 1);
    QVERIFY2(ambiguous.err.contains(second) && ambiguous.err.contains(third), qPrintable(ambiguous.err));

    // Each call toggles.
    QCOMPARE(m_cli->json(s("todos done ") + second)[s("done")].toBool(), true);
    QCOMPARE(m_cli->json(s("todos done ") + second)[s("tags")].toArray(), QJsonArray{s("Pending")});

    QCOMPARE(m_cli->run(s("todos delete ") + third).exitCode, 0);
    QCOMPARE(m_cli->json("todos list").toArray().size(), 2);

    QCOMPARE(m_cli->run(QStringList{s("todos"), s("export"), m_cli->path("todos.ics")}).exitCode, 0);
    QFile file(m_cli->path("todos.ics"));
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QString calendar = QString::fromUtf8(file.readAll());
    QCOMPARE(calendar.count(s("BEGIN:VTODO")), 2);
    QVERIFY2(calendar.contains(s("UID:") + first) && calendar.contains(s("RRULE:FREQ=DAILY;COUNT=2")),
             qPrintable(calendar));
    QCOMPARE(m_cli->run(QStringList{s("todos"), s("export"), m_cli->path("missing/todos.ics")}).exitCode, 1);
}

QTEST_GUILESS_MAIN(tst_Scenarios)
#include "tst_scenarios.moc"
