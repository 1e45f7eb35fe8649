#pragma once

#include "browse/detailpage.h"

namespace corvanta::browse {

// A to-do's detail page: title, tags, start and end (dates only for an all-day to-do), client,
// item, repetition and description, and the box that marks it done or pending.
class ToDoPage
{
    Q_DECLARE_TR_FUNCTIONS(ToDoPage)

public:
    static DetailPage fill(store::Record* todo);
};

} // namespace corvanta::browse
