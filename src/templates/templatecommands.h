#pragma once

#include <QCoreApplication>
#include <QList>
#include <QPointF>
#include <QStringList>
#include <QUndoCommand>
#include <QVariantMap>
#include <optional>

namespace corvanta::store {
class Record;
}

namespace corvanta::templates {

// The design editor's undoable changes of a template and its elements, for a QUndoStack. They
// change the records of the template's editing context and leave saving to the editor.
// Elements are found again by their `identifier`, never by pointer: an element that a step
// deletes comes back as a new record with every value it had, its identifier included.
class TemplateCommand : public QUndoCommand
{
    Q_DECLARE_TR_FUNCTIONS(TemplateCommand)

public:
    // Ids under which QUndoStack merges consecutive commands of a kind.
    enum MergeId {
        ChangeElementValuesId = 0x7401,
        ChangeTemplateValuesId = 0x7402,
    };

protected:
    TemplateCommand(store::Record* templ, QUndoCommand* parent);

    // The template's element with `identifier`, or null.
    store::Record* element(const QString& identifier) const;
    static QString identifierOf(const store::Record* element);
    // Every stored attribute of an element.
    static QVariantMap snapshot(const store::Record* element);
    // A new element of the template from a snapshot.
    store::Record* restore(const QVariantMap& values) const;

    store::Record* m_template;
};

// Inserts a new element (NewElement's defaults). Made obsolete by an unknown kind.
class InsertElementCommand : public TemplateCommand
{
public:
    InsertElementCommand(store::Record* templ, const QString& type, int pageSide, const QString& section,
                         std::optional<QPointF> at = std::nullopt, QUndoCommand* parent = nullptr);

    void redo() override;
    void undo() override;

    // The element as it is now; null while undone.
    store::Record* inserted() const;

private:
    QString m_type;
    int m_pageSide;
    QString m_section;
    std::optional<QPointF> m_at;
    QVariantMap m_values; // the element as first inserted
};

// Deletes elements. Their pictures stay in the template files folder, so that undo finds them.
class DeleteElementsCommand : public TemplateCommand
{
public:
    DeleteElementsCommand(store::Record* templ, const QList<store::Record*>& elements,
                          QUndoCommand* parent = nullptr);

    void redo() override;
    void undo() override;

private:
    QList<QVariantMap> m_elements;
};

// Sets the same values on one or more elements. Consecutive changes of the same keys of the
// same elements (a drag, a slider) merge into one step.
class ChangeElementValuesCommand : public TemplateCommand
{
public:
    ChangeElementValuesCommand(store::Record* templ, const QList<store::Record*>& elements,
                               const QVariantMap& values, QUndoCommand* parent = nullptr);

    void redo() override;
    void undo() override;
    int id() const override { return ChangeElementValuesId; }
    bool mergeWith(const QUndoCommand* other) override;

private:
    QStringList m_identifiers;
    QList<QVariantMap> m_before; // per element, the values of the changed keys
    QVariantMap m_after;
};

// Sets values of the template itself: unit, margins, section heights, grid. Consecutive changes
// of the same keys merge.
class ChangeTemplateValuesCommand : public TemplateCommand
{
public:
    ChangeTemplateValuesCommand(store::Record* templ, const QVariantMap& values,
                                QUndoCommand* parent = nullptr);

    void redo() override;
    void undo() override;
    int id() const override { return ChangeTemplateValuesId; }
    bool mergeWith(const QUndoCommand* other) override;

private:
    QVariantMap m_before;
    QVariantMap m_after;
};

} // namespace corvanta::templates
