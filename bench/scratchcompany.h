#pragma once

#include "app/applicationcore.h"
#include "companies/databasefolders.h"
#include "support/scriptedprompter.h"

#include <QDir>
#include <QTemporaryDir>
#include <memory>

// A new company in a scratch folder, started as the program starts it, for the window
// benchmarks. Made before the application object, so that the windows keep their size in the
// scratch folder's settings instead of the user's.
class ScratchCompany
{
public:
    ScratchCompany() { qputenv("XDG_CONFIG_HOME", filePath(QStringLiteral("config")).toLocal8Bit()); }

    QString filePath(const QString& name) const { return m_folder.filePath(name); }
    corvanta::support::ScriptedPrompter& prompter() { return m_prompter; }

    // Starts the company; the benchmark ends when it does not open. The caller keeps the core
    // inside the application object's life: the company must be closed while the application
    // (and the SQL driver it loaded) is still there.
    std::unique_ptr<corvanta::app::ApplicationCore> start()
    {
        const corvanta::companies::DatabaseFolders folders{filePath(QStringLiteral("data/corvanta")),
                                                           filePath(QStringLiteral("Desktop")),
                                                           filePath(QStringLiteral("Documents"))};
        QDir().mkpath(folders.applicationFiles);
        auto core = std::make_unique<corvanta::app::ApplicationCore>(m_prompter, folders);
        if (!core->start())
            qFatal("the new company does not open: %s",
                   qPrintable(m_prompter.titles().join(QStringLiteral(", "))));
        return core;
    }

private:
    QTemporaryDir m_folder;
    corvanta::support::ScriptedPrompter m_prompter;
};
