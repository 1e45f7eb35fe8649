#include "listwindows.h"

#include "customfieldswindow.h"
#include "documentpdf.h"
#include "editors/referencelist.h"
#include "emailtemplateswindow.h"
#include "importaddressbookwindow.h"
#include "importclientswindow.h"
#include "importitemswindow.h"
#include "mycompanywindow.h"
#include "preferenceswindow.h"
#include "referencelistwindow.h"
#include "templatelibrarywindow.h"
#include "windowplacement.h"

#include <QWidget>
#include <memory>

namespace corvanta::ui {

using editors::ReferenceListType;

ListWindows::ListWindows(store::Store& store, support::Prompter& prompter, QObject* parent)
    : QObject(parent)
    , m_store(store)
    , m_prompter(prompter)
{}

ListWindows::~ListWindows()
{
    for (const QPointer<QWidget>& window : std::as_const(m_windows))
        delete window.data();
}

bool ListWindows::hasWindow(int tag)
{
    return tag >= 100 && tag <= 109;
}

QWidget* ListWindows::openWindow(int tag)
{
    if (!hasWindow(tag))
        return nullptr;
    return showOrMake(tag, [this, tag] { return makeWindow(tag); });
}

QWidget* ListWindows::makeWindow(int tag)
{
    const auto list = [this](ReferenceListType type) -> QWidget* {
        return new ReferenceListWindow(type, m_store, m_prompter);
    };
    switch (tag) {
    case 100:
        return new CustomFieldsWindow(m_store, m_prompter);
    case 101:
        return new MyCompanyWindow(m_store, m_prompter);
    case 102:
        return list(ReferenceListType::Currencies);
    case 103:
        return list(ReferenceListType::Banks);
    case 104:
        return list(ReferenceListType::PaymentTypes);
    case 105:
        return list(ReferenceListType::Taxes);
    case 106:
        return list(ReferenceListType::Units);
    case 107:
        return new TemplateLibraryWindow(m_store, m_prompter, DocumentPdf::templateFilesDirectory(m_store));
    case 108:
        return new EmailTemplatesWindow(m_store, m_prompter);
    case 109:
        return list(ReferenceListType::DueDays);
    default:
        return nullptr;
    }
}

QWidget* ListWindows::showPreferences()
{
    return showOrMake(PreferencesKey, [this] { return new PreferencesWindow(m_store, m_prompter); });
}

QWidget* ListWindows::importClients(const QString& path)
{
    return openImport(ImportClientsKey, path);
}

QWidget* ListWindows::importItems(const QString& path)
{
    return openImport(ImportItemsKey, path);
}

QWidget* ListWindows::openImport(int key, const QString& path)
{
    if (m_windows.value(key))
        return showOrMake(key, {});
    std::unique_ptr<CsvImportWindow> window;
    if (key == ImportClientsKey)
        window = std::make_unique<ImportClientsWindow>(m_store, m_prompter);
    else
        window = std::make_unique<ImportItemsWindow>(m_store, m_prompter);
    if (!window->openFile(path))
        return nullptr;
    return showOrMake(key, [&window] { return window.release(); });
}

QWidget* ListWindows::importAddressBook()
{
    return showOrMake(ImportAddressBookKey,
                      [this] { return new ImportAddressBookWindow(m_store, m_prompter); });
}

QWidget* ListWindows::showOrMake(int key, const std::function<QWidget*()>& make)
{
    QWidget* window = m_windows.value(key);
    if (!window) {
        if (!make)
            return nullptr;
        window = make();
        if (!window)
            return nullptr;
        m_windows.insert(key, window);
    }
    return WindowPlacement::bringToFront(window);
}

QList<QWidget*> ListWindows::windows() const
{
    QList<QWidget*> open;
    for (const QPointer<QWidget>& window : m_windows) {
        if (window)
            open.append(window);
    }
    return open;
}

} // namespace corvanta::ui
