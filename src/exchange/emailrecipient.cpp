#include "emailrecipient.h"

#include "store/record.h"

namespace corvanta::exchange {

namespace {

QString s(const char* text)
{
    return QString::fromLatin1(text);
}

} // namespace

QString EmailRecipient::noEmail()
{
    return tr("No Email");
}

bool EmailRecipient::isDocument(const store::Record* selected)
{
    return selected && selected->entityName() == QLatin1String("Documents");
}

QString EmailRecipient::toEmail(const store::Record* selected)
{
    QString address;
    if (isDocument(selected))
        address = selected->value(s("client_email")).toString().trimmed();
    else if (selected)
        address = selected->value(s("emails")).toString().section(QLatin1Char(','), 0, 0).trimmed();
    return address.isEmpty() ? noEmail() : address;
}

QString EmailRecipient::clientName(const store::Record* selected)
{
    if (!selected)
        return {};
    return selected->value(isDocument(selected) ? s("client_full_name") : s("full_name")).toString();
}

} // namespace corvanta::exchange
