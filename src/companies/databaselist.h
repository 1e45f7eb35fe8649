#pragma once

#include "databaseentry.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QList>
#include <optional>

namespace corvanta::companies {

// The file "corvanta.databases": the property list of every company database the user keeps,
// an array of dictionaries with `name`, `path`, `directory`, `filename` and `selected`.
// Written atomically; a damaged file is never overwritten before a copy of it is kept.
class DatabaseList
{
    Q_DECLARE_TR_FUNCTIONS(DatabaseList)

public:
    static constexpr const char* kFileName = "corvanta.databases";
    static constexpr const char* kExtension = "cvdb";

    enum class Status {
        Ok,         // every entry could be read
        Missing,    // there is no file
        Unreadable, // the file exists but cannot be opened (permissions, a folder in its place)
        Damaged,    // empty, not a property list, not an array of entries, or some entries unusable
    };

    struct ReadResult
    {
        Status status = Status::Ok;
        // The entries that could be read, in the order of the file.
        QList<DatabaseEntry> entries;
        // Elements of the array that are not a usable entry (no file name, not a dictionary).
        int unusableEntries = 0;
        // What is wrong, as words that complete "The list ... could not be read: ".
        QString problem;
    };

    static ReadResult read(const QString& file);
    // Writes the list in one step: either the new list is there or the old one stays.
    static bool write(const QString& file, const QList<DatabaseEntry>& entries, QString* error);
    // Copies the file beside itself as "<name>.damaged-<yyyyMMdd-HHmmss>" (with a counter when
    // that exists) and returns the copy's path; empty with `error` set when the copy failed.
    static QString keepAside(const QString& file, const QDateTime& now, QString* error);

    // An entry from the dictionary of a stored list; nullopt when it names no file.
    static std::optional<DatabaseEntry> entryFromMap(const QVariantMap& map);
    static QVariantMap entryToMap(const DatabaseEntry& entry);
};

} // namespace corvanta::companies
