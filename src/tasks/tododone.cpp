#include "tododone.h"

#include "predicate/literal.h"
#include "store/editingcontext.h"

namespace corvanta::tasks {

using store::Record;

namespace {

QString s(const char* text)
{
    return QString::fromLatin1(text);
}

} // namespace

bool ToDoDone::toggle(Record* todo)
{
    const bool nowDone = !todo->value(s("done")).toBool();
    todo->setValue(s("done"), nowDone);
    for (const qint64 state : {qint64(0), qint64(1)}) {
        const QList<Record*> tags = todo->context()->fetch(
            store::FetchRequest(s("Categories"), predicate::literal("type == 4 && subtype == %ld", {state})));
        for (Record* tag : tags) {
            if ((state == 1) == nowDone) {
                if (!todo->relatedList(s("tags")).contains(tag))
                    todo->addRelated(s("tags"), tag);
            } else {
                todo->removeRelated(s("tags"), tag);
            }
        }
    }
    return nowDone;
}

} // namespace corvanta::tasks
