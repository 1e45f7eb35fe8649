#pragma once

#include <QCoreApplication>
#include <QString>

namespace corvanta::store {
class EditingContext;
class Record;
} // namespace corvanta::store

namespace corvanta::documents {

// The eight document types by their integer code, as `type` of Documents stores it.
class DocumentTypes
{
    Q_DECLARE_TR_FUNCTIONS(DocumentTypes)

public:
    enum Type {
        Invoice = 0,
        Proforma = 1,
        Estimate = 2,
        Quotation = 3,
        DeliveryNote = 4,
        CreditNote = 5,
        CreditMemo = 6,
        PurchaseOrder = 7,
    };
    static constexpr int kCount = 8;
    // The `subtype` of the document category that holds cancellations.
    static constexpr int kCancellationSubtype = 100;

    static bool isValid(qint64 type) { return type >= 0 && type < kCount; }
    // The key that names the type in settings and company defaults ("invoice", "delivery_note"
    // ...). Throws std::out_of_range for a code outside 0 to 7.
    static QString typeNameByNumber(qint64 type);
    // The company's default template for a document type, or null.
    static store::Record* defaultTemplate(store::EditingContext& context, qint64 type);
    // The name shown to the user ("Invoice", "Pro Forma" ...); empty for an unknown code.
    static QString displayName(qint64 type);
};

} // namespace corvanta::documents
