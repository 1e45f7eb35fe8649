#pragma once

#include "browse/categoryquestions.h"

#include <QColor>
#include <QDialog>

class QButtonGroup;
class QComboBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QToolButton;

namespace corvanta::store {
class EditingContext;
class Record;
} // namespace corvanta::store

namespace corvanta::support {
class Prompter;
}

namespace corvanta::ui {

class TagLabelWidget;

// The sheet that makes a new folder or tag, or edits one: its name, the container it sits in
// and, for a tag, the kind of records it tags and its two colours, previewed as the tag will be
// drawn. It works in a scratch context the sidebar opened for it and saves that context; a
// failed save is told and the sheet stays open with its edits.
class FolderOrTagWindow : public QDialog
{
    Q_OBJECT

public:
    // `node` is the folder or tag edited (null to make one), `parent` where a new one goes
    // (null: the top level); an edited node is shown where it is.
    FolderOrTagWindow(store::EditingContext& scratch, browse::FolderOrTagSheet::Mode mode,
                      store::Record* node, store::Record* parent, support::Prompter& prompter,
                      QWidget* parentWidget = nullptr);

    browse::FolderOrTagSheet::Mode mode() const { return m_mode; }
    // The saved folder or tag, in the scratch context; null until a new one is saved.
    store::Record* node() const { return m_node; }

private:
    bool isTag() const;
    store::Record* chosenParent() const;
    void fillParents(store::Record* current);
    void updateTexts();
    void updatePreview();
    void updateColorButtons();
    QToolButton* addTagTypeButton(int type, const QString& text, const char* name);
    QPushButton* makeColorButton(const char* name, const QString& toolTip);
    void chooseColor(bool background);
    void save();

    store::EditingContext& m_scratch;
    browse::FolderOrTagSheet::Mode m_mode;
    store::Record* m_node;
    support::Prompter& m_prompter;
    QList<store::Record*> m_parents;
    QColor m_foreground;
    QColor m_background;

    QLabel* m_titleLabel = nullptr;
    QLabel* m_informativeLabel = nullptr;
    QLineEdit* m_nameEdit = nullptr;
    QComboBox* m_parentPopup = nullptr;
    QButtonGroup* m_tagTypes = nullptr;
    QList<QToolButton*> m_tagTypeButtons;
    QPushButton* m_backgroundButton = nullptr;
    QPushButton* m_foregroundButton = nullptr;
    TagLabelWidget* m_preview = nullptr;
    QPushButton* m_cancelButton = nullptr;
    QPushButton* m_saveButton = nullptr;
};

} // namespace corvanta::ui
