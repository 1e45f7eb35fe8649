#include "importaddressbookwindow.h"

#include "app/commandrules.h"
#include "exchange/addressbookimport.h"
#include "exchange/desktopaddressbooks.h"
#include "exchange/vcardreader.h"
#include "mainwindow.h"
#include "support/prompter.h"
#include "windowplacement.h"

#include <QCloseEvent>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QProgressDialog>
#include <QPushButton>
#include <QScopedValueRollback>
#include <QSet>
#include <QTableWidget>
#include <QThread>
#include <QVBoxLayout>
#include <memory>

namespace corvanta::ui {

using exchange::AddressBookPerson;

namespace {

QString s(const char* text)
{
    return QString::fromLatin1(text);
}

enum Column { NameColumn, OrganizationColumn, EmailColumn, PhoneColumn, SourceColumn, ColumnCount };

// How long the desktop's contacts service may take to answer each call.
constexpr std::chrono::seconds kDesktopTimeout(5);

// The name a person is listed under: a company's name, or the first and the last name.
QString displayName(const AddressBookPerson& person)
{
    if (person.company)
        return exchange::AddressBookImport::companyName(person);
    return QStringList{person.firstName, person.lastName}.join(QLatin1Char(' ')).trimmed();
}

QTableWidgetItem* readOnlyItem(const QString& text)
{
    auto* item = new QTableWidgetItem(text);
    item->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable);
    item->setToolTip(text);
    return item;
}

} // namespace

ImportAddressBookWindow::ImportAddressBookWindow(store::Store& store, support::Prompter& prompter,
                                                 QWidget* parent)
    : QWidget(parent, Qt::Window)
    , m_store(store)
    , m_prompter(prompter)
{
    setObjectName(s("ImportAddressBookWindow"));
    setAttribute(Qt::WA_DeleteOnClose);
    setProperty(MainWindow::windowKindProperty(), int(app::WindowKind::Other));
    setWindowTitle(tr("Import Address Book"));
    setWindowIcon(QIcon::fromTheme(s("x-office-address-book")));

    m_desktopHint = new QLabel(tr("Looking for contacts on this computer…"), this);
    m_desktopHint->setObjectName(s("desktopHint"));
    m_desktopHint->setWordWrap(true);
    m_addFilesButton = new QPushButton(QIcon::fromTheme(s("document-open")), tr("&Add vCard Files…"), this);
    m_addFilesButton->setObjectName(s("addFilesButton"));
    auto* top = new QHBoxLayout;
    top->addWidget(m_desktopHint, 1);
    top->addWidget(m_addFilesButton);

    m_searchEdit = new QLineEdit(this);
    m_searchEdit->setObjectName(s("searchEdit"));
    m_searchEdit->setPlaceholderText(tr("Name"));
    m_searchEdit->setClearButtonEnabled(true);
    auto* searchLabel = new QLabel(tr("&Search:"), this);
    searchLabel->setBuddy(m_searchEdit);
    auto* search = new QHBoxLayout;
    search->addWidget(searchLabel);
    search->addWidget(m_searchEdit, 1);

    m_table = new QTableWidget(0, ColumnCount, this);
    m_table->setObjectName(s("peopleTable"));
    m_table->setHorizontalHeaderLabels(
        {tr("Name"), tr("Organization"), tr("E-mail"), tr("Phone"), tr("From")});
    m_table->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_table->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_table->setWordWrap(false);
    m_table->setTabKeyNavigation(false);
    m_table->verticalHeader()->hide();
    // Rows as high as a line of text with its margins, not the style's roomy default.
    m_table->verticalHeader()->setDefaultSectionSize(m_table->fontMetrics().lineSpacing() + 10);
    m_table->horizontalHeader()->setStretchLastSection(true);
    m_table->setSortingEnabled(false);

    m_selectAllButton = new QPushButton(tr("Select A&ll"), this);
    m_selectAllButton->setObjectName(s("selectAllButton"));
    m_selectNoneButton = new QPushButton(tr("Select N&one"), this);
    m_selectNoneButton->setObjectName(s("selectNoneButton"));
    m_countLabel = new QLabel(this);
    m_countLabel->setObjectName(s("countLabel"));
    m_cancelButton = new QPushButton(tr("Cancel"), this);
    m_cancelButton->setObjectName(s("cancelButton"));
    m_importButton = new QPushButton(tr("&Import"), this);
    m_importButton->setObjectName(s("importButton"));
    m_importButton->setDefault(true);
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(m_selectAllButton);
    buttons->addWidget(m_selectNoneButton);
    buttons->addWidget(m_countLabel, 1);
    buttons->addWidget(m_cancelButton);
    buttons->addWidget(m_importButton);

    auto* layout = new QVBoxLayout(this);
    layout->addLayout(top);
    layout->addLayout(search);
    layout->addWidget(m_table, 1);
    layout->addLayout(buttons);

    connect(m_addFilesButton, &QPushButton::clicked, this, &ImportAddressBookWindow::chooseFiles);
    connect(m_searchEdit, &QLineEdit::textChanged, this, &ImportAddressBookWindow::filter);
    connect(m_selectAllButton, &QPushButton::clicked, this, &ImportAddressBookWindow::selectAll);
    connect(m_selectNoneButton, &QPushButton::clicked, this, &ImportAddressBookWindow::selectNone);
    connect(m_cancelButton, &QPushButton::clicked, this, &QWidget::close);
    connect(m_importButton, &QPushButton::clicked, this, &ImportAddressBookWindow::import);
    connect(m_table, &QTableWidget::itemChanged, this, &ImportAddressBookWindow::updateState);

    updateState();
    if (!WindowPlacement::restore(this))
        resize(fontMetrics().averageCharWidth() * 150, fontMetrics().lineSpacing() * 30);
    readDesktopContacts();
}

