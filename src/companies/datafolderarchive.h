#pragma once

#include <QCoreApplication>
#include <QString>
#include <QStringList>

namespace corvanta::store {
class Store;
}

namespace corvanta::companies {

// A ZIP archive of the application files folder: the database list, every local database and
// the side folders. Databases are archived as consistent snapshots, never as the live files:
// the open one through its store, the others through a read-only connection of their own.
class DataFolderArchive
{
    Q_DECLARE_TR_FUNCTIONS(DataFolderArchive)

public:
    DataFolderArchive(const QString& folder, store::Store* openStore);

    // Writes the archive to `destination` (replacing it when the whole archive is written),
    // with `comment` as the archive's comment.
    bool write(const QString& destination, const QString& comment, QString* error) const;

    // Whether a file of the folder is a database's companion (its log, shared memory or lock),
    // which the snapshot of the database replaces.
    static bool isDatabaseCompanion(const QString& fileName);

    // Removes what a write that never finished left in `folder` (the process ended while
    // writing): scratch folders of snapshots and partial archives. Only those untouched for an
    // hour go, so that a write running right now keeps its files. Returns the removed paths.
    static QStringList removeLeftovers(const QString& folder);

private:
    QString m_folder;
    store::Store* m_openStore;
};

} // namespace corvanta::companies
