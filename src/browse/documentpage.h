#pragma once

#include "browse/detailpage.h"

namespace corvanta::browse {

// A document's detail page: number, tags, dates and client, its rows with their amounts, and
// for an invoice the paid and unpaid parts of its total with its payment state.
class DocumentPage
{
    Q_DECLARE_TR_FUNCTIONS(DocumentPage)

public:
    static DetailPage fill(store::Record* document);

    // The pie's call: "addPieValues([paid, unpaid], [labels])", the values written "%f, %f".
    static QString pieValues(double paid, double unpaid);
    // The payment state in green when the invoice is paid, otherwise in red.
    static QString paymentState(bool paid);
};

} // namespace corvanta::browse