void ImportAddressBookWindow::readDesktopContacts()
{
    // The contacts service may take seconds to start: it is asked on a thread of its own, and
    // its answer reaches the window only if the window is still there.
    auto found = std::make_shared<Found>();
    m_reader = QThread::create([found] {
        const exchange::DesktopAddressBooks books(kDesktopTimeout);
        for (const exchange::DesktopAddressBooks::Book& book : books.books(&found->reason)) {
            QString reason;
            const QList<AddressBookPerson> persons = books.persons(book.uid, &reason);
            found->persons += persons;
            if (persons.isEmpty() && !reason.isEmpty())
                found->reason = reason;
        }
    });
    m_reader->setParent(this);
    connect(m_reader, &QThread::finished, this, [this, found] { desktopContactsArrived(*found); });
    m_reader->start();
}

ImportAddressBookWindow::~ImportAddressBookWindow()
{
    // A reader still waiting for the contacts service is not waited for: it goes by itself
    // when it is done, and its answer with it.
    if (m_reader && !m_reader->wait(QDeadlineTimer(0))) {
        disconnect(m_reader, nullptr, this, nullptr);
        m_reader->setParent(nullptr);
        connect(m_reader, &QThread::finished, m_reader, &QObject::deleteLater);
        if (m_reader->isFinished()) // done while it was let go
            m_reader->deleteLater();
    }
}

void ImportAddressBookWindow::desktopContactsArrived(const Found& found)
{
    const int listed = addPersons(found.persons, tr("This computer"), false);
    if (found.persons.isEmpty()) {
        m_desktopHint->setText(tr("No contacts were found on this computer. Add vCard files exported "
                                  "from your address book."));
        m_desktopHint->setToolTip(found.reason);
    } else {
        m_desktopHint->setText(
            tr("%n contact(s) found on this computer. Tick the people to add as clients.", nullptr, listed));
        m_desktopHint->setToolTip(QString());
    }
    m_desktopRead = true;
    Q_EMIT desktopContactsLoaded();
}

void ImportAddressBookWindow::chooseFiles()
{
    const QStringList files = QFileDialog::getOpenFileNames(this, tr("Add vCard Files"), QDir::homePath(),
                                                            tr("vCard files (*.vcf *.vcard);;All files (*)"));
    if (!files.isEmpty())
        addFiles(files);
}

bool ImportAddressBookWindow::addFiles(const QStringList& vcardFiles)
{
    QStringList errors;
    for (const QString& path : vcardFiles) {
        QList<AddressBookPerson> persons;
        QString error;
        if (exchange::VCardReader::readFile(path, &persons, &error))
            addPersons(persons, QFileInfo(path).fileName(), true);
        else
            errors << error;
    }
    if (!errors.isEmpty())
        m_prompter.alert(tr("Some files could not be read"), errors.join(QLatin1Char('\n')), {tr("OK")});
    return errors.isEmpty();
}

