#include "deliverysheet.h"

#include "editors/itemcontroller.h"
#include "format/numberformatter.h"
#include "format/numberinput.h"
#include "model/companyrecord.h"
#include "sheetbuttons.h"
#include "store/record.h"
#include "support/prompter.h"

#include <QCompleter>
#include <QDateEdit>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QStringListModel>
#include <QStyle>
#include <QVBoxLayout>

namespace corvanta::ui {

using store::Record;

namespace {

QString s(const char* text)
{
    return QString::fromLatin1(text);
}

QString fullName(const Record* client)
{
    return client ? client->value(s("full_name")).toString() : QString();
}

} // namespace

DeliverySheet::DeliverySheet(editors::ItemController& controller, support::Prompter& prompter,
                             QWidget* parent)
    : QDialog(parent)
    , m_controller(controller)
    , m_prompter(prompter)
{
    setObjectName(s("DeliverySheet"));
    setWindowModality(Qt::WindowModal);
    setWindowTitle(tr("Add Delivery"));

    const Record* item = controller.item();
    const QString itemName = item ? item->value(s("name")).toString() : QString();
    auto* titleLabel =
        new QLabel(itemName.isEmpty() ? tr("New delivery") : tr("New delivery of %1").arg(itemName), this);
    titleLabel->setObjectName(s("titleLabel"));
    titleLabel->setTextFormat(Qt::PlainText);
    QFont bold = titleLabel->font();
    bold.setBold(true);
    titleLabel->setFont(bold);
    auto* informativeLabel =
        new QLabel(tr("The delivered quantity adds to the item's stock when the item is saved."), this);
    informativeLabel->setWordWrap(true);
    informativeLabel->setMinimumWidth(fontMetrics().averageCharWidth() * 60);

    m_supplierEdit = new QLineEdit(this);
    m_supplierEdit->setObjectName(s("supplierEdit"));
    m_supplierEdit->setPlaceholderText(tr("Company name"));
    m_supplierHint =
        new QLabel(tr("Choose a supplier from the suggestions, or leave the field empty."), this);
    m_supplierHint->setObjectName(s("supplierHint"));
    m_supplierHint->setWordWrap(true);
    m_supplierHint->setForegroundRole(QPalette::PlaceholderText);
    m_suggestionModel = new QStringListModel(this);
    m_completer = new QCompleter(m_suggestionModel, this);
    m_completer->setObjectName(s("supplierCompleter"));
    // The store has already chosen by company name; the list shows all it found.
    m_completer->setCompletionMode(QCompleter::UnfilteredPopupCompletion);
    m_supplierEdit->setCompleter(m_completer);

    const format::NumberFormatter formatter(
        model::CompanyRecord::defaultRecord(controller.context(), s("default_currency")));
    m_quantityEdit = new QLineEdit(formatter.stringFromNumber(1.0), this);
    m_quantityEdit->setObjectName(s("quantityEdit"));
    m_quantityEdit->setAlignment(Qt::AlignRight);
    m_dateEdit = new QDateEdit(QDate::currentDate(), this);
    m_dateEdit->setObjectName(s("dateEdit"));
    m_dateEdit->setCalendarPopup(true);

    auto* form = new QFormLayout;
    auto* supplierLabel = new QLabel(tr("&Supplier:"), this);
    supplierLabel->setBuddy(m_supplierEdit);
    form->addRow(supplierLabel, m_supplierEdit);
    form->addRow(QString(), m_supplierHint);
    auto* quantityLabel = new QLabel(tr("&Quantity:"), this);
    quantityLabel->setBuddy(m_quantityEdit);
    form->addRow(quantityLabel, m_quantityEdit);
    auto* dateLabel = new QLabel(tr("&Date:"), this);
    dateLabel->setBuddy(m_dateEdit);
    form->addRow(dateLabel, m_dateEdit);

    const SheetButtons buttons = SheetButtons::make(this);
    m_addButton = buttons.save;
    m_addButton->setText(tr("Add"));
    m_addButton->setObjectName(s("addButton"));
    connect(m_addButton, &QPushButton::clicked, this, &DeliverySheet::confirm);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(titleLabel);
    layout->addWidget(informativeLabel);
    layout->addSpacing(style()->pixelMetric(QStyle::PM_LayoutVerticalSpacing, nullptr, this));
    layout->addLayout(form);
    layout->addStretch(1);
    layout->addLayout(buttons.layout);

    connect(m_supplierEdit, &QLineEdit::textEdited, this, &DeliverySheet::supplierEdited);
    connect(m_supplierEdit, &QLineEdit::editingFinished, this, &DeliverySheet::supplierLeft);
    connect(m_completer, qOverload<const QString&>(&QCompleter::activated), this,
            &DeliverySheet::supplierChosen);
    connect(m_quantityEdit, &QLineEdit::textChanged, this, &DeliverySheet::updateAddButton);
    updateAddButton();
    m_supplierEdit->setFocus(Qt::OtherFocusReason);
}

DeliverySheet::~DeliverySheet()
{
    // The supplier field loses the focus as the sheet goes; nothing is resolved then.
    disconnect(m_supplierEdit, nullptr, this, nullptr);
}

void DeliverySheet::supplierEdited(const QString& text)
{
    m_supplier = nullptr;
    m_suggestions =
        text.trimmed().isEmpty() ? QList<Record*>() : m_controller.supplierSuggestions(text.trimmed());
    QStringList names;
    for (const Record* client : std::as_const(m_suggestions))
        names << fullName(client);
    m_suggestionModel->setStringList(names);
    if (!names.isEmpty())
        m_completer->complete();
    updateAddButton();
}

void DeliverySheet::supplierChosen(const QString& name)
{
    for (Record* client : std::as_const(m_suggestions)) {
        if (fullName(client) == name) {
            m_supplier = client;
            m_supplierEdit->setText(name);
            break;
        }
    }
    updateAddButton();
}

void DeliverySheet::supplierLeft()
{
    const QString text = m_supplierEdit->text().trimmed();
    if (m_supplier || text.isEmpty())
        return;
    // A name typed in full, or text that only one supplier's company name holds, picks that one.
    Record* match = nullptr;
    for (Record* client : std::as_const(m_suggestions)) {
        if (fullName(client).compare(text, Qt::CaseInsensitive) == 0)
            match = client;
    }
    if (!match && m_suggestions.size() == 1)
        match = m_suggestions.constFirst();
    if (match) {
        m_supplier = match;
        m_supplierEdit->setText(fullName(match));
    }
    updateAddButton();
}

void DeliverySheet::updateAddButton()
{
    const bool supplierKnown = m_supplier || m_supplierEdit->text().trimmed().isEmpty();
    m_supplierHint->setVisible(!supplierKnown);
    m_addButton->setEnabled(supplierKnown && !m_quantityEdit->text().trimmed().isEmpty());
}

void DeliverySheet::confirm()
{
    // One delivery per sheet: a click that arrives after Return has confirmed it adds nothing.
    if (m_delivery)
        return;
    supplierLeft();
    if (!m_addButton->isEnabled())
        return;
    QVariant quantity;
    QString error;
    const format::NumberFormatter formatter(
        model::CompanyRecord::defaultRecord(m_controller.context(), s("default_currency")));
    if (!formatter.getObjectValue(&quantity, m_quantityEdit->text(), &error)) {
        m_prompter.alert(format::NumberInput::alertTitle(), error, {tr("OK")});
        m_quantityEdit->setFocus(Qt::OtherFocusReason);
        return;
    }
    m_delivery =
        m_controller.addIncoming(m_supplier, quantity.toDouble(), QDateTime(m_dateEdit->date(), QTime(0, 0)));
    if (m_delivery)
        accept();
}

} // namespace corvanta::ui
