#include "draftnumber.h"

#include "store/record.h"

#include <QLocale>

namespace corvanta::documents {

QString DraftNumber::text(const QDateTime& now)
{
    return tr("DRAFT - %1 %2")
        .arg(QLocale().toString(now.date(), QLocale::ShortFormat), now.toString(QStringLiteral("HH:mm")));
}

void DraftNumber::apply(store::Record* document, const QDateTime& now)
{
    document->setValue(QStringLiteral("number_formatted"), text(now));
    document->setValue(QStringLiteral("number"), QVariant());
    document->setValue(QStringLiteral("draft"), true);
}

} // namespace corvanta::documents
