#include "browsercommands.h"

#include "browse/recordcommands.h"
#include "browse/recordmenus.h"
#include "recordlistview.h"
#include "store/record.h"
#include "store/store.h"
#include "support/prompter.h"
#include "templates/pdffilenames.h"
#include "templates/printedoutput.h"

#include <QActionGroup>
#include <QApplication>
#include <QDesktopServices>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QMenu>
#include <QStandardPaths>
#include <QUrl>

namespace corvanta::ui {

using browse::ListKind;
using browse::RecordCommand;
using browse::RecordMenus;
using predicate::RecordRef;
using store::Record;

namespace {

bool isDocument(const Record* record)
{
    return record && record->entityName() == QLatin1String("Documents");
}

// Shows the wait cursor while a document is rendered.
class WaitCursor
{
public:
    WaitCursor() { QApplication::setOverrideCursor(Qt::WaitCursor); }
    ~WaitCursor() { QApplication::restoreOverrideCursor(); }
    WaitCursor(const WaitCursor&) = delete;
    WaitCursor& operator=(const WaitCursor&) = delete;
};

const char* const kCommandProperty = "recordCommand";

} // namespace

BrowserCommands::BrowserCommands(store::Store& store, support::Prompter& prompter, RecordListView& list,
                                 QWidget* window)
    : QObject(window)
    , m_store(store)
    , m_prompter(prompter)
    , m_list(list)
    , m_window(window)
{
    m_commands = new browse::RecordCommands(store, prompter, {}, this);
    m_menus = new RecordMenus(store, prompter, this);
    connect(&m_list, &RecordListView::contextMenuRequested, this, &BrowserCommands::showContextMenu);
}

BrowserCommands::~BrowserCommands()
{
    for (const QPointer<QMenu>& menu : std::as_const(m_contextMenus)) {
        if (menu && !menu->parent())
            delete menu;
    }
}

bool BrowserCommands::isEnabled(RecordCommand command) const
{
    switch (command) {
    case RecordCommand::New:
    case RecordCommand::Edit:
    case RecordCommand::SendEmail:
    case RecordCommand::Print:
    case RecordCommand::AddToDocument:
        // These open the editor windows, the e-mail sheet and the print dialog, which the program
        // does not have yet.
        return false;
    default:
        break;
    }
    const QList<Record*> selection = m_list.selectedRecords();
    if (!browse::CommandAvailability::isEnabled(command, selection))
        return false;
    // Only a document has a PDF and a design template.
    if (command == RecordCommand::SaveAs || command == RecordCommand::Preview ||
        command == RecordCommand::DesignTemplate)
        return isDocument(selection.first());
    return true;
}

Record* BrowserCommands::target(RecordCommand command) const
{
    return isEnabled(command) ? m_list.selectedRecords().first() : nullptr;
}

void BrowserCommands::duplicateRecord()
{
    const Record* record = target(RecordCommand::Duplicate);
    if (!record)
        return;
    if (const std::optional<RecordRef> copy = m_commands->duplicate(record->ref()))
        m_list.selectRecord(*copy);
}

void BrowserCommands::deleteRecord()
{
    if (const Record* record = target(RecordCommand::Delete))
        m_commands->deleteRecord(record->ref());
}

void BrowserCommands::cancelDocument()
{
    if (const Record* document = target(RecordCommand::Cancel))
        m_commands->cancelDocument(document->ref());
}

QString BrowserCommands::databaseFolder(const QString& name) const
{
    // A company database keeps its side folders beside its file.
    const QString folder = QDir(QFileInfo(m_store.path()).absolutePath()).filePath(name);
    QDir().mkpath(folder);
    return folder;
}

bool BrowserCommands::writePdf(Record* document, const QString& path, const QString& title)
{
    QString error;
    Record* designTemplate = templates::PrintedOutput::templateOf(document);
    if (!designTemplate) {
        error = tr("\"%1\" has no design template, and the company has no default template for its type.")
                    .arg(document->value(QStringLiteral("number_formatted")).toString());
    } else {
        const WaitCursor wait;
        int pages = 0;
        if (templates::PrintedOutput(databaseFolder(QStringLiteral("templates")))
                .writeDocument(document, designTemplate, path, &pages, &error))
            return true;
    }
    m_prompter.alert(title, error, {tr("OK")});
    return false;
}

void BrowserCommands::saveAs()
{
    Record* document = target(RecordCommand::SaveAs);
    if (!document)
        return;
    const QString suggested = QDir(QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation))
                                  .filePath(templates::PdfFileNames::documentFileName(*document));
    const QString path =
        QFileDialog::getSaveFileName(m_window, tr("Save as PDF"), suggested, tr("PDF documents (*.pdf)"));
    if (path.isEmpty())
        return;
    writePdf(document, path, tr("Save as PDF"));
}

void BrowserCommands::preview()
{
    Record* document = target(RecordCommand::Preview);
    if (!document)
        return;
    const QString path = QDir(databaseFolder(QStringLiteral("temp")))
                             .filePath(templates::PdfFileNames::documentFileName(*document));
    if (!writePdf(document, path, tr("Preview")))
        return;
    // The desktop's PDF viewer shows it until the program has a preview window of its own.
    if (!QDesktopServices::openUrl(QUrl::fromLocalFile(path)))
        m_prompter.alert(tr("Preview"), tr("No program to show \"%1\" was found.").arg(path), {tr("OK")});
}

