#pragma once

#include "addressbookperson.h"
#include "importprogress.h"

#include <QCoreApplication>
#include <optional>

namespace corvanta::store {
class Store;
}
namespace corvanta::support {
class Prompter;
}

namespace corvanta::exchange {

// Turns address-book persons into clients: each one whose unique identifier no client carries
// yet becomes a company (type 0, the "Company" tag) or a person (type 2, the "Individual" tag)
// with its phones, e-mails and postal addresses, the first address the default one.
class AddressBookImport
{
    Q_DECLARE_TR_FUNCTIONS(AddressBookImport)

public:
    AddressBookImport(store::Store& store, support::Prompter& prompter);

    // Adds the clients in one save and reports "Import Address Book" with their number. A
    // person listed twice is added once. The number added; nothing when the database refused
    // the save, which the user is told, or when `progress`, told after each person, cancelled:
    // then nothing is stored and nothing reported.
    std::optional<int> importPersons(const QList<AddressBookPerson>& persons,
                                     const ImportProgress& progress = {});

    // A company's name: its organisation, or when that is empty the first and the last name
    // joined by a blank (just the one that is there when the other is missing).
    static QString companyName(const AddressBookPerson& person);

private:
    store::Store& m_store;
    support::Prompter& m_prompter;
};

} // namespace corvanta::exchange
