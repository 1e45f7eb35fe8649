#pragma once

#include <QString>

namespace corvanta::store {
class EditingContext;
class Record;
} // namespace corvanta::store

namespace corvanta::bench {

// The HTML that the HTML-to-PDF engines render in the benchmark, written from the same
// database contents Corvanta renders: for an invoice the sender, the client's address, the
// dates, a table of every row with its header, the tax summary, the sums and the payment
// details; for the report one line per document and the grand totals. Pages are numbered
// through CSS page-margin boxes where the engine supports them.
class PeerHtml
{
public:
    // The document with that identifier; false when there is none or the file cannot be written.
    static bool writeInvoice(store::EditingContext& context, const QString& identifier, const QString& path);
    // Every document, in date order.
    static bool writeReport(store::EditingContext& context, const QString& path);

private:
    static QString page(const QString& title, const QString& body);
    static QString invoiceBody(const store::Record& document);
    static QString reportBody(store::EditingContext& context, int* documents);
    static bool write(const QString& path, const QString& html);
};

} // namespace corvanta::bench
