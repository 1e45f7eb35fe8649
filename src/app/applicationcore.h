#pragma once

#include "model/databasefolders.h"

#include <QDate>
#include <QObject>
#include <functional>
#include <memory>

namespace corvanta::model {
class DatabaseManager;
class Prompter;
class Record;
class Store;
} // namespace corvanta::model

namespace corvanta::app {

// What the application object owns and does without any window: start-up in its order (the
// database manager, the selected database's store, its default records or version check, the
// company-databases menu, the company record) and quitting (backup, pruning, the last save).
class ApplicationCore : public QObject
{
    Q_OBJECT

public:
    enum class TerminateReply { Now, Cancel };

    // `shippedTemplates` is the folder of the template files that come with the program.
    ApplicationCore(model::Prompter& prompter, const model::DatabaseFolders& folders,
                    const QString& shippedTemplates = defaultShippedTemplatesFolder(),
                    QObject* parent = nullptr);
    ~ApplicationCore() override;

    static QString defaultShippedTemplatesFolder();
    // Gives a newly opened store every record class of the program, before any record is read.
    static void registerRecordClasses(model::Store& store);

    // Runs the start-up. False when no database could be opened: the reason was shown, and the
    // program quits (or starts again when isRestartRequested()).
    bool start();

    model::DatabaseManager* databaseManager() const { return m_databaseManager.get(); }
    model::Store* store() const { return m_store.get(); }
    model::Record* myCompany() const { return m_myCompany; }
    bool insertedDefaults() const { return m_insertedDefaults; }
    bool isRestartRequested() const;

    // Quitting: `saveSidebarState` first, then the day's backup (of the data as saved so far),
    // pruning of old backups, and the save of pending changes.
    TerminateReply applicationShouldTerminate(const std::function<void()>& saveSidebarState = {},
                                              const QDate& today = QDate::currentDate());

private:
    bool openStore();
    void failToInitialize();

    model::Prompter& m_prompter;
    model::DatabaseFolders m_folders;
    QString m_shippedTemplates;
    std::unique_ptr<model::DatabaseManager> m_databaseManager;
    std::unique_ptr<model::Store> m_store;
    model::Record* m_myCompany = nullptr;
    bool m_insertedDefaults = false;
};

} // namespace corvanta::app
