#pragma once

#include <QHash>
#include <QList>
#include <QObject>
#include <QPointer>
#include <functional>

class QWidget;

namespace corvanta::store {
class Store;
}
namespace corvanta::support {
class Prompter;
}

namespace corvanta::ui {

// Opens the windows that make the program the company's own: the reference lists, the custom
// fields, my company, the template library, the e-mail templates, the preferences and the three
// imports. There is one window of each; asking again brings the open one to the front.
class ListWindows : public QObject
{
    Q_OBJECT

public:
    ListWindows(store::Store& store, support::Prompter& prompter, QObject* parent = nullptr);
    ~ListWindows() override;

    // Whether a window tag (100 … 109) names a window of this family.
    static bool hasWindow(int tag);
    // The window of a tag, opened or brought to the front; null for any other tag.
    QWidget* openWindow(int tag);
    QWidget* showPreferences();

    // The import of a file of clients or items. A window already open (even minimised) only
    // comes to the front and the new file is left alone; null when the file cannot be read
    // (the user was told why).
    QWidget* importClients(const QString& path);
    QWidget* importItems(const QString& path);
    QWidget* importAddressBook();

    // The windows of this family open now.
    QList<QWidget*> windows() const;

private:
    // Keys of the windows besides the tags.
    enum Key { PreferencesKey = 1000, ImportClientsKey, ImportItemsKey, ImportAddressBookKey };

    QWidget* showOrMake(int key, const std::function<QWidget*()>& make);
    QWidget* makeWindow(int tag);
    QWidget* openImport(int key, const QString& path);

    store::Store& m_store;
    support::Prompter& m_prompter;
    QHash<int, QPointer<QWidget>> m_windows;
};

} // namespace corvanta::ui
