#pragma once

#include "crashsoaktoken.h"

#include <QString>
#include <QStringList>
#include <optional>

namespace corvanta::bench {

// One command a writer runs.
struct Operation
{
    enum class Kind { NewDocument, Pay, Finalize, Cancel, Backup, Info };
    static constexpr int kKindCount = 6;

    Kind kind = Kind::Info;
    QStringList arguments;              // of corvanta-cli, --json first
    std::optional<DocumentToken> token; // of a new document
    bool draft = false;                 // a new invoice kept a draft
    QString target;                     // the identifier of the document paid, finalised, cancelled
    QString amount;                     // of a payment, as typed

    static QString kindName(Kind kind);
    // The document types of `documents new`, in the order of their numbers in the data model.
    static const QStringList& typeNames();
};

} // namespace corvanta::bench
