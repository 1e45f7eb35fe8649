#include "desktopaddressbooks.h"

#include "contactperson.h"
#include "exchangelog.h"

#include <QDir>
#include <QFileInfo>
#include <condition_variable>
#include <libebook/libebook.h>
#include <mutex>
#include <thread>

namespace corvanta::exchange {

namespace {

const char* const SourcesService = "org.gnome.evolution.dataserver.Sources5";

// Cancels a GCancellable when the time is up, unless the work is done first.
class Deadline
{
public:
    explicit Deadline(std::chrono::milliseconds timeout)
        : m_cancellable(g_cancellable_new())
        , m_thread([this, timeout] {
            std::unique_lock lock(m_mutex);
            if (!m_wake.wait_for(lock, timeout, [this] { return m_done; }))
                g_cancellable_cancel(m_cancellable);
        })
    {}
    ~Deadline()
    {
        {
            std::lock_guard lock(m_mutex);
            m_done = true;
        }
        m_wake.notify_all();
        m_thread.join();
        g_object_unref(m_cancellable);
    }
    Deadline(const Deadline&) = delete;
    Deadline& operator=(const Deadline&) = delete;

    GCancellable* cancellable() const { return m_cancellable; }

private:
    GCancellable* m_cancellable;
    std::mutex m_mutex;
    std::condition_variable m_wake;
    bool m_done = false;
    std::thread m_thread;
};

QString messageOf(GError* error)
{
    const QString message = error ? QString::fromUtf8(error->message) : QString();
    if (error)
        g_error_free(error);
    return message;
}

// Whether a session bus is set up at all; asking for one that is not would start one.
bool hasSessionBusAddress()
{
    if (!qEnvironmentVariableIsEmpty("DBUS_SESSION_BUS_ADDRESS"))
        return true;
    const QString runtime = qEnvironmentVariable("XDG_RUNTIME_DIR");
    return !runtime.isEmpty() && QFileInfo::exists(QDir(runtime).filePath(QStringLiteral("bus")));
}

// Whether the bus has the sources service running or can start it.
bool busOffers(GDBusConnection* bus, const char* service, int timeoutMs)
{
    GVariant* owned = g_dbus_connection_call_sync(bus, "org.freedesktop.DBus", "/org/freedesktop/DBus",
                                                  "org.freedesktop.DBus", "NameHasOwner",
                                                  g_variant_new("(s)", service), G_VARIANT_TYPE("(b)"),
                                                  G_DBUS_CALL_FLAGS_NONE, timeoutMs, nullptr, nullptr);
    bool found = false;
    if (owned) {
        gboolean has = FALSE;
        g_variant_get(owned, "(b)", &has);
        found = has;
        g_variant_unref(owned);
    }
    if (found)
        return true;
    GVariant* activatable = g_dbus_connection_call_sync(
        bus, "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "ListActivatableNames",
        nullptr, G_VARIANT_TYPE("(as)"), G_DBUS_CALL_FLAGS_NONE, timeoutMs, nullptr, nullptr);
    if (!activatable)
        return false;
    GVariantIter* names = nullptr;
    g_variant_get(activatable, "(as)", &names);
    const gchar* name = nullptr;
    while (!found && g_variant_iter_next(names, "&s", &name))
        found = g_strcmp0(name, service) == 0;
    g_variant_iter_free(names);
    g_variant_unref(activatable);
    return found;
}

// The registry of the desktop's sources; null with `reason` when it cannot be reached.
ESourceRegistry* openRegistry(std::chrono::milliseconds timeout, QString* reason)
{
    if (!hasSessionBusAddress()) {
        *reason = DesktopAddressBooks::tr(
            "There is no desktop session bus, so the desktop's address books cannot be reached.");
        return nullptr;
    }
    Deadline deadline(timeout);
    GError* error = nullptr;
    GDBusConnection* bus = g_bus_get_sync(G_BUS_TYPE_SESSION, deadline.cancellable(), &error);
    if (!bus) {
        *reason =
            DesktopAddressBooks::tr("The desktop session bus cannot be reached: %1").arg(messageOf(error));
        return nullptr;
    }
    // The bus is shared with the rest of the process (the registry uses it too): losing it must
    // not end the program.
    g_dbus_connection_set_exit_on_close(bus, FALSE);
    const bool offered = busOffers(bus, SourcesService, int(timeout.count()));
    g_object_unref(bus);
    if (!offered) {
        *reason = DesktopAddressBooks::tr(
            "The desktop's contacts service (evolution-data-server) is not installed or not running.");
        return nullptr;
    }
    ESourceRegistry* registry = e_source_registry_new_sync(deadline.cancellable(), &error);
    if (!registry)
        *reason =
            DesktopAddressBooks::tr("The desktop's address books cannot be read: %1").arg(messageOf(error));
    return registry;
}

} // namespace

DesktopAddressBooks::DesktopAddressBooks(std::chrono::milliseconds timeout)
    : m_timeout(timeout)
{}

QList<DesktopAddressBooks::Book> DesktopAddressBooks::books(QString* reason) const
{
    ESourceRegistry* registry = openRegistry(m_timeout, reason);
    if (!registry)
        return {};
    QList<Book> result;
    GList* sources = e_source_registry_list_enabled(registry, E_SOURCE_EXTENSION_ADDRESS_BOOK);
    for (GList* item = sources; item; item = item->next) {
        auto* source = static_cast<ESource*>(item->data);
        result << Book{QString::fromUtf8(e_source_get_uid(source)),
                       QString::fromUtf8(e_source_get_display_name(source))};
    }
    g_list_free_full(sources, g_object_unref);
    g_object_unref(registry);
    return result;
}

QList<AddressBookPerson> DesktopAddressBooks::persons(const QString& key, QString* reason) const
{
    ESourceRegistry* registry = openRegistry(m_timeout, reason);
    if (!registry)
        return {};
    ESource* book = nullptr;
    GList* sources = e_source_registry_list_enabled(registry, E_SOURCE_EXTENSION_ADDRESS_BOOK);
    for (GList* item = sources; item && !book; item = item->next) {
        auto* source = static_cast<ESource*>(item->data);
        if (key == QString::fromUtf8(e_source_get_uid(source)) ||
            key == QString::fromUtf8(e_source_get_display_name(source)))
            book = static_cast<ESource*>(g_object_ref(source));
    }
    g_list_free_full(sources, g_object_unref);
    g_object_unref(registry);
    if (!book) {
        *reason = tr("The desktop has no address book \"%1\".").arg(key);
        return {};
    }

    QList<AddressBookPerson> result;
    Deadline deadline(m_timeout);
    GError* error = nullptr;
    const auto seconds = guint32(std::max<qint64>(1, m_timeout.count() / 1000));
    EClient* client = e_book_client_connect_sync(book, seconds, deadline.cancellable(), &error);
    g_object_unref(book);
    if (!client) {
        *reason = tr("The address book \"%1\" cannot be opened: %2").arg(key, messageOf(error));
        return {};
    }
    EBookQuery* all = e_book_query_any_field_contains("");
    gchar* query = e_book_query_to_string(all);
    e_book_query_unref(all);
    GSList* contacts = nullptr;
    if (e_book_client_get_contacts_sync(E_BOOK_CLIENT(client), query, &contacts, deadline.cancellable(),
                                        &error)) {
        for (GSList* item = contacts; item; item = item->next) {
            EContact* contact = E_CONTACT(item->data);
            if (ContactPerson::isGroup(contact))
                continue;
            const AddressBookPerson person = ContactPerson::fromContact(contact);
            if (!ContactPerson::isEmpty(person))
                result << person;
        }
        g_slist_free_full(contacts, g_object_unref);
    } else {
        *reason = tr("The address book \"%1\" cannot be read: %2").arg(key, messageOf(error));
    }
    g_free(query);
    g_object_unref(client);
    qCDebug(lcExchange) << "read" << result.size() << "persons from the desktop's address book" << key;
    return result;
}

} // namespace corvanta::exchange
