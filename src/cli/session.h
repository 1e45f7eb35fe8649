#pragma once

#include "companies/databasefolders.h"

#include <QCoreApplication>
#include <QString>
#include <memory>

namespace corvanta::app {
class ApplicationCore;
}
namespace corvanta::companies {
class DatabaseManager;
}
namespace corvanta::store {
class EditingContext;
class Store;
} // namespace corvanta::store

namespace corvanta::cli {

class CliPrompter;

// The company database a command works on, opened as the desktop program opens it: the one the
// database list selects (the list and a first database with its default records are made on
// first use), or a file named on the command line, made with its default records when missing.
// Either way the store gets the record classes of the document logic.
class Session
{
    Q_DECLARE_TR_FUNCTIONS(Session)

public:
    Session(CliPrompter& prompter, const companies::DatabaseFolders& folders,
            const QString& shippedTemplates);
    ~Session();

    // Opens `databaseFile`, or the selected database of the list when it is empty. False when no
    // database could be opened; the prompter holds the reason.
    bool open(const QString& databaseFile);
    // Closes the database and opens the one the list selects now, as the desktop program's
    // restart after connecting to another database does.
    bool restart();

    // The file named with --database (empty for the selected database of the list).
    void setRequestedFile(const QString& file) { m_requestedFile = file; }
    const QString& requestedFile() const { return m_requestedFile; }

    bool isOpen() const { return m_store != nullptr; }
    store::Store& store() const { return *m_store; }
    store::EditingContext& context() const;
    // The manager of the database list; null when a file was named on the command line.
    companies::DatabaseManager* databaseManager() const;
    // The application as it started on the list's database; null when a file was named.
    app::ApplicationCore* core() const { return m_core.get(); }
    CliPrompter& prompter() const { return m_prompter; }
    // The open database's template files folder (pictures of image elements) and its folder of
    // temporary files (PDFs for preview and e-mail), beside the database file; made when asked for.
    QString templateFilesDirectory() const;
    QString tempFilesDirectory() const;
    const companies::DatabaseFolders& folders() const { return m_folders; }

private:
    bool startFromList();
    bool openFile(const QString& file);

    CliPrompter& m_prompter;
    companies::DatabaseFolders m_folders;
    QString m_shippedTemplates;
    QString m_requestedFile;
    std::unique_ptr<app::ApplicationCore> m_core;
    std::unique_ptr<store::Store> m_ownStore;
    store::Store* m_store = nullptr;
};

} // namespace corvanta::cli
