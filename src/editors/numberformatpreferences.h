#pragma once

#include "documents/clock.h"

#include <QCoreApplication>
#include <QList>
#include <QStringList>

namespace corvanta::store {
class EditingContext;
struct StoreError;
} // namespace corvanta::store

namespace corvanta::editors {

// The number formats page of the preferences: the eight formats in their listed order, each
// edited as tokens with a live sample, a token menu and a reset to its default.
class NumberFormatPreferences
{
    Q_DECLARE_TR_FUNCTIONS(NumberFormatPreferences)

public:
    NumberFormatPreferences(store::EditingContext& mainContext,
                            documents::Clock clock = documents::systemClock());

    // The document types in the order of the list: invoice, proforma, estimate, quotation,
    // delivery note, credit note, purchase order, credit memo.
    static QList<int> listedTypes();
    static QString label(int type);

    QString format(int type);
    QStringList tokens(int type) { return format(type).split(QLatin1Char(',')); }
    // The sample of a format as it is being typed (today's week-based year, number 123).
    QString sample(const QString& format) const;

    // Stores a format as typed; false when the save failed.
    bool setFormat(int type, const QString& format, store::StoreError* error = nullptr);
    // Replaces the token at `index` with an entry of its menu and stores the result.
    bool chooseToken(int type, int index, const QString& entry, store::StoreError* error = nullptr);
    // Stores the type's default format again.
    bool reset(int type, store::StoreError* error = nullptr);

private:
    store::EditingContext& m_context;
    documents::Clock m_clock;
};

} // namespace corvanta::editors
