#include "applicationcore.h"

#include "companies/backupfolder.h"
#include "companies/databasemanager.h"
#include "companiesmenu.h"
#include "databasenamewindow.h"
#include "model/companydatabase.h"
#include "model/defaultrecords.h"
#include "store/editingcontext.h"
#include "store/store.h"
#include "support/prompter.h"
#include "templates/shippedtemplates.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

namespace corvanta::app {

using companies::DatabaseFolders;
using companies::DatabaseManager;
using store::EditingContext;
using store::FetchRequest;
using store::Record;
using store::StoreError;
using support::Prompter;

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
    m_companiesMenu.reset();
    m_nameWindow.reset();
    if (m_databaseManager)
        m_databaseManager->setStore(nullptr);
    m_store.reset();
}

QString ApplicationCore::defaultShippedTemplatesFolder()
{
    // An installed program finds them beside its data; one run from the build, where the build
    // packed them.
    if (QCoreApplication::instance()) {
        const QString installed = QDir(QCoreApplication::applicationDirPath())
                                      .filePath(QStringLiteral(CORVANTA_INSTALLED_TEMPLATES_DIR));
        if (QFileInfo(installed).isDir())
            return QDir::cleanPath(installed);
    }
    return QStringLiteral(CORVANTA_SHIPPED_TEMPLATES_DIR);
}

bool ApplicationCore::isRestartRequested() const
{
    return m_databaseManager && m_databaseManager->isRestartRequested();
}

std::unique_ptr<store::Store> ApplicationCore::openCompanyDatabase(const QString& file,
                                                                   const QString& shippedTemplates,
                                                                   const QString& templateFiles,
                                                                   StoreError* error, bool* insertedDefaults)
{
    std::unique_ptr<store::Store> store = model::CompanyDatabase::open(file, error);
    if (!store)
        return nullptr;
    model::DefaultRecords defaults(
        store->mainContext(),
        [shippedTemplates, templateFiles](EditingContext& context, Record* company, QString*) {
            templates::ShippedTemplates(shippedTemplates, templateFiles).install(context, company);
            return true;
        });
    if (!defaults.initDatabaseRecords(error))
        return nullptr;
    if (insertedDefaults)
        *insertedDefaults = defaults.insertedDefaults();
    return store;
}

bool ApplicationCore::start()
{
    // 1. The database manager.
    m_databaseManager = std::make_unique<DatabaseManager>(m_prompter, m_folders);
    m_nameWindow = std::make_unique<DatabaseNameWindow>(*m_databaseManager, m_prompter);
    m_companiesMenu = std::make_unique<CompaniesMenu>(*m_databaseManager, *m_nameWindow);

    // 2. The selected database's store, its default records or its version.
    if (!openStore())
        return false;

    // 3. The company-databases menu.
    m_companiesMenu->setupMyCompaniesMenu();

    // 4. The company record.
    m_myCompany = m_store->mainContext().fetchFirst(FetchRequest(QStringLiteral("MyCompany")));
    return true;
}

bool ApplicationCore::openStore()
{
    StoreError error;
    if (!m_databaseManager->checkApplicationFilesDirectory(&error)) {
        m_prompter.alert(error.description, error.reason, {tr("OK")});
        failToInitialize();
        return false;
    }
    // A list that marks no database opens nothing; the list stays as it is.
    const QString file = m_databaseManager->selectedDatabaseFile();
    if (file.isEmpty()) {
        failToInitialize();
        return false;
    }
    m_store = openCompanyDatabase(file, m_shippedTemplates, m_databaseManager->templateFilesDirectory(),
                                  &error, &m_insertedDefaults);
    if (!m_store) {
        addRestoreAdvice(error, m_folders);
        m_prompter.alert(error.description, error.reason, {tr("OK")});
        failToInitialize();
        return false;
    }
    m_databaseManager->setStore(m_store.get());
    return true;
}

void ApplicationCore::addRestoreAdvice(StoreError& error, const DatabaseFolders& folders)
{
    if (error.code != StoreError::Damaged)
        return;
    const companies::BackupFolder backups(folders.documents);
    const QString latest = backups.latestArchive();
    const QString advice = latest.isEmpty() ? tr("No daily backup was found in \"%1\".").arg(backups.path())
                                            : tr("The latest daily backup is \"%1\".").arg(latest);
    error.reason = error.reason.isEmpty() ? advice : error.reason + QLatin1Char(' ') + advice;
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
