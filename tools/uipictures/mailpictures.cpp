// The pictures of the e-mail templates window, with its placeholder menu open, and of the
// address-book import window listing the people of two vCard files a user exported.
#include "mailpictures.h"

#include "model/companyrecord.h"
#include "pictures.h"
#include "predicate/literal.h"
#include "store/editingcontext.h"
#include "store/fetchrequest.h"
#include "store/record.h"
#include "store/store.h"
#include "support/uuid.h"
#include "ui/dialogprompter.h"
#include "ui/emailtemplateswindow.h"
#include "ui/importaddressbookwindow.h"

#include <QApplication>
#include <QFile>
#include <QLineEdit>
#include <QMenu>
#include <QPainter>
#include <QPlainTextEdit>
#include <QTableWidget>
#include <QTemporaryDir>
#include <QTest>
#include <QToolButton>

namespace corvanta::uipictures {

namespace {

struct Template
{
    const char* name;
    const char* subject;
    const char* body;
};

const Template templates[] = {
    {"Invoice", "Your invoice",
     "Dear @ClientName,\n\nplease find attached our invoice for the work of the last weeks. We kindly ask "
     "you to "
     "transfer the amount within 14 days.\n\nThank you for your order.\n\nKind regards\n@MyCompanyName"},
    {"Offer", "Our offer",
     "Dear @ClientName,\n\nthank you for your enquiry. Attached is our offer as we discussed it.\n\nWe are "
     "happy to answer any questions.\n\nBest regards\n@MyCompanyName"},
    {"Payment Reminder", "Payment reminder",
     "Dear @ClientName,\n\nas of @TodayDate we have not yet received the payment of the attached invoice. "
     "Perhaps it has slipped your attention.\n\nPlease transfer the amount within the next 7 days.\n\nKind "
     "regards\n@MyCompanyName"},
};

// Two files as an address book exports them: customers, and suppliers with their companies.
const char* const customers =
    "BEGIN:VCARD\r\nVERSION:3.0\r\nUID:pic-1\r\nN:Brandt;Katharina;;;\r\nORG:Brandt & Partner Architekten\r\n"
    "EMAIL;TYPE=WORK:k.brandt@brandt-partner.de\r\nTEL;TYPE=WORK:+49 40 3344 510\r\n"
    "ADR;TYPE=WORK:;;Elbchaussee 12;Hamburg;;22763;Germany\r\nEND:VCARD\r\n"
    "BEGIN:VCARD\r\nVERSION:3.0\r\nUID:pic-2\r\nN:Okafor;Daniel;;;\r\nEMAIL:daniel.okafor@mailbox.org\r\n"
    "TEL;TYPE=CELL:+49 171 2233 445\r\nEND:VCARD\r\n"
    "BEGIN:VCARD\r\nVERSION:3.0\r\nUID:pic-3\r\nN:Lindqvist;Sofia;;;\r\nORG:Lindqvist Interior\r\n"
    "EMAIL:sofia@lindqvist-interior.se\r\nTEL:+46 8 555 120 30\r\nEND:VCARD\r\n"
    "BEGIN:VCARD\r\nVERSION:3.0\r\nUID:pic-4\r\nN:M\xc3\xbcller;J\xc3\xbcrgen;;;\r\n"
    "EMAIL:j.mueller@example.de\r\nTEL:+49 89 1200 778\r\nADR:;;Leopoldstra\xc3\x9f\x65 40;M\xc3\xbcnchen;;"
    "80802;Germany\r\nEND:VCARD\r\n"
    "BEGIN:VCARD\r\nVERSION:3.0\r\nUID:pic-5\r\nN:Rossi;Giulia;;;\r\nEMAIL:giulia.rossi@studio-rossi.it\r\n"
    "TEL:+39 02 8899 1122\r\nEND:VCARD\r\n"
    "BEGIN:VCARD\r\nVERSION:3.0\r\nUID:pic-6\r\nN:Nowak;Piotr;;;\r\nEMAIL:piotr.nowak@nowak-bau.pl\r\n"
    "TEL:+48 22 628 4400\r\nEND:VCARD\r\n";
const char* const suppliers =
    "BEGIN:VCARD\r\nVERSION:3.0\r\nUID:pic-7\r\nN:;;;;\r\nORG:Papierhaus Weber KG\r\nX-ABShowAs:COMPANY\r\n"
    "EMAIL:bestellung@papierhaus-weber.de\r\nTEL:+49 221 9087 60\r\nEND:VCARD\r\n"
    "BEGIN:VCARD\r\nVERSION:3.0\r\nUID:pic-8\r\nN:;;;;\r\nORG:Druckerei Sonnenschein GmbH\r\n"
    "X-ABShowAs:COMPANY\r\nEMAIL:info@druckerei-sonnenschein.de\r\nTEL:+49 711 4455 00\r\nEND:VCARD\r\n"
    "BEGIN:VCARD\r\nVERSION:3.0\r\nUID:pic-9\r\nN:Haas;Thomas;;;\r\nORG:Haas IT-Service\r\n"
    "EMAIL:thomas@haas-it.at\r\nTEL:+43 1 890 3311\r\nEND:VCARD\r\n"
    "BEGIN:VCARD\r\nVERSION:3.0\r\nUID:pic-10\r\nN:;;;;\r\nORG:Kanzlei Fischer & "
    "Roth\r\nX-ABShowAs:COMPANY\r\n"
    "EMAIL:kanzlei@fischer-roth.de\r\nTEL:+49 30 2266 9900\r\nEND:VCARD\r\n";

void addTemplates(store::Store& store)
{
    store::EditingContext& main = store.mainContext();
    store::Record* invoice = nullptr;
    for (const Template& wanted : templates) {
        store::Record* emailTemplate = main.fetchFirst(
            store::FetchRequest(s("EmailTemplates"), predicate::literal("name == %@", {s(wanted.name)})));
        if (!emailTemplate)
            emailTemplate = main.insertRecord(s("EmailTemplates"), {{s("name"), s(wanted.name)},
                                                                    {s("subject"), s(wanted.subject)},
                                                                    {s("body"), s(wanted.body)}});
        if (!invoice)
            invoice = emailTemplate;
    }
    if (store::Record* company = model::CompanyRecord::of(main))
        company->setRelated(s("default_email_template"), invoice);
    store::StoreError error;
    if (!main.save(&error))
        qFatal("cannot save: %s", qPrintable(error.message()));
}

// The window with its open menu drawn where it shows, as one picture.
QPixmap withMenu(QWidget* window, QWidget* menu)
{
    const QPoint at = menu->mapToGlobal(QPoint(0, 0)) - window->mapToGlobal(QPoint(0, 0));
    QPixmap picture(window->size().expandedTo(QSize(at.x() + menu->width(), at.y() + menu->height())));
    picture.fill(window->palette().color(QPalette::Window));
    QPainter painter(&picture);
    painter.drawPixmap(0, 0, window->grab());
    painter.drawPixmap(at, menu->grab());
    painter.setPen(window->palette().color(QPalette::Mid));
    painter.drawRect(QRect(at, menu->size()).adjusted(0, 0, -1, -1));
    painter.end();
    return picture;
}

void emailTemplatesPictures(store::Store& store, ui::DialogPrompter& prompter)
{
    addTemplates(store);
    auto* window = new ui::EmailTemplatesWindow(store, prompter);
    window->resize(window->fontMetrics().averageCharWidth() * 120, window->fontMetrics().lineSpacing() * 26);
    window->show();
    window->selectTemplate(s("Invoice"));
    QTest::qWait(200);
    save(window, "email-templates");

    // The placeholder menu under its button, the cursor after the greeting.
    auto* body = window->findChild<QPlainTextEdit*>(s("bodyEdit"));
    QTextCursor cursor = body->textCursor();
    cursor.setPosition(int(body->toPlainText().indexOf(QLatin1Char(','))));
    body->setTextCursor(cursor);
    auto* button = window->findChild<QToolButton*>(s("placeholderButton"));
    QMenu* menu = window->placeholderMenu();
    menu->popup(button->mapToGlobal(QPoint(0, button->height())));
    QTest::qWait(200);
    save(withMenu(window, menu), "email-templates-placeholders");
    menu->hide();
    window->close();
    delete window;
}

void importPictures(store::Store& store, ui::DialogPrompter& prompter)
{
    QTemporaryDir folder;
    QStringList files;
    for (const auto& [name, cards] :
         {std::pair{"Customers.vcf", customers}, std::pair{"Suppliers.vcf", suppliers}}) {
        files << folder.filePath(s(name));
        QFile file(files.last());
        if (!file.open(QIODevice::WriteOnly) || file.write(cards) < 0)
            qFatal("cannot write %s", qPrintable(files.last()));
    }
    auto* window = new ui::ImportAddressBookWindow(store, prompter);
    window->resize(window->fontMetrics().averageCharWidth() * 150, window->fontMetrics().lineSpacing() * 30);
    window->show();
    if (!QTest::qWaitFor([window] { return window->desktopContactsRead(); }, 15000))
        qFatal("this computer's contacts were not looked for");
    window->addFiles(files);
    // A user leaves out the people who are no clients.
    auto* table = window->findChild<QTableWidget*>(s("peopleTable"));
    for (int row = 0; row < table->rowCount(); ++row) {
        const QString name = table->item(row, 0)->text();
        if (name == s("Papierhaus Weber KG") || name == s("Druckerei Sonnenschein GmbH"))
            table->item(row, 0)->setCheckState(Qt::Unchecked);
    }
    table->selectRow(3);
    QTest::qWait(200);
    save(window, "import-address-book");
    window->close();
    delete window;
}

} // namespace

void takeMailPictures(store::Store& store)
{
    ui::DialogPrompter prompter;
    emailTemplatesPictures(store, prompter);
    importPictures(store, prompter);
}

} // namespace corvanta::uipictures
