#pragma once

#include <QList>
#include <QString>
#include <QStringList>

namespace corvanta::exchange {

// One entry of an address book (a vCard, or a contact of the desktop's address books) with the
// fields a client is made from.
struct AddressBookPerson
{
    struct PostalAddress
    {
        QString street; // the street, then the extended address and the post-office box, a line each
        QString city;
        QString state;
        QString zipCode;
        QString country;

        bool operator==(const PostalAddress&) const = default;
    };

    // The entry's unique identifier: it becomes the client's `identifier`, by which a second
    // import recognises an entry it added before.
    QString uid;
    bool company = false; // the entry shows as a company rather than a person
    QString organization;
    QString firstName;
    QString lastName;
    QStringList phones; // in the entry's order
    QStringList emails;
    QList<PostalAddress> addresses;

    bool operator==(const AddressBookPerson&) const = default;
};

} // namespace corvanta::exchange
