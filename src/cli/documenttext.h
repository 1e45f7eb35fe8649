#pragma once

#include <QCoreApplication>
#include <QTextStream>

namespace corvanta::store {
class Record;
}

namespace corvanta::cli {

// A document as readable text: its number, type, state, client and dates, its rows and tax
// summary in aligned tables, its sums and payments, every amount in the document's currency.
class DocumentText
{
    Q_DECLARE_TR_FUNCTIONS(DocumentText)

public:
    static void write(QTextStream& out, const store::Record* document);
    // An amount of the document in its currency's format.
    static QString amount(const store::Record* document, double value);
    // "Invoice", "Pro Forma" ..., "Cancellation" for the twin of a cancelled invoice.
    static QString typeName(const store::Record* document);
    // Whether the document is the negative twin made by a cancellation (not the one cancelled).
    static bool isCancellation(const store::Record* document);
};

} // namespace corvanta::cli
