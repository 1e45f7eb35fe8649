#pragma once

#include "documents/documentoutput.h"
#include "model/record.h"

#include <QStringList>

namespace corvanta::documents::testing {

// Stands where the renderer will be: notes what was handed over, with the document's number
// as it was at that moment.
class RecordingOutput : public DocumentOutput
{
public:
    QStringList calls;

    void print(model::Record* document, int copies) override
    {
        calls << QStringLiteral("print %1 x%2").arg(numberOf(document)).arg(copies);
    }
    void saveAs(model::Record* document) override
    {
        calls << QStringLiteral("save as %1").arg(numberOf(document));
    }
    void sendEmail(model::Record* document) override
    {
        calls << QStringLiteral("e-mail %1").arg(numberOf(document));
    }
    void preview(model::Record* document) override
    {
        calls << QStringLiteral("preview %1").arg(numberOf(document));
    }

private:
    static QString numberOf(const model::Record* document)
    {
        return document->value(QStringLiteral("number_formatted")).toString();
    }
};

} // namespace corvanta::documents::testing
