#pragma once

namespace corvanta::store {
class Store;
}

namespace corvanta::uipictures {

// The reference list windows (taxes, currencies, due days, units) and the custom fields window
// on the company `store` holds, filled as a small business sets them up.
void takeReferenceListPictures(store::Store& store);

} // namespace corvanta::uipictures
