#pragma once

namespace corvanta::model {
class Store;
}

namespace corvanta::documents {

// Gives the store the record classes of this library (DocumentRows rows that compute their
// amounts). Called once after a store is opened, before any of its records is read.
void registerRecordClasses(model::Store& store);

} // namespace corvanta::documents
