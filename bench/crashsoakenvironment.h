#pragma once

#include <QProcessEnvironment>
#include <QString>
#include <QStringList>

namespace corvanta::bench {

// A home of its own for the writers, inside the work folder: HOME and every XDG folder point
// there, so the database list, the company databases and the archives of `backup` are made
// where the soak can check them and nothing of the real user's is read or touched.
class SoakEnvironment
{
public:
    explicit SoakEnvironment(const QString& workDir);

    // Makes the folders and the user-dirs.dirs that names the desktop and documents folders.
    bool prepare(QString* error) const;
    QProcessEnvironment processEnvironment() const;

    QString workDir() const { return m_workDir; }
    QString home() const;
    // Where the database list and the local databases live.
    QString dataFolder() const;
    QString listFile() const;
    // The folders whose *.zip files are archives of the program: the desktop (backup) and the
    // daily backup folder in the documents folder.
    QStringList archiveFolders() const;
    // A scratch folder of the soak itself.
    QString scratch() const;

private:
    QString m_workDir;
};

} // namespace corvanta::bench
