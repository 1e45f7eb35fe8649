#pragma once

#include <QCoreApplication>
#include <QString>

namespace corvanta::store {
class Record;
}

namespace corvanta::exchange {

// Who an e-mail about a client or a document goes to, and the name it greets.
class EmailRecipient
{
    Q_DECLARE_TR_FUNCTIONS(EmailRecipient)

public:
    // A document's `client_email`; a client's first address of `emails` (a list joined by ",");
    // "No Email" when that is empty, for the user to correct in the mail program.
    static QString toEmail(const store::Record* selected);
    // A client's `full_name`, a document's `client_full_name`.
    static QString clientName(const store::Record* selected);
    // The recipient put in when there is no address.
    static QString noEmail();
    static bool isDocument(const store::Record* selected);
};

} // namespace corvanta::exchange
