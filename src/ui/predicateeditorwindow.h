#pragma once

#include "browse/smartfolderpredicate.h"

#include <QDialog>

class QLabel;
class QLineEdit;
class QPushButton;
class QScrollArea;
class QVBoxLayout;

namespace corvanta::store {
class Record;
}

namespace corvanta::support {
class Prompter;
}

namespace corvanta::ui {

class PredicateRowWidget;

// The sheet in which a smart folder's name and condition are edited, row by row. It works on
// the folder as the sidebar opened it in a scratch context of its own: Save writes the name and
// the rows and saves that context; Cancel leaves it to the caller to discard.
//
// A system smart folder, or a condition the rows cannot show, is shown read-only with a note
// saying why, and its stored condition is never written.
class PredicateEditorWindow : public QDialog
{
    Q_OBJECT

public:
    PredicateEditorWindow(store::Record* category, support::Prompter& prompter,
                          QWidget* parentWidget = nullptr);

    store::Record* category() const { return m_category; }
    const browse::SmartFolderPredicate& predicate() const { return m_predicate; }
    // The rows as shown, top to bottom.
    const QList<PredicateRowWidget*>& rowWidgets() const { return m_rowWidgets; }
    // The height each shown row takes; the rows area is this times the shown rows.
    int rowHeight() const { return m_rowHeight; }

private:
    void save();
    void showRows(const browse::PredicateRow& root, const QList<int>& focusPath, const QString& focusName);
    void addRows(const browse::PredicateRow& row, const QList<int>& path);
    void updateSize();
    void updateTabOrder();
    bool canRemove(const QList<int>& path) const;

    void editComparison(const QList<int>& path, const browse::PredicateRow& comparison, bool reshaped);
    void editCompoundKind(const QList<int>& path, browse::PredicateRow::Kind kind);
    void addRow(const QList<int>& path, bool group);
    void removeRow(const QList<int>& path);
    void rebuild(const QList<int>& focusPath, const QString& focusName);

    store::Record* m_category;
    support::Prompter& m_prompter;
    browse::SmartFolderPredicate m_predicate;
    QLineEdit* m_nameEdit = nullptr;
    QLabel* m_noteLabel = nullptr;
    QLabel* m_conditionLabel = nullptr;
    QScrollArea* m_rowsArea = nullptr;
    QWidget* m_rowsWidget = nullptr;
    QVBoxLayout* m_rowsLayout = nullptr;
    QList<PredicateRowWidget*> m_rowWidgets;
    int m_rowHeight = 0;
    QPushButton* m_cancelButton = nullptr;
    QPushButton* m_saveButton = nullptr;
};

} // namespace corvanta::ui
