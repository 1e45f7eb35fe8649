#include "applicationcore.h"

#include "documents/recordclasses.h"
#include "format/currenciesrecord.h"
#include "model/databasemanager.h"
#include "model/defaultrecords.h"
#include "model/editingcontext.h"
#include "model/prompter.h"
#include "model/store.h"
#include "templates/shippedtemplates.h"

#include <QFileInfo>
#include <algorithm>

namespace corvanta::app {

using namespace corvanta::model;

ApplicationCore::ApplicationCore(Prompter& prompter, const DatabaseFolders& folders,
                                 const QString& shippedTemplates, QObject* parent)
    : QObject(parent)
    , m_prompter(prompter)
    , m_folders(folders)
    , m_shippedTemplates(shippedTemplates)
{}

ApplicationCore::~ApplicationCore()
{
    m_myCompany = nullptr;
    if (m_databaseManager)
        m_databaseManager->setStore(nullptr);
    m_store.reset();
}

QString ApplicationCore::defaultShippedTemplatesFolder()
{
    return QStringLiteral(CORVANTA_RESOURCES_DIR "/templates");
}

bool ApplicationCore::isRestartRequested() const
{
    return m_databaseManager && m_databaseManager->isRestartRequested();
}

bool ApplicationCore::start()
{
    // 1. The database manager.
    m_databaseManager = std::make_unique<DatabaseManager>(m_prompter, m_folders);

    // 2. The selected database's store, its default records or its version.
    if (!openStore())
        return false;
    const QString templateFiles = m_databaseManager->templateFilesDirectory();
    const QString shipped = m_shippedTemplates;
    DefaultRecords defaults(m_store->mainContext(),
                            [shipped, templateFiles](EditingContext& context, Record* company, QString*) {
                                templates::ShippedTemplates(shipped, templateFiles).install(context, company);
                                return true;
                            });
    StoreError error;
    if (!defaults.initDatabaseRecords(&error)) {
        m_prompter.alert(error.description, error.reason, {tr("OK")});
        failToInitialize();
        return false;
    }
    m_insertedDefaults = defaults.insertedDefaults();

    // 3. The company-databases menu.
    m_databaseManager->setupMyCompaniesMenu();

    // 4. The company record.
    m_myCompany = m_store->mainContext().fetchFirst(FetchRequest(QStringLiteral("MyCompany")));
    return true;
}

void ApplicationCore::registerRecordClasses(model::Store& store)
{
    format::CurrenciesRecord::registerOn(store);
    documents::registerRecordClasses(store);
}

bool ApplicationCore::openStore()
{
    StoreError error;
    if (!m_databaseManager->checkApplicationFilesDirectory(&error)) {
        m_prompter.alert(error.description, error.reason, {tr("OK")});
        failToInitialize();
        return false;
    }
    const QString file = m_databaseManager->selectedDatabaseFile();
    if (file.isEmpty()) {
        // A list that marks no database: the first one is marked, and the next start opens it.
        const std::optional<QList<DatabaseEntry>> entries = m_databaseManager->databases();
        if (entries && !entries->isEmpty() &&
            std::none_of(entries->cbegin(), entries->cend(),
                         [](const DatabaseEntry& e) { return e.selected; })) {
            const DatabaseEntry& first = entries->first();
            m_prompter.alert(tr("No Database Selected"),
                             tr("None of the company databases in the list is marked to be opened. Corvanta "
                                "will start again and open \"%1\".")
                                 .arg(first.name),
                             {tr("OK")});
            QString why;
            if (m_databaseManager->selectDatabase(first.path, &why)) {
                m_databaseManager->requestRestart();
                return false;
            }
            m_prompter.alert(tr("Database List Not Saved"),
                             tr("The list of company databases \"%1\" could not be written: %2")
                                 .arg(m_databaseManager->databaseListFile(), why),
                             {tr("OK")});
        }
        failToInitialize();
        return false;
    }
    m_store = Store::open(file, &error);
    if (!m_store) {
        m_prompter.alert(error.description, error.reason, {tr("OK")});
        failToInitialize();
        return false;
    }
    // Record classes first: the default records already need their derived values.
    registerRecordClasses(*m_store);
    m_databaseManager->setStore(m_store.get());
    return true;
}

void ApplicationCore::failToInitialize()
{
    const StoreError error =
        StoreError::make(StoreError::StoreInitFailed, tr("Failed to initialize the store"),
                         tr("There was an error building up the data file."));
    m_prompter.alert(error.description, error.reason, {tr("OK")});
}

ApplicationCore::TerminateReply
ApplicationCore::applicationShouldTerminate(const std::function<void()>& saveSidebarState, const QDate& today)
{
    if (saveSidebarState)
        saveSidebarState();
    if (m_databaseManager) {
        // The backup holds what was saved before this quit; the pending changes follow it.
        m_databaseManager->backupApplicationFiles(today);
        m_databaseManager->pruneBackups(today);
    }
    if (!m_store)
        return TerminateReply::Now;
    EditingContext& context = m_store->mainContext();
    if (!context.hasChanges())
        return TerminateReply::Now;
    StoreError error;
    if (context.save(&error))
        return TerminateReply::Now;
    m_prompter.alert(error.description, error.reason, {tr("OK")});
    // Either answer quits: the question only warns.
    m_prompter.alert(tr("Could not save changes while quitting. Quit r?"),
                     tr("Quitting now will lose any changes you have made since the last successful save"),
                     {tr("Quit anyway"), tr("Cancel")});
    return TerminateReply::Now;
}

} // namespace corvanta::app
