#pragma once

namespace corvanta::store {
class Record;
}

namespace corvanta::editors {

// What the document editor hands a saved, numbered document to: printing, the PDF export and
// the e-mail preparation, and the preview of an unsaved one. The program implements it with its
// templates and windows.
class DocumentOutput
{
public:
    virtual ~DocumentOutput() = default;

    // Prints the document through its template, `copies` times.
    virtual void print(store::Record* document, int copies) = 0;
    // Offers a file name made from the document's number and writes the PDF there.
    virtual void saveAs(store::Record* document) = 0;
    // Opens the e-mail preparation for the document.
    virtual void sendEmail(store::Record* document) = 0;
    // Shows the document's PDF; the document need not be saved.
    virtual void preview(store::Record* document) = 0;
};

} // namespace corvanta::editors
