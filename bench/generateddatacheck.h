#pragma once

#include "companygenerator.h"
#include "store/editingcontext.h"

#include <QStringList>

namespace corvanta::bench {

// Reads a generated company back through the store and compares it with what the generator
// says it made: records per entity, per kind, kind tags, drafts, payment states, the sums of
// the rows against each document's sums, the copied client details, and tag links.
class GeneratedDataCheck
{
public:
    explicit GeneratedDataCheck(store::EditingContext& context);

    // One line per disagreement; empty when the database holds what was generated.
    QStringList compare(const CompanyGenerator::Counts& expected);
    // How many figures the last compare() read back.
    int comparisons() const { return m_comparisons; }

private:
    void expectCount(const QString& what, const store::FetchRequest& request, qint64 expected);
    void expect(const QString& what, qint64 actual, qint64 expected);
    void checkKinds(const QString& entity, int categoryType, const qint64* expected, int kinds);
    void checkInvoices(const CompanyGenerator::Counts& expected);
    void checkDocumentContents(qint64 documents);
    void checkTagLinks(const CompanyGenerator::Counts& expected);

    store::EditingContext& m_context;
    QStringList m_failures;
    int m_comparisons = 0;
};

} // namespace corvanta::bench
