#pragma once

#include "addressbookperson.h"

#include <QCoreApplication>
#include <chrono>

namespace corvanta::exchange {

// The address books of the desktop's own contacts service (evolution-data-server, reached over
// the session bus), where the user has one: listing them and reading their contacts. Every call
// gives up after the timeout; without a session bus or without the service the lists are empty
// and `reason` says why.
class DesktopAddressBooks
{
    Q_DECLARE_TR_FUNCTIONS(DesktopAddressBooks)

public:
    struct Book
    {
        QString uid;
        QString name;
    };

    explicit DesktopAddressBooks(std::chrono::milliseconds timeout = std::chrono::seconds(5));

    // The enabled address books, by name.
    QList<Book> books(QString* reason) const;
    // The persons of the book whose uid or name is `key`, in the book's order.
    QList<AddressBookPerson> persons(const QString& key, QString* reason) const;

private:
    std::chrono::milliseconds m_timeout;
};

} // namespace corvanta::exchange
