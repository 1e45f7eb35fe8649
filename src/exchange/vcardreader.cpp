#include "vcardreader.h"

#include "contactperson.h"
#include "exchangelog.h"

#include <QFile>
#include <QStringDecoder>
#include <algorithm>

namespace corvanta::exchange {

namespace {

bool isLine(const QByteArray& line, const char* text)
{
    return line.trimmed().compare(text, Qt::CaseInsensitive) == 0;
}

// Whether a line begins with a property's name ("TEL;TYPE=WORK:", "item1.EMAIL:"): letters,
// digits, "-" and "_", after a group's name and a dot. A line without one carries nothing, and
// libebook-contacts' parser does not free all it took of one.
bool namesProperty(const QByteArray& line)
{
    const qsizetype colon = line.indexOf(':');
    if (colon < 0)
        return false;
    QByteArray name = line.left(colon);
    if (const qsizetype semicolon = name.indexOf(';'); semicolon >= 0)
        name.truncate(semicolon);
    for (const QByteArray& part : name.split('.')) {
        const bool named = !part.isEmpty() && std::all_of(part.begin(), part.end(), [](char c) {
            return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '-' ||
                   c == '_';
        });
        if (!named)
            return false;
    }
    return true;
}

// A line of a property in quoted-printable whose value goes on in the next line (a soft break).
bool continuesQuotedPrintable(const QByteArray& line)
{
    const qsizetype colon = line.indexOf(':');
    return colon > 0 && line.left(colon).toUpper().contains("QUOTED-PRINTABLE") && line.endsWith('=');
}

// The file's text in UTF-8 without a byte order mark: some programs write vCards in UTF-16.
QByteArray withoutByteOrderMark(const QByteArray& data)
{
    if (data.startsWith("\xEF\xBB\xBF"))
        return data.mid(3);
    for (const auto encoding : {QStringConverter::Utf16LE, QStringConverter::Utf16BE}) {
        const QByteArray mark =
            encoding == QStringConverter::Utf16LE ? QByteArray("\xFF\xFE") : QByteArray("\xFE\xFF");
        if (data.startsWith(mark)) {
            QStringDecoder decoder(encoding, QStringConverter::Flag::Stateless);
            return QString(decoder.decode(data.mid(2))).toUtf8();
        }
    }
    return data;
}

} // namespace

QList<QByteArray> VCardReader::splitCards(const QByteArray& data)
{
    QByteArray text = withoutByteOrderMark(data);
    text.replace("\r\n", "\n");
    text.replace('\r', '\n');

    QList<QByteArray> cards;
    QByteArray card;
    int depth = 0;
    bool softBreak = false; // the previous line ended in a quoted-printable soft break
    for (const QByteArray& line : text.split('\n')) {
        if (depth > 0 && softBreak) {
            if (depth == 1)
                card += line + '\n';
            softBreak = line.endsWith('=');
            continue;
        }
        const bool folded = line.startsWith(' ') || line.startsWith('\t');
        // The card's own BEGIN and END lines are written plainly: a blank around them (a
        // vertical tab, say) would leave the parser a card it does not recognise.
        if (!folded && isLine(line, "BEGIN:VCARD")) {
            if (++depth == 1)
                card = "BEGIN:VCARD\n";
            softBreak = false;
            continue;
        }
        if (depth == 0)
            continue; // text between cards
        if (!folded && isLine(line, "END:VCARD")) {
            if (--depth == 0) {
                cards << card + "END:VCARD\n";
                card.clear();
            }
            softBreak = false;
            continue;
        }
        // A card inside a card (a 2.1 AGENT's) describes someone else: the parser would take
        // its properties for the outer card's, so it is left out.
        if (depth == 1 && (folded || namesProperty(line)))
            card += line + '\n';
        softBreak = !folded && continuesQuotedPrintable(line);
    }
    if (depth > 0) {
        qCWarning(lcExchange) << "a vCard is cut off at the end of the file; it is read as far as it goes";
        cards << card + "END:VCARD\n";
    }
    return cards;
}

std::optional<AddressBookPerson> VCardReader::readCard(const QByteArray& card)
{
    // vCard 3.0 and 4.0 are UTF-8; a 2.1 card written in an 8-bit character set without saying
    // so is taken as Latin-1 rather than losing its letters.
    const bool utf8Valid = QString::fromUtf8(card).toUtf8() == card;
    const QByteArray utf8 = utf8Valid ? card : QString::fromLatin1(card).toUtf8();
    EContact* contact = e_contact_new_from_vcard(utf8.constData());
    if (!contact)
        return std::nullopt;
    const bool group = ContactPerson::isGroup(contact);
    AddressBookPerson person = ContactPerson::fromContact(contact);
    g_object_unref(contact);
    if (group || ContactPerson::isEmpty(person))
        return std::nullopt;
    return person;
}

QList<AddressBookPerson> VCardReader::read(const QByteArray& data)
{
    QList<AddressBookPerson> persons;
    for (const QByteArray& card : splitCards(data)) {
        if (std::optional<AddressBookPerson> person = readCard(card))
            persons << *person;
    }
    return persons;
}

bool VCardReader::readFile(const QString& path, QList<AddressBookPerson>* persons, QString* error)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        *error = tr("The file \"%1\" cannot be read: %2.").arg(path, file.errorString());
        return false;
    }
    const QByteArray data = file.readAll();
    if (file.error() != QFileDevice::NoError) {
        *error = tr("The file \"%1\" cannot be read: %2.").arg(path, file.errorString());
        return false;
    }
    if (splitCards(data).isEmpty()) {
        *error = tr("The file \"%1\" holds no vCard.").arg(path);
        return false;
    }
    *persons = read(data);
    return true;
}

} // namespace corvanta::exchange
