#pragma once

#include <QCoreApplication>
#include <QDateTime>
#include <optional>

namespace corvanta::store {
class EditingContext;
}
namespace corvanta::support {
class Prompter;
}

namespace corvanta::documents {

// The next number of a document type's sequence, which restarts every calendar year. Numbers are
// the stored documents' own: nothing is reserved, and drafts take none.
class DocumentNumbering
{
    Q_DECLARE_TR_FUNCTIONS(DocumentNumbering)

public:
    struct NextNumber
    {
        qint64 nextNumber = 1;
        QString formattedNumber;
    };

    DocumentNumbering(store::EditingContext& context, support::Prompter& prompter);

    // The number after the highest stored one of `type` in the year of `date` (1 for the first),
    // rendered in the type's number format. With `showStartNumberWindow`, the first number of a
    // year is asked for instead (1 to 99999; anything else gives 1).
    NextNumber nextNumberByType(qint64 type, const QDateTime& date, bool showStartNumberWindow);

    // The highest number of a non-draft document of `type` dated in the year of `date`; 0 when
    // there is none.
    qint64 highestNumber(qint64 type, const QDateTime& date);

    // What the start-number window's answer gives: its leading integer when from 1 to 99999,
    // otherwise 1 (also when the window was cancelled).
    static qint64 startNumberFrom(const std::optional<QString>& answer);

private:
    store::EditingContext& m_context;
    support::Prompter& m_prompter;
};

} // namespace corvanta::documents
