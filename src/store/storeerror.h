#pragma once

#include <QString>

namespace corvanta::store {

// An error of the store, with a domain and code as the user-facing alerts show them, a
// description (what failed) and a reason (why, when known).
struct StoreError
{
    static constexpr const char* kDomain = "YOUR_ERROR_DOMAIN";

    enum Code {
        None = 0,
        FolderIsFile = 101,     // a file stands where the data folder should be
        NotFound = 260,         // the data folder does not exist
        NotWritable = 513,      // the location cannot be written
        WriteFailed = 512,      // the disk failed to take a write; the save was rolled back
        DiskFull = 640,         // the disk is full; the save was rolled back
        NotADatabase = 259,     // the file is not a company database
        AlreadyOpen = 9001,     // another running instance holds the database
        Damaged = 11,           // the file is a database of ours that SQLite finds malformed
        NewerModel = 134100,    // the file was written by a newer data model
        SaveFailed = 1560,      // a save was rolled back
        Locked = 1570,          // another program held the write lock; the save was rolled back
        DeleteDenied = 1600,    // a deleted record is still in use
        InvalidFetch = 1700,    // a fetch named an unknown key or could not be compiled
        StoreInitFailed = 9999, // no store could be built
    };

    QString domain = QString::fromLatin1(kDomain);
    int code = None;
    QString description;
    QString reason;

    bool isError() const { return code != None; }
    // "description" or "description reason" for a single-line report.
    QString message() const;

    static StoreError make(int code, const QString& description, const QString& reason = {});
};

// Sets *target when it is not null; lets callers pass nullptr when they do not care.
inline void report(StoreError* target, const StoreError& error)
{
    if (target)
        *target = error;
}

} // namespace corvanta::store
