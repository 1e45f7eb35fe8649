#include "itemeditorwindow.h"

#include "app/commandrules.h"
#include "documents/pricelevels.h"
#include "editors/itemcontroller.h"
#include "format/numberformatter.h"
#include "format/numberinput.h"
#include "itemwarehouseview.h"
#include "mainwindow.h"
#include "model/companyrecord.h"
#include "openeditors.h"
#include "predicate/literal.h"
#include "store/editingcontext.h"
#include "store/fetchrequest.h"
#include "store/record.h"
#include "support/prompter.h"
#include "tagspopover.h"
#include "windowplacement.h"

#include <QCheckBox>
#include <QCloseEvent>
#include <QComboBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScopedValueRollback>
#include <QVBoxLayout>

namespace corvanta::ui {

using documents::PriceLevels;
using editors::ItemController;
using store::Record;

namespace {

QString s(const char* text)
{
    return QString::fromLatin1(text);
}

QString numbered(const char* prefix, int n)
{
    return QStringLiteral("%1%2").arg(s(prefix)).arg(n, 2, 10, QLatin1Char('0'));
}

} // namespace

ItemEditorWindow::ItemEditorWindow(store::Store& store, support::Prompter& prompter, OpenEditors& openEditors,
                                   QWidget* parent)
    : QWidget(parent, Qt::Window)
    , m_prompter(prompter)
    , m_openEditors(openEditors)
    , m_controller(std::make_unique<ItemController>(store, prompter))
{
    setObjectName(s("ItemEditorWindow"));
    setAttribute(Qt::WA_DeleteOnClose);
    setProperty(MainWindow::windowKindProperty(), int(app::WindowKind::ItemEditor));
    setWindowIcon(QIcon::fromTheme(s("package-x-generic")));

    auto* columns = new QHBoxLayout;
    columns->addWidget(makeItemFields(), 1);
    auto* right = new QVBoxLayout;
    right->addWidget(makePrices());
    right->addWidget(makeWarehouse(), 1);
    columns->addLayout(right, 1);

    m_tagsButton = new QPushButton(QIcon::fromTheme(s("tag")), tr("&Tags…"), this);
    m_tagsButton->setObjectName(s("tagsButton"));
    m_tagsButton->setToolTip(tr("Choose the item's tags"));
    m_saveButton = new QPushButton(QIcon::fromTheme(s("document-save")), tr("Save"), this);
    m_saveButton->setObjectName(s("saveButton"));
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(m_tagsButton);
    buttons->addStretch(1);
    buttons->addWidget(m_saveButton);

    auto* layout = new QVBoxLayout(this);
    layout->addLayout(columns, 1);
    layout->addLayout(buttons);

    connect(m_tagsButton, &QPushButton::clicked, this, &ItemEditorWindow::showTags);
    connect(m_saveButton, &QPushButton::clicked, this, &ItemEditorWindow::save);
    connect(m_controller.get(), &ItemController::editedChanged, this, &QWidget::setWindowModified);
    connect(m_controller.get(), &ItemController::closeRequested, this, &QWidget::close);

    setEnabled(false);
    updateTitle();
    if (!WindowPlacement::restore(this))
        resize(sizeHint().expandedTo(QSize(fontMetrics().averageCharWidth() * 120, 0)));
}

ItemEditorWindow::~ItemEditorWindow()
{
    // Fields that lose the focus while they go would still write into the item: they are
    // cut off first, and the widgets go while the controller they show still exists.
    const QList<QWidget*> children = findChildren<QWidget*>();
    for (QWidget* child : children)
        disconnect(child, nullptr, this, nullptr);
    qDeleteAll(findChildren<QWidget*>(Qt::FindDirectChildrenOnly));
}

QWidget* ItemEditorWindow::makeItemFields()
{
    auto* box = new QGroupBox(tr("Item"), this);
    auto* form = new QFormLayout;
    auto* boxLayout = new QVBoxLayout(box);
    boxLayout->addLayout(form);
    boxLayout->addStretch(1);
    const auto addRow = [&](const QString& text, QWidget* field) {
        auto* label = new QLabel(text, box);
        label->setBuddy(field);
        form->addRow(label, field);
        return label;
    };

    m_nameEdit = new QLineEdit(box);
    m_nameEdit->setObjectName(s("nameEdit"));
    addRow(tr("&Name:"), m_nameEdit);
    connect(m_nameEdit, &QLineEdit::textEdited, this, [this](const QString& text) {
        setText(s("name"), text);
        updateTitle();
    });

    m_typePopup = new QComboBox(box);
    m_typePopup->setObjectName(s("typePopup"));
    m_typePopup->addItem(tr("Service"), qint64(0));
    m_typePopup->addItem(tr("Product"), qint64(1));
    addRow(tr("T&ype:"), m_typePopup);
    connect(m_typePopup, &QComboBox::activated, this, [this](int index) {
        if (Record* item = m_controller->item()) {
            item->setValue(s("type"), m_typePopup->itemData(index));
            m_controller->markEdited();
        }
    });

    m_codeEdit = new QLineEdit(box);
    m_codeEdit->setObjectName(s("codeEdit"));
    addRow(tr("&Code:"), m_codeEdit);
    connect(m_codeEdit, &QLineEdit::textEdited, this,
            [this](const QString& text) { setText(s("code"), text); });

    m_unitPopup = new QComboBox(box);
    m_unitPopup->setObjectName(s("unitPopup"));
    addRow(tr("&Unit:"), m_unitPopup);
    connect(m_unitPopup, &QComboBox::activated, this, [this] { referenceChosen(m_unitPopup, s("unit")); });

    m_taxPopup = new QComboBox(box);
    m_taxPopup->setObjectName(s("taxPopup"));
    addRow(tr("Ta&x:"), m_taxPopup);
    connect(m_taxPopup, &QComboBox::activated, this, [this] { referenceChosen(m_taxPopup, s("tax")); });

    m_descEdit = new QPlainTextEdit(box);
    m_descEdit->setObjectName(s("descEdit"));
    m_descEdit->setTabChangesFocus(true);
    m_descEdit->setMinimumHeight(fontMetrics().lineSpacing() * 4);
    m_descEdit->setMaximumHeight(fontMetrics().lineSpacing() * 8);
    addRow(tr("&Description:"), m_descEdit);
    connect(m_descEdit, &QPlainTextEdit::textChanged, this,
            [this] { setText(s("desc"), m_descEdit->toPlainText()); });

    for (int n = 1; n <= kCustomFields; ++n) {
        auto* edit = new QLineEdit(box);
        edit->setObjectName(numbered("customEdit", n));
        m_customEdits[n - 1] = edit;
        m_customLabels[n - 1] = addRow(QString(), edit);
        const QString key = numbered("custom", n);
        connect(edit, &QLineEdit::textEdited, this, [this, key](const QString& text) { setText(key, text); });
    }
    return box;
}

QWidget* ItemEditorWindow::makePrices()
{
    auto* box = new QGroupBox(tr("Prices"), this);
    auto* form = new QFormLayout(box);
    for (int level = 1; level <= kLevels; ++level) {
        auto* edit = new QLineEdit(box);
        edit->setObjectName(numbered("priceEdit", level));
        edit->setAlignment(Qt::AlignRight);
        auto* label = new QLabel(box);
        label->setBuddy(edit);
        form->addRow(label, edit);
        m_priceEdits[level - 1] = edit;
        m_priceLabels[level - 1] = label;
        connect(edit, &QLineEdit::editingFinished, this, [this, level] { priceEntered(level); });
    }
    m_grossToNetButton = new QPushButton(tr("Gross to Net"), box);
    m_grossToNetButton->setObjectName(s("grossToNetButton"));
    m_grossToNetButton->setToolTip(tr("Take the first rate of the item's tax out of all five prices"));
    m_grossToNetButton->setAutoDefault(false);
    auto* row = new QHBoxLayout;
    row->addStretch(1);
    row->addWidget(m_grossToNetButton);
    form->addRow(row);
    connect(m_grossToNetButton, &QPushButton::clicked, this, &ItemEditorWindow::pricesToNet);
    return box;
}

QWidget* ItemEditorWindow::makeWarehouse()
{
    auto* box = new QGroupBox(tr("Warehouse"), this);
    m_warehouseCheck = new QCheckBox(tr("Track &stock of this item"), box);
    m_warehouseCheck->setObjectName(s("useWarehouseCheck"));
    connect(m_warehouseCheck, &QCheckBox::toggled, this, [this](bool on) {
        Record* item = m_controller->item();
        if (m_loading || !item)
            return;
        item->setValue(s("use_warehouse"), on);
        m_controller->markEdited();
    });
    m_stockLabel = new QLabel(box);
    m_stockLabel->setObjectName(s("stockLabel"));
    m_stockLabel->setTextInteractionFlags(Qt::TextSelectableByMouse);
    auto* stockCaption = new QLabel(tr("Current stock:"), box);
    stockCaption->setBuddy(m_stockLabel);
    auto* stockRow = new QHBoxLayout;
    stockRow->addWidget(m_warehouseCheck);
    stockRow->addStretch(1);
    stockRow->addWidget(stockCaption);
    stockRow->addWidget(m_stockLabel);

    m_warehouseView = new ItemWarehouseView(*m_controller, m_prompter, box);
    auto* layout = new QVBoxLayout(box);
    layout->addLayout(stockRow);
    layout->addWidget(m_warehouseView, 1);
    return box;
}

void ItemEditorWindow::fillReferencePopup(QComboBox* popup, const QString& entity)
{
    popup->clear();
    popup->addItem(tr("None"), QVariant::fromValue<Record*>(nullptr));
    const QList<Record*> records = m_controller->context().fetch(
        store::FetchRequest(entity, {}, {store::SortDescriptor::localized(s("name"))}));
    for (Record* record : records)
        popup->addItem(record->value(s("name")).toString(), QVariant::fromValue(record));
}

void ItemEditorWindow::selectReference(QComboBox* popup, const Record* current)
{
    for (int i = 0; i < popup->count(); ++i) {
        if (popup->itemData(i).value<Record*>() == current) {
            popup->setCurrentIndex(i);
            return;
        }
    }
    popup->setCurrentIndex(0);
}

void ItemEditorWindow::referenceChosen(QComboBox* popup, const QString& key)
{
    Record* item = m_controller->item();
    if (m_loading || !item)
        return;
    item->setRelated(key, popup->currentData().value<Record*>());
    m_controller->markEdited();
}

bool ItemEditorWindow::newItem(qint64 type)
{
    if (!m_controller->newItem(type))
        return false;
    loadItem();
    return true;
}

bool ItemEditorWindow::openItem(const predicate::RecordRef& item)
{
    if (!m_controller->openItem(item))
        return false;
    loadItem();
    return true;
}

void ItemEditorWindow::loadItem()
{
    const Record* item = m_controller->item();
    QScopedValueRollback guard(m_loading, true);
    store::EditingContext& context = m_controller->context();

    m_nameEdit->setText(item->value(s("name")).toString());
    m_typePopup->setCurrentIndex(qMax(0, m_typePopup->findData(item->value(s("type")).toLongLong())));
    m_codeEdit->setText(item->value(s("code")).toString());
    fillReferencePopup(m_unitPopup, s("Units"));
    selectReference(m_unitPopup, item->related(s("unit")));
    fillReferencePopup(m_taxPopup, s("Taxes"));
    selectReference(m_taxPopup, item->related(s("tax")));
    m_descEdit->setPlainText(item->value(s("desc")).toString());

    // The company names its custom fields, and may hide some of them.
    for (int n = 1; n <= kCustomFields; ++n) {
        const Record* field = context.fetchFirst(store::FetchRequest(
            s("Compose"), predicate::literal("name == %@", {numbered("item_custom", n)})));
        const QString label = field ? field->value(s("label")).toString() : QString();
        m_customLabels[n - 1]->setText((label.isEmpty() ? tr("Custom Field %1").arg(n) : label) + u':');
        const bool hidden = field && field->value(s("hidden")).toBool();
        m_customLabels[n - 1]->setVisible(!hidden);
        m_customEdits[n - 1]->setVisible(!hidden);
        m_customEdits[n - 1]->setText(item->value(numbered("custom", n)).toString());
    }

    const QStringList levelLabels = PriceLevels::labels(context);
    for (int level = 1; level <= kLevels; ++level) {
        const QString label = level <= levelLabels.size() ? levelLabels.at(level - 1) : QString();
        m_priceLabels[level - 1]->setText((label.isEmpty() ? tr("Price %1").arg(level) : label) + u':');
        showPrice(level);
    }

    m_warehouseCheck->setChecked(item->value(s("use_warehouse")).toBool());
    showStock();
    m_warehouseView->reload();
    setEnabled(true);
    setWindowModified(m_controller->isEdited());
    updateTitle();
}

void ItemEditorWindow::showPrice(int level)
{
    const Record* item = m_controller->item();
    const format::NumberFormatter formatter(
        model::CompanyRecord::defaultRecord(m_controller->context(), s("default_currency")));
    const QString text =
        item ? formatter.stringForObjectValue(item->value(PriceLevels::slotKey(level))) : QString();
    m_shownPrices[level - 1] = text;
    m_priceEdits[level - 1]->setText(text);
}

void ItemEditorWindow::priceEntered(int level)
{
    Record* item = m_controller->item();
    QLineEdit* edit = m_priceEdits[level - 1];
    // The alert that refuses a price takes the focus, which leaves the field once more.
    if (m_loading || m_enteringPrice || !item || edit->text() == m_shownPrices[level - 1])
        return;
    QScopedValueRollback guard(m_enteringPrice, true);
    const format::NumberFormatter formatter(
        model::CompanyRecord::defaultRecord(m_controller->context(), s("default_currency")));
    QVariant price;
    QString error;
    if (!formatter.getObjectValue(&price, edit->text(), &error)) {
        m_prompter.alert(format::NumberInput::alertTitle(), error, {tr("OK")});
    } else if (price.isNull()) {
        item->setValue(PriceLevels::slotKey(level), QVariant());
        m_controller->markEdited();
    } else {
        m_controller->setPrice(level, price.toDouble());
    }
    showPrice(level);
}

void ItemEditorWindow::finishEditing()
{
    for (int level = 1; level <= kLevels; ++level)
        priceEntered(level);
}

void ItemEditorWindow::pricesToNet()
{
    finishEditing();
    m_controller->pricesToNet();
    for (int level = 1; level <= kLevels; ++level)
        showPrice(level);
}

void ItemEditorWindow::showStock()
{
    const Record* item = m_controller->item();
    const format::NumberFormatter formatter(
        model::CompanyRecord::defaultRecord(m_controller->context(), s("default_currency")));
    m_stockLabel->setText(
        formatter.stringFromNumber(item ? item->value(s("stock_current")).toDouble() : 0.0));
}

void ItemEditorWindow::showTags()
{
    Record* item = m_controller->item();
    if (!item)
        return;
    auto* popover = new TagsPopover(item, this);
    popover->setObjectName(s("TagsPopover"));
    popover->setAttribute(Qt::WA_DeleteOnClose);
    connect(popover, &TagsPopover::tagsChanged, m_controller.get(), &ItemController::markEdited);
    popover->showUnder(m_tagsButton);
}

void ItemEditorWindow::setText(const QString& key, const QString& text)
{
    Record* item = m_controller->item();
    if (m_loading || !item)
        return;
    item->setValue(key, text);
    m_controller->markEdited();
}

void ItemEditorWindow::updateTitle()
{
    const QString name = m_controller->item() ? m_controller->item()->value(s("name")).toString() : QString();
    setWindowTitle((name.isEmpty() ? tr("New Item") : name) + s("[*]"));
}

bool ItemEditorWindow::save()
{
    if (!m_controller->item())
        return false;
    finishEditing();
    return m_controller->save(ItemController::Sender::Control, m_openEditors.documentEditor());
}

void ItemEditorWindow::closeEvent(QCloseEvent* event)
{
    if (m_controller->item()) {
        finishEditing();
        if (m_controller->windowShouldClose(m_openEditors.documentEditor()) ==
            ItemController::CloseAnswer::KeepOpen) {
            event->ignore();
            return;
        }
    }
    WindowPlacement::save(this);
    event->accept();
}

} // namespace corvanta::ui
