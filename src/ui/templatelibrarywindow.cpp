#include "templatelibrarywindow.h"

#include "app/commandrules.h"
#include "mainwindow.h"
#include "store/editingcontext.h"
#include "store/record.h"
#include "store/store.h"
#include "support/prompter.h"
#include "templates/printedoutput.h"
#include "templates/templatelibrary.h"
#include "templates/templatetypes.h"
#include "windowplacement.h"

#include <QCloseEvent>
#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QMenu>
#include <QPdfDocument>
#include <QPdfPageNavigator>
#include <QPdfView>
#include <QPushButton>
#include <QSet>
#include <QSplitter>
#include <QStackedWidget>
#include <QStyle>
#include <QTimer>
#include <QToolButton>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace corvanta::ui {

using store::Record;
using templates::TemplateLibrary;
using templates::TemplateTypes;

namespace {

QString s(const char* text)
{
    return QString::fromLatin1(text);
}

const QString kTemplates = QStringLiteral("Templates");

// A pause long enough to pass over rows while arrowing through the list.
constexpr int kPreviewDelayMs = 150;

QToolButton* toolButton(const char* objectName, const char* icon, const QString& toolTip, QWidget* parent)
{
    auto* button = new QToolButton(parent);
    button->setObjectName(s(objectName));
    button->setIcon(QIcon::fromTheme(s(icon)));
    button->setToolTip(toolTip);
    button->setAccessibleName(toolTip);
    button->setAutoRaise(false);
    return button;
}

// The business records a user works on all day: the demo rendering makes up its own and reads
// none of these.
bool isBusinessRecord(const QString& entity)
{
    static const QSet<QString> entities = {s("Documents"),
                                           s("DocumentRows"),
                                           s("DocumentSummaries"),
                                           s("Payments"),
                                           s("Clients"),
                                           s("Addresses"),
                                           s("Contacts"),
                                           s("Items"),
                                           s("Warehouse"),
                                           s("Categories"),
                                           s("ToDos"),
                                           s("ReportColumns"),
                                           s("EmailTemplates"),
                                           s("DocumentRowNotes"),
                                           s("Compose")};
    return entities.contains(entity);
}

// Whether a save changed something the demo rendering shows: business records, template names
// and the defaults of the template types do not count.
bool changesRendering(const store::ChangeSet& changes)
{
    for (const predicate::RecordRef& ref : changes.inserted + changes.deleted) {
        if (!isBusinessRecord(ref.entity))
            return true;
    }
    for (const store::ChangeSet::Update& update : changes.updated) {
        if (isBusinessRecord(update.ref.entity))
            continue;
        for (const QString& key : update.keys) {
            const bool name = update.ref.entity == kTemplates && key == QLatin1String("name");
            const bool defaultTemplate = update.ref.entity == QLatin1String("MyCompany") &&
                                         key.startsWith(QLatin1String("default_template_"));
            if (!name && !defaultTemplate)
                return true;
        }
    }
    return false;
}

} // namespace

