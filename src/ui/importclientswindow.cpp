#include "importclientswindow.h"

#include "exchange/clientsimport.h"

#include <QComboBox>

namespace corvanta::ui {

ImportClientsWindow::ImportClientsWindow(store::Store& store, support::Prompter& prompter, QWidget* parent)
    : CsvImportWindow(store, prompter, QStringLiteral("ImportClientsWindow"), tr("Import Clients"), parent)
{
    setFields(exchange::ImportFields::clients(context()));

    // The position on this pop-up is the clients' `type`.
    m_typePopup = new QComboBox(this);
    m_typePopup->setObjectName(QStringLiteral("clientTypePopup"));
    m_typePopup->addItem(tr("Company"));
    m_typePopup->addItem(tr("Supplier"));
    m_typePopup->addItem(tr("Individual"));
    addOption(tr("Client &type:"), m_typePopup);
    m_tagPopup = makeTagPopup(1, 0);
    addOption(tr("&Tag:"), m_tagPopup);

    connect(m_typePopup, &QComboBox::activated, this, &ImportClientsWindow::retickForClientType);
    restoreWindowGeometry();
}

std::optional<int> ImportClientsWindow::runImport(const QList<QStringList>& rows,
                                                  const QStringList& columnKeys,
                                                  const exchange::ImportProgress& progress)
{
    exchange::ClientsImport::Options options;
    options.columnKeys = columnKeys;
    options.clientType = m_typePopup->currentIndex();
    options.tag = m_tagPopup->currentData().toInt();
    return exchange::ClientsImport(store(), prompter()).run(rows, options, progress);
}

} // namespace corvanta::ui
