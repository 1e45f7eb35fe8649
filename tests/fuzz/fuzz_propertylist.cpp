// Property lists come from files the user or another program may have damaged: the database
// list "corvanta.databases" and the element files of templates. Any bytes must be read or
// refused without a fault. What is read as a database list and written again must read back
// with every usable entry.
#include "companies/databaselist.h"
#include "support/propertylist.h"

#include <cstdint>

using corvanta::companies::DatabaseEntry;
using corvanta::companies::DatabaseList;
using corvanta::support::PropertyList;

namespace {

// The entries of a list the way DatabaseList::read takes them from the parsed tree.
QList<DatabaseEntry> entriesOf(const QVariant& root)
{
    QList<DatabaseEntry> entries;
    for (const QVariant& item : root.toList()) {
        if (item.typeId() != QMetaType::QVariantMap)
            continue;
        if (const std::optional<DatabaseEntry> entry = DatabaseList::entryFromMap(item.toMap()))
            entries.append(*entry);
    }
    return entries;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char*>(data), qsizetype(size));
    QString error;
    const QVariant root = PropertyList::parse(bytes, &error);
    if (!root.isValid())
        return 0;

    // Anything read can be written as XML again, and that XML can be read.
    const QByteArray xml = PropertyList::toXml(root);
    if (!PropertyList::parse(xml, &error).isValid())
        qFatal("a property list written from what was read cannot be read again: %s\n%s",
               qUtf8Printable(error), xml.constData());

    if (root.typeId() != QMetaType::QVariantList)
        return 0;
    const QList<DatabaseEntry> entries = entriesOf(root);
    QVariantList written;
    for (const DatabaseEntry& entry : entries)
        written << DatabaseList::entryToMap(entry);
    const QByteArray listXml = PropertyList::toXml(written);
    const QVariant reread = PropertyList::parse(listXml, &error);
    if (!reread.isValid())
        qFatal("a database list written from the entries read cannot be read again: %s\n%s",
               qUtf8Printable(error), listXml.constData());
    const QList<DatabaseEntry> entriesAgain = entriesOf(reread);
    if (entriesAgain.size() != entries.size())
        qFatal("a database list of %lld entries reads back with %lld usable entries:\n%s",
               qint64(entries.size()), qint64(entriesAgain.size()), listXml.constData());
    return 0;
}
