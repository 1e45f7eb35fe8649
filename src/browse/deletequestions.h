#pragma once

#include <QCoreApplication>
#include <QString>
#include <optional>

namespace corvanta::store {
class Record;
}

namespace corvanta::browse {

// What the browser asks before it deletes a client, an item or a to-do: the record's name, how
// many documents or document lines still use a client or an item, and the kind's button beside
// "Cancel". (A document's question is the document deleter's own.)
struct DeleteQuestion
{
    Q_DECLARE_TR_FUNCTIONS(DeleteQuestion)

public:
    QString message;
    QString informativeText;
    QString button;

    // The question for a client, item or to-do; nothing for any other record. The counts are
    // read from the record's context.
    static std::optional<DeleteQuestion> of(store::Record* record);
    static QString cancelButton() { return tr("Cancel"); }
};

} // namespace corvanta::browse
