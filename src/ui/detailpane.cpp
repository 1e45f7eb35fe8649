#include "detailpane.h"

#include "browse/detailpage.h"
#include "browse/listkind.h"
#include "browse/pageaddress.h"
#include "browse/pagebridge.h"
#include "chartsettingswindow.h"
#include "exchange/emailhandover.h"
#include "store/editingcontext.h"
#include "store/record.h"
#include "store/store.h"
#include "support/prompter.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QLoggingCategory>
#include <QMenu>
#include <QTimer>
#include <QWebChannel>
#include <QWebEngineContextMenuRequest>
#include <QWebEngineNavigationRequest>
#include <QWebEnginePage>
#include <QWebEngineSettings>
#include <QWebEngineUrlRequestInfo>
#include <QWebEngineUrlRequestInterceptor>

namespace corvanta::ui {

using browse::ListKind;
using browse::PageAddress;

namespace {

Q_LOGGING_CATEGORY(lcDetailPane, "corvanta.ui.detailpane")

// Where the pages and everything they load live.
bool isOwnScheme(const QUrl& url)
{
    const QString scheme = url.scheme();
    return scheme == QLatin1String("qrc") || scheme == QLatin1String("data") ||
           scheme == QLatin1String("blob") || scheme == QLatin1String("about");
}

// Stops every request of the page for anything outside the program's resources: a picture or
// script some record value might point at is never fetched. Runs on the web engine's own thread.
class ResourceGuard : public QWebEngineUrlRequestInterceptor
{
public:
    using QWebEngineUrlRequestInterceptor::QWebEngineUrlRequestInterceptor;

