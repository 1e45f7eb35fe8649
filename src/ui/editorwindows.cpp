#include "editorwindows.h"

#include "browse/addtodocument.h"
#include "clienteditorwindow.h"
#include "documenteditorwindow.h"
#include "documentoutputs.h"
#include "documentpaymentssheet.h"
#include "editors/clientcontroller.h"
#include "editors/documentcontroller.h"
#include "editors/itemcontroller.h"
#include "editors/todocontroller.h"
#include "emailpreparationwindow.h"
#include "itemeditorwindow.h"
#include "openeditors.h"
#include "soundplayer.h"
#include "store/record.h"
#include "todoeditorwindow.h"
#include "windowplacement.h"

#include <QTimer>
#include <QWidget>

namespace corvanta::ui {

using browse::ListKind;
using predicate::RecordRef;

namespace {

RecordRef refOf(const store::Record* record)
{
    // A record not saved yet has no key: no stored record is edited there.
    return record ? record->ref() : RecordRef();
}

} // namespace

EditorWindows::EditorWindows(store::Store& store, support::Prompter& prompter, QWidget* mainWindow)
    : QObject(mainWindow)
    , m_store(store)
    , m_prompter(prompter)
    , m_mainWindow(mainWindow)
    , m_openEditors(new OpenEditors(this))
    , m_outputs(std::make_unique<DocumentOutputs>(store, prompter, mainWindow))
    , m_sounds(new SoundPlayer(this))
{}

EditorWindows::~EditorWindows()
{
    // The windows go before what they use.
    for (const Entry& entry : std::as_const(m_windows))
        delete entry.window.data();
}

QList<QWidget*> EditorWindows::windows() const
{
    QList<QWidget*> open;
    for (const Entry& entry : m_windows) {
        if (entry.window)
            open.append(entry.window);
    }
    return open;
}

QWidget* EditorWindows::show(QWidget* window)
{
    return WindowPlacement::bringToFront(window);
}

QWidget* EditorWindows::track(QWidget* window, std::function<RecordRef()> record)
{
    m_windows.removeIf([](const Entry& entry) { return entry.window.isNull(); });
    m_windows.append({window, std::move(record)});
    return show(window);
}

QWidget* EditorWindows::openFor(const RecordRef& record) const
{
    for (const Entry& entry : m_windows) {
        if (entry.window && entry.record() == record)
            return entry.window;
    }
    return nullptr;
}

DocumentEditorWindow* EditorWindows::newDocumentEditor(qint64 type)
{
    auto* window = new DocumentEditorWindow(m_store, m_prompter, *m_openEditors);
    window->setOutput(m_outputs.get());
    editors::DocumentController* controller = &window->controller();
    connect(controller, &editors::DocumentController::soundRequested, m_sounds, &SoundPlayer::play);
    connect(controller, &editors::DocumentController::previewCloseRequested, this, [this, controller] {
        if (controller->document())
            m_outputs->closePreview(controller->document()->ref());
    });
    followInPreview(window);
    if (type >= 0 && !window->newDocument(type)) {
        delete window;
        return nullptr;
    }
    track(window, [controller] { return refOf(controller->document()); });
    return window;
}

QWidget* EditorWindows::newEditor(ListKind kind, qint64 type)
{
    switch (kind) {
    case ListKind::Documents:
        return newDocumentEditor(type);
    case ListKind::Clients: {
        auto* window = new ClientEditorWindow(m_store, m_prompter, *m_openEditors);
        if (!window->newClient(type)) {
            delete window;
            return nullptr;
        }
        editors::ClientController* controller = &window->controller();
        return track(window, [controller] { return refOf(controller->client()); });
    }
    case ListKind::Items: {
        auto* window = new ItemEditorWindow(m_store, m_prompter, *m_openEditors);
        if (!window->newItem(type)) {
            delete window;
            return nullptr;
        }
        editors::ItemController* controller = &window->controller();
        return track(window, [controller] { return refOf(controller->item()); });
    }
    case ListKind::ToDos: {
        auto* window = new ToDoEditorWindow(m_store, m_prompter, *m_openEditors);
        if (!window->newToDo(QDateTime::currentDateTime())) {
            delete window;
            return nullptr;
        }
        editors::ToDoController* controller = &window->controller();
        return track(window, [controller] { return refOf(controller->todo()); });
    }
    case ListKind::None:
        break;
    }
    return nullptr;
}

QWidget* EditorWindows::editRecord(const RecordRef& record)
{
    if (record.isNull())
        return nullptr;
    if (QWidget* open = openFor(record))
        return show(open);
    switch (browse::ListKinds::ofEntity(record.entity)) {
    case ListKind::Documents: {
        DocumentEditorWindow* window = newDocumentEditor(-1);
        if (window && !window->openDocument(record)) {
            window->close();
            return nullptr;
        }
        return window;
    }
    case ListKind::Clients: {
        auto* window = qobject_cast<ClientEditorWindow*>(newEditor(ListKind::Clients));
        if (window && !window->openClient(record)) {
            window->close();
            return nullptr;
        }
        return window;
    }
    case ListKind::Items: {
        auto* window = qobject_cast<ItemEditorWindow*>(newEditor(ListKind::Items));
        if (window && !window->openItem(record)) {
            window->close();
            return nullptr;
        }
        return window;
    }
    case ListKind::ToDos: {
        auto* window = qobject_cast<ToDoEditorWindow*>(newEditor(ListKind::ToDos));
        if (window && !window->openToDo(record)) {
            window->close();
            return nullptr;
        }
        return window;
    }
    case ListKind::None:
        break;
    }
    return nullptr;
}

QWidget* EditorWindows::showWarehouse(const RecordRef& item)
{
    return editRecord(item);
}

bool EditorWindows::addToDocument(const RecordRef& record)
{
    QWidget* window = m_openEditors->documentEditorWindow();
    if (!window)
        window = newDocumentEditor(0);
    editors::DocumentController* controller = m_openEditors->documentEditor();
    if (!window || !controller)
        return false;
    const bool added = browse::AddToDocument::add(record, *controller);
    show(window);
    return added;
}

void EditorWindows::followInPreview(DocumentEditorWindow* window)
{
    editors::DocumentController* controller = &window->controller();
    auto* pause = new QTimer(window);
    pause->setSingleShot(true);
    pause->setInterval(700);
    auto* refreshing = new bool(false);
    connect(window, &QObject::destroyed, this, [refreshing] { delete refreshing; });
    const auto edited = [pause, refreshing] {
        if (!*refreshing)
            pause->start();
    };
    connect(controller, &editors::DocumentController::rowsChanged, pause, edited);
    connect(controller, &editors::DocumentController::editedChanged, pause, edited);
    connect(pause, &QTimer::timeout, window, [this, controller, refreshing] {
        store::Record* document = controller->document();
        if (!document || !m_outputs->previewWindow(document->ref()))
            return;
        // The sums and the document's copies of its client's data are brought up to date as for
        // any preview; what that changes must not start the pause again.
        *refreshing = true;
        controller->defaultPriceChanged();
        controller->updateDocumentFields();
        controller->updateTaxSummary();
        *refreshing = false;
        m_outputs->refreshPreview(document);
    });
}

bool EditorWindows::throughController(const RecordRef& document, HandOver command)
{
    const auto run = [command](editors::DocumentController& controller) {
        switch (command) {
        case HandOver::Print:
            return controller.print();
        case HandOver::SaveAs:
            return controller.saveAs();
        case HandOver::Email:
            return controller.sendEmail();
        }
        return false;
    };
    // An open editor of the document hands over its own state, unsaved edits included.
    if (auto* open = qobject_cast<DocumentEditorWindow*>(openFor(document))) {
        show(open);
        return run(open->controller());
    }
    editors::DocumentController controller(m_store, m_prompter);
    controller.setOutput(m_outputs.get());
    connect(&controller, &editors::DocumentController::soundRequested, m_sounds, &SoundPlayer::play);
    if (!controller.openDocument(document))
        return false;
    return run(controller);
}

bool EditorWindows::printDocument(const RecordRef& document)
{
    return throughController(document, HandOver::Print);
}

bool EditorWindows::saveDocumentAs(const RecordRef& document)
{
    return throughController(document, HandOver::SaveAs);
}

bool EditorWindows::sendEmail(const RecordRef& record)
{
    if (browse::ListKinds::ofEntity(record.entity) == ListKind::Documents)
        return throughController(record, HandOver::Email);
    auto* sheet = new EmailPreparationWindow(m_store, m_prompter, record, m_mainWindow);
    sheet->setAttribute(Qt::WA_DeleteOnClose);
    sheet->open();
    return true;
}

void EditorWindows::showDocumentPayments(const RecordRef& document, QWidget* parent)
{
    auto* sheet =
        new DocumentPaymentsSheet(m_store, m_prompter, document, parent ? parent : m_mainWindow.data());
    sheet->setAttribute(Qt::WA_DeleteOnClose);
    sheet->open();
}

} // namespace corvanta::ui
