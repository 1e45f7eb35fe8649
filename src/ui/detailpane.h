#pragma once

#include <QUrl>
#include <QWebEngineView>

class QTimer;
class QWebChannel;
class QWebEngineUrlRequestInterceptor;

namespace corvanta::store {
class Record;
class Store;
} // namespace corvanta::store
namespace corvanta::support {
class Prompter;
}
namespace corvanta::browse {
class PageBridge;
}

namespace corvanta::ui {

// The detail page of the record selected in the list, drawn from the program's own pages. The
// page talks to the program only through the bridge on its web channel; it loads nothing from
// the network and navigates nowhere but to other records' pages, which the pane then shows.
class DetailPane : public QWebEngineView
{
    Q_OBJECT

public:
    explicit DetailPane(store::Store& store, QWidget* parent = nullptr);
    ~DetailPane() override;

    // Shows the record's page; the empty page for null or a record that is not stored.
    void showRecord(store::Record* record);
    // Shows the page of an address such as "document.html?3&…"; the empty page when it names
    // no stored record. False in that case.
    bool showAddress(const QString& address);

    browse::PageBridge& bridge() { return *m_bridge; }
    // Where the mail program cannot be reached, the user is told through this prompter; without
    // one the failure is only logged.
    void setPrompter(support::Prompter* prompter) { m_prompter = prompter; }

Q_SIGNALS:
    // The page tried to go somewhere it may not: another site, a file, a page of the program
    // that is not a record's.
    void navigationRefused(const QUrl& url);

protected:
    void contextMenuEvent(QContextMenuEvent* event) override;

private:
    void render();
    void scheduleRender();
    void navigationRequested(QWebEngineNavigationRequest& request);
    void showChartSettings();
    void sendEmail(const QString& address);

    store::Store& m_store;
    browse::PageBridge* m_bridge = nullptr;
    QWebChannel* m_channel = nullptr;
    QWebEngineUrlRequestInterceptor* m_interceptor = nullptr;
    QTimer* m_renderTimer = nullptr;
    support::Prompter* m_prompter = nullptr;
    // The page this pane is loading itself; any other navigation is the page's own.
    bool m_ownLoadPending = false;
    bool m_emptyShown = false;
};

} // namespace corvanta::ui
