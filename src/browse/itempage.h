#pragma once

#include "browse/detailpage.h"

namespace corvanta::browse {

// An item's detail page: name, tags, code, kind, unit, tax, price fields and custom fields,
// the stock of a product with the link to its warehouse, and its history.
class ItemPage
{
    Q_DECLARE_TR_FUNCTIONS(ItemPage)

public:
    static DetailPage fill(store::Record* item, int eventsFilter = -1, int eventsCount = 0);
};

} // namespace corvanta::browse
