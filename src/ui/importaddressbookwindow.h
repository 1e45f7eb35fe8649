#pragma once

#include "exchange/addressbookperson.h"

#include <QWidget>
#include <chrono>

class QLabel;
class QLineEdit;
class QPushButton;
class QTableWidget;
class QTableWidgetItem;
class QThread;

namespace corvanta::store {
class Store;
}
namespace corvanta::support {
class Prompter;
}

namespace corvanta::ui {

// The window in which people of address books are picked to become clients: the contacts of
// this computer's address books, read in the background as the window opens, and those of the
// vCard files the user adds, each with a tick; a search by name; "Import" adds the ticked ones
// with a progress dialog whose Cancel stores nothing.
class ImportAddressBookWindow : public QWidget
{
    Q_OBJECT

public:
    ImportAddressBookWindow(store::Store& store, support::Prompter& prompter, QWidget* parent = nullptr);
    ~ImportAddressBookWindow() override;

    // Lists the people of the files, ticked; people listed already are left out. False when a
    // file could not be read, which the user is told (the others are listed all the same).
    bool addFiles(const QStringList& vcardFiles);
    // The people listed and ticked.
    QList<exchange::AddressBookPerson> tickedPersons() const;
    // Whether the contacts of this computer's address books have been looked for.
    bool desktopContactsRead() const { return m_desktopRead; }
    // How long an import runs before its progress dialog shows (half a second unless changed).
    void setProgressDelay(std::chrono::milliseconds delay) { m_progressDelay = delay; }

public Q_SLOTS:
    // Asks for vCard files and lists their people.
    void chooseFiles();
    void selectAll();
    void selectNone();
    // Adds the ticked people as clients and closes the window; a cancel keeps it open.
    bool import();

Q_SIGNALS:
    void desktopContactsLoaded();

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    struct Found
    {
        QList<exchange::AddressBookPerson> persons;
        QString reason;
    };

    void readDesktopContacts();
    void desktopContactsArrived(const Found& found);
    // Lists the people not listed yet, ticked or not; the number listed.
    int addPersons(const QList<exchange::AddressBookPerson>& persons, const QString& source, bool ticked);
    void setTicks(bool ticked);
    void filter(const QString& text);
    void updateState();

    store::Store& m_store;
    support::Prompter& m_prompter;
    QList<exchange::AddressBookPerson> m_persons; // a row each, in the table's order
    bool m_desktopRead = false;
    // An import is running in this window's progress dialog.
    bool m_importing = false;
    QThread* m_reader = nullptr; // reads this computer's contacts
    std::chrono::milliseconds m_progressDelay{500};

    QLabel* m_desktopHint = nullptr;
    QPushButton* m_addFilesButton = nullptr;
    QLineEdit* m_searchEdit = nullptr;
    QTableWidget* m_table = nullptr;
    QPushButton* m_selectAllButton = nullptr;
    QPushButton* m_selectNoneButton = nullptr;
    QLabel* m_countLabel = nullptr;
    QPushButton* m_cancelButton = nullptr;
    QPushButton* m_importButton = nullptr;
};

} // namespace corvanta::ui
