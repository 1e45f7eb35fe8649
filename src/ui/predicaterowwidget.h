#pragma once

#include "browse/predicaterows.h"

#include <QWidget>

class QComboBox;
class QToolButton;

namespace corvanta::ui {

// One row of the smart-folder editor: a compound row ("Any"/"All" … "of the following are
// true") or a comparison of a field, an operator and a value. Fields offered under one label
// and key path in several value types (a fixed date and a date range) share one entry of the
// field pop-up; their operators are listed together and choosing one picks its value type.
//
// The row reports what the user changed; the editor applies it to the folder's rows and, when
// the row's shape changed, builds the rows afresh.
class PredicateRowWidget : public QWidget
{
    Q_OBJECT

public:
    PredicateRowWidget(const browse::PredicateRowTemplates& templates, const browse::PredicateRow& row,
                       const QList<int>& path, QWidget* parent = nullptr);

    const QList<int>& path() const { return m_path; }
    const browse::PredicateRow& row() const { return m_row; }

    // Read-only rows show their condition without buttons.
    void setEditable(bool editable);
    // "−" is offered only where removing leaves a condition behind.
    void setRemovable(bool removable);
    // The row's controls in reading order, for the sheet's tab chain.
    QList<QWidget*> tabStops() const;

Q_SIGNALS:
    // A comparison got another field, operator or value; `reshaped` when its controls must be
    // built afresh (another value type).
    void comparisonEdited(const QList<int>& path, const browse::PredicateRow& comparison, bool reshaped);
    void compoundKindEdited(const QList<int>& path, browse::PredicateRow::Kind kind);
    void addRequested(const QList<int>& path, bool group);
    void removeRequested(const QList<int>& path);

private:
    void buildCompound();
    void buildComparison();
    QWidget* buildValueWidget(const browse::PredicateRowTemplate& field);
    void buildButtons();

    int templateIndex(const browse::PredicateRow& row) const;
    void chooseField(int index);
    void chooseOperator(int chosen, predicate::Predicate::Operator op);
    void setValue(const QVariant& value);
    static QVariant firstValue(const browse::PredicateRowTemplate& field);

    const browse::PredicateRowTemplates& m_templates;
    browse::PredicateRow m_row;
    QList<int> m_path;
    QList<QWidget*> m_controls;
    QToolButton* m_addButton = nullptr;
    QToolButton* m_removeButton = nullptr;
};

} // namespace corvanta::ui
