#pragma once

namespace corvanta::store {
class Store;
}

namespace corvanta::uipictures {

// The CSV import windows for clients and items, each on a file as a user brings it in, and the
// compose pop-up open on the clients' fields.
void takeImportPictures(store::Store& store);

} // namespace corvanta::uipictures
