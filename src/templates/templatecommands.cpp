#include "templatecommands.h"

#include "elementtransformers.h"
#include "newelement.h"
#include "store/editingcontext.h"
#include "store/record.h"

namespace corvanta::templates {

using store::Record;

namespace {

const QString kElements = QStringLiteral("template_elements");
const QString kIdentifier = QStringLiteral("identifier");

QVariantMap valuesOf(const Record* record, const QStringList& keys)
{
    QVariantMap values;
    for (const QString& key : keys)
        values.insert(key, record->value(key));
    return values;
}

void setValues(Record* record, const QVariantMap& values)
{
    for (auto it = values.cbegin(); it != values.cend(); ++it)
        record->setValue(it.key(), it.value());
}

} // namespace

TemplateCommand::TemplateCommand(Record* templ, QUndoCommand* parent)
    : QUndoCommand(parent)
    , m_template(templ)
{}

Record* TemplateCommand::element(const QString& identifier) const
{
    for (Record* candidate : m_template->relatedList(kElements)) {
        if (identifierOf(candidate) == identifier)
            return candidate;
    }
    return nullptr;
}

QString TemplateCommand::identifierOf(const Record* element)
{
    return element->value(kIdentifier).toString();
}

QVariantMap TemplateCommand::snapshot(const Record* element)
{
    QVariantMap values;
    for (const store::AttributeDescription& attribute : element->entity().attributes()) {
        if (!attribute.transient)
            values.insert(attribute.name, element->value(attribute.name));
    }
    return values;
}

Record* TemplateCommand::restore(const QVariantMap& values) const
{
    Record* element = m_template->context()->insertRecord(QStringLiteral("TemplateElements"), values);
    element->setRelated(QStringLiteral("template"), m_template);
    return element;
}

InsertElementCommand::InsertElementCommand(Record* templ, const QString& type, int pageSide,
                                           const QString& section, std::optional<QPointF> at,
                                           QUndoCommand* parent)
    : TemplateCommand(templ, parent)
    , m_type(type)
    , m_pageSide(pageSide)
    , m_section(section)
    , m_at(at)
{
    setText(tr("Insert %1").arg(MultipleNameValueTransformer().transformedValue(type).toString()));
}

void InsertElementCommand::redo()
{
    if (!m_values.isEmpty()) {
        restore(m_values);
        return;
    }
    const Record* made =
        NewElement::insert(*m_template->context(), m_template, m_type, m_pageSide, m_section, m_at);
    if (made)
        m_values = snapshot(made);
    else
        setObsolete(true);
}

void InsertElementCommand::undo()
{
    if (Record* made = inserted())
        m_template->context()->deleteRecord(made);
}

Record* InsertElementCommand::inserted() const
{
    return m_values.isEmpty() ? nullptr : element(m_values.value(kIdentifier).toString());
}

DeleteElementsCommand::DeleteElementsCommand(Record* templ, const QList<Record*>& elements,
                                             QUndoCommand* parent)
    : TemplateCommand(templ, parent)
{
    for (const Record* element : elements)
        m_elements << snapshot(element);
    setText(tr("Delete"));
}

void DeleteElementsCommand::redo()
{
    for (const QVariantMap& values : std::as_const(m_elements)) {
        if (Record* gone = element(values.value(kIdentifier).toString()))
            m_template->context()->deleteRecord(gone);
    }
}

void DeleteElementsCommand::undo()
{
    for (const QVariantMap& values : std::as_const(m_elements))
        restore(values);
}

ChangeElementValuesCommand::ChangeElementValuesCommand(Record* templ, const QList<Record*>& elements,
                                                       const QVariantMap& values, QUndoCommand* parent)
    : TemplateCommand(templ, parent)
    , m_after(values)
{
    for (const Record* changed : elements) {
        m_identifiers << identifierOf(changed);
        m_before << valuesOf(changed, values.keys());
    }
    setText(tr("Change"));
}

void ChangeElementValuesCommand::redo()
{
    for (const QString& identifier : std::as_const(m_identifiers)) {
        if (Record* changed = element(identifier))
            setValues(changed, m_after);
    }
}

void ChangeElementValuesCommand::undo()
{
    for (qsizetype i = 0; i < m_identifiers.size(); ++i) {
        if (Record* changed = element(m_identifiers.at(i)))
            setValues(changed, m_before.at(i));
    }
}

bool ChangeElementValuesCommand::mergeWith(const QUndoCommand* other)
{
    const auto* next = static_cast<const ChangeElementValuesCommand*>(other);
    if (next->m_identifiers != m_identifiers || next->m_after.keys() != m_after.keys())
        return false;
    m_after = next->m_after;
    // Dragged back to where it started: nothing is left to undo.
    setObsolete(std::all_of(m_before.cbegin(), m_before.cend(),
                            [&](const QVariantMap& before) { return before == m_after; }));
    return true;
}

ChangeTemplateValuesCommand::ChangeTemplateValuesCommand(Record* templ, const QVariantMap& values,
                                                         QUndoCommand* parent)
    : TemplateCommand(templ, parent)
    , m_before(valuesOf(templ, values.keys()))
    , m_after(values)
{
    setText(tr("Change"));
}

void ChangeTemplateValuesCommand::redo()
{
    setValues(m_template, m_after);
}

void ChangeTemplateValuesCommand::undo()
{
    setValues(m_template, m_before);
}

bool ChangeTemplateValuesCommand::mergeWith(const QUndoCommand* other)
{
    const auto* next = static_cast<const ChangeTemplateValuesCommand*>(other);
    if (next->m_after.keys() != m_after.keys())
        return false;
    m_after = next->m_after;
    setObsolete(m_before == m_after);
    return true;
}

} // namespace corvanta::templates
