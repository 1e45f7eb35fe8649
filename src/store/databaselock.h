#pragma once

#include <QCoreApplication>
#include <QString>

namespace corvanta::store {

// An advisory lock (flock) on a file beside a database, held for as long as this object lives.
// The operating system releases it when the process ends, however it ends, so an instance that
// crashed or was killed never blocks the next one; whatever the file holds does not matter.
class DatabaseLock
{
    Q_DECLARE_TR_FUNCTIONS(DatabaseLock)

public:
    enum class Result {
        Acquired,
        HeldElsewhere, // another open file description holds it: a running instance
        Failed,        // the lock file cannot be made or locked
    };

    explicit DatabaseLock(const QString& lockFile);
    ~DatabaseLock();
    DatabaseLock(const DatabaseLock&) = delete;
    DatabaseLock& operator=(const DatabaseLock&) = delete;

    // Takes the lock without waiting. `why` says what failed when the result is Failed.
    Result acquire(QString* why);
    // Removes the lock file and gives the lock up; done by the destructor too.
    void release();

private:
    QString m_path;
    int m_fd = -1;
};

} // namespace corvanta::store
