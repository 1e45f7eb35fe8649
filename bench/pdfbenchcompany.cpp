#include "pdfbenchcompany.h"

#include "app/applicationcore.h"
#include "companygenerator.h"
#include "measuredprocess.h"
#include "model/companydatabase.h"
#include "predicate/literal.h"
#include "store/editingcontext.h"
#include "store/store.h"
#include "templates/shippedtemplates.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QSet>

namespace corvanta::bench {

namespace {

constexpr int kInvoicesAdded = 2;

} // namespace

PdfBenchCompany::PdfBenchCompany(QString path, int reportDocuments)
    : m_path(std::move(path))
    , m_reportDocuments(reportDocuments)
{}

bool PdfBenchCompany::generate(const QString& shippedTemplatesFolder, QString* error)
{
    store::StoreError storeError;
    bool generated = false;
    if (std::unique_ptr<store::Store> store = model::CompanyDatabase::open(m_path, &storeError)) {
        // A company of the usual shape, only with as many documents as the report needs.
        CompanyGenerator::Sizes sizes = CompanyGenerator::Sizes::scaled(0.05);
        sizes.documents = std::max(1, m_reportDocuments - kInvoicesAdded);
        sizes.documentRows = qint64(sizes.documents) * 10;
        CompanyGenerator generator(*store, sizes);
        generated = generator.generate(&storeError);
    }
    // The generator's store is closed first: a database is open in one place at a time.
    if (generated && completeReferenceRecords(shippedTemplatesFolder, &storeError))
        return true;
    *error = storeError.message();
    return false;
}

// What a generated company lacks against a new database: the settings it has not (number
// formats, print copies ...), the custom-field definitions, e-mail templates and report columns,
// all taken from a new database made as a first start makes it, and the shipped templates.
bool PdfBenchCompany::completeReferenceRecords(const QString& shippedTemplatesFolder,
                                               store::StoreError* error)
{
    const QDir folder = QFileInfo(m_path).absoluteDir();
    // corvanta-cli, given a database file, keeps template pictures in "templates" beside it.
    const QString pictures = folder.filePath(QStringLiteral("templates"));
    QDir().mkpath(pictures);
    const QString newCompany = folder.filePath(QStringLiteral("defaults.cvdb"));
    const QString newPictures = folder.filePath(QStringLiteral("defaults-templates"));
    QDir().mkpath(newPictures);
    std::unique_ptr<store::Store> defaults =
        app::ApplicationCore::openCompanyDatabase(newCompany, shippedTemplatesFolder, newPictures, error);
    std::unique_ptr<store::Store> store = defaults ? model::CompanyDatabase::open(m_path, error) : nullptr;
    if (!store)
        return false;
    store::EditingContext& context = store->mainContext();
    store::EditingContext& source = defaults->mainContext();

    QSet<QString> keys;
    for (const store::Record* setting : context.fetch(store::FetchRequest(QStringLiteral("Settings"))))
        keys.insert(setting->value(QStringLiteral("key")).toString());
    for (const store::Record* setting : source.fetch(store::FetchRequest(QStringLiteral("Settings")))) {
        if (!keys.contains(setting->value(QStringLiteral("key")).toString()))
            copyAttributes(*setting, context);
    }
    for (const QString& entity :
         {QStringLiteral("Compose"), QStringLiteral("EmailTemplates"), QStringLiteral("ReportColumns")}) {
        if (context.count(store::FetchRequest(entity)) == 0) {
            for (const store::Record* record : source.fetch(store::FetchRequest(entity)))
                copyAttributes(*record, context);
        }
    }

    store::Record* company = context.fetchFirst(store::FetchRequest(QStringLiteral("MyCompany")));
    if (!company->related(QStringLiteral("default_email_template")))
        company->setRelated(QStringLiteral("default_email_template"),
                            context.fetchFirst(store::FetchRequest(QStringLiteral("EmailTemplates"))));
    m_installedTemplates =
        templates::ShippedTemplates(shippedTemplatesFolder, pictures).install(context, company);
    return context.save(error);
}

void PdfBenchCompany::copyAttributes(const store::Record& record, store::EditingContext& into)
{
    store::Record* copy = into.insertRecord(record.entityName());
    for (const store::AttributeDescription& attribute : record.entity().attributes()) {
        if (!attribute.transient)
            copy->setValue(attribute.name, record.value(attribute.name));
    }
}

QStringList PdfBenchCompany::unambiguousItemNames(QString* client, store::StoreError* error) const
{
    std::unique_ptr<store::Store> store = model::CompanyDatabase::open(m_path, error);
    if (!store)
        return {};
    store::EditingContext& context = store->mainContext();
    const store::Record* customer = context.fetchFirst(
        store::FetchRequest(QStringLiteral("Clients"), predicate::literal("type == %@", {0})));
    *client = customer ? customer->value(QStringLiteral("full_name")).toString() : QString();

    const QList<store::Record*> items = context.fetch(store::FetchRequest(QStringLiteral("Items")), error);
    QHash<QString, int> uses;
    for (const store::Record* item : items)
        ++uses[item->value(QStringLiteral("name")).toString()];
    QStringList names;
    for (const store::Record* item : items) {
        const QString name = item->value(QStringLiteral("name")).toString();
        if (uses.value(name) == 1 && !name.isEmpty() && !name.contains(QLatin1Char(';')))
            names << name;
    }
    return names;
}

QString PdfBenchCompany::addInvoice(const QString& cli, const QStringList& cliEnvironment, int rows,
                                    QString* error)
{
    QString client;
    store::StoreError storeError;
    const QStringList items = unambiguousItemNames(&client, &storeError);
    if (items.isEmpty() || client.isEmpty()) {
        *error = storeError.message().isEmpty()
                     ? QStringLiteral("the company has no client or item to invoice")
                     : storeError.message();
        return {};
    }
    QStringList arguments{QStringLiteral("--database"), m_path,
                          QStringLiteral("documents"),  QStringLiteral("new"),
                          QStringLiteral("--type"),     QStringLiteral("invoice"),
                          QStringLiteral("--client"),   client};
    for (int row = 0; row < rows; ++row)
        arguments << QStringLiteral("--row")
                  << QStringLiteral("%1;%2").arg(items.at(row % items.size())).arg(1 + row % 9);

    const QString folder = QFileInfo(m_path).absolutePath();
    const QString output = QDir(folder).filePath(QStringLiteral("invoice-%1.out").arg(rows));
    const QString messages = QDir(folder).filePath(QStringLiteral("invoice-%1.err").arg(rows));
    MeasuredProcess process(cli, arguments, cliEnvironment);
    process.setOutputFiles(output, messages);
    const MeasuredProcess::Result result = process.run();
    QFile printed(output);
    QFile complaint(messages);
    if (!result.succeeded() || !printed.open(QIODevice::ReadOnly)) {
        complaint.open(QIODevice::ReadOnly);
        *error = result.error + QLatin1Char(' ') + QString::fromUtf8(complaint.readAll()).trimmed();
        return {};
    }
    // It prints the number, then the identifier.
    const QStringList lines =
        QString::fromUtf8(printed.readAll()).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    if (lines.size() < 2) {
        *error = QStringLiteral("corvanta-cli printed no identifier for the new invoice");
        return {};
    }
    return lines.at(1).trimmed();
}

} // namespace corvanta::bench
