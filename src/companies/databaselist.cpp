#include "databaselist.h"

#include "support/propertylist.h"
#include "support/safefile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace corvanta::companies {

using support::PropertyList;

namespace {

const QString kName = QStringLiteral("name");
const QString kPath = QStringLiteral("path");
const QString kDirectory = QStringLiteral("directory");
const QString kFilename = QStringLiteral("filename");
const QString kSelected = QStringLiteral("selected");

// A plain file name: no folder part, nothing that walks up.
bool isPlainFileName(const QString& name)
{
    return !name.isEmpty() && !name.contains(QLatin1Char('/')) && name != QLatin1String(".") &&
           name != QLatin1String("..") && !name.contains(QChar(0));
}

QString scalarText(const QVariant& value)
{
    switch (value.typeId()) {
    case QMetaType::QString:
    case QMetaType::LongLong:
    case QMetaType::Double:
        return value.toString();
    default:
        return {};
    }
}

// `selected` is 1 when it is the number one (integer, real or boolean true).
bool isOne(const QVariant& value)
{
    switch (value.typeId()) {
    case QMetaType::LongLong:
        return value.toLongLong() == 1;
    case QMetaType::Double:
        return value.toDouble() == 1.0;
    case QMetaType::Bool:
        return value.toBool();
    default:
        return false;
    }
}

} // namespace

std::optional<DatabaseEntry> DatabaseList::entryFromMap(const QVariantMap& map)
{
    DatabaseEntry entry;
    entry.path = scalarText(map.value(kPath));
    entry.directory = scalarText(map.value(kDirectory));
    entry.filename = scalarText(map.value(kFilename));
    entry.name = scalarText(map.value(kName));
    entry.selected = isOne(map.value(kSelected));

    if (entry.filename.isEmpty() && QDir::isAbsolutePath(entry.path))
        entry.filename = QFileInfo(entry.path).fileName();
    // A file name or folder that the written list could not hold as it is would come back as
    // another one.
    if (!isPlainFileName(entry.filename) || !PropertyList::isXmlText(entry.filename))
        return std::nullopt;
    if (entry.directory.isEmpty() && QDir::isAbsolutePath(entry.path))
        entry.directory = QFileInfo(entry.path).absolutePath();
    if (entry.directory.isEmpty() || !PropertyList::isXmlText(entry.directory))
        return std::nullopt;
    if (entry.path.isEmpty())
        entry.path = QDir(entry.directory).filePath(entry.filename);
    if (entry.name.isEmpty())
        entry.name = QFileInfo(entry.filename).completeBaseName();

    for (auto it = map.cbegin(); it != map.cend(); ++it) {
        if (it.key() != kName && it.key() != kPath && it.key() != kDirectory && it.key() != kFilename &&
            it.key() != kSelected)
            entry.otherKeys.insert(it.key(), it.value());
    }
    return entry;
}

QVariantMap DatabaseList::entryToMap(const DatabaseEntry& entry)
{
    QVariantMap map = entry.otherKeys;
    map.insert(kName, entry.name);
    map.insert(kPath, entry.path);
    map.insert(kDirectory, entry.directory);
    map.insert(kFilename, entry.filename);
    map.insert(kSelected, qint64(entry.selected ? 1 : 0));
    return map;
}

DatabaseList::ReadResult DatabaseList::read(const QString& file)
{
    ReadResult result;
    const QFileInfo info(file);
    if (!info.exists() && !info.isSymLink()) {
        result.status = Status::Missing;
        return result;
    }
    if (info.isDir()) {
        result.status = Status::Unreadable;
        result.problem = tr("a folder stands where the file should be");
        return result;
    }
    if (!info.isFile()) {
        // A pipe or a device: reading it could wait forever.
        result.status = Status::Unreadable;
        result.problem = tr("it is not a regular file");
        return result;
    }
    if (info.size() > PropertyList::kMaxSize) {
        result.status = Status::Damaged;
        result.problem = tr("the file is too large (%1 bytes)").arg(info.size());
        return result;
    }
    QFile in(file);
    if (!in.open(QIODevice::ReadOnly)) {
        result.status = Status::Unreadable;
        result.problem = in.errorString();
        return result;
    }
    const QByteArray data = in.read(PropertyList::kMaxSize + 1);
    if (in.error() != QFileDevice::NoError) {
        result.status = Status::Unreadable;
        result.problem = in.errorString();
        return result;
    }

    QString why;
    const QVariant root = PropertyList::parse(data, &why);
    if (!root.isValid()) {
        result.status = Status::Damaged;
        result.problem = why;
        return result;
    }
    if (root.typeId() != QMetaType::QVariantList) {
        result.status = Status::Damaged;
        result.problem = tr("it does not hold a list of databases");
        return result;
    }
    const QVariantList items = root.toList();
    for (const QVariant& item : items) {
        const std::optional<DatabaseEntry> entry =
            item.typeId() == QMetaType::QVariantMap ? entryFromMap(item.toMap()) : std::nullopt;
        if (entry)
            result.entries.append(*entry);
        else
            ++result.unusableEntries;
    }
    if (items.isEmpty()) {
        result.status = Status::Damaged;
        result.problem = tr("the list holds no databases");
    } else if (result.unusableEntries > 0) {
        result.status = Status::Damaged;
        result.problem =
            tr("%1 of its %2 entries name no database file").arg(result.unusableEntries).arg(items.size());
    }
    return result;
}

bool DatabaseList::write(const QString& file, const QList<DatabaseEntry>& entries, QString* error)
{
    QVariantList list;
    for (const DatabaseEntry& entry : entries)
        list.append(entryToMap(entry));
    return support::writeFileSafely(file, support::PropertyList::toXml(list), error);
}

QString DatabaseList::keepAside(const QString& file, const QDateTime& now, QString* error)
{
    const QString base = file + QStringLiteral(".damaged-") + now.toString(QStringLiteral("yyyyMMdd-HHmmss"));
    QString copy = base;
    for (int n = 2; QFileInfo::exists(copy) || QFileInfo(copy).isSymLink(); ++n)
        copy = base + QStringLiteral("-%1").arg(n);
    QFile source(file);
    if (!source.copy(copy)) {
        if (error)
            *error = source.errorString();
        return {};
    }
    return copy;
}

} // namespace corvanta::companies
