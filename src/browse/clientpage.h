#pragma once

#include "browse/detailpage.h"

namespace corvanta::browse {

// A client's detail page: name, tags, rating stars and status images, its properties, the
// groups of e-mails, phones, addresses and contacts (each hidden when empty) and its history.
class ClientPage
{
    Q_DECLARE_TR_FUNCTIONS(ClientPage)

public:
    static DetailPage fill(store::Record* client, int eventsFilter = -1, int eventsCount = 0);

    // Five stars, full up to `rating` and empty after it, each storing its number when clicked.
    static QString ratingStars(qint64 rating);
    // The three status images (lost 0, possible 1, available 2), the chosen one selected.
    static QString statusImages(qint64 status);
    // Each address of a "," separated list as a link that hands it to the mail program.
    static QString emailLinks(const QString& emails);
    // The numbers of a "," separated list, each followed by two blanks.
    static QString phoneNumbers(const QString& phones);
};

} // namespace corvanta::browse
