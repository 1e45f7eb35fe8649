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
using namespace corvanta::ui::testing;
using ui::ImportAddressBookWindow;

namespace {

// A company shown as one, a person, and a person with accents whose organisation is folded.
const char* const cards[] = {
    "BEGIN:VCARD\r\nVERSION:3.0\r\nUID:c-1\r\nN:;;;;\r\nORG:Nordwind GmbH\r\nX-ABShowAs:COMPANY\r\n"
    "TEL;TYPE=WORK:+49 30 1234\r\nEMAIL:info@nordwind.de\r\nEND:VCARD\r\n",
    "BEGIN:VCARD\r\nVERSION:4.0\r\nUID:p-1\r\nFN:Ann Lee\r\nN:Lee;Ann;;;\r\n"
    "EMAIL:ann@lee.example\r\nEND:VCARD\r\n",
    "BEGIN:VCARD\r\nVERSION:3.0\r\nUID:p-2\r\nN:Hoffmann;J\xc3\xbcrgen;;;\r\n"
    "ORG:B\xc3\xa4\x63kerei Sch\r\n \xc3\xb6nberg\r\nTEL:0431 5566\r\nEND:VCARD\r\n"};

// The stored clients' names, sorted.
QStringList storedClients(store::Store& store)
{
    const auto context = store.newContext();
    QStringList result;
    for (const store::Record* client : context->fetch(store::FetchRequest(s("Clients"))))
        result << client->value(s("full_name")).toString();
    result.sort();
    return result;
}

} // namespace

class tst_ImportAddressBookWindow : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_dir;
    QStringList m_files;
    std::unique_ptr<UiCompany> m_company;
    QPointer<ImportAddressBookWindow> m_window;

    QTableWidget* table() { return m_window->findChild<QTableWidget*>(s("peopleTable")); }

private Q_SLOTS:
    void initTestCase()
    {
        // No desktop contacts service: only the files' people are listed.
        qunsetenv("DBUS_SESSION_BUS_ADDRESS");
        for (const char* card : cards) {
            m_files << m_dir.filePath(s("card%1.vcf").arg(m_files.size()));
            QFile file(m_files.last());
            QVERIFY(file.open(QIODevice::WriteOnly) && file.write(card) > 0);
        }
    }
    // A window listing the three cards, once this computer's contacts were looked for.
    void init()
    {
        m_company = std::make_unique<UiCompany>();
        m_window = new ImportAddressBookWindow(m_company->store(), m_company->prompter());
        m_window->show();
        QVERIFY(QTest::qWaitFor([&] { return m_window->desktopContactsRead(); }));
        QVERIFY(m_window->addFiles(m_files));
    }
    void cleanup()
    {
        delete m_window;
        m_company.reset();
    }

    void listed()
    {
        // Adding a file again lists nobody twice.
        QVERIFY(m_window->addFiles({m_files.first()}));
        QStringList rows;
        for (int row = 0; row < table()->rowCount(); ++row) {
            QStringList cells;
            for (int column = 0; column < 4; ++column)
                cells << table()->item(row, column)->text();
            rows << cells.join(s(" | ")) +
                        (table()->item(row, 0)->checkState() == Qt::Checked ? s(" (ticked)") : QString());
        }
        QCOMPARE(
            rows,
            (QStringList{s("Nordwind GmbH | Nordwind GmbH | info@nordwind.de | +49 30 1234 (ticked)"),
                         s("Ann Lee |  | ann@lee.example |  (ticked)"),
                         s("J\u00fcrgen Hoffmann | B\u00e4ckerei Sch\u00f6nberg |  | 0431 5566 (ticked)")}));
        QVERIFY(
            m_window->findChild<QLabel*>(s("desktopHint"))->text().startsWith(s("No contacts were found")));
        QVERIFY(m_company->prompter().questions().isEmpty());
        // A file without a card is told.
        const QString empty = m_dir.filePath(s("empty.vcf"));
        QVERIFY(QFile(empty).open(QIODevice::WriteOnly));
        QVERIFY(!m_window->addFiles({empty}));
        QCOMPARE(m_company->prompter().titles(), QStringList{s("Some files could not be read")});
        QCOMPARE(table()->rowCount(), 3);
    }

    void importTicked_data()
    {
        QTest::addColumn<QString>("untick");
        QTest::addColumn<QString>("search");
        QTest::addColumn<QStringList>("clients");
        const QString nordwind = s("Nordwind GmbH"), ann = s("Ann Lee"), juergen = s("J\u00fcrgen Hoffmann");
        QTest::newRow("the person unticked") << s("Ann Lee") << QString() << QStringList{juergen, nordwind};
        QTest::newRow("Select None on a search") << QString() << s("NORD") << QStringList{ann, juergen};
    }

    void importTicked()
    {
        QFETCH(QString, untick);
        QFETCH(QString, search);
        QFETCH(QStringList, clients);
        if (!untick.isEmpty())
            table()->findItems(untick, Qt::MatchExactly).constFirst()->setCheckState(Qt::Unchecked);
        if (!search.isEmpty()) {
            QTest::keyClicks(m_window->findChild<QLineEdit*>(s("searchEdit")), search);
            QTest::mouseClick(m_window->findChild<QPushButton*>(s("selectNoneButton")), Qt::LeftButton);
            m_window->findChild<QLineEdit*>(s("searchEdit"))->clear();
        }
        QTest::mouseClick(m_window->findChild<QPushButton*>(s("importButton")), Qt::LeftButton);
        QCOMPARE(storedClients(m_company->store()), clients);
        QCOMPARE(m_company->prompter().titles(), QStringList{s("Import Address Book")});
        QCOMPARE(m_company->prompter().questions().first().text,
                 s("%1 clients successfully added.").arg(clients.size()));
        QVERIFY(!m_window || !m_window->isVisible());
    }

    void cancelStoresNothing()
    {
        m_window->setProgressDelay(std::chrono::milliseconds(0));
        // Cancel is pressed as soon as the progress dialog lets the events through.
        QTimer cancel;
        connect(&cancel, &QTimer::timeout, m_window, [&] {
            if (auto* progress = m_window->findChild<QProgressDialog*>(s("importProgress"))) {
                // The window stays while its import runs; Cancel stops it.
                QVERIFY(!m_window->close());
                progress->cancel();
                cancel.stop();
            }
        });
        cancel.start(0);
        QVERIFY(!m_window->import());
        QVERIFY(!cancel.isActive());
        QCOMPARE(storedClients(m_company->store()), QStringList());
        QVERIFY(m_company->prompter().questions().isEmpty());
        QVERIFY(m_window->isVisible());
    }
};

CORVANTA_UI_TEST_MAIN(tst_ImportAddressBookWindow)
#include "tst_importaddressbookwindow.moc"
