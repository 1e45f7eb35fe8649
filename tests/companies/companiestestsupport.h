#pragma once

#include "companies/databasefolders.h"
#include "companies/databaselist.h"
#include "model/companydatabase.h"
#include "store/editingcontext.h"
#include "store/store.h"
#include "support/propertylist.h"
#include "support/scriptedprompter.h"
#include "support/zipreader.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

namespace corvanta::companies::testing {

inline QString s(const char* text)
{
    return QString::fromUtf8(text);
}

// Scratch application files, desktop and documents folders, with helpers for the database list.
class ScratchFolders
{
public:
    ScratchFolders()
    {
        m_folders.applicationFiles = m_dir.filePath(QStringLiteral("data/corvanta"));
        m_folders.desktop = m_dir.filePath(QStringLiteral("Desktop"));
        m_folders.documents = m_dir.filePath(QStringLiteral("Documents"));
        QDir().mkpath(m_folders.applicationFiles);
    }

    const DatabaseFolders& folders() const { return m_folders; }
    QString root() const { return m_dir.path(); }
    QString app(const QString& name = {}) const
    {
        return name.isEmpty() ? m_folders.applicationFiles : QDir(m_folders.applicationFiles).filePath(name);
    }
    QString listFile() const { return app(QString::fromLatin1(DatabaseList::kFileName)); }

    static QVariantMap entry(const QString& name, const QString& directory, const QString& filename,
                             bool selected)
    {
        return {{QStringLiteral("name"), name},
                {QStringLiteral("directory"), directory},
                {QStringLiteral("filename"), filename},
                {QStringLiteral("path"), QDir(directory).filePath(filename)},
                {QStringLiteral("selected"), qint64(selected ? 1 : 0)}};
    }

    void writeList(const QVariantList& entries) const
    {
        writeBytes(listFile(), support::PropertyList::toXml(entries));
    }

    static void writeBytes(const QString& path, const QByteArray& bytes)
    {
        QDir().mkpath(QFileInfo(path).absolutePath());
        QFile out(path);
        if (!out.open(QIODevice::WriteOnly | QIODevice::Truncate))
            qFatal("cannot write %s", qPrintable(path));
        out.write(bytes);
    }

    static QByteArray readBytes(const QString& path)
    {
        QFile in(path);
        return in.open(QIODevice::ReadOnly) ? in.readAll() : QByteArray();
    }

    // The copies of damaged lists kept beside the list.
    QStringList keptCopies() const
    {
        return QDir(app()).entryList({QStringLiteral("corvanta.databases.damaged-*")}, QDir::Files);
    }

private:
    QTemporaryDir m_dir;
    DatabaseFolders m_folders;
};

// "title | text" of every alert asked, for exact comparisons.
inline QStringList alerts(const support::ScriptedPrompter& prompter)
{
    QStringList asked;
    for (const support::ScriptedPrompter::Question& q : prompter.questions()) {
        if (q.kind == support::ScriptedPrompter::Question::Kind::Alert)
            asked << q.title + QStringLiteral(" | ") + q.text;
    }
    return asked;
}

// The names in a database list, in its order, the selected one marked with "*".
inline QStringList names(const std::optional<QList<DatabaseEntry>>& entries)
{
    QStringList result;
    for (const DatabaseEntry& entry : entries.value_or(QList<DatabaseEntry>()))
        result << entry.name + (entry.selected ? QStringLiteral("*") : QString());
    return result;
}

// The comment, then the sorted entry names of an archive, extracted into `folder` when one is
// given; the error when it cannot be read.
inline QStringList archiveContents(const QString& archive, const QString& folder = {})
{
    support::ZipReader zip;
    QString error;
    if (!zip.open(archive, &error) || (!folder.isEmpty() && !zip.extractAll(folder, &error)))
        return {error};
    QStringList names;
    for (const support::ZipReader::Entry& entry : zip.entries())
        names << entry.name;
    names.sort();
    return QStringList{zip.comment()} + names;
}

// A real company database whose company is called `name`.
inline void makeDatabase(const QString& path, const QString& name)
{
    store::StoreError error;
    auto store = model::CompanyDatabase::open(path, &error);
    QVERIFY2(store, qPrintable(error.message()));
    store->mainContext().insertRecord(s("MyCompany"), {{s("name"), name}});
    QVERIFY2(store->mainContext().save(&error), qPrintable(error.message()));
}

} // namespace corvanta::companies::testing
