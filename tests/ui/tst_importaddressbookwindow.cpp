#include "ui/importaddressbookwindow.h"
#include "uitestsupport.h"

#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QProgressDialog>
#include <QPushButton>
#include <QTableWidget>
#include <QTemporaryDir>
#include <QTimer>

using namespace corvanta;
using corvanta::ui::testing::s;
using corvanta::ui::testing::UiCompany;
using ui::ImportAddressBookWindow;

namespace {

// A company shown as one, a person, and a person whose organisation is folded over
// two lines and whose names carry accents.
const char* const companyCard = "BEGIN:VCARD\r\nVERSION:3.0\r\nUID:c-1\r\nN:;;;;\r\nORG:Nordwind GmbH\r\n"
                                "X-ABShowAs:COMPANY\r\nTEL;TYPE=WORK:+49 30 1234\r\n"
                                "EMAIL:info@nordwind.de\r\nADR;TYPE=WORK:;;Hafenweg 3;Kiel;;24103;Germany\r\n"
                                "END:VCARD\r\n";
const char* const personCard = "BEGIN:VCARD\r\nVERSION:4.0\r\nUID:p-1\r\nFN:Ann Lee\r\nN:Lee;Ann;;;\r\n"
                               "EMAIL:ann@lee.example\r\nEND:VCARD\r\n";
const char* const foldedCard =
    "BEGIN:VCARD\r\nVERSION:3.0\r\nUID:p-2\r\nN:Hoffmann;J\xc3\xbcrgen;;;\r\n"
    "ORG:B\xc3\xa4\x63kerei Sch\r\n \xc3\xb6nberg\r\nTEL:0431 5566\r\nEND:VCARD\r\n";

// The stored clients, sorted, as "company or first last | type | tags".
QStringList storedClients(store::Store& store)
{
    const auto context = store.newContext();
    QStringList result;
    for (const store::Record* client : context->fetch(store::FetchRequest(s("Clients")))) {
        QStringList tags;
        for (const store::Record* tag : client->relatedList(s("tags")))
            tags << tag->value(s("name")).toString();
        const QString name = client->value(s("type")).toInt() == 0
                                 ? client->value(s("company_name")).toString()
                                 : client->value(s("first_name")).toString() + s(" ") +
                                       client->value(s("last_name")).toString();
        result << QStringList{name, client->value(s("type")).toString(), tags.join(s(","))}.join(s(" | "));
    }
    result.sort();
    return result;
}

QTableWidget* table(ImportAddressBookWindow& window)
{
    return window.findChild<QTableWidget*>(s("peopleTable"));
}

int rowNamed(ImportAddressBookWindow& window, const QString& name)
{
    for (int row = 0; row < table(window)->rowCount(); ++row) {
        if (table(window)->item(row, 0)->text() == name)
            return row;
    }
    return -1;
}

} // namespace

class tst_ImportAddressBookWindow : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_dir;
    QStringList m_files;

    // A window with the three cards listed, once this computer's contacts were looked for.
    void open(ImportAddressBookWindow& window)
    {
        QVERIFY(QTest::qWaitFor([&] { return window.desktopContactsRead(); }));
        QVERIFY(window.addFiles(m_files));
    }

private Q_SLOTS:
    void initTestCase();
    void listed();
    void importTicked_data();
    void importTicked();
    void cancelStoresNothing();
};

void tst_ImportAddressBookWindow::initTestCase()
{
    // No desktop contacts service: only the files' people are listed.
    qunsetenv("DBUS_SESSION_BUS_ADDRESS");
    QVERIFY(m_dir.isValid());
    int n = 0;
    for (const char* card : {companyCard, personCard, foldedCard}) {
        m_files << m_dir.filePath(s("card%1.vcf").arg(++n));
        QFile file(m_files.last());
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(card);
    }
}

