#include "databasefolders.h"

#include <QStandardPaths>

namespace corvanta::companies {

DatabaseFolders DatabaseFolders::standard()
{
    DatabaseFolders folders;
    folders.applicationFiles = QStandardPaths::writableLocation(QStandardPaths::AppDataLocation);
    folders.desktop = QStandardPaths::writableLocation(QStandardPaths::DesktopLocation);
    folders.documents = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    return folders;
}

} // namespace corvanta::companies
