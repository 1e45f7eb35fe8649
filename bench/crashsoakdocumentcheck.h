#pragma once

#include "crashsoakledger.h"
#include "crashsoakstoreddocument.h"

#include <QStringList>

namespace corvanta::bench {

// Whether one stored document is whole: every row its token names, each with the quantity,
// price and tax it was written with (negated in a cancellation), and sums, tax summary and
// payment total that agree with the rows. Holds for any document found, acknowledged or not.
class DocumentCheck
{
public:
    explicit DocumentCheck(const Ledger& ledger);

    // What is wrong with `document`; empty when it is whole. `serial` and `negated` tell which
    // command wrote it and whether it is a cancellation (both unset when its rows say nothing).
    QStringList verify(const StoredDocument& document, int* serial, bool* negated) const;

private:
    QStringList verifyRows(const StoredDocument& document, int serial, bool negated) const;
    static QStringList verifySums(const StoredDocument& document);

    const Ledger& m_ledger;
};

} // namespace corvanta::bench
