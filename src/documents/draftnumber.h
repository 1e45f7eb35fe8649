#pragma once

#include <QCoreApplication>
#include <QDateTime>

namespace corvanta::store {
class Record;
}

namespace corvanta::documents {

// The state of an invoice saved as a draft: no number, and in its place a text with the moment
// of saving ("DRAFT - 15/03/2024 10:30").
class DraftNumber
{
    Q_DECLARE_TR_FUNCTIONS(DraftNumber)

public:
    static QString text(const QDateTime& now);
    static void apply(store::Record* document, const QDateTime& now);
};

} // namespace corvanta::documents
