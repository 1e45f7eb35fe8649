#pragma once

#include "store/storeerror.h"

#include <QString>
#include <memory>

namespace corvanta::store {
class Store;
}

namespace corvanta::model {

// The one way to open a company database: a store of this program's data model whose records
// have their record classes from the first read on (clients derive their names, currencies
// their samples, document rows their amounts). The desktop program, the command line, the
// benchmarks and the tests all open databases through it, so none can miss a class.
class CompanyDatabase
{
public:
    // Opens (creating when missing) and migrates the database at `path`; null with `error` set
    // when it cannot be opened. The default records of a new database are DefaultRecords' job.
    static std::unique_ptr<store::Store> open(const QString& path, store::StoreError* error = nullptr);

private:
    static void registerRecordClasses(store::Store& store);
};

} // namespace corvanta::model
