#pragma once

#include <QList>

namespace corvanta::store {
class Record;
}

namespace corvanta::browse {

// The commands of a list's context menu and of the browser's record menu.
enum class RecordCommand {
    Sort,
    New,
    Edit,
    Duplicate,
    Delete,
    Cancel,
    SendEmail,
    SaveAs,
    Preview,
    Print,
    AddToDocument,
    Tags,
    DesignTemplate,
};

// Which commands a list's selection allows: the sort menu always; every other command exactly
// one selected record; cancelling in addition a final invoice that is not cancelled yet.
class CommandAvailability
{
public:
    static bool isEnabled(RecordCommand command, const QList<store::Record*>& selection);
};

} // namespace corvanta::browse
