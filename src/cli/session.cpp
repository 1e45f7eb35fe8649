#include "session.h"

#include "app/applicationcore.h"
#include "cliprompter.h"
#include "companies/databasemanager.h"
#include "store/editingcontext.h"
#include "store/store.h"

#include <QDir>
#include <QFileInfo>

namespace corvanta::cli {

Session::Session(CliPrompter& prompter, const companies::DatabaseFolders& folders,
                 const QString& shippedTemplates)
    : m_prompter(prompter)
    , m_folders(folders)
    , m_shippedTemplates(shippedTemplates)
{}

Session::~Session()
{
    m_store = nullptr;
    m_ownStore.reset();
    m_core.reset();
}

store::EditingContext& Session::context() const
{
    return m_store->mainContext();
}

companies::DatabaseManager* Session::databaseManager() const
{
    return m_core ? m_core->databaseManager() : nullptr;
}

QString Session::templateFilesDirectory() const
{
    if (const companies::DatabaseManager* manager = databaseManager())
        return manager->templateFilesDirectory();
    const QString folder =
        QDir(QFileInfo(m_store->path()).absolutePath()).filePath(QStringLiteral("templates"));
    QDir().mkpath(folder);
    return folder;
}

QString Session::tempFilesDirectory() const
{
    if (const companies::DatabaseManager* manager = databaseManager())
        return manager->databaseTempFilesDirectory();
    const QString folder = QDir(QFileInfo(m_store->path()).absolutePath()).filePath(QStringLiteral("temp"));
    QDir().mkpath(folder);
    return folder;
}

bool Session::open(const QString& databaseFile)
{
    return databaseFile.isEmpty() ? startFromList() : openFile(QFileInfo(databaseFile).absoluteFilePath());
}

bool Session::restart()
{
    m_store = nullptr;
    m_core.reset();
    return startFromList();
}

bool Session::startFromList()
{
    m_core = std::make_unique<app::ApplicationCore>(m_prompter, m_folders, m_shippedTemplates);
    if (m_core->start()) {
        m_store = m_core->store();
        return true;
    }
    m_core.reset();
    return false;
}

bool Session::openFile(const QString& file)
{
    // Opened as a start opens a database: record classes, then the default records of a new file.
    store::StoreError error;
    const QString templateFiles = QDir(QFileInfo(file).absolutePath()).filePath(QStringLiteral("templates"));
    m_ownStore = app::ApplicationCore::openCompanyDatabase(file, m_shippedTemplates, templateFiles, &error);
    if (!m_ownStore) {
        app::ApplicationCore::addRestoreAdvice(error, m_folders);
        m_prompter.alert(error.description, error.reason, {tr("OK")});
        return false;
    }
    m_store = m_ownStore.get();
    return true;
}

} // namespace corvanta::cli
