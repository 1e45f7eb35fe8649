#include "crashsoakenvironment.h"

#include <QDir>
#include <QFile>

namespace corvanta::bench {

namespace {

QString dataHome(const QString& home)
{
    return home + QStringLiteral("/.local/share");
}

QString configHome(const QString& home)
{
    return home + QStringLiteral("/.config");
}

QString desktop(const QString& home)
{
    return home + QStringLiteral("/Desktop");
}

QString documents(const QString& home)
{
    return home + QStringLiteral("/Documents");
}

} // namespace

SoakEnvironment::SoakEnvironment(const QString& workDir)
    : m_workDir(workDir)
{}

QString SoakEnvironment::home() const
{
    return m_workDir + QStringLiteral("/home");
}

QString SoakEnvironment::dataFolder() const
{
    return dataHome(home()) + QStringLiteral("/corvanta");
}

QString SoakEnvironment::listFile() const
{
    return dataFolder() + QStringLiteral("/corvanta.databases");
}

QStringList SoakEnvironment::archiveFolders() const
{
    return {desktop(home()), documents(home()) + QStringLiteral("/Corvanta Backup")};
}

QString SoakEnvironment::scratch() const
{
    return m_workDir + QStringLiteral("/scratch");
}

bool SoakEnvironment::prepare(QString* error) const
{
    const QString runtime = m_workDir + QStringLiteral("/runtime");
    for (const QString& folder :
         {home(), dataHome(home()), configHome(home()), desktop(home()), documents(home()),
          home() + QStringLiteral("/.cache"), home() + QStringLiteral("/.local/state"), runtime,
          m_workDir + QStringLiteral("/tmp"), scratch()}) {
        if (!QDir().mkpath(folder)) {
            *error = QStringLiteral("cannot make the folder %1").arg(folder);
            return false;
        }
    }
    QFile::setPermissions(runtime, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    QFile userDirs(configHome(home()) + QStringLiteral("/user-dirs.dirs"));
    if (!userDirs.open(QIODevice::WriteOnly | QIODevice::Truncate)) {
        *error = QStringLiteral("cannot write %1").arg(userDirs.fileName());
        return false;
    }
    userDirs.write("XDG_DESKTOP_DIR=\"$HOME/Desktop\"\nXDG_DOCUMENTS_DIR=\"$HOME/Documents\"\n");
    return true;
}

QProcessEnvironment SoakEnvironment::processEnvironment() const
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("HOME"), home());
    environment.insert(QStringLiteral("XDG_DATA_HOME"), dataHome(home()));
    environment.insert(QStringLiteral("XDG_CONFIG_HOME"), configHome(home()));
    environment.insert(QStringLiteral("XDG_CACHE_HOME"), home() + QStringLiteral("/.cache"));
    environment.insert(QStringLiteral("XDG_STATE_HOME"), home() + QStringLiteral("/.local/state"));
    environment.insert(QStringLiteral("XDG_RUNTIME_DIR"), m_workDir + QStringLiteral("/runtime"));
    environment.insert(QStringLiteral("TMPDIR"), m_workDir + QStringLiteral("/tmp"));
    environment.insert(QStringLiteral("LC_ALL"), QStringLiteral("C.UTF-8"));
    // The writers must not see the desktop session of whoever runs the soak.
    for (const char* name : {"XDG_DESKTOP_DIR", "XDG_DOCUMENTS_DIR", "DISPLAY", "WAYLAND_DISPLAY"})
        environment.remove(QString::fromLatin1(name));
    return environment;
}

} // namespace corvanta::bench
