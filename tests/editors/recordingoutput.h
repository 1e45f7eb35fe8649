#pragma once

#include "editors/documentoutput.h"
#include "store/record.h"

#include <QStringList>

namespace corvanta::documents::testing {

using namespace corvanta::store;

// Stands where the renderer will be: notes what was handed over, with the document's number
// as it was at that moment.
class RecordingOutput : public editors::DocumentOutput
{
public:
    QStringList calls;

    void print(store::Record* document, int copies) override
    {
        calls << QStringLiteral("print %1 x%2").arg(numberOf(document)).arg(copies);
    }
    void saveAs(store::Record* document) override
    {
        calls << QStringLiteral("save as %1").arg(numberOf(document));
    }
    void sendEmail(store::Record* document) override
    {
        calls << QStringLiteral("e-mail %1").arg(numberOf(document));
    }
    void preview(store::Record* document) override
    {
        calls << QStringLiteral("preview %1").arg(numberOf(document));
    }

private:
    static QString numberOf(const store::Record* document)
    {
        return document->value(QStringLiteral("number_formatted")).toString();
    }
};

} // namespace corvanta::documents::testing