TemplateLibraryWindow::TemplateLibraryWindow(store::Store& store, support::Prompter& prompter,
                                             const QString& templateFilesDirectory, QWidget* parent)
    : QWidget(parent, Qt::Window)
    , m_store(store)
    , m_prompter(prompter)
    , m_templateFilesDirectory(templateFilesDirectory)
    , m_context(store.newContext())
    , m_library(std::make_unique<TemplateLibrary>(*m_context, prompter, templateFilesDirectory))
{
    setObjectName(s("TemplateLibraryWindow"));
    setAttribute(Qt::WA_DeleteOnClose);
    setProperty(MainWindow::windowKindProperty(), int(app::WindowKind::TemplateLibrary));
    setProperty("canAdd", true);
    setProperty("selectedRowCount", 0);
    setWindowTitle(tr("Template Library"));
    setWindowIcon(QIcon::fromTheme(s("x-office-document-template")));

    auto* splitter = new QSplitter(Qt::Horizontal, this);
    splitter->setObjectName(s("splitter"));
    splitter->setChildrenCollapsible(false);
    splitter->addWidget(makeList());
    splitter->addWidget(makePreview());
    splitter->setStretchFactor(0, 2);
    splitter->setStretchFactor(1, 3);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(splitter);

    m_previewTimer = new QTimer(this);
    m_previewTimer->setSingleShot(true);
    m_previewTimer->setInterval(kPreviewDelayMs);
    connect(m_previewTimer, &QTimer::timeout, this, &TemplateLibraryWindow::showPreview);

    connect(&m_store, &store::Store::didSave, this, &TemplateLibraryWindow::storeDidSave);
    connect(m_context.get(), &store::EditingContext::objectsDidChange, this,
            &TemplateLibraryWindow::contextDidChange);
    connect(m_context.get(), &store::EditingContext::didSave, this, &TemplateLibraryWindow::contextDidChange);

    reload();
    // The company's invoice template first, as the list opens.
    for (Record* templ : m_library->templates()) {
        if (m_library->isDefault(templ)) {
            selectAndEdit(templ, false);
            break;
        }
    }

    if (!WindowPlacement::restore(this))
        resize(QSize(fontMetrics().averageCharWidth() * 140, fontMetrics().lineSpacing() * 42));
    splitter->restoreState(WindowPlacement::partState(this, s("splitter")));
}

TemplateLibraryWindow::~TemplateLibraryWindow()
{
    // The tree's signals would reach a half-destroyed window.
    disconnect(m_tree, nullptr, this, nullptr);
}

