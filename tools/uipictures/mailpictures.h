#pragma once

namespace corvanta::store {
class Store;
}

namespace corvanta::uipictures {

// The e-mail templates window with its placeholder menu, and the address-book import window
// with a dozen people of vCard files, on a company filled as a user fills it.
void takeMailPictures(store::Store& store);

} // namespace corvanta::uipictures
