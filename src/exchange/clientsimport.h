#pragma once

#include "importprogress.h"

#include <QCoreApplication>
#include <QList>
#include <QStringList>
#include <optional>

namespace corvanta::store {
class Store;
}
namespace corvanta::support {
class Prompter;
}

namespace corvanta::exchange {

// Makes one client, with one address, of every row of an import file that does not name an
// existing client, and stores them all in one save.
class ClientsImport
{
    Q_DECLARE_TR_FUNCTIONS(ClientsImport)

public:
    struct Options
    {
        // The fields the columns go to, in column order (the ticked fields of the compose pop-up).
        QStringList columnKeys;
        // The position on the client-type pop-up, stored as the clients' `type`: 0 company,
        // 1 individual named by its company name, 2 person named by first and last name.
        int clientType = 0;
        // The position on the tag pop-up: the client kind tag of that subtype.
        int tag = 0;
    };

    ClientsImport(store::Store& store, support::Prompter& prompter);

    // Imports the rows and reports how many clients were added ("Import Clients"). Nothing when
    // the import was cancelled or the database refused the save (the user was told why); then
    // nothing is stored.
    std::optional<int> run(const QList<QStringList>& rows, const Options& options,
                           const ImportProgress& progress = {});

private:
    store::Store& m_store;
    support::Prompter& m_prompter;
};

} // namespace corvanta::exchange
