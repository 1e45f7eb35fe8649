#pragma once

#include "addressbookperson.h"

#include <libebook-contacts/libebook-contacts.h>

namespace corvanta::exchange {

// Reads the fields of an address-book person from a parsed contact, walking its properties in
// their order: UID, KIND (4.0) and X-ABShowAs for a company, ORG, N (FN when N names no one),
// every TEL, EMAIL and ADR, the empty ones left out.
class ContactPerson
{
public:
    static AddressBookPerson fromContact(EContact* contact);

    // The identifier of an entry without a UID: a name-based UUID of its fields, so that the
    // same entry imported again is recognised, in the canonical form of the store's identifiers.
    static QString derivedUid(const AddressBookPerson& person);
    // Whether the entry is a group of other entries (KIND:group, an Apple or Evolution contact
    // list) rather than someone to become a client.
    static bool isGroup(EContact* contact);
    // Whether the entry holds nothing a client could be made from.
    static bool isEmpty(const AddressBookPerson& person);
};

} // namespace corvanta::exchange
