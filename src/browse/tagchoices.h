#pragma once

#include <QColor>
#include <QList>
#include <QString>

namespace corvanta::store {
class Record;
}

namespace corvanta::browse {

// The tags a user may tick for one record: the user tags of the record's kind (system tags are
// the program's and never offered), by name, each marked when the record carries it. Ticking
// or unticking changes only that tag among the record's `tags`.
class TagChoices
{
public:
    struct Row
    {
        store::Record* tag = nullptr;
        QString name;
        QColor foreground;
        QColor background;
        bool selected = false;
    };

    explicit TagChoices(store::Record* record);

    // Built afresh on each call from the record's context.
    QList<Row> rows() const;
    // Adds `tag` to the record's tags or takes it away; a tag that is not one of the rows (a
    // system tag, another kind's tag) is refused with false.
    bool setSelected(store::Record* tag, bool selected);

private:
    QList<store::Record*> userTags() const;

    store::Record* m_record;
};

} // namespace corvanta::browse
