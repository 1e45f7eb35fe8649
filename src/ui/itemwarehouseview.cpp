#include "itemwarehouseview.h"

#include "deliverysheet.h"
#include "editors/itemcontroller.h"
#include "format/numberformatter.h"
#include "model/companyrecord.h"
#include "store/record.h"

#include <QButtonGroup>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLocale>
#include <QPushButton>
#include <QStackedWidget>
#include <QToolButton>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace corvanta::ui {

using store::Record;

namespace {

QString s(const char* text)
{
    return QString::fromLatin1(text);
}

QString shortDate(const QDateTime& date)
{
    return date.isValid() ? QLocale().toString(date.date(), QLocale::ShortFormat) : QString();
}

QTreeWidget* makeList(const char* name, const QStringList& headers, int quantityColumn, int nameColumn,
                      QWidget* parent)
{
    auto* list = new QTreeWidget(parent);
    list->setObjectName(s(name));
    list->setRootIsDecorated(false);
    list->setUniformRowHeights(true);
    list->setAlternatingRowColors(true);
    list->setSelectionMode(QAbstractItemView::SingleSelection);
    list->setHeaderLabels(headers);
    list->headerItem()->setTextAlignment(quantityColumn, Qt::AlignRight | Qt::AlignVCenter);
    list->header()->setStretchLastSection(false);
    // The name takes the room the numbers and dates leave.
    for (int column = 0; column < headers.size(); ++column)
        list->header()->setSectionResizeMode(column, column == nameColumn ? QHeaderView::Stretch
                                                                          : QHeaderView::ResizeToContents);
    return list;
}

QTreeWidgetItem* addRow(QTreeWidget* list, const QStringList& texts, int quantityColumn)
{
    auto* row = new QTreeWidgetItem(list, texts);
    row->setTextAlignment(quantityColumn, Qt::AlignRight | Qt::AlignVCenter);
    for (int column = 0; column < texts.size(); ++column)
        row->setToolTip(column, texts.at(column));
    return row;
}

QToolButton* makeSideButton(const QString& text, const char* name, QWidget* parent)
{
    auto* button = new QToolButton(parent);
    button->setObjectName(s(name));
    button->setText(text);
    button->setCheckable(true);
    button->setToolButtonStyle(Qt::ToolButtonTextOnly);
    return button;
}

constexpr int kOutQuantityColumn = 0;
constexpr int kInQuantityColumn = 2;

} // namespace

ItemWarehouseView::ItemWarehouseView(editors::ItemController& controller, support::Prompter& prompter,
                                     QWidget* parent)
    : QWidget(parent)
    , m_controller(controller)
    , m_prompter(prompter)
{
    setObjectName(s("ItemWarehouseView"));

    m_outButton = makeSideButton(tr("Movements Out"), "movementsOutButton", this);
    m_outButton->setToolTip(tr("Rows of documents that are not drafts"));
    m_inButton = makeSideButton(tr("Deliveries In"), "deliveriesInButton", this);
    m_inButton->setToolTip(tr("Deliveries into the warehouse"));
    m_sides = new QButtonGroup(this);
    m_sides->setExclusive(true);
    m_sides->addButton(m_outButton, int(Side::Out));
    m_sides->addButton(m_inButton, int(Side::In));
    auto* switchRow = new QHBoxLayout;
    switchRow->setSpacing(0);
    switchRow->addStretch(1);
    switchRow->addWidget(m_outButton);
    switchRow->addWidget(m_inButton);
    switchRow->addStretch(1);

    m_outList =
        makeList("movementsOutList", {tr("Quantity"), tr("Client"), tr("Document Number"), tr("Date")},
                 kOutQuantityColumn, 1, this);
    m_inList = makeList("deliveriesInList", {tr("Date"), tr("Supplier"), tr("Quantity")}, kInQuantityColumn,
                        1, this);

    m_addButton = new QPushButton(QIcon::fromTheme(s("list-add")), tr("Add Delivery…"), this);
    m_addButton->setObjectName(s("addDeliveryButton"));
    m_removeButton = new QPushButton(QIcon::fromTheme(s("list-remove")), tr("Remove Delivery"), this);
    m_removeButton->setObjectName(s("removeDeliveryButton"));
    auto* inButtons = new QHBoxLayout;
    inButtons->addWidget(m_addButton);
    inButtons->addWidget(m_removeButton);
    inButtons->addStretch(1);

    auto* inPage = new QWidget(this);
    auto* inLayout = new QVBoxLayout(inPage);
    inLayout->setContentsMargins(0, 0, 0, 0);
    inLayout->addWidget(m_inList);
    inLayout->addLayout(inButtons);

    m_pages = new QStackedWidget(this);
    m_pages->addWidget(m_outList);
    m_pages->addWidget(inPage);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addLayout(switchRow);
    layout->addWidget(m_pages, 1);

    connect(m_sides, &QButtonGroup::idToggled, this, [this](int id, bool checked) {
        if (checked)
            m_pages->setCurrentIndex(id == int(Side::In) ? 1 : 0);
    });
    connect(m_addButton, &QPushButton::clicked, this, &ItemWarehouseView::addDelivery);
    connect(m_removeButton, &QPushButton::clicked, this, &ItemWarehouseView::removeDelivery);
    connect(m_inList, &QTreeWidget::itemSelectionChanged, this, &ItemWarehouseView::updateButtons);
    m_outButton->setChecked(true);
    updateButtons();
}

