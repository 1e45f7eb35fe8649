#pragma once

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

namespace corvanta::exchange::testing {

// A stand-in for xdg-email, first on the PATH while it lives: each call writes its arguments to
// the files 0, 1, 2 ... of a numbered folder, byte for byte, so that line breaks and blanks inside
// an argument come back exactly. It ends with `status`, after `seconds` of sleep when given.
class XdgEmailStandIn
{
public:
    explicit XdgEmailStandIn(int status = 0, int seconds = 0)
        : m_oldPath(qgetenv("PATH"))
    {
        QDir().mkpath(m_dir.filePath(QStringLiteral("bin")));
        QFile script(m_dir.filePath(QStringLiteral("bin/xdg-email")));
        if (!script.open(QIODevice::WriteOnly))
            qFatal("cannot write the xdg-email stand-in");
        script.write(QStringLiteral("#!/bin/sh\n"
                                    "calls='%1'\n"
                                    "call=\"$calls/$(ls \"$calls\" | wc -l)\"\n"
                                    "mkdir \"$call\"\n"
                                    "i=0\n"
                                    "for argument in \"$@\"; do\n"
                                    "    printf '%s' \"$argument\" > \"$call/$i\"\n"
                                    "    i=$((i + 1))\n"
                                    "done\n"
                                    "echo 'stand-in says no' >&2\n"
                                    "[ %2 -gt 0 ] && exec sleep %2\n"
                                    "exit %3\n")
                         .arg(calls(), QString::number(seconds), QString::number(status))
                         .toUtf8());
        script.close();
        script.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        QDir().mkpath(calls());
        qputenv("PATH", QFile::encodeName(m_dir.filePath(QStringLiteral("bin"))) + ':' + m_oldPath);
    }
    ~XdgEmailStandIn() { qputenv("PATH", m_oldPath); }
    XdgEmailStandIn(const XdgEmailStandIn&) = delete;
    XdgEmailStandIn& operator=(const XdgEmailStandIn&) = delete;

    QString calls() const { return m_dir.filePath(QStringLiteral("calls")); }
    int callCount() const { return int(QDir(calls()).entryList(QDir::Dirs | QDir::NoDotAndDotDot).size()); }

    // The arguments of call `index`, in order.
    QStringList arguments(int index = 0) const
    {
        const QDir call(calls() + QLatin1Char('/') + QString::number(index));
        QStringList arguments;
        for (int i = 0;; ++i) {
            QFile file(call.filePath(QString::number(i)));
            if (!file.open(QIODevice::ReadOnly))
                break;
            arguments << QString::fromUtf8(file.readAll());
        }
        return arguments;
    }

private:
    QByteArray m_oldPath;
    QTemporaryDir m_dir;
};

} // namespace corvanta::exchange::testing
