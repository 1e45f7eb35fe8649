#pragma once

#include <QCoreApplication>
#include <QString>
#include <functional>

namespace corvanta::store {
class EditingContext;
class Record;
struct StoreError;
} // namespace corvanta::store

namespace corvanta::model {

// The records every new company database starts with: settings, the company, units, taxes,
// payment types, bank, due days, the sidebar tree, custom-field definitions, templates, the
// e-mail template, currencies and report columns. A database that has settings already only has
// its data-model version read.
class DefaultRecords
{
    Q_DECLARE_TR_FUNCTIONS(DefaultRecords)

public:
    // Inserts the templates shipped with the program and makes them the company's defaults.
    // Given by the program; the model itself knows no template files.
    using TemplateInstaller =
        std::function<bool(store::EditingContext& context, store::Record* myCompany, QString* error)>;

    explicit DefaultRecords(store::EditingContext& mainContext, TemplateInstaller installTemplates = {});

    // Inserts the defaults when the database has no Settings rows, otherwise reads its
    // `version`; saves the context either way. On failure nothing is stored.
    bool initDatabaseRecords(store::StoreError* error = nullptr);
    // Whether the last run inserted the defaults.
    bool insertedDefaults() const { return m_inserted; }
    // The `version` setting the last run found in an existing database.
    const QString& foundVersion() const { return m_foundVersion; }

private:
    bool insertDefaults(store::StoreError* error);
    void insertSettings();
    store::Record* insertCompany();
    void insertReferenceLists(store::Record* company);
    void insertCategories(store::Record* company);
    void insertCustomFieldDefinitions();
    void insertCurrencies(store::Record* company);
    void insertReportColumns();

    store::EditingContext& m_context;
    TemplateInstaller m_installTemplates;
    bool m_inserted = false;
    QString m_foundVersion;
};

} // namespace corvanta::model