QWidget* TemplateLibraryWindow::makeList()
{
    auto* pane = new QWidget(this);

    m_tree = new QTreeWidget(pane);
    m_tree->setObjectName(s("templateTree"));
    m_tree->setColumnCount(2);
    m_tree->setHeaderLabels({tr("Name"), tr("Default")});
    m_tree->setSelectionMode(QAbstractItemView::ExtendedSelection);
    m_tree->setEditTriggers(QAbstractItemView::DoubleClicked | QAbstractItemView::EditKeyPressed |
                            QAbstractItemView::SelectedClicked);
    m_tree->setUniformRowHeights(true);
    m_tree->setAllColumnsShowFocus(true);
    m_tree->header()->setStretchLastSection(false);
    m_tree->header()->setSectionResizeMode(NameColumn, QHeaderView::Stretch);
    m_tree->header()->setSectionResizeMode(DefaultColumn, QHeaderView::ResizeToContents);
    m_tree->setTextElideMode(Qt::ElideRight);
    connect(m_tree, &QTreeWidget::itemChanged, this, &TemplateLibraryWindow::itemChanged);
    connect(m_tree, &QTreeWidget::itemSelectionChanged, this, &TemplateLibraryWindow::selectionChanged);
    connect(m_tree, &QTreeWidget::currentItemChanged, this, &TemplateLibraryWindow::schedulePreview);

    m_addButton = toolButton("addButton", "list-add", tr("New Template"), pane);
    m_addButton->setPopupMode(QToolButton::InstantPopup);
    m_addMenu = new QMenu(m_addButton);
    m_addMenu->setObjectName(s("addMenu"));
    for (const qint64 type : TemplateTypes::all()) {
        QAction* action = m_addMenu->addAction(TemplateTypes::displayName(type));
        action->setObjectName(s("add_") + TemplateTypes::typeKey(type));
        action->setData(type);
        connect(action, &QAction::triggered, this, [this, type] { addTemplate(int(type)); });
    }
    m_addButton->setMenu(m_addMenu);

    m_duplicateButton = toolButton("duplicateButton", "edit-copy", tr("Duplicate Template"), pane);
    m_duplicateButton->setPopupMode(QToolButton::MenuButtonPopup);
    m_duplicateMenu = new QMenu(m_duplicateButton);
    m_duplicateMenu->setObjectName(s("duplicateMenu"));
    QAction* plainCopy = m_duplicateMenu->addAction(tr("Duplicate"));
    plainCopy->setObjectName(s("duplicateAction"));
    connect(plainCopy, &QAction::triggered, this, &TemplateLibraryWindow::duplicateRow);
    m_duplicateAsMenu = m_duplicateMenu->addMenu(tr("Duplicate As"));
    m_duplicateAsMenu->setObjectName(s("duplicateAsMenu"));
    for (const qint64 type : TemplateTypes::all()) {
        if (TemplateTypes::isReportTemplate(type))
            continue;
        QAction* action = m_duplicateAsMenu->addAction(TemplateTypes::displayName(type));
        action->setObjectName(s("duplicateAs_") + TemplateTypes::typeKey(type));
        connect(action, &QAction::triggered, this, [this, type] { duplicateAs(int(type)); });
    }
    m_duplicateButton->setMenu(m_duplicateMenu);
    connect(m_duplicateButton, &QToolButton::clicked, this, &TemplateLibraryWindow::duplicateRow);

    m_deleteButton = toolButton("deleteButton", "list-remove", tr("Delete Template"), pane);
    connect(m_deleteButton, &QToolButton::clicked, this, &TemplateLibraryWindow::deleteRow);

    m_defaultButton = new QPushButton(tr("&Make Default"), pane);
    m_defaultButton->setObjectName(s("defaultButton"));
    connect(m_defaultButton, &QPushButton::clicked, this, &TemplateLibraryWindow::makeDefault);

    m_exportButton = new QPushButton(QIcon::fromTheme(s("document-export")), tr("E&xport…"), pane);
    m_exportButton->setObjectName(s("exportButton"));
    connect(m_exportButton, &QPushButton::clicked, this, &TemplateLibraryWindow::exportTemplate);
    m_importButton = new QPushButton(QIcon::fromTheme(s("document-import")), tr("&Import…"), pane);
    m_importButton->setObjectName(s("importButton"));
    connect(m_importButton, &QPushButton::clicked, this, &TemplateLibraryWindow::importTemplates);

    auto* rowButtons = new QHBoxLayout;
    rowButtons->addWidget(m_addButton);
    rowButtons->addWidget(m_duplicateButton);
    rowButtons->addWidget(m_deleteButton);
    rowButtons->addStretch(1);
    rowButtons->addWidget(m_defaultButton);
    auto* fileButtons = new QHBoxLayout;
    fileButtons->addStretch(1);
    fileButtons->addWidget(m_exportButton);
    fileButtons->addWidget(m_importButton);

    auto* layout = new QVBoxLayout(pane);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_tree, 1);
    layout->addLayout(rowButtons);
    layout->addLayout(fileButtons);
    return pane;
}

QWidget* TemplateLibraryWindow::makePreview()
{
    m_previewStack = new QStackedWidget(this);
    m_previewStack->setObjectName(s("previewStack"));

    m_previewDocument = new QPdfDocument(this);
    m_previewView = new QPdfView(m_previewStack);
    m_previewView->setObjectName(s("previewView"));
    m_previewView->setDocument(m_previewDocument);
    m_previewView->setPageMode(QPdfView::PageMode::SinglePage);
    m_previewView->setZoomMode(QPdfView::ZoomMode::FitToWidth);
    const int margin = style()->pixelMetric(QStyle::PM_LayoutLeftMargin);
    m_previewView->setDocumentMargins(QMargins(margin, margin, margin, margin));
    m_previewView->setAccessibleName(tr("Preview"));

    m_previewMessage = new QLabel(m_previewStack);
    m_previewMessage->setObjectName(s("previewMessage"));
    m_previewMessage->setAlignment(Qt::AlignCenter);
    m_previewMessage->setWordWrap(true);
    m_previewMessage->setForegroundRole(QPalette::PlaceholderText);

    m_previewStack->addWidget(m_previewView);
    m_previewStack->addWidget(m_previewMessage);
    m_previewStack->setMinimumWidth(fontMetrics().averageCharWidth() * 50);
    showPreviewMessage(tr("No template selected"));
    return m_previewStack;
}

