#pragma once

#include <QString>
#include <QVariantMap>

namespace corvanta::companies {

// One company database known to the database list: its name in the menu and where its file is.
// `path` identifies the entry; `directory` and `filename` locate the file when it is opened.
struct DatabaseEntry
{
    QString name;
    QString path;
    QString directory;
    QString filename;
    bool selected = false;
    // Keys of the stored entry that this program does not use, written back unchanged.
    QVariantMap otherKeys;
};

} // namespace corvanta::companies
