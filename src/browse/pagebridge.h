#pragma once

#include "browse/detailpage.h"
#include "browse/pageaddress.h"

#include <QDate>
#include <QObject>
#include <QVariant>
#include <memory>
#include <optional>

namespace corvanta::store {
class EditingContext;
class Record;
class Store;
} // namespace corvanta::store

namespace corvanta::browse {

// What the detail page's script may call. The desktop registers one bridge on the page's web
// channel, so its invokable methods are exactly the page's calls; each checks its arguments
// (they come from a page that shows record values) and refuses anything else: the refusal
// is logged and reported by callRefused(), nothing changes. The bridge also keeps what the
// browser keeps for the pane: the page shown, the history's filter and count, and the chart's
// currency and range.
class PageBridge : public QObject
{
    Q_OBJECT

public:
    // Reads through the store's main context and stores changes through a context of its own.
    explicit PageBridge(store::Store& store, QObject* parent = nullptr);
    ~PageBridge() override;

    // Shows the page of an address ("client.html?1&…"): true when it names a stored record
    // of its kind; otherwise nothing is shown. The history starts again at ten events.
    bool showPage(const QString& address);
    // The empty page.
    void showNothing();
    // The kind and identifier of the page shown, nothing for the empty page.
    std::optional<PageAddress> currentTypeAndIdentifier() const { return m_shown; }
    // The record shown, looked up again ("identifier == %@" on its kind's entity).
    store::Record* shownRecord() const;
    // The shown page filled from its record now; the empty page when nothing is shown.
    DetailPage page() const;
    // The history's rows as the page shows them now.
    QString historyHtml() const;

    int selectedEventsType() const { return m_eventsType; }
    int eventsCount() const { return m_eventsCount; }
    const QString& selectedCurrency() const { return m_currency; }
    void setSelectedCurrency(const QString& code) { m_currency = code; }
    void setChartRange(const QDate& from, const QDate& to);
    QDate chartFrom() const { return m_chartFrom; }
    QDate chartTo() const { return m_chartTo; }

    Q_INVOKABLE void showChartSettings();
    Q_INVOKABLE void showDocumentPayments();
    Q_INVOKABLE void filterEventsByType(const QVariant& type);
    Q_INVOKABLE void changeView(const QVariant& view);
    Q_INVOKABLE void sendEmail(const QVariant& address);
    Q_INVOKABLE void clientRating(const QVariant& rating);
    Q_INVOKABLE void clientStatus(const QVariant& status);
    Q_INVOKABLE void done(const QVariant& identifier);
    Q_INVOKABLE void openWarehouse();
    Q_INVOKABLE void moreRow(const QVariant& count);

Q_SIGNALS:
    // The history's new rows, after moreRow, filterEventsByType or a to-do marked done.
    void historyChanged(const QString& html);
    // "events_view" or "chart_view".
    void viewChanged(const QString& view);
    // The chart's periods and sums, when the chart view is shown or its range changes.
    void chartChanged(const QStringList& labels, const QVariantList& values);
    // The shown record was changed and stored; the page is drawn again.
    void pageChanged();
    // For the desktop's sheets and windows.
    void chartSettingsRequested();
    void documentPaymentsRequested(const QString& documentIdentifier);
    void emailRequested(const QString& address);
    void warehouseRequested(const QString& itemIdentifier);
    void callRefused(const QString& call, const QString& reason);

private:
    void refuse(const char* call, const QString& reason);
    // The shown record when it is of `kind`; refuses the call otherwise.
    store::Record* shownOf(const char* call, ListKind kind);
    store::Record* shownClientOrItem(const char* call);
    store::Record* find(ListKind kind, const QString& identifier) const;
    // Stores `value` under `key` on the shown client.
    void storeOnClient(const char* call, const QVariant& argument, const char* key, qint64 highest);
    void emitChart();

    store::Store& m_store;
    std::unique_ptr<store::EditingContext> m_changes;
    std::optional<PageAddress> m_shown;
    int m_eventsType = -1;
    int m_eventsCount = 0;
    QString m_currency;
    QDate m_chartFrom;
    QDate m_chartTo;
};

} // namespace corvanta::browse