void TemplateLibraryWindow::closeEvent(QCloseEvent* event)
{
    WindowPlacement::save(this);
    if (auto* splitter = findChild<QSplitter*>(s("splitter")))
        WindowPlacement::savePartState(this, s("splitter"), splitter->saveState());
    event->accept();
}

Record* TemplateLibraryWindow::templateOf(const QTreeWidgetItem* item) const
{
    if (!item)
        return nullptr;
    const qint64 pk = item->data(NameColumn, Qt::UserRole).toLongLong();
    if (pk == 0)
        return nullptr;
    return m_context->fetchRecord(kTemplates, {kTemplates, pk});
}

Record* TemplateLibraryWindow::selectedTemplate() const
{
    const QList<QTreeWidgetItem*> selected = m_tree->selectedItems();
    return selected.size() == 1 ? templateOf(selected.first()) : nullptr;
}

QTreeWidgetItem* TemplateLibraryWindow::itemOf(const predicate::RecordRef& ref) const
{
    for (int group = 0; group < m_tree->topLevelItemCount(); ++group) {
        QTreeWidgetItem* parent = m_tree->topLevelItem(group);
        for (int row = 0; row < parent->childCount(); ++row) {
            if (parent->child(row)->data(NameColumn, Qt::UserRole).toLongLong() == ref.pk)
                return parent->child(row);
        }
    }
    return nullptr;
}

bool TemplateLibraryWindow::selectTemplate(const predicate::RecordRef& ref)
{
    QTreeWidgetItem* item = itemOf(ref);
    if (!item)
        return false;
    m_tree->setCurrentItem(item, NameColumn, QItemSelectionModel::ClearAndSelect);
    m_tree->scrollToItem(item);
    return true;
}

void TemplateLibraryWindow::selectAndEdit(Record* templ, bool edit)
{
    if (!templ || !selectTemplate(templ->ref()))
        return;
    if (edit)
        m_tree->editItem(itemOf(templ->ref()), NameColumn);
}

void TemplateLibraryWindow::reload()
{
    m_reloadPending = false;
    QList<qint64> selected;
    for (const QTreeWidgetItem* item : m_tree->selectedItems())
        selected << item->data(NameColumn, Qt::UserRole).toLongLong();
    const qint64 current =
        m_tree->currentItem() ? m_tree->currentItem()->data(NameColumn, Qt::UserRole).toLongLong() : 0;

    {
        const QSignalBlocker blocker(m_tree);
        m_tree->clear();
        QHash<qint64, QTreeWidgetItem*> groups;
        for (Record* templ : m_library->templates()) {
            const qint64 type = templ->value(s("type")).toLongLong();
            QTreeWidgetItem*& group = groups[type];
            if (!group) {
                group = new QTreeWidgetItem(m_tree, {TemplateTypes::displayName(type)});
                group->setFlags(Qt::ItemIsEnabled);
                group->setData(NameColumn, Qt::UserRole + 1, type);
                group->setFirstColumnSpanned(true);
                QFont caption = group->font(NameColumn);
                caption.setBold(true);
                group->setFont(NameColumn, caption);
            }
            auto* item = new QTreeWidgetItem(group);
            const QString name = templ->value(s("name")).toString();
            item->setText(NameColumn, name);
            item->setToolTip(NameColumn, name);
            item->setData(NameColumn, Qt::UserRole, templ->ref().pk);
            item->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsEditable |
                           Qt::ItemIsUserCheckable);
            const bool isDefault = m_library->isDefault(templ);
            item->setCheckState(DefaultColumn, isDefault ? Qt::Checked : Qt::Unchecked);
            item->setToolTip(DefaultColumn, isDefault ? tr("The default template of its type")
                                                      : tr("Make this the default template of its type"));
            if (selected.contains(templ->ref().pk))
                item->setSelected(true);
        }
        m_tree->expandAll();
        if (QTreeWidgetItem* item = itemOf({kTemplates, current}))
            m_tree->setCurrentItem(item, NameColumn, QItemSelectionModel::NoUpdate);
    }
    selectionChanged();
    schedulePreview();
}