QMenu* BrowserCommands::contextMenu(ListKind kind)
{
    if (kind == ListKind::None)
        return nullptr;
    QPointer<QMenu>& menu = m_contextMenus[int(kind)];
    if (!menu)
        menu = makeMenu(kind);
    refresh(menu);
    return menu;
}

QMenu* BrowserCommands::makeMenu(ListKind kind)
{
    auto* menu = new QMenu(m_window);
    menu->setObjectName(QStringLiteral("contextMenu%1").arg(int(kind)));
    const auto add = [&](RecordCommand command, const QString& text, const char* icon,
                         const QKeySequence& keys, void (BrowserCommands::*slot)() = nullptr) {
        QAction* action = menu->addAction(QIcon::fromTheme(QString::fromLatin1(icon)), text);
        action->setProperty(kCommandProperty, int(command));
        // The keys are the main window's; here they are only shown.
        action->setShortcut(keys);
        action->setShortcutContext(Qt::WidgetShortcut);
        if (slot)
            connect(action, &QAction::triggered, this, slot);
    };
    const bool document = kind == ListKind::Documents;
    add(RecordCommand::New, tr("New"), "document-new", QKeySequence::New);
    add(RecordCommand::Edit, tr("Edit…"), "document-edit", QKeySequence(tr("Ctrl+E")));
    add(RecordCommand::Duplicate, tr("Duplicate"), "edit-copy", QKeySequence(tr("Ctrl+D")),
        &BrowserCommands::duplicateRecord);
    add(RecordCommand::Delete, tr("Delete…"), "edit-delete", QKeySequence::Delete,
        &BrowserCommands::deleteRecord);
    if (document)
        add(RecordCommand::Cancel, tr("Cancel Invoice…"), "edit-undo", {}, &BrowserCommands::cancelDocument);
    menu->addSeparator();
    if (kind == ListKind::Clients || document)
        add(RecordCommand::SendEmail, tr("Send by Email…"), "mail-send", {});
    if (document) {
        add(RecordCommand::SaveAs, tr("Save as PDF…"), "document-save-as", QKeySequence::SaveAs,
            &BrowserCommands::saveAs);
        add(RecordCommand::Preview, tr("Preview"), "document-preview", QKeySequence(tr("Ctrl+Shift+P")),
            &BrowserCommands::preview);
        add(RecordCommand::Print, tr("Print…"), "document-print", QKeySequence::Print);
    }
    if (kind == ListKind::Clients || kind == ListKind::Items)
        add(RecordCommand::AddToDocument, tr("Add to Document"), "list-add", {});
    menu->addSeparator();

    QMenu* tags = menu->addMenu(QIcon::fromTheme(QStringLiteral("tag")), tr("Tags"));
    tags->setObjectName(QStringLiteral("tagsMenu"));
    tags->menuAction()->setProperty(kCommandProperty, int(RecordCommand::Tags));
    if (document) {
        QMenu* templates = menu->addMenu(tr("Design Template"));
        templates->setObjectName(QStringLiteral("designTemplateMenu"));
        templates->menuAction()->setProperty(kCommandProperty, int(RecordCommand::DesignTemplate));
    }
    connect(menu, &QMenu::aboutToShow, this, [this, menu] { refresh(menu); });
    return menu;
}

void BrowserCommands::refresh(QMenu* menu)
{
    for (QAction* action : menu->actions()) {
        const QVariant command = action->property(kCommandProperty);
        if (command.isValid())
            action->setEnabled(isEnabled(RecordCommand(command.toInt())));
    }
    if (auto* tags = menu->findChild<QMenu*>(QStringLiteral("tagsMenu")))
        fillTags(tags);
    if (auto* templates = menu->findChild<QMenu*>(QStringLiteral("designTemplateMenu")))
        fillDesignTemplates(templates);
}

void BrowserCommands::fillTags(QMenu* tags)
{
    tags->clear();
    const Record* record = target(RecordCommand::Tags);
    if (!record)
        return;
    const RecordRef selected = record->ref();
    const QList<RecordMenus::Choice> choices = m_menus->tags(selected);
    for (const RecordMenus::Choice& choice : choices) {
        QAction* action = tags->addAction(choice.title);
        action->setCheckable(true);
        action->setChecked(choice.checked);
        const RecordRef tag = choice.record;
        connect(action, &QAction::triggered, this,
                [this, tag, selected] { m_menus->toggleTag(tag, {selected}); });
    }
    if (choices.isEmpty())
        tags->addAction(tr("No tags of your own yet"))->setEnabled(false);
}

void BrowserCommands::fillDesignTemplates(QMenu* templates)
{
    templates->clear();
    qDeleteAll(templates->findChildren<QActionGroup*>(Qt::FindDirectChildrenOnly));
    const Record* record = target(RecordCommand::DesignTemplate);
    if (!record)
        return;
    const RecordRef document = record->ref();
    auto* group = new QActionGroup(templates);
    group->setExclusive(true);
    for (const RecordMenus::Choice& choice : m_menus->designTemplates(document)) {
        QAction* action = templates->addAction(choice.title);
        action->setCheckable(true);
        action->setChecked(choice.checked);
        action->setActionGroup(group);
        const RecordRef designTemplate = choice.record;
        connect(action, &QAction::triggered, this,
                [this, document, designTemplate] { m_menus->setDesignTemplate(document, designTemplate); });
    }
}

void BrowserCommands::showContextMenu(const QPoint& globalPosition)
{
    if (QMenu* menu = contextMenu(m_list.kind()))
        menu->popup(globalPosition);
}

} // namespace corvanta::ui
