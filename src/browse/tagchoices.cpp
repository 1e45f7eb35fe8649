#include "browse/tagchoices.h"

#include "browse/listkind.h"
#include "predicate/literal.h"
#include "store/editingcontext.h"
#include "store/record.h"

namespace corvanta::browse {

using store::Record;

namespace {
QString s(const char* text)
{
    return QString::fromLatin1(text);
}
} // namespace

TagChoices::TagChoices(Record* record)
    : m_record(record)
{}

QList<Record*> TagChoices::userTags() const
{
    const qint64 kind = qint64(ListKinds::ofEntity(m_record->entityName()));
    if (kind == 0)
        return {};
    return m_record->context()->fetch(store::FetchRequest(
        s("Categories"), predicate::literal("type == %ld && subtype == NULL", {kind}), {{s("name")}}));
}

QList<TagChoices::Row> TagChoices::rows() const
{
    const QList<Record*> carried = m_record->relatedList(s("tags"));
    QList<Row> rows;
    for (Record* tag : userTags()) {
        rows << Row{tag, tag->value(s("name")).toString(), tag->value(s("foreground_color")).value<QColor>(),
                    tag->value(s("background_color")).value<QColor>(), carried.contains(tag)};
    }
    return rows;
}

bool TagChoices::setSelected(Record* tag, bool selected)
{
    if (!userTags().contains(tag))
        return false;
    const bool carries = m_record->relatedList(s("tags")).contains(tag);
    if (selected && !carries)
        m_record->addRelated(s("tags"), tag);
    else if (!selected && carries)
        m_record->removeRelated(s("tags"), tag);
    return true;
}

} // namespace corvanta::browse
