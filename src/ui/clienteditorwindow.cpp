#include "clienteditorwindow.h"

#include "app/commandrules.h"
#include "documents/customfields.h"
#include "editors/paymenttypevaluetransformer.h"
#include "mainwindow.h"
#include "openeditors.h"
#include "ownedrecordlist.h"
#include "store/editingcontext.h"
#include "store/record.h"
#include "taglabel.h"
#include "tagspopover.h"
#include "windowplacement.h"

#include <QCloseEvent>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSpinBox>
#include <QTabWidget>
#include <QVBoxLayout>

namespace corvanta::ui {

using editors::RecordEditor;
using store::Record;

namespace {

QString s(const char* text)
{
    return QString::fromLatin1(text);
}

QString joined(const Record* record, std::initializer_list<const char*> keys, const QString& separator)
{
    QStringList parts;
    for (const char* key : keys) {
        const QString text = record->value(s(key)).toString().simplified();
        if (!text.isEmpty())
            parts << text;
    }
    return parts.join(separator);
}

QString addressSummary(const Record* address)
{
    const QString place = joined(address, {"zip_code", "city"}, s(" "));
    QStringList parts;
    for (const QString& part : {address->value(s("street")).toString().simplified(), place,
                                address->value(s("country")).toString().simplified()}) {
        if (!part.isEmpty())
            parts << part;
    }
    return parts.isEmpty() ? ClientEditorWindow::tr("New address") : parts.join(s(", "));
}

QString contactSummary(const Record* contact)
{
    const QString name = contact->value(s("name")).toString().simplified();
    const QString reach = joined(contact, {"email", "phone"}, s(", "));
    if (name.isEmpty())
        return reach.isEmpty() ? ClientEditorWindow::tr("New contact") : reach;
    return reach.isEmpty() ? name : name + s(" (") + reach + s(")");
}

// Marks a label's first letter as its mnemonic.
QString withMnemonic(const QString& text)
{
    return text.isEmpty() ? text : s("&") + text;
}

} // namespace

ClientEditorWindow::ClientEditorWindow(store::Store& store, support::Prompter& prompter,
                                       OpenEditors& openEditors, QWidget* parent)
    : QWidget(parent, Qt::Window)
    , m_openEditors(openEditors)
    , m_controller(store, prompter)
{
    setObjectName(s("ClientEditorWindow"));
    setAttribute(Qt::WA_DeleteOnClose);
    setProperty(MainWindow::windowKindProperty(), int(app::WindowKind::ClientEditor));
    setWindowIcon(QIcon::fromTheme(s("user-identity")));
    buildForm();
    connect(&m_controller, &RecordEditor::editedChanged, this, &QWidget::setWindowModified);
    connect(&m_controller, &RecordEditor::closeRequested, this, &QWidget::close);
    restoreLayout();
}

ClientEditorWindow::~ClientEditorWindow() = default;

void ClientEditorWindow::buildForm()
{
    m_kindPopup = new QComboBox(this);
    m_kindPopup->setObjectName(s("kindPopup"));
    m_kindPopup->addItem(tr("Company"), 0);
    m_kindPopup->addItem(tr("Supplier"), 1);
    m_kindPopup->addItem(tr("Individual"), 2);
    connect(m_kindPopup, &QComboBox::activated, this, &ClientEditorWindow::kindChosen);

    m_firstNameEdit = new QLineEdit(this);
    m_firstNameEdit->setObjectName(s("firstNameField"));
    m_firstNameLabel = new QLabel(this);
    m_firstNameLabel->setObjectName(s("firstNameLabel"));
    m_firstNameLabel->setBuddy(m_firstNameEdit);
    m_secondNameEdit = new QLineEdit(this);
    m_secondNameEdit->setObjectName(s("secondNameField"));
    m_secondNameLabel = new QLabel(this);
    m_secondNameLabel->setObjectName(s("secondNameLabel"));
    m_secondNameLabel->setBuddy(m_secondNameEdit);
    connect(m_firstNameEdit, &QLineEdit::textEdited, this,
            [this](const QString& text) { setText(m_controller.nameFields().firstKey, text); });
    connect(m_secondNameEdit, &QLineEdit::textEdited, this,
            [this](const QString& text) { setText(m_controller.nameFields().secondKey, text); });

    auto* kindLabel = new QLabel(tr("&Kind:"), this);
    kindLabel->setBuddy(m_kindPopup);
    auto* head = new QFormLayout;
    head->setFieldGrowthPolicy(QFormLayout::ExpandingFieldsGrow);
    head->addRow(kindLabel, m_kindPopup);
    head->addRow(m_firstNameLabel, m_firstNameEdit);
    head->addRow(m_secondNameLabel, m_secondNameEdit);

    m_tabs = new QTabWidget(this);
    m_tabs->setObjectName(s("clientTabs"));
    m_tabs->setDocumentMode(false);
    m_tabs->addTab(buildGeneralPage(), tr("&General"));

    m_addresses = new OwnedRecordList(
        s("addresses"),
        {{s("street"), tr("&Street:"), true},
         {s("zip_code"), tr("&Zip code:")},
         {s("city"), tr("C&ity:")},
         {s("state"), tr("Stat&e:")},
         {s("country"), tr("Countr&y:")},
         {s("address_note"), tr("&Note:")}},
        {[this] { return client() ? client()->relatedList(s("addresses")) : QList<Record*>(); },
         [this] { return client() ? client()->related(s("default_address")) : nullptr; },
         [this] { return m_controller.addAddress(); },
         [this](Record* address) { m_controller.removeAddress(address); },
         [this](Record* address) { m_controller.defaultAddressChanged(address); }, addressSummary},
        {tr("Add Address"), tr("Remove Address"), tr("The ticked address is the default"),
         tr("No addresses yet")},
        this);
    m_tabs->addTab(m_addresses, tr("A&ddresses"));

    m_contacts = new OwnedRecordList(
        s("contacts"),
        {{s("name"), tr("Na&me:")},
         {s("email"), tr("&E-mail:")},
         {s("phone"), tr("P&hone:")},
         {s("contact_note"), tr("&Note:"), true}},
        {[this] { return client() ? client()->relatedList(s("contacts")) : QList<Record*>(); },
         [this] { return client() ? client()->related(s("default_contact")) : nullptr; },
         [this] { return m_controller.addContact(); },
         [this](Record* contact) { m_controller.removeContact(contact); },
         [this](Record* contact) { m_controller.defaultContactChanged(contact); }, contactSummary},
        {tr("Add Contact"), tr("Remove Contact"), tr("The ticked contact is the default"),
         tr("No contacts yet")},
        this);
    m_tabs->addTab(m_contacts, tr("C&ontacts"));
    m_tabs->addTab(buildPaymentPage(), tr("&Payment"));
    if (QWidget* custom = buildCustomPage())
        m_tabs->addTab(custom, tr("C&ustom Fields"));
    for (OwnedRecordList* list : {m_addresses, m_contacts})
        connect(list, &OwnedRecordList::edited, this, [this] { m_controller.markEdited(); });

    m_tagsButton = new QPushButton(QIcon::fromTheme(s("tag")), tr("T&ags"), this);
    m_tagsButton->setObjectName(s("tagsButton"));
    m_tagsButton->setToolTip(tr("Choose the client's tags"));
    connect(m_tagsButton, &QPushButton::clicked, this, &ClientEditorWindow::showTagsPopover);
    m_tagRow = new QWidget(this);
    m_tagRow->setObjectName(s("tagRow"));
    m_tagRowLayout = new QHBoxLayout(m_tagRow);
    m_tagRowLayout->setContentsMargins(0, 0, 0, 0);

    m_saveButton = new QPushButton(QIcon::fromTheme(s("document-save")), tr("Save"), this);
    m_saveButton->setObjectName(s("saveButton"));
    m_saveButton->setDefault(true);
    connect(m_saveButton, &QPushButton::clicked, this, &ClientEditorWindow::save);

    auto* bottom = new QHBoxLayout;
    bottom->addWidget(m_tagsButton);
    bottom->addWidget(m_tagRow, 1);
    bottom->addWidget(m_saveButton);

    auto* layout = new QVBoxLayout(this);
    layout->addLayout(head);
    layout->addWidget(m_tabs, 1);
    layout->addLayout(bottom);
}

QWidget* ClientEditorWindow::buildGeneralPage()
{
    auto* page = new QWidget(this);
    auto* form = new QFormLayout(page);
    form->setFieldGrowthPolicy(QFormLayout::ExpandingFieldsGrow);

    m_emailsEdit = new QLineEdit(page);
    m_emailsEdit->setObjectName(s("emailsField"));
    m_emailsEdit->setToolTip(tr("Several addresses separated by commas"));
    connect(m_emailsEdit, &QLineEdit::textEdited, this,
            [this](const QString& text) { setText(s("emails"), text); });
    m_phonesEdit = new QLineEdit(page);
    m_phonesEdit->setObjectName(s("phonesField"));
    m_phonesEdit->setToolTip(tr("Several numbers separated by commas"));
    connect(m_phonesEdit, &QLineEdit::textEdited, this,
            [this](const QString& text) { setText(s("phones"), text); });

    m_statusPopup = new QComboBox(page);
    m_statusPopup->setObjectName(s("statusPopup"));
    m_statusPopup->addItem(tr("Not set"), QVariant());
    m_statusPopup->addItem(tr("Available"), 2);
    m_statusPopup->addItem(tr("Possible"), 1);
    m_statusPopup->addItem(tr("Lost"), 0);
    connect(m_statusPopup, &QComboBox::activated, this, [this] {
        if (!client())
            return;
        client()->setValue(s("status"), m_statusPopup->currentData());
        m_controller.markEdited();
    });

    m_ratingSpin = new QSpinBox(page);
    m_ratingSpin->setObjectName(s("ratingSpin"));
    m_ratingSpin->setRange(0, 5);
    m_ratingSpin->setSpecialValueText(tr("None"));
    connect(m_ratingSpin, &QSpinBox::valueChanged, this, [this](int value) {
        if (m_loading || !client())
            return;
        client()->setValue(s("rating"), value);
        m_controller.markEdited();
    });

    m_notesEdit = new QPlainTextEdit(page);
    m_notesEdit->setObjectName(s("notesEdit"));
    m_notesEdit->setTabChangesFocus(true);
    connect(m_notesEdit, &QPlainTextEdit::textChanged, this, [this] {
        if (!m_loading)
            setText(s("desc"), m_notesEdit->toPlainText());
    });

    const auto addRow = [page, form](const QString& text, QWidget* field) {
        auto* label = new QLabel(text, page);
        label->setBuddy(field);
        form->addRow(label, field);
    };
    addRow(tr("&E-mail:"), m_emailsEdit);
    addRow(tr("P&hone:"), m_phonesEdit);
    addRow(tr("&Status:"), m_statusPopup);
    addRow(tr("&Rating:"), m_ratingSpin);
    addRow(tr("&Notes:"), m_notesEdit);
    return page;
}

QWidget* ClientEditorWindow::buildPaymentPage()
{
    auto* page = new QWidget(this);
    auto* form = new QFormLayout(page);
    form->setFieldGrowthPolicy(QFormLayout::ExpandingFieldsGrow);
    const auto popup = [this, page, form](const char* name, const QString& label, const QString& key) {
        auto* combo = new QComboBox(page);
        combo->setObjectName(s(name));
        combo->setSizeAdjustPolicy(QComboBox::AdjustToContents);
        connect(combo, &QComboBox::activated, this, [this, combo, key] { relationChosen(combo, key); });
        auto* text = new QLabel(label, page);
        text->setBuddy(combo);
        form->addRow(text, combo);
        return combo;
    };
    m_paymentTypePopup = popup("paymentTypePopup", tr("Pa&yment type:"), s("default_payment_type"));
    m_bankPopup = popup("bankPopup", tr("&Bank:"), s("default_bank"));
    m_dueDaysPopup = popup("dueDaysPopup", tr("Du&e days:"), s("default_due_day"));
    auto* hint = new QLabel(
        tr("Documents made out to this client take these terms; where none is chosen, the company's apply."),
        page);
    hint->setWordWrap(true);
    hint->setForegroundRole(QPalette::PlaceholderText);
    form->addRow(hint);
    return page;
}

QWidget* ClientEditorWindow::buildCustomPage()
{
    QList<Record*> fields;
    for (Record* field : documents::CustomFields::group(m_controller.context(), s("client_"))) {
        if (!field->value(s("hidden")).toBool())
            fields << field;
    }
    if (fields.isEmpty())
        return nullptr;
    auto* page = new QWidget(this);
    auto* form = new QFormLayout(page);
    form->setFieldGrowthPolicy(QFormLayout::ExpandingFieldsGrow);
    for (const Record* field : std::as_const(fields)) {
        // "client_custom03" edits the client's `custom03`.
        const QString key = field->value(s("name")).toString().mid(int(qstrlen("client_")));
        auto* edit = new QLineEdit(page);
        edit->setObjectName(s("customField_") + key);
        connect(edit, &QLineEdit::textEdited, this, [this, key](const QString& text) { setText(key, text); });
        auto* label = new QLabel(documents::CustomFields::displayName(field) + s(":"), page);
        label->setBuddy(edit);
        form->addRow(label, edit);
        m_customEdits << qMakePair(key, edit);
    }
    return page;
}

bool ClientEditorWindow::newClient(qint64 type)
{
    if (!m_controller.newClient(type))
        return false;
    load();
    m_firstNameEdit->setFocus(Qt::OtherFocusReason);
    return true;
}

bool ClientEditorWindow::openClient(const predicate::RecordRef& client)
{
    if (!m_controller.openClient(client))
        return false;
    load();
    return true;
}

void ClientEditorWindow::load()
{
    Record* record = client();
    if (!record)
        return;
    // The popover works on one record: a client opened afresh gets its own.
    delete m_tagsPopover;
    m_tagsPopover = nullptr;
    m_loading = true;
    m_kindPopup->setCurrentIndex(m_kindPopup->findData(record->value(s("type")).toLongLong()));
    m_emailsEdit->setText(record->value(s("emails")).toString());
    m_phonesEdit->setText(record->value(s("phones")).toString());
    const QVariant status = record->value(s("status"));
    m_statusPopup->setCurrentIndex(status.isNull() ? 0
                                                   : qMax(0, m_statusPopup->findData(status.toLongLong())));
    m_ratingSpin->setValue(record->value(s("rating")).toInt());
    m_notesEdit->setPlainText(record->value(s("desc")).toString());
    for (const auto& [key, edit] : std::as_const(m_customEdits))
        edit->setText(record->value(key).toString());
    m_loading = false;
    loadNameFields();
    loadPaymentDefaults();
    m_addresses->reload();
    m_contacts->reload();
    loadTags();
    updateTitle();
    setWindowModified(m_controller.isEdited());
}

void ClientEditorWindow::loadNameFields()
{
    const editors::ClientController::NameFields fields = m_controller.nameFields();
    m_firstNameLabel->setText(withMnemonic(fields.firstLabel) + s(":"));
    m_secondNameLabel->setText(withMnemonic(fields.secondLabel) + s(":"));
    m_firstNameEdit->setText(client() ? client()->value(fields.firstKey).toString() : QString());
    m_secondNameEdit->setText(client() ? client()->value(fields.secondKey).toString() : QString());
}

void ClientEditorWindow::fillPopup(QComboBox* popup, const QString& noneText, const QString& entity,
                                   const QString& nameKey)
{
    popup->clear();
    popup->addItem(noneText, QVariant::fromValue<Record*>(nullptr));
    const QList<Record*> records = m_controller.context().fetch(
        store::FetchRequest(entity, {}, {store::SortDescriptor::localized(nameKey)}));
    for (Record* record : records)
        popup->addItem(record->value(nameKey).toString(), QVariant::fromValue(record));
}

void ClientEditorWindow::loadPaymentDefaults()
{
    const editors::PaymentTypeValueTransformer noPayment;
    fillPopup(m_paymentTypePopup, noPayment.transformedValue(QVariant()).toString(), s("PaymentTypes"),
              s("name"));
    fillPopup(m_bankPopup, tr("No bank"), s("Banks"), s("line1"));
    fillPopup(m_dueDaysPopup, tr("No terms"), s("DueDays"), s("name"));
    const QList<QPair<QComboBox*, const char*>> popups = {{m_paymentTypePopup, "default_payment_type"},
                                                          {m_bankPopup, "default_bank"},
                                                          {m_dueDaysPopup, "default_due_day"}};
    for (const auto& [popup, key] : popups) {
        Record* chosen = client() ? client()->related(s(key)) : nullptr;
        popup->setCurrentIndex(qMax(0, popup->findData(QVariant::fromValue(chosen))));
    }
}

void ClientEditorWindow::relationChosen(QComboBox* popup, const QString& key)
{
    if (!client())
        return;
    client()->setRelated(key, popup->currentData().value<Record*>());
    m_controller.markEdited();
}

void ClientEditorWindow::loadTags()
{
    while (QLayoutItem* item = m_tagRowLayout->takeAt(0)) {
        delete item->widget();
        delete item;
    }
    QList<Record*> tags;
    if (client()) {
        for (Record* tag : client()->relatedList(s("tags"))) {
            // The kind folders are the program's; the row shows the user's own tags.
            if (tag->value(s("subtype")).isNull() && tag->value(s("type")).toLongLong() > 0)
                tags << tag;
        }
    }
    std::sort(tags.begin(), tags.end(), [](const Record* a, const Record* b) {
        return a->value(s("name")).toString().localeAwareCompare(b->value(s("name")).toString()) < 0;
    });
    for (const Record* tag : std::as_const(tags)) {
        auto* label = new TagLabelWidget(m_tagRow);
        label->setText(tag->value(s("name")).toString());
        const QColor foreground = tag->value(s("foreground_color")).value<QColor>();
        const QColor background = tag->value(s("background_color")).value<QColor>();
        label->setColors(foreground.isValid() ? foreground : palette().color(QPalette::Text),
                         background.isValid() ? background : palette().color(QPalette::Dark));
        label->setSizePolicy(QSizePolicy::Maximum, QSizePolicy::Fixed);
        m_tagRowLayout->addWidget(label);
        label->show();
    }
    m_tagRowLayout->addStretch();
}

void ClientEditorWindow::updateTitle()
{
    const QString name = client() ? client()->value(s("full_name")).toString().trimmed() : QString();
    setWindowTitle((name.isEmpty() ? tr("New Client") : name) + s("[*]"));
}

void ClientEditorWindow::kindChosen(int index)
{
    const qint64 type = m_kindPopup->itemData(index).toLongLong();
    if (!client() || client()->value(s("type")).toLongLong() == type)
        return;
    m_controller.typeChanged(type, RecordEditor::Sender::Control);
    loadNameFields();
    updateTitle();
}

void ClientEditorWindow::setText(const QString& key, const QString& text)
{
    if (m_loading || !client())
        return;
    client()->setValue(key, text);
    m_controller.markEdited();
    updateTitle();
}

void ClientEditorWindow::save()
{
    if (!client())
        return;
    // A save from here closes the window, through closeRequested; a failed one was told and
    // leaves the window open with its edits.
    m_controller.save(RecordEditor::Sender::Control, m_openEditors.documentEditor());
}

void ClientEditorWindow::showTagsPopover()
{
    if (!client())
        return;
    if (!m_tagsPopover) {
        m_tagsPopover = new TagsPopover(client(), this);
        connect(m_tagsPopover, &TagsPopover::tagsChanged, this, [this] {
            m_controller.markEdited();
            loadTags();
        });
    }
    m_tagsPopover->showUnder(m_tagsButton);
}

OwnedRecordList* ClientEditorWindow::activeList() const
{
    return m_tabs->currentWidget() == m_contacts ? m_contacts : m_addresses;
}

void ClientEditorWindow::addRow()
{
    OwnedRecordList* list = activeList();
    m_tabs->setCurrentWidget(list);
    list->addRecord();
}

void ClientEditorWindow::deleteRow()
{
    if (m_tabs->currentWidget() == m_addresses || m_tabs->currentWidget() == m_contacts)
        activeList()->removeCurrent();
}

void ClientEditorWindow::closeEvent(QCloseEvent* event)
{
    if (m_controller.windowShouldClose(m_openEditors.documentEditor()) ==
        RecordEditor::CloseAnswer::KeepOpen) {
        event->ignore();
        return;
    }
    saveLayout();
    event->accept();
}

void ClientEditorWindow::restoreLayout()
{
    if (!WindowPlacement::restore(this))
        resize(sizeHint().expandedTo(QSize(fontMetrics().height() * 42, fontMetrics().height() * 36)));
}

void ClientEditorWindow::saveLayout() const
{
    WindowPlacement::save(this);
}

} // namespace corvanta::ui
