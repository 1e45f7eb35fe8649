#pragma once

namespace corvanta::store {
class Store;
}

namespace corvanta::uipictures {

// The company record window and the preferences, on a company filled as a user fills it.
void takeCompanyPictures(store::Store& store);

} // namespace corvanta::uipictures
