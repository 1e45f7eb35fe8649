#pragma once

namespace corvanta::store {
class Store;
}

namespace corvanta::uipictures {

// The template library window on the company `store` holds: its templates with an invoice
// template previewed, and its duplicate menu open on the "Duplicate As" types.
void takeLibraryPictures(store::Store& store);

} // namespace corvanta::uipictures
