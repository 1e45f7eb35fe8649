#include "browsercommands.h"

#include "browse/recordcommands.h"
#include "browse/recordmenus.h"
#include "documentoutputs.h"
#include "editorwindows.h"
#include "recordlistview.h"
#include "store/record.h"
#include "store/store.h"
#include "support/prompter.h"

#include <QActionGroup>
#include <QMenu>

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

const char* const kCommandProperty = "recordCommand";

} // namespace

BrowserCommands::BrowserCommands(store::Store& store, support::Prompter& prompter, RecordListView& list,
                                 QWidget* window, EditorWindows* editors)
    : QObject(window)
    , m_store(store)
    , m_prompter(prompter)
    , m_list(list)
    , m_window(window)
    , m_editors(editors)
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
    case RecordCommand::SaveAs:
    case RecordCommand::Preview:
    case RecordCommand::Print:
    case RecordCommand::AddToDocument:
        if (!m_editors)
            return false;
        break;
    default:
        break;
    }
    const QList<Record*> selection = m_list.selectedRecords();
    if (!browse::CommandAvailability::isEnabled(command, selection))
        return false;
    const QString entity = selection.first()->entityName();
    switch (command) {
    case RecordCommand::SaveAs:
    case RecordCommand::Preview:
    case RecordCommand::Print:
    case RecordCommand::DesignTemplate:
        // Only a document has a PDF and a design template.
        return isDocument(selection.first());
    case RecordCommand::SendEmail:
        return isDocument(selection.first()) || entity == QLatin1String("Clients");
    case RecordCommand::AddToDocument:
        return entity == QLatin1String("Clients") || entity == QLatin1String("Items");
    default:
        return true;
    }
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

void BrowserCommands::newRecord()
{
    const Record* record = target(RecordCommand::New);
    if (!record)
        return;
    // A new record of the kind selected: a document of the same type, a client or item of the
    // same kind.
    const ListKind kind = browse::ListKinds::ofEntity(record->entityName());
    const qint64 type = kind == ListKind::ToDos ? 0 : record->value(QStringLiteral("type")).toLongLong();
    m_editors->newEditor(kind, type);
}

void BrowserCommands::editRecord()
{
    if (const Record* record = target(RecordCommand::Edit))
        m_editors->editRecord(record->ref());
}

void BrowserCommands::saveAs()
{
    if (const Record* document = target(RecordCommand::SaveAs))
        m_editors->saveDocumentAs(document->ref());
}

void BrowserCommands::preview()
{
    if (Record* document = target(RecordCommand::Preview))
        m_editors->outputs().preview(document);
}

void BrowserCommands::print()
{
    if (const Record* document = target(RecordCommand::Print))
        m_editors->printDocument(document->ref());
}

void BrowserCommands::sendEmail()
{
    if (const Record* record = target(RecordCommand::SendEmail))
        m_editors->sendEmail(record->ref());
}

void BrowserCommands::addToDocument()
{
    if (const Record* record = target(RecordCommand::AddToDocument))
        m_editors->addToDocument(record->ref());
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
    add(RecordCommand::New, tr("New"), "document-new", QKeySequence::New, &BrowserCommands::newRecord);
    add(RecordCommand::Edit, tr("Edit…"), "document-edit", QKeySequence(tr("Ctrl+E")),
        &BrowserCommands::editRecord);
    add(RecordCommand::Duplicate, tr("Duplicate"), "edit-copy", QKeySequence(tr("Ctrl+D")),
        &BrowserCommands::duplicateRecord);
    add(RecordCommand::Delete, tr("Delete…"), "edit-delete", QKeySequence::Delete,
        &BrowserCommands::deleteRecord);
    if (document)
        add(RecordCommand::Cancel, tr("Cancel Invoice…"), "edit-undo", {}, &BrowserCommands::cancelDocument);
    menu->addSeparator();
    if (kind == ListKind::Clients || document)
        add(RecordCommand::SendEmail, tr("Send by Email…"), "mail-send", {}, &BrowserCommands::sendEmail);
    if (document) {
        add(RecordCommand::SaveAs, tr("Save as PDF…"), "document-save-as", QKeySequence::SaveAs,
            &BrowserCommands::saveAs);
        add(RecordCommand::Preview, tr("Preview"), "document-preview", QKeySequence(tr("Ctrl+Shift+P")),
            &BrowserCommands::preview);
        add(RecordCommand::Print, tr("Print…"), "document-print", QKeySequence::Print,
            &BrowserCommands::print);
    }
    if (kind == ListKind::Clients || kind == ListKind::Items)
        add(RecordCommand::AddToDocument, tr("Add to Document"), "list-add", {},
            &BrowserCommands::addToDocument);
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