void TemplateLibraryWindow::scheduleReload()
{
    if (m_reloadPending)
        return;
    m_reloadPending = true;
    QMetaObject::invokeMethod(
        this,
        [this] {
            if (m_reloadPending)
                reload();
        },
        Qt::QueuedConnection);
}

void TemplateLibraryWindow::itemChanged(QTreeWidgetItem* item, int column)
{
    Record* templ = templateOf(item);
    if (!templ)
        return;
    if (column == NameColumn) {
        if (item->text(NameColumn) != templ->value(s("name")).toString())
            m_library->rename(templ, item->text(NameColumn));
    } else if (column == DefaultColumn) {
        // A tick moves the default here; the default itself is not unticked, another is ticked.
        if (item->checkState(DefaultColumn) == Qt::Checked && !m_library->isDefault(templ))
            m_library->defaultChanged(templ);
    }
    // The item may not go while the tree still handles its change.
    scheduleReload();
}

void TemplateLibraryWindow::selectionChanged()
{
    const int count = int(m_tree->selectedItems().size());
    setProperty("selectedRowCount", count);
    updateActions();
}

void TemplateLibraryWindow::updateActions()
{
    Record* templ = selectedTemplate();
    const bool one = templ != nullptr;
    const bool report = one && TemplateTypes::isReportTemplate(templ->value(s("type")).toLongLong());
    m_duplicateButton->setEnabled(one);
    m_deleteButton->setEnabled(one);
    m_exportButton->setEnabled(one);
    m_defaultButton->setEnabled(one && !m_library->isDefault(templ));
    // A report template is copied only as a report.
    for (QAction* action : m_duplicateAsMenu->actions())
        action->setEnabled(one && !report);
}

void TemplateLibraryWindow::storeDidSave(const store::ChangeSet& changes, store::EditingContext* origin)
{
    if (changesRendering(changes)) {
        for (const QString& path : std::as_const(m_previewFiles))
            QFile::remove(path);
        m_previewFiles.clear();
        schedulePreview();
    }
    if (origin != m_context.get() && !m_context->automaticallyMergesChanges())
        m_context->mergeChanges(changes);
}

void TemplateLibraryWindow::contextDidChange(const store::ChangeSet& changes)
{
    if (changes.touches(kTemplates) || changes.touches(s("MyCompany")))
        scheduleReload();
}

void TemplateLibraryWindow::addRow()
{
    Record* templ = selectedTemplate();
    if (!templ && m_tree->currentItem())
        templ = templateOf(m_tree->currentItem());
    addTemplate(templ ? int(templ->value(s("type")).toLongLong()) : 0);
}

void TemplateLibraryWindow::addTemplate(int type)
{
    Record* templ = m_library->addRow(type);
    if (!templ)
        return;
    reload();
    selectAndEdit(templ, true);
}

void TemplateLibraryWindow::editRow()
{
    if (Record* templ = selectedTemplate())
        selectAndEdit(templ, true);
}

void TemplateLibraryWindow::duplicateRow()
{
    if (Record* templ = selectedTemplate()) {
        Record* copy = m_library->duplicateRow(templ, TemplateLibrary::kPlainCopy);
        reload();
        selectAndEdit(copy, false);
    }
}

void TemplateLibraryWindow::duplicateAs(int type)
{
    if (Record* templ = selectedTemplate()) {
        Record* copy = m_library->duplicateRow(templ, type);
        reload();
        selectAndEdit(copy, false);
    }
}

