#pragma once

#include "store/storeerror.h"

#include <QString>
#include <QStringList>

namespace corvanta::store {
class EditingContext;
class Record;
} // namespace corvanta::store

namespace corvanta::bench {

// The company database the PDF benchmark renders from: a generated company whose documents,
// with the two invoices added afterwards, make up the report; the templates shipped with the
// program installed as its defaults; and a short and a long invoice written by corvanta-cli
// itself, so that their rows, tax summary and sums are the document logic's.
class PdfBenchCompany
{
public:
    // `reportDocuments` documents in all, the two invoices included.
    PdfBenchCompany(QString path, int reportDocuments);

    // Generates the company and installs the templates from `shippedTemplatesFolder`, with
    // their pictures beside the database where corvanta-cli looks for them.
    bool generate(const QString& shippedTemplatesFolder, QString* error);
    // Writes a final invoice of `rows` item rows through `cli` and returns its identifier.
    QString addInvoice(const QString& cli, const QStringList& cliEnvironment, int rows, QString* error);

    const QString& path() const { return m_path; }
    int installedTemplates() const { return m_installedTemplates; }

private:
    bool completeReferenceRecords(const QString& shippedTemplatesFolder, store::StoreError* error);
    static void copyAttributes(const store::Record& record, store::EditingContext& into);
    // Item names that name exactly one item and can stand in a "NAME;QTY" row argument.
    QStringList unambiguousItemNames(QString* client, store::StoreError* error) const;

    QString m_path;
    int m_reportDocuments;
    int m_installedTemplates = 0;
};

} // namespace corvanta::bench
