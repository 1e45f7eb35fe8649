// vCard files come from other programs and from anywhere the user found them. Any bytes must be
// read into persons, or into none, without a fault; every person read can be recognised again
// by its identifier, and reading is the same every time.
#include "exchange/vcardreader.h"

#include <cstdint>

using corvanta::exchange::AddressBookPerson;
using corvanta::exchange::VCardReader;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char*>(data), qsizetype(size));
    const QList<QByteArray> cards = VCardReader::splitCards(bytes);
    for (const QByteArray& card : cards) {
        if (!card.trimmed().toUpper().startsWith("BEGIN:VCARD"))
            qFatal("a card that does not begin with BEGIN:VCARD:\n%s", card.constData());
    }
    const QList<AddressBookPerson> persons = VCardReader::read(bytes);
    if (persons.size() > cards.size())
        qFatal("%lld persons read from %lld cards", qint64(persons.size()), qint64(cards.size()));
    for (const AddressBookPerson& person : persons) {
        if (person.uid.isEmpty())
            qFatal("a person read without an identifier");
    }
    if (VCardReader::read(bytes) != persons)
        qFatal("the same bytes read twice give other persons");
    return 0;
}