int ImportAddressBookWindow::addPersons(const QList<AddressBookPerson>& persons, const QString& source,
                                        bool ticked)
{
    QSet<QString> listed;
    for (const AddressBookPerson& person : std::as_const(m_persons))
        listed.insert(person.uid);
    const QSignalBlocker blocker(m_table);
    int added = 0;
    for (const AddressBookPerson& person : persons) {
        if (listed.contains(person.uid))
            continue;
        listed.insert(person.uid);
        const int row = m_table->rowCount();
        m_table->insertRow(row);
        QTableWidgetItem* name = readOnlyItem(displayName(person));
        name->setFlags(name->flags() | Qt::ItemIsUserCheckable);
        name->setCheckState(ticked ? Qt::Checked : Qt::Unchecked);
        m_table->setItem(row, NameColumn, name);
        m_table->setItem(row, OrganizationColumn, readOnlyItem(person.organization));
        m_table->setItem(row, EmailColumn, readOnlyItem(person.emails.value(0)));
        m_table->setItem(row, PhoneColumn, readOnlyItem(person.phones.value(0)));
        m_table->setItem(row, SourceColumn, readOnlyItem(source));
        m_persons << person;
        ++added;
    }
    m_table->resizeColumnsToContents();
    // Sized to its contents the last column no longer fills the rest of the row: it is told again.
    m_table->horizontalHeader()->setStretchLastSection(false);
    m_table->horizontalHeader()->setStretchLastSection(true);
    filter(m_searchEdit->text());
    updateState();
    return added;
}

QList<AddressBookPerson> ImportAddressBookWindow::tickedPersons() const
{
    QList<AddressBookPerson> ticked;
    for (int row = 0; row < m_table->rowCount(); ++row) {
        if (m_table->item(row, NameColumn)->checkState() == Qt::Checked)
            ticked << m_persons.at(row);
    }
    return ticked;
}

void ImportAddressBookWindow::selectAll()
{
    setTicks(true);
}

void ImportAddressBookWindow::selectNone()
{
    setTicks(false);
}

void ImportAddressBookWindow::setTicks(bool ticked)
{
    // Only the people the search shows: a search narrows what the buttons act on.
    const QSignalBlocker blocker(m_table);
    for (int row = 0; row < m_table->rowCount(); ++row) {
        if (!m_table->isRowHidden(row))
            m_table->item(row, NameColumn)->setCheckState(ticked ? Qt::Checked : Qt::Unchecked);
    }
    updateState();
}

void ImportAddressBookWindow::filter(const QString& text)
{
    const QString wanted = text.trimmed();
    for (int row = 0; row < m_table->rowCount(); ++row) {
        const QString name = m_table->item(row, NameColumn)->text();
        m_table->setRowHidden(row, !name.contains(wanted, Qt::CaseInsensitive));
    }
}

void ImportAddressBookWindow::updateState()
{
    const qsizetype ticked = tickedPersons().size();
    m_countLabel->setText(tr("%1 of %n people ticked", nullptr, m_table->rowCount()).arg(ticked));
    m_importButton->setEnabled(ticked > 0);
    m_selectAllButton->setEnabled(m_table->rowCount() > 0);
    m_selectNoneButton->setEnabled(m_table->rowCount() > 0);
}

bool ImportAddressBookWindow::import()
{
    const QList<AddressBookPerson> persons = tickedPersons();
    if (persons.isEmpty())
        return false;
    QProgressDialog progress(tr("Adding the ticked people as clients…"), tr("Cancel"), 0, int(persons.size()),
                             this);
    progress.setObjectName(s("importProgress"));
    progress.setWindowModality(Qt::WindowModal);
    progress.setMinimumDuration(int(m_progressDelay.count()));
    // Reaching the end must not forget a cancel given at the last person.
    progress.setAutoReset(false);
    progress.setAutoClose(false);
    exchange::AddressBookImport addressBookImport(m_store, m_prompter);
    const std::optional<int> added = [&] {
        QScopedValueRollback importing(m_importing, true);
        return addressBookImport.importPersons(persons, [&progress](qsizetype done, qsizetype) {
            progress.setValue(int(done));
            return !progress.wasCanceled();
        });
    }();
    progress.hide();
    if (!added)
        return false;
    close();
    return true;
}

void ImportAddressBookWindow::closeEvent(QCloseEvent* event)
{
    // The import runs inside this window's progress dialog: the window stays until it is over
    // (its Cancel stops it).
    if (m_importing) {
        event->ignore();
        return;
    }
    WindowPlacement::save(this);
    QWidget::closeEvent(event);
}

} // namespace corvanta::ui
