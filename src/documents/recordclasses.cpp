#include "recordclasses.h"

#include "documentrowsrecord.h"
#include "model/store.h"

namespace corvanta::documents {

void registerRecordClasses(model::Store& store)
{
    store.registerRecordClass(QStringLiteral("DocumentRows"), [](const model::Record::Init& init) {
        return std::make_unique<DocumentRowsRecord>(init);
    });
}

} // namespace corvanta::documents
