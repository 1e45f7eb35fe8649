#pragma once

#include <QString>

namespace corvanta::companies {

// The per-user folders that company databases and their copies live in. Tests give their own
// scratch folders so that they never touch the user's.
struct DatabaseFolders
{
    QString applicationFiles; // the database list, local databases and their side folders
    QString desktop;          // where "Save Local Database to Desktop" puts its archive
    QString documents;        // holds the "Corvanta Backup" folder of daily backups

    // The user's folders: the application's data location (~/.local/share/corvanta), the
    // desktop and the documents folder.
    static DatabaseFolders standard();
};

} // namespace corvanta::companies
