#include "documenttypes.h"

#include "model/companyrecord.h"

#include <stdexcept>

namespace corvanta::documents {

namespace {

const char* const kTypeNames[DocumentTypes::kCount] = {
    "invoice",       "proforma",    "estimate",    "quotation",
    "delivery_note", "credit_note", "credit_memo", "purchase_order",
};

const char* const kDisplayNames[DocumentTypes::kCount] = {
    QT_TRANSLATE_NOOP("DocumentTypes", "Invoice"),       QT_TRANSLATE_NOOP("DocumentTypes", "Pro Forma"),
    QT_TRANSLATE_NOOP("DocumentTypes", "Estimate"),      QT_TRANSLATE_NOOP("DocumentTypes", "Quotation"),
    QT_TRANSLATE_NOOP("DocumentTypes", "Delivery Note"), QT_TRANSLATE_NOOP("DocumentTypes", "Credit Note"),
    QT_TRANSLATE_NOOP("DocumentTypes", "Credit Memo"),   QT_TRANSLATE_NOOP("DocumentTypes", "Purchase Order"),
};

} // namespace

QString DocumentTypes::typeNameByNumber(qint64 type)
{
    if (!isValid(type))
        throw std::out_of_range("document type code outside 0 to 7");
    return QString::fromLatin1(kTypeNames[type]);
}

QString DocumentTypes::displayName(qint64 type)
{
    return isValid(type) ? tr(kDisplayNames[type]) : QString();
}

store::Record* DocumentTypes::defaultTemplate(store::EditingContext& context, qint64 type)
{
    if (!isValid(type))
        return nullptr;
    return model::CompanyRecord::defaultRecord(context,
                                               QStringLiteral("default_template_") + typeNameByNumber(type));
}

} // namespace corvanta::documents
