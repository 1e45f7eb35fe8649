#include "companydatabase.h"

#include "clientsrecord.h"
#include "companycache.h"
#include "corvantamodel.h"
#include "currenciesrecord.h"
#include "documentrowsrecord.h"
#include "store/store.h"
#include "todosrecord.h"

namespace corvanta::model {

std::unique_ptr<store::Store> CompanyDatabase::open(const QString& path, store::StoreError* error)
{
    std::unique_ptr<store::Store> store = store::Store::open(path, corvantaDataModel(), error);
    if (store)
        registerRecordClasses(*store);
    return store;
}

void CompanyDatabase::registerRecordClasses(store::Store& store)
{
    CompanyCache* settings = &CompanyCache::of(store);
    store.registerRecordClass(QStringLiteral("Clients"), [settings](const store::Record::Init& init) {
        return std::make_unique<ClientsRecord>(init, *settings);
    });
    store.registerRecordClass(QStringLiteral("Currencies"), [](const store::Record::Init& init) {
        return std::make_unique<CurrenciesRecord>(init);
    });
    store.registerRecordClass(QStringLiteral("DocumentRows"), [](const store::Record::Init& init) {
        return std::make_unique<DocumentRowsRecord>(init);
    });
    store.registerRecordClass(QStringLiteral("ToDos"), [](const store::Record::Init& init) {
        return std::make_unique<ToDosRecord>(init);
    });
}

} // namespace corvanta::model
