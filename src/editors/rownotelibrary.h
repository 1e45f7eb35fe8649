#pragma once

#include <QList>
#include <QString>
#include <memory>

namespace corvanta::store {
class EditingContext;
class Record;
class Store;
} // namespace corvanta::store
namespace corvanta::support {
class Prompter;
}

namespace corvanta::editors {

// The library of reusable row notes (DocumentRowNotes), shared by all documents. It keeps its
// own editing context, so that a change of the library is stored at once, whatever becomes of
// the document being edited.
class RowNoteLibrary
{
public:
    struct Entry
    {
        QString title; // the menu title: one line, at most 50 characters and "..."
        QString note;  // the whole text
        qint64 pk = 0; // the note record
    };

    RowNoteLibrary(store::Store& store, support::Prompter& prompter);
    ~RowNoteLibrary();

    // Every note, by text, case-insensitively ascending.
    QList<Entry> entries();
    // A note's menu title: line breaks become spaces; 51 characters or more are cut to 50 and "...".
    static QString menuTitle(const QString& note);

    // Stores `text` as a new note, an empty one too. False when the save failed.
    bool add(const QString& text);
    // Deletes the note of an entry. False when the save failed.
    bool remove(const Entry& entry);

private:
    bool save();

    std::unique_ptr<store::EditingContext> m_context;
    support::Prompter& m_prompter;
};

} // namespace corvanta::editors
