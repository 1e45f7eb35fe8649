#include "crashsoakfilecheck.h"

#include "crashsoakdatabasecheck.h"
#include "support/propertylist.h"
#include "support/zipreader.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace corvanta::bench {

namespace {

QString problemsOfList(const QVariant& list, const QString& database)
{
    if (list.typeId() != QMetaType::QVariantList)
        return QStringLiteral("it is not an array");
    int selected = 0;
    QString selectedPath;
    for (const QVariant& entry : list.toList()) {
        if (entry.typeId() != QMetaType::QVariantMap)
            return QStringLiteral("an entry is not a dictionary");
        const QVariantMap map = entry.toMap();
        if (map.value(QStringLiteral("name")).toString().isEmpty() ||
            map.value(QStringLiteral("path")).toString().isEmpty())
            return QStringLiteral("an entry without a name or path");
        if (map.value(QStringLiteral("selected")).toBool()) {
            ++selected;
            selectedPath = map.value(QStringLiteral("path")).toString();
        }
    }
    if (selected != 1)
        return QStringLiteral("%1 entries are selected").arg(selected);
    if (QFileInfo(selectedPath).absoluteFilePath() != QFileInfo(database).absoluteFilePath())
        return QStringLiteral("it selects %1, not %2").arg(selectedPath, database);
    return {};
}

} // namespace

FileCheck::FileCheck(QString scratchFolder)
    : m_scratch(std::move(scratchFolder))
{}

QStringList FileCheck::checkList(const QString& listFile, const QString& database) const
{
    QFile file(listFile);
    if (!file.open(QIODevice::ReadOnly))
        return {QStringLiteral("the database list %1 cannot be read: %2").arg(listFile, file.errorString())};
    QString error;
    const QVariant list = support::PropertyList::parse(file.readAll(), &error);
    if (!list.isValid())
        return {QStringLiteral("the database list is damaged: %1").arg(error)};
    if (const QString problem = problemsOfList(list, database); !problem.isEmpty())
        return {QStringLiteral("the database list is wrong: %1").arg(problem)};
    return {};
}

QStringList FileCheck::checkArchives(const QStringList& folders, const QSet<QString>& acknowledged)
{
    QStringList failures;
    for (const QString& path : acknowledged)
        if (!QFileInfo::exists(path))
            failures << QStringLiteral("acknowledged archive %1 is missing").arg(path);
    for (const QString& folder : folders) {
        for (const QFileInfo& info : QDir(folder).entryInfoList({QStringLiteral("*.zip")}, QDir::Files)) {
            const QPair<qint64, QDateTime> stamp(info.size(), info.lastModified());
            if (m_checked.value(info.absoluteFilePath()) == stamp)
                continue;
            const QStringList problems = checkArchive(info.absoluteFilePath());
            ++m_archivesChecked;
            if (problems.isEmpty())
                m_checked.insert(info.absoluteFilePath(), stamp);
            for (const QString& problem : problems)
                failures << QStringLiteral("archive %1: %2").arg(info.fileName(), problem);
        }
    }
    return failures;
}

QStringList FileCheck::checkArchive(const QString& path) const
{
    support::ZipReader reader;
    QString error;
    if (!reader.open(path, &error))
        return {QStringLiteral("not a readable ZIP: %1").arg(error)};
    QStringList problems;
    int databases = 0;
    bool list = false;
    for (const support::ZipReader::Entry& entry : reader.entries()) {
        if (entry.isFolder)
            continue;
        const std::optional<QByteArray> content = reader.read(entry.name, &error);
        if (!content) {
            problems << QStringLiteral("entry %1 cannot be read: %2").arg(entry.name, error);
            continue;
        }
        if (entry.name.endsWith(QLatin1String("corvanta.databases"))) {
            list = true;
            if (!support::PropertyList::parse(*content, &error).isValid())
                problems << QStringLiteral("its database list is damaged: %1").arg(error);
        } else if (entry.name.endsWith(QLatin1String(".cvdb"))) {
            ++databases;
            const QString copy = m_scratch + QStringLiteral("/archived.cvdb");
            QFile::remove(copy);
            QFile file(copy);
            if (!file.open(QIODevice::WriteOnly) || file.write(*content) != content->size()) {
                problems << QStringLiteral("cannot write %1").arg(copy);
                continue;
            }
            file.close();
            for (const QString& problem : DatabaseCheck::integrity(copy))
                problems << QStringLiteral("%1: %2").arg(entry.name, problem);
            for (const char* suffix : {"", "-wal", "-shm"})
                QFile::remove(copy + QLatin1String(suffix));
        }
    }
    if (databases == 0 || !list)
        problems
            << QStringLiteral("%1 databases and %2 database list in it").arg(databases).arg(list ? 1 : 0);
    return problems;
}

} // namespace corvanta::bench