void TemplateLibraryWindow::deleteRow()
{
    Record* templ = selectedTemplate();
    if (!templ)
        return;
    // The row below takes the selection, or the one above at the end of its group.
    QTreeWidgetItem* item = itemOf(templ->ref());
    QTreeWidgetItem* next = m_tree->itemBelow(item);
    if (!next || !next->parent())
        next = m_tree->itemAbove(item);
    const qint64 nextPk = next ? next->data(NameColumn, Qt::UserRole).toLongLong() : 0;
    if (!m_library->deleteRow(templ))
        return;
    reload();
    if (nextPk != 0)
        selectTemplate({kTemplates, nextPk});
}

void TemplateLibraryWindow::makeDefault()
{
    if (Record* templ = selectedTemplate()) {
        m_library->defaultChanged(templ);
        reload();
    }
}

void TemplateLibraryWindow::exportTemplate()
{
    Record* templ = selectedTemplate();
    if (!templ)
        return;
    if (const std::optional<QString> folder = m_prompter.chooseFolder(tr("Export Design Template")))
        m_library->exportTemplate(templ, *folder);
}

void TemplateLibraryWindow::importTemplates()
{
    const QString extension = QFileInfo(TemplateLibrary::exportFileName(s("template"))).suffix();
    const QStringList files = QFileDialog::getOpenFileNames(this, tr("Import Templates"), QString(),
                                                            tr("Design templates (*.%1)").arg(extension));
    if (!files.isEmpty())
        importFiles(files);
}

void TemplateLibraryWindow::importFiles(const QStringList& files)
{
    const QList<Record*> imported = m_library->importFiles(files);
    if (imported.isEmpty())
        return;
    reload();
    m_tree->clearSelection();
    for (Record* templ : imported) {
        if (QTreeWidgetItem* item = itemOf(templ->ref()))
            item->setSelected(true);
    }
    if (QTreeWidgetItem* last = itemOf(imported.last()->ref())) {
        m_tree->setCurrentItem(last, NameColumn, QItemSelectionModel::NoUpdate);
        m_tree->scrollToItem(last);
    }
}

void TemplateLibraryWindow::schedulePreview()
{
    m_previewTimer->start();
}

void TemplateLibraryWindow::showPreviewMessage(const QString& text)
{
    m_previewDocument->close();
    m_shownPreview.clear();
    m_previewMessage->setText(text);
    m_previewStack->setCurrentWidget(m_previewMessage);
}

void TemplateLibraryWindow::showPreview()
{
    Record* templ = templateOf(m_tree->currentItem());
    if (!templ) {
        showPreviewMessage(tr("No template selected"));
        return;
    }
    const qint64 pk = templ->ref().pk;
    QString path = m_previewFiles.value(pk);
    if (path.isEmpty()) {
        // Each rendering gets a file of its own, so that the one shown is never overwritten.
        path =
            QDir(m_previewFolder.path()).filePath(s("preview-%1-%2.pdf").arg(pk).arg(++m_previewGeneration));
        QString error;
        int pages = 0;
        if (!m_previewFolder.isValid() ||
            !templates::PrintedOutput(m_templateFilesDirectory).writePreview(templ, path, &pages, &error)) {
            showPreviewMessage(tr("The preview cannot be drawn. %1").arg(error));
            return;
        }
        m_previewFiles.insert(pk, path);
    }
    // A reload of the list keeps the page shown as it is.
    if (path == m_shownPreview && m_previewStack->currentWidget() == m_previewView)
        return;
    if (m_previewDocument->load(path) != QPdfDocument::Error::None) {
        m_previewFiles.remove(pk);
        showPreviewMessage(tr("The preview cannot be drawn."));
        return;
    }
    m_shownPreview = path;
    m_previewView->pageNavigator()->jump(0, {}, m_previewView->zoomFactor());
    m_previewStack->setCurrentWidget(m_previewView);
}

} // namespace corvanta::ui