ItemWarehouseView::Side ItemWarehouseView::side() const
{
    return m_inButton->isChecked() ? Side::In : Side::Out;
}

void ItemWarehouseView::setSide(Side side)
{
    (side == Side::In ? m_inButton : m_outButton)->setChecked(true);
}

void ItemWarehouseView::reload()
{
    reloadOut();
    reloadIn();
}

void ItemWarehouseView::reloadOut()
{
    const format::NumberFormatter formatter(
        model::CompanyRecord::defaultRecord(m_controller.context(), s("default_currency")));
    m_outList->clear();
    for (const editors::ItemController::MovementOut& movement : m_controller.movementsOut()) {
        addRow(m_outList,
               {formatter.stringFromNumber(movement.quantity),
                movement.client ? movement.client->value(s("full_name")).toString() : QString(),
                movement.documentNumber, shortDate(movement.date)},
               kOutQuantityColumn);
    }
}

void ItemWarehouseView::reloadIn()
{
    const format::NumberFormatter formatter(
        model::CompanyRecord::defaultRecord(m_controller.context(), s("default_currency")));
    m_inList->clear();
    for (Record* delivery : m_controller.movementsIn()) {
        QTreeWidgetItem* row = addRow(m_inList,
                                      {shortDate(delivery->value(s("date")).toDateTime()),
                                       delivery->valueForKeyPath(s("client.full_name")).toString(),
                                       formatter.stringFromNumber(delivery->value(s("quantity")).toDouble())},
                                      kInQuantityColumn);
        row->setData(0, Qt::UserRole, QVariant::fromValue(delivery));
    }
    updateButtons();
}

void ItemWarehouseView::updateButtons()
{
    m_addButton->setEnabled(m_controller.item() != nullptr);
    m_removeButton->setEnabled(!m_inList->selectedItems().isEmpty());
}

void ItemWarehouseView::addDelivery()
{
    if (!m_controller.item())
        return;
    auto* sheet = new DeliverySheet(m_controller, m_prompter, window());
    sheet->setAttribute(Qt::WA_DeleteOnClose);
    connect(sheet, &QDialog::accepted, this, [this, sheet] {
        reloadIn();
        // The new delivery is the row left selected, so that it can be taken back at once.
        for (int i = 0; i < m_inList->topLevelItemCount(); ++i) {
            QTreeWidgetItem* row = m_inList->topLevelItem(i);
            if (row->data(0, Qt::UserRole).value<Record*>() == sheet->delivery())
                m_inList->setCurrentItem(row);
        }
    });
    setSide(Side::In);
    sheet->open();
}

void ItemWarehouseView::removeDelivery()
{
    const QList<QTreeWidgetItem*> selected = m_inList->selectedItems();
    if (selected.isEmpty())
        return;
    m_controller.removeIncoming(selected.constFirst()->data(0, Qt::UserRole).value<Record*>());
    reloadIn();
}

} // namespace corvanta::ui
