#pragma once

#include "addressbookperson.h"

#include <QByteArray>
#include <QCoreApplication>
#include <optional>

namespace corvanta::exchange {

// Reads the persons of vCard files (versions 2.1, 3.0 and 4.0) with libebook-contacts' parser.
// A file may hold many cards, one after another.
class VCardReader
{
    Q_DECLARE_TR_FUNCTIONS(VCardReader)

public:
    // The cards of a file's bytes (UTF-8, or UTF-16 with a byte order mark), each from its
    // BEGIN:VCARD line to its END:VCARD line, in UTF-8 with LF line ends. Cards nested in a card (2.1 AGENT)
    // are left out of it; a card that the file cuts off is closed at its end. Continuations of folded and
    // quoted-printable lines are never taken for the start or end of a card. Lines that name no property are
    // left out.
    static QList<QByteArray> splitCards(const QByteArray& data);
    // The person of one card; nothing for a group card, or when the card names no one and
    // holds no phone, e-mail or address.
    static std::optional<AddressBookPerson> readCard(const QByteArray& card);
    // The persons of every card, in the file's order.
    static QList<AddressBookPerson> read(const QByteArray& data);
    // The persons of a file; false with a message in `error` when the file cannot be read or
    // holds no card.
    static bool readFile(const QString& path, QList<AddressBookPerson>* persons, QString* error);
};

} // namespace corvanta::exchange
