#pragma once

#include "companies/databasefolders.h"

#include <QDate>
#include <QObject>
#include <functional>
#include <memory>

namespace corvanta::companies {
class DatabaseManager;
}
namespace corvanta::store {
class Record;
class Store;
struct StoreError;
} // namespace corvanta::store
namespace corvanta::support {
class Prompter;
}

namespace corvanta::app {

class CompaniesMenu;
class DatabaseNameWindow;

// What the application object owns and does without any window: start-up in its order (the
// database manager, the selected database's store, its default records or version check, the
// company-databases menu, the company record) and quitting (backup, pruning, the last save).
class ApplicationCore : public QObject
{
    Q_OBJECT

public:
    enum class TerminateReply { Now, Cancel };

    // `shippedTemplates` is the folder of the template files that come with the program.
    ApplicationCore(support::Prompter& prompter, const companies::DatabaseFolders& folders,
                    const QString& shippedTemplates = defaultShippedTemplatesFolder(),
                    QObject* parent = nullptr);
    ~ApplicationCore() override;

    static QString defaultShippedTemplatesFolder();

    // Opens the company database at `file` as a start does: its store with every record class,
    // then the default records when it is new (with the shipped templates, whose pictures go to
    // `templateFiles`), or the check of its data-model version. Null with `error` set when it
    // cannot be opened; nothing of a failed first start is stored.
    static std::unique_ptr<store::Store>
    openCompanyDatabase(const QString& file, const QString& shippedTemplates, const QString& templateFiles,
                        store::StoreError* error, bool* insertedDefaults = nullptr);

    // Completes the error of a damaged database with where its latest daily backup is.
    static void addRestoreAdvice(store::StoreError& error, const companies::DatabaseFolders& folders);

    // Runs the start-up. False when no database could be opened: the reason was shown, and the
    // program quits (or starts again when isRestartRequested()).
    bool start();

    companies::DatabaseManager* databaseManager() const { return m_databaseManager.get(); }
    DatabaseNameWindow* databaseNameWindow() const { return m_nameWindow.get(); }
    CompaniesMenu* companiesMenu() const { return m_companiesMenu.get(); }
    store::Store* store() const { return m_store.get(); }
    store::Record* myCompany() const { return m_myCompany; }
    bool insertedDefaults() const { return m_insertedDefaults; }
    bool isRestartRequested() const;

    // Quitting: `saveSidebarState` first, then the day's backup (of the data as saved so far),
    // pruning of old backups, and the save of pending changes.
    TerminateReply applicationShouldTerminate(const std::function<void()>& saveSidebarState = {},
                                              const QDate& today = QDate::currentDate());

private:
    bool openStore();
    void failToInitialize();

    support::Prompter& m_prompter;
    companies::DatabaseFolders m_folders;
    QString m_shippedTemplates;
    std::unique_ptr<companies::DatabaseManager> m_databaseManager;
    std::unique_ptr<DatabaseNameWindow> m_nameWindow;
    std::unique_ptr<CompaniesMenu> m_companiesMenu;
    std::unique_ptr<store::Store> m_store;
    store::Record* m_myCompany = nullptr;
    bool m_insertedDefaults = false;
};

} // namespace corvanta::app
