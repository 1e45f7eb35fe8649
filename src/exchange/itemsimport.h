#pragma once

#include "importprogress.h"
#include "predicate/recordref.h"

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

// Makes one item of every row of an import file whose first column is not the name of an
// existing item, and stores them all in one save.
class ItemsImport
{
    Q_DECLARE_TR_FUNCTIONS(ItemsImport)

public:
    struct Options
    {
        // The fields the columns go to, in column order (the ticked fields of the compose pop-up).
        QStringList columnKeys;
        // The position on the item-type pop-up, stored as the items' `type`: 0 service, 1 product.
        int itemType = 1;
        // The position on the tag pop-up: the item kind tag of that subtype.
        int tag = 1;
        // The `Taxes` and `Units` records every new item gets; the company's defaults when null.
        predicate::RecordRef tax;
        predicate::RecordRef unit;
    };

    ItemsImport(store::Store& store, support::Prompter& prompter);

    // Imports the rows and reports how many items were added ("Import Items"). Nothing when the
    // import was cancelled or the database refused the save (the user was told why); then nothing
    // is stored.
    std::optional<int> run(const QList<QStringList>& rows, const Options& options,
                           const ImportProgress& progress = {});

private:
    store::Store& m_store;
    support::Prompter& m_prompter;
};

} // namespace corvanta::exchange
