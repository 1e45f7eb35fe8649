#include "importitemswindow.h"

#include "exchange/itemsimport.h"
#include "model/companyrecord.h"
#include "store/editingcontext.h"
#include "store/fetchrequest.h"
#include "store/record.h"

#include <QComboBox>

namespace corvanta::ui {

namespace {

QString s(const char* text)
{
    return QString::fromLatin1(text);
}

} // namespace

ImportItemsWindow::ImportItemsWindow(store::Store& store, support::Prompter& prompter, QWidget* parent)
    : CsvImportWindow(store, prompter, QStringLiteral("ImportItemsWindow"), tr("Import Items"), parent)
{
    setFields(exchange::ImportFields::items(context()));

    // The position on this pop-up is the items' `type`.
    m_typePopup = new QComboBox(this);
    m_typePopup->setObjectName(s("itemTypePopup"));
    m_typePopup->addItem(tr("Service"));
    m_typePopup->addItem(tr("Product"));
    m_typePopup->setCurrentIndex(1);
    addOption(tr("Item &type:"), m_typePopup);
    m_taxPopup = makeReferencePopup("taxPopup", s("Taxes"), s("default_tax"));
    addOption(tr("Ta&x:"), m_taxPopup);
    m_unitPopup = makeReferencePopup("unitPopup", s("Units"), s("default_unit"));
    addOption(tr("&Unit:"), m_unitPopup);
    m_tagPopup = makeTagPopup(2, 1);
    addOption(tr("&Tag:"), m_tagPopup);
    restoreWindowGeometry();
}

QComboBox* ImportItemsWindow::makeReferencePopup(const char* name, const QString& entity,
                                                 const QString& defaultKey)
{
    auto* popup = new QComboBox(this);
    popup->setObjectName(s(name));
    const store::Record* chosen = model::CompanyRecord::defaultRecord(context(), defaultKey);
    if (chosen)
        popup->addItem(chosen->value(s("name")).toString(), QVariant::fromValue(chosen->ref()));
    const QList<store::Record*> records =
        context().fetch(store::FetchRequest(entity, {}, {store::SortDescriptor::localized(s("name"))}));
    for (const store::Record* record : records) {
        if (record != chosen)
            popup->addItem(record->value(s("name")).toString(), QVariant::fromValue(record->ref()));
    }
    return popup;
}

std::optional<int> ImportItemsWindow::runImport(const QList<QStringList>& rows, const QStringList& columnKeys,
                                                const exchange::ImportProgress& progress)
{
    exchange::ItemsImport::Options options;
    options.columnKeys = columnKeys;
    options.itemType = m_typePopup->currentIndex();
    options.tag = m_tagPopup->currentData().toInt();
    options.tax = m_taxPopup->currentData().value<predicate::RecordRef>();
    options.unit = m_unitPopup->currentData().value<predicate::RecordRef>();
    return exchange::ItemsImport(store(), prompter()).run(rows, options, progress);
}

} // namespace corvanta::ui
