#pragma once

#include "predicate/recordref.h"

#include <QHash>
#include <QTemporaryDir>
#include <QWidget>
#include <memory>

class QLabel;
class QMenu;
class QPdfDocument;
class QPdfView;
class QPushButton;
class QStackedWidget;
class QTimer;
class QToolButton;
class QTreeWidget;
class QTreeWidgetItem;

namespace corvanta::store {
class ChangeSet;
class EditingContext;
class Record;
class Store;
} // namespace corvanta::store
namespace corvanta::support {
class Prompter;
}
namespace corvanta::templates {
class TemplateLibrary;
}

namespace corvanta::ui {

// The list of the company's design templates, grouped by type, with the default of each type
// ticked, and at the right the selected template drawn with the demo document (a report template
// with its demo report). Names are edited in place; new, duplicate (also into another document
// type), delete, the default per type, export and import are the template library's operations
// in a context of the window's own.
class TemplateLibraryWindow : public QWidget
{
    Q_OBJECT

public:
    TemplateLibraryWindow(store::Store& store, support::Prompter& prompter,
                          const QString& templateFilesDirectory, QWidget* parent = nullptr);
    ~TemplateLibraryWindow() override;

    // The selected template, or null.
    store::Record* selectedTemplate() const;
    // Selects the template; false when the list does not show it.
    bool selectTemplate(const predicate::RecordRef& ref);
    // The list's row of a template, or null.
    QTreeWidgetItem* itemOf(const predicate::RecordRef& ref) const;
    QTreeWidget* tree() const { return m_tree; }
    QMenu* addMenu() const { return m_addMenu; }
    QMenu* duplicateMenu() const { return m_duplicateMenu; }
    // The preview's PDF; its page count is 0 while nothing is shown.
    QPdfDocument* previewDocument() const { return m_previewDocument; }

public Q_SLOTS:
    // A new template of the selected template's type (an invoice template when none is
    // selected), selected with its name open for editing.
    void addRow();
    void addTemplate(int type);
    // Opens the selected template's name for editing.
    void editRow();
    // A copy of the selected template of its own type.
    void duplicateRow();
    // A copy of the selected template as a template of the document type `type`.
    void duplicateAs(int type);
    void deleteRow();
    void makeDefault();
    // Asks for a folder and writes the selected template into it as a template file.
    void exportTemplate();
    // Asks for template files and imports them.
    void importTemplates();
    // Imports the template files; the templates imported are selected.
    void importFiles(const QStringList& files);

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    enum Column { NameColumn, DefaultColumn };

    QWidget* makeList();
    QWidget* makePreview();
    void reload();
    // A reload once the tree is done with the change at hand.
    void scheduleReload();
    void itemChanged(QTreeWidgetItem* item, int column);
    void selectionChanged();
    void updateActions();
    void storeDidSave(const store::ChangeSet& changes, store::EditingContext* origin);
    void contextDidChange(const store::ChangeSet& changes);
    void schedulePreview();
    void showPreview();
    void showPreviewMessage(const QString& text);
    store::Record* templateOf(const QTreeWidgetItem* item) const;
    void selectAndEdit(store::Record* templ, bool edit);

    store::Store& m_store;
    support::Prompter& m_prompter;
    QString m_templateFilesDirectory;
    std::unique_ptr<store::EditingContext> m_context;
    std::unique_ptr<templates::TemplateLibrary> m_library;
    bool m_reloadPending = false;

    QTreeWidget* m_tree = nullptr;
    QToolButton* m_addButton = nullptr;
    QMenu* m_addMenu = nullptr;
    QToolButton* m_duplicateButton = nullptr;
    QMenu* m_duplicateMenu = nullptr;
    QMenu* m_duplicateAsMenu = nullptr;
    QToolButton* m_deleteButton = nullptr;
    QPushButton* m_defaultButton = nullptr;
    QPushButton* m_exportButton = nullptr;
    QPushButton* m_importButton = nullptr;

    // The preview: rendered a moment after the selection settles, each template once until the
    // store changes.
    QStackedWidget* m_previewStack = nullptr;
    QPdfDocument* m_previewDocument = nullptr;
    QPdfView* m_previewView = nullptr;
    QLabel* m_previewMessage = nullptr;
    QTimer* m_previewTimer = nullptr;
    QTemporaryDir m_previewFolder;
    QHash<qint64, QString> m_previewFiles;
    QString m_shownPreview;
    int m_previewGeneration = 0;
};

} // namespace corvanta::ui
