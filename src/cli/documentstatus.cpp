#include "documentstatus.h"

#include "documents/paymentstatus.h"
#include "store/record.h"

namespace corvanta::cli {

QString DocumentStatus::of(const store::Record* document)
{
    if (!document)
        return {};
    if (!document->value(QStringLiteral("cancel_reference")).isNull())
        return QStringLiteral("cancelled");
    if (document->value(QStringLiteral("draft")).toBool())
        return QStringLiteral("draft");
    if (documents::PaymentStatus::isPaid(document))
        return QStringLiteral("paid");
    if (documents::PaymentStatus::isUnpaid(document))
        return QStringLiteral("unpaid");
    return {};
}

} // namespace corvanta::cli
