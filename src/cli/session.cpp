#include "session.h"

#include "app/applicationcore.h"
#include "cliprompter.h"
#include "model/databasemanager.h"
#include "model/defaultrecords.h"
#include "model/editingcontext.h"
#include "model/store.h"
#include "templates/shippedtemplates.h"

#include <QDir>
#include <QFileInfo>

namespace corvanta::cli {

Session::Session(CliPrompter& prompter, const model::DatabaseFolders& folders,
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

model::EditingContext& Session::context() const
{
    return m_store->mainContext();
}

model::DatabaseManager* Session::databaseManager() const
{
    return m_core ? m_core->databaseManager() : nullptr;
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
    // A list that selects no database has its first entry selected and asks for a start
    // again; the desktop program restarts then, this one starts once more at once.
    for (int attempt = 0; attempt < 2; ++attempt) {
        m_core = std::make_unique<app::ApplicationCore>(m_prompter, m_folders, m_shippedTemplates);
        if (m_core->start()) {
            m_store = m_core->store();
            return true;
        }
        if (!m_core->isRestartRequested())
            break;
    }
    m_core.reset();
    return false;
}

bool Session::openFile(const QString& file)
{
    model::StoreError error;
    m_ownStore = model::Store::open(file, &error);
    if (!m_ownStore) {
        m_prompter.alert(error.description, error.reason, {tr("OK")});
        return false;
    }
    // The same order as at start-up: record classes, then the default records of a new file.
    app::ApplicationCore::registerRecordClasses(*m_ownStore);
    const QString templateFiles = QDir(QFileInfo(file).absolutePath()).filePath(QStringLiteral("templates"));
    const QString shipped = m_shippedTemplates;
    model::DefaultRecords defaults(
        m_ownStore->mainContext(),
        [shipped, templateFiles](model::EditingContext& context, model::Record* company, QString*) {
            templates::ShippedTemplates(shipped, templateFiles).install(context, company);
            return true;
        });
    if (!defaults.initDatabaseRecords(&error)) {
        m_prompter.alert(error.description, error.reason, {tr("OK")});
        m_ownStore.reset();
        return false;
    }
    m_store = m_ownStore.get();
    return true;
}

} // namespace corvanta::cli
