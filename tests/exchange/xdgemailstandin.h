#pragma once

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

namespace corvanta::exchange::testing {

// A stand-in for xdg-email, first on the PATH while it lives: each call writes its arguments,
// each ended by a NUL byte, to the file 0, 1, 2 ... of a folder, so that line breaks and blanks
// inside an argument come back exactly. It ends with `status`, after `seconds` of sleep if given.
class XdgEmailStandIn
{
public:
    explicit XdgEmailStandIn(int status = 0, int seconds = 0)
        : m_oldPath(qgetenv("PATH"))
    {
        QDir().mkpath(m_dir.filePath(QStringLiteral("calls")));
        QFile script(m_dir.filePath(QStringLiteral("xdg-email")));
        if (!script.open(QIODevice::WriteOnly))
            qFatal("cannot write the xdg-email stand-in");
        script.write(QStringLiteral("#!/bin/sh\n"
                                    "calls='%1'\n"
                                    "printf '%s\\0' \"$@\" > \"$calls/$(ls \"$calls\" | wc -l)\"\n"
                                    "echo 'stand-in says no' >&2\n"
                                    "[ %2 -gt 0 ] && sleep %2\n"
                                    "exit %3\n")
                         .arg(calls(), QString::number(seconds), QString::number(status))
                         .toUtf8());
        script.close();
        script.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        qputenv("PATH", QFile::encodeName(m_dir.path()) + ':' + m_oldPath);
    }
    ~XdgEmailStandIn() { qputenv("PATH", m_oldPath); }

    QString calls() const { return m_dir.filePath(QStringLiteral("calls")); }
    int callCount() const { return int(QDir(calls()).entryList(QDir::Files).size()); }

    // The arguments of call `index`, in order; empty when there was no such call.
    QStringList arguments(int index = 0) const
    {
        QFile call(calls() + QLatin1Char('/') + QString::number(index));
        if (!call.open(QIODevice::ReadOnly))
            return {};
        QStringList arguments = QString::fromUtf8(call.readAll()).split(QChar(0));
        arguments.removeLast(); // after the last NUL
        return arguments;
    }

private:
    QByteArray m_oldPath;
    QTemporaryDir m_dir;
};

} // namespace corvanta::exchange::testing