void tst_ImportAddressBookWindow::listed()
{
    UiCompany company;
    ImportAddressBookWindow window(company.store(), company.prompter());
    open(window);
    // Adding a file again lists nobody twice.
    QVERIFY(window.addFiles({m_files.first()}));

    QStringList rows;
    for (int row = 0; row < table(window)->rowCount(); ++row) {
        QStringList cells;
        for (int column = 0; column < 4; ++column)
            cells << table(window)->item(row, column)->text();
        rows << cells.join(s(" | ")) +
                    (table(window)->item(row, 0)->checkState() == Qt::Checked ? s(" (ticked)") : QString());
    }
    QCOMPARE(rows,
             (QStringList{s("Nordwind GmbH | Nordwind GmbH | info@nordwind.de | +49 30 1234 (ticked)"),
                          s("Ann Lee |  | ann@lee.example |  (ticked)"),
                          s("J\u00fcrgen Hoffmann | B\u00e4ckerei Sch\u00f6nberg |  | 0431 5566 (ticked)")}));
    QVERIFY(window.findChild<QLabel*>(s("desktopHint"))->text().startsWith(s("No contacts were found")));
    QVERIFY(company.prompter().questions().isEmpty());

    // A file without a card is told, by its own message.
    QFile empty(m_dir.filePath(s("empty.vcf")));
    QVERIFY(empty.open(QIODevice::WriteOnly));
    empty.close();
    QVERIFY(!window.addFiles({empty.fileName()}));
    QCOMPARE(company.prompter().titles(), QStringList{s("Some files could not be read")});
    QCOMPARE(table(window)->rowCount(), 3);
}

void tst_ImportAddressBookWindow::importTicked_data()
{
    QTest::addColumn<QString>("untick");
    QTest::addColumn<QString>("search");
    QTest::addColumn<QStringList>("clients");

    const QString nordwind = s("Nordwind GmbH | 0 | Company");
    const QString ann = s("Ann Lee | 2 | Individual");
    const QString juergen = s("J\u00fcrgen Hoffmann | 2 | Individual");
    QTest::newRow("everyone") << QString() << QString() << QStringList{ann, juergen, nordwind};
    QTest::newRow("the person unticked") << s("Ann Lee") << QString() << QStringList{juergen, nordwind};
    QTest::newRow("Select None on a search") << QString() << s("NORD") << QStringList{ann, juergen};
}

void tst_ImportAddressBookWindow::importTicked()
{
    QFETCH(QString, untick);
    QFETCH(QString, search);
    QFETCH(QStringList, clients);
    UiCompany company;
    QPointer window = new ImportAddressBookWindow(company.store(), company.prompter());
    open(*window);
    window->show();
    if (!untick.isEmpty())
        table(*window)->item(rowNamed(*window, untick), 0)->setCheckState(Qt::Unchecked);
    if (!search.isEmpty()) {
        QTest::keyClicks(window->findChild<QLineEdit*>(s("searchEdit")), search);
        QTest::mouseClick(window->findChild<QPushButton*>(s("selectNoneButton")), Qt::LeftButton);
        window->findChild<QLineEdit*>(s("searchEdit"))->clear();
    }

    QTest::mouseClick(window->findChild<QPushButton*>(s("importButton")), Qt::LeftButton);

    QCOMPARE(storedClients(company.store()), clients);
    QCOMPARE(company.prompter().titles(), QStringList{s("Import Address Book")});
    QCOMPARE(company.prompter().questions().first().text,
             s("%1 clients successfully added.").arg(clients.size()));
    QVERIFY(!window || !window->isVisible());
    delete window;
}

void tst_ImportAddressBookWindow::cancelStoresNothing()
{
    UiCompany company;
    ImportAddressBookWindow window(company.store(), company.prompter());
    open(window);
    window.show();
    window.setProgressDelay(std::chrono::milliseconds(0));
    // Cancel is pressed as soon as the progress dialog lets the events through.
    QTimer cancel;
    connect(&cancel, &QTimer::timeout, &window, [&] {
        if (auto* progress = window.findChild<QProgressDialog*>(s("importProgress"))) {
            progress->cancel();
            cancel.stop();
        }
    });
    cancel.start(0);

    QVERIFY(!window.import());

    QVERIFY(!cancel.isActive());
    QCOMPARE(storedClients(company.store()), QStringList());
    QVERIFY(company.prompter().questions().isEmpty());
    QVERIFY(window.isVisible());
}

CORVANTA_UI_TEST_MAIN(tst_ImportAddressBookWindow)

#include "tst_importaddressbookwindow.moc"