    void interceptRequest(QWebEngineUrlRequestInfo& info) override
    {
        if (isOwnScheme(info.requestUrl()))
            return;
        qCWarning(lcDetailPane, "A detail page asked for %s, which was refused.",
                  qPrintable(info.requestUrl().toDisplayString()));
        info.block(true);
    }
};

} // namespace

DetailPane::DetailPane(store::Store& store, QWidget* parent)
    : QWebEngineView(parent)
    , m_store(store)
{
    setObjectName(QStringLiteral("detailView"));
    setAccessibleName(tr("Details"));
    m_bridge = new browse::PageBridge(store, this);
    m_channel = new QWebChannel(this);
    m_channel->registerObject(QStringLiteral("bridge"), m_bridge);

    QWebEnginePage* page = this->page();
    page->setWebChannel(m_channel);
    m_interceptor = new ResourceGuard(this);
    page->setUrlRequestInterceptor(m_interceptor);
    QWebEngineSettings* settings = page->settings();
    settings->setAttribute(QWebEngineSettings::LocalContentCanAccessRemoteUrls, false);
    settings->setAttribute(QWebEngineSettings::LocalContentCanAccessFileUrls, false);
    settings->setAttribute(QWebEngineSettings::JavascriptCanOpenWindows, false);
    settings->setAttribute(QWebEngineSettings::JavascriptCanAccessClipboard, false);
    settings->setAttribute(QWebEngineSettings::PluginsEnabled, false);
    settings->setAttribute(QWebEngineSettings::NavigateOnDropEnabled, false);
    settings->setAttribute(QWebEngineSettings::FocusOnNavigationEnabled, false);
    settings->setAttribute(QWebEngineSettings::LinksIncludedInFocusChain, false);
    connect(page, &QWebEnginePage::navigationRequested, this, &DetailPane::navigationRequested);

    // A page is drawn once however many changes arrive together.
    m_renderTimer = new QTimer(this);
    m_renderTimer->setSingleShot(true);
    m_renderTimer->setInterval(0);
    connect(m_renderTimer, &QTimer::timeout, this, &DetailPane::render);
    connect(m_bridge, &browse::PageBridge::pageChanged, this, &DetailPane::scheduleRender);
    connect(&m_store.mainContext(), &store::EditingContext::objectsDidChange, this, [this] {
        if (m_bridge->currentTypeAndIdentifier())
            scheduleRender();
    });

    // historyChanged, viewChanged and chartChanged reach the page's script over the channel.
    connect(m_bridge, &browse::PageBridge::chartSettingsRequested, this, &DetailPane::showChartSettings);
    connect(m_bridge, &browse::PageBridge::emailRequested, this, &DetailPane::sendEmail);
    // documentPaymentsRequested and warehouseRequested open the payments sheet and the stock
    // window of the editors, which the program does not have yet.

    render();
}

DetailPane::~DetailPane()
{
    // The page may outlive the pane while the engine shuts it down; it must not call back.
    page()->setUrlRequestInterceptor(nullptr);
    page()->setWebChannel(nullptr);
    disconnect(page(), nullptr, this, nullptr);
}

void DetailPane::showRecord(store::Record* record)
{
    if (!record) {
        if (m_emptyShown && !m_bridge->currentTypeAndIdentifier())
            return;
        m_bridge->showNothing();
        render();
        return;
    }
    const ListKind kind = browse::ListKinds::ofEntity(record->entityName());
    const QString identifier = record->value(QStringLiteral("identifier")).toString();
    if (kind == ListKind::None || identifier.isEmpty() ||
        !m_bridge->showPage(PageAddress::of(kind, identifier)))
        m_bridge->showNothing();
    render();
}

bool DetailPane::showAddress(const QString& address)
{
    const bool shown = m_bridge->showPage(address);
    if (!shown)
        m_bridge->showNothing();
    render();
    return shown;
}

void DetailPane::scheduleRender()
{
    m_renderTimer->start();
}

void DetailPane::render()
{
    m_renderTimer->stop();
    const std::optional<PageAddress> shown = m_bridge->currentTypeAndIdentifier();
    const browse::DetailPage detail = m_bridge->page();
    // The page's address is its file among the resources with the record's kind and identifier,
    // so that its links and files resolve there.
    const QString address = shown && detail.kind() != ListKind::None
                                ? PageAddress::of(shown->kind, shown->identifier)
                                : PageAddress::pageName(ListKind::None);
    m_emptyShown = detail.kind() == ListKind::None;
    m_ownLoadPending = true;
    setHtml(detail.html(), QUrl(QStringLiteral("qrc:/pages/") + address));
}

void DetailPane::navigationRequested(QWebEngineNavigationRequest& request)
{
    const QUrl url = request.url();
    // The pane's own loads: the page's content handed over with its address.
    if (m_ownLoadPending && request.isMainFrame() &&
        request.navigationType() != QWebEngineNavigationRequest::LinkClickedNavigation &&
        url.scheme() == QLatin1String("data")) {
        m_ownLoadPending = false;
        request.accept();
        return;
    }
    request.reject();
    // A link to another record's page shows that record here.
    if (url.scheme() == QLatin1String("qrc") && request.isMainFrame()) {
        const QString address = url.toString(QUrl::FullyEncoded);
        if (PageAddress::parse(address)) {
            QTimer::singleShot(0, this, [this, address] { showAddress(address); });
            return;
        }
    }
    qCWarning(lcDetailPane, "A detail page tried to open %s, which was refused.",
              qPrintable(url.toDisplayString()));
    Q_EMIT navigationRefused(url);
}

void DetailPane::showChartSettings()
{
    auto* sheet = new ChartSettingsWindow(m_bridge->chartFrom(), m_bridge->chartTo(), this);
    sheet->setAttribute(Qt::WA_DeleteOnClose);
    connect(sheet, &QDialog::accepted, this,
            [this, sheet] { m_bridge->setChartRange(sheet->fromDate(), sheet->toDate()); });
    sheet->open();
}

void DetailPane::sendEmail(const QString& address)
{
    QString error;
    QApplication::setOverrideCursor(Qt::WaitCursor);
    const bool handedOver = exchange::EmailHandOver().sendEmailTo(address, {}, {}, {}, &error);
    QApplication::restoreOverrideCursor();
    if (handedOver)
        return;
    qCWarning(lcDetailPane, "No message to %s could be opened: %s", qPrintable(address), qPrintable(error));
    if (m_prompter)
        m_prompter->alert(tr("Send Email"), error, {tr("OK")});
}

void DetailPane::contextMenuEvent(QContextMenuEvent* event)
{
    // A link in a page is a button of the page: it has no menu.
    const QWebEngineContextMenuRequest* request = lastContextMenuRequest();
    if (request && !request->linkUrl().isEmpty()) {
        event->accept();
        return;
    }
    // The view's own menu, without what would leave the page or show its source.
    QMenu* menu = createStandardContextMenu();
    const QList<QWebEnginePage::WebAction> leaving{QWebEnginePage::Back,
                                                   QWebEnginePage::Forward,
                                                   QWebEnginePage::Reload,
                                                   QWebEnginePage::ViewSource,
                                                   QWebEnginePage::SavePage,
                                                   QWebEnginePage::OpenLinkInNewWindow,
                                                   QWebEnginePage::OpenLinkInNewTab,
                                                   QWebEnginePage::OpenLinkInThisWindow};
    for (QWebEnginePage::WebAction action : leaving)
        menu->removeAction(pageAction(action));
    menu->setAttribute(Qt::WA_DeleteOnClose);
    if (menu->actions().isEmpty()) {
        delete menu;
        event->accept();
        return;
    }
    menu->popup(event->globalPos());
    event->accept();
}

} // namespace corvanta::ui
