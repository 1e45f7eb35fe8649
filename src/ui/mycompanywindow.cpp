#include "mycompanywindow.h"

#include "app/commandrules.h"
#include "documents/customfields.h"
#include "documents/savefailure.h"
#include "mainwindow.h"
#include "model/companyrecord.h"
#include "predicate/literal.h"
#include "store/editingcontext.h"
#include "store/fetchrequest.h"
#include "store/record.h"
#include "store/store.h"
#include "support/prompter.h"
#include "windowplacement.h"

#include <QCloseEvent>
#include <QComboBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QScopedValueRollback>
#include <QVBoxLayout>

namespace corvanta::ui {

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

QFormLayout* newForm(QWidget* box)
{
    auto* form = new QFormLayout(box);
    form->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
    return form;
}

void addRow(QFormLayout* form, const QString& text, QWidget* field)
{
    auto* label = new QLabel(text, field->parentWidget());
    label->setBuddy(field);
    form->addRow(label, field);
}

} // namespace

MyCompanyWindow::MyCompanyWindow(store::Store& store, support::Prompter& prompter, QWidget* parent)
    : QWidget(parent, Qt::Window)
    , m_context(store.newContext())
    , m_prompter(prompter)
{
    setObjectName(s("MyCompanyWindow"));
    setAttribute(Qt::WA_DeleteOnClose);
    setProperty(MainWindow::windowKindProperty(), int(app::WindowKind::Other));
    setWindowTitle(tr("My Company"));
    setWindowIcon(QIcon::fromTheme(s("go-home")));

    m_references = {
        {s("default_currency"), s("Currencies"), s("code")},
        {s("default_tax"), s("Taxes"), s("name")},
        {s("default_unit"), s("Units"), s("name")},
        {s("default_payment_type"), s("PaymentTypes"), s("name")},
        {s("default_bank"), s("Banks"), s("line1")},
        {s("default_due_day"), s("DueDays"), s("name")},
        {s("default_email_template"), s("EmailTemplates"), s("name")},
    };

    // Made in reading order, which the Tab key follows.
    QWidget* companyFields = makeCompanyFields();
    auto* right = new QVBoxLayout;
    right->addWidget(makeDefaults());
    right->addWidget(makeCustomFields());
    right->addStretch(1);
    auto* layout = new QHBoxLayout(this);
    layout->addWidget(companyFields, 1);
    layout->addLayout(right, 1);

    // Saves of other windows (a renamed tax, a new bank) come into this context and its lists.
    connect(&store, &store::Store::didSave, this,
            [this](const store::ChangeSet& changes, store::EditingContext* origin) {
                if (origin != m_context.get())
                    m_context->mergeChanges(changes);
            });
    connect(m_context.get(), &store::EditingContext::objectsDidChange, this,
            &MyCompanyWindow::contextDidChange);

    load();
    if (!WindowPlacement::restore(this))
        resize(sizeHint().expandedTo(QSize(fontMetrics().averageCharWidth() * 130, 0)));
}

MyCompanyWindow::~MyCompanyWindow()
{
    // Fields that lose the focus while they go would still commit: they are cut off first.
    const QList<QWidget*> children = findChildren<QWidget*>();
    for (QWidget* child : children) {
        disconnect(child, nullptr, this, nullptr);
        child->removeEventFilter(this);
    }
    qDeleteAll(findChildren<QWidget*>(Qt::FindDirectChildrenOnly));
}

Record* MyCompanyWindow::company() const
{
    return model::CompanyRecord::of(*m_context);
}

QLineEdit* MyCompanyWindow::addLineEdit(const char* key, const char* objectName)
{
    auto* edit = new QLineEdit;
    edit->setObjectName(s(objectName));
    const QString attribute = s(key);
    m_lineEdits.append({attribute, edit});
    connect(edit, &QLineEdit::textEdited, this,
            [this, attribute](const QString& text) { setText(attribute, text); });
    connect(edit, &QLineEdit::editingFinished, this, &MyCompanyWindow::commit);
    return edit;
}

QPlainTextEdit* MyCompanyWindow::addTextEdit(const char* key, const char* objectName, int lines)
{
    auto* edit = new QPlainTextEdit;
    edit->setObjectName(s(objectName));
    edit->setTabChangesFocus(true);
    const int margins = 2 * edit->frameWidth() + int(edit->document()->documentMargin() * 2);
    edit->setMinimumHeight(fontMetrics().lineSpacing() * lines + margins);
    edit->setMaximumHeight(fontMetrics().lineSpacing() * lines * 2 + margins);
    edit->installEventFilter(this);
    const QString attribute = s(key);
    m_textEdits.append({attribute, edit});
    connect(edit, &QPlainTextEdit::textChanged, this,
            [this, attribute, edit] { setText(attribute, edit->toPlainText()); });
    return edit;
}

QWidget* MyCompanyWindow::makeCompanyFields()
{
    auto* box = new QGroupBox(tr("Company"), this);
    auto* boxLayout = new QVBoxLayout(box);
    auto* form = newForm(nullptr);
    boxLayout->addLayout(form);
    boxLayout->addStretch(1);
    m_nameEdit = addLineEdit("name", "nameEdit");
    m_nameEdit->setParent(box);
    addRow(form, tr("&Name:"), m_nameEdit);
    m_addressEdit = addTextEdit("address", "addressEdit", 4);
    m_addressEdit->setParent(box);
    addRow(form, tr("&Address:"), m_addressEdit);
    m_taxNumberEdit = addLineEdit("tax_number", "taxNumberEdit");
    m_taxNumberEdit->setParent(box);
    addRow(form, tr("Ta&x number:"), m_taxNumberEdit);
    m_emailEdit = addLineEdit("email", "emailEdit");
    m_emailEdit->setParent(box);
    addRow(form, tr("&E-mail:"), m_emailEdit);
    m_phoneEdit = addLineEdit("phone", "phoneEdit");
    m_phoneEdit->setParent(box);
    addRow(form, tr("&Phone:"), m_phoneEdit);
    m_descEdit = addTextEdit("desc", "descEdit", 5);
    m_descEdit->setParent(box);
    addRow(form, tr("&Description:"), m_descEdit);
    return box;
}

QWidget* MyCompanyWindow::makeCustomFields()
{
    auto* box = new QGroupBox(tr("Custom Fields"), this);
    auto* form = newForm(box);
    for (int n = 1; n <= kCustomFields; ++n) {
        QLineEdit* edit =
            addLineEdit(qPrintable(numbered("custom", n)), qPrintable(numbered("customEdit", n)));
        edit->setParent(box);
        auto* label = new QLabel(box);
        label->setBuddy(edit);
        form->addRow(label, edit);
        m_customLabels[n - 1] = label;
        m_customEdits[n - 1] = edit;
    }
    return box;
}

QWidget* MyCompanyWindow::makeDefaults()
{
    auto* box = new QGroupBox(tr("Defaults"), this);
    box->setToolTip(tr("What new documents, rows, clients and items start with"));
    auto* form = newForm(box);
    const QStringList captions = {tr("C&urrency:"),       tr("&Tax:"),  tr("Un&it:"),
                                  tr("Pa&yment type:"),   tr("&Bank:"), tr("Due day&s:"),
                                  tr("E-&mail template:")};
    for (qsizetype i = 0; i < m_references.size(); ++i) {
        Reference& reference = m_references[i];
        auto* popup = new QComboBox(box);
        popup->setObjectName(reference.key + s("Popup"));
        popup->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
        popup->setMinimumContentsLength(16);
        reference.popup = popup;
        addRow(form, captions.at(i), popup);
        connect(popup, &QComboBox::activated, this, [this, i] { referenceChosen(m_references.at(i)); });
    }
    return box;
}

void MyCompanyWindow::setText(const QString& key, const QString& text)
{
    Record* record = company();
    if (m_loading || !record || record->value(key).toString() == text)
        return;
    record->setValue(key, text);
}

bool MyCompanyWindow::commit()
{
    // The alert that tells a refused save takes the focus, which leaves the field once more.
    if (m_committing || !m_context->hasChanges())
        return true;
    QScopedValueRollback guard(m_committing, true);
    store::StoreError error;
    if (m_context->save(&error))
        return true;
    documents::SaveFailure::show(m_prompter, error);
    return false;
}

bool MyCompanyWindow::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::FocusOut && qobject_cast<QPlainTextEdit*>(watched))
        commit();
    return QWidget::eventFilter(watched, event);
}

void MyCompanyWindow::closeEvent(QCloseEvent* event)
{
    // What the database refused stays in the window, to be stored once it takes it.
    if (!commit()) {
        event->ignore();
        return;
    }
    WindowPlacement::save(this);
    QWidget::closeEvent(event);
}

void MyCompanyWindow::load()
{
    const Record* record = company();
    QScopedValueRollback guard(m_loading, true);
    setEnabled(record != nullptr);
    for (const auto& [key, edit] : std::as_const(m_lineEdits)) {
        edit->setText(record ? record->value(key).toString() : QString());
        edit->home(false);
    }
    for (const auto& [key, edit] : std::as_const(m_textEdits))
        edit->setPlainText(record ? record->value(key).toString() : QString());
    loadCustomLabels();
    for (const Reference& reference : std::as_const(m_references))
        fillReference(reference);
}

void MyCompanyWindow::loadCustomLabels()
{
    // The company names its fields and may hide some of them; a hidden field is not offered.
    for (int n = 1; n <= kCustomFields; ++n) {
        const QString key = numbered("my_custom", n);
        const Record* field =
            m_context->fetchFirst(store::FetchRequest(s("Compose"), predicate::literal("name == %@", {key})));
        const QString caption =
            field ? documents::CustomFields::displayName(field) : documents::CustomFields::readableName(key);
        m_customLabels[n - 1]->setText(caption + u':');
        const bool hidden = field && field->value(s("hidden")).toBool();
        m_customLabels[n - 1]->setVisible(!hidden);
        m_customEdits[n - 1]->setVisible(!hidden);
    }
}

void MyCompanyWindow::fillReference(const Reference& reference)
{
    QScopedValueRollback guard(m_loading, true);
    QComboBox* popup = reference.popup;
    popup->clear();
    const QList<Record*> records = m_context->fetch(
        store::FetchRequest(reference.entity, {}, {store::SortDescriptor::localized(reference.naming)}));
    for (Record* record : records)
        popup->addItem(record->value(reference.naming).toString(), QVariant::fromValue(record));
    selectCurrent(reference);
}

void MyCompanyWindow::selectCurrent(const Reference& reference)
{
    QScopedValueRollback guard(m_loading, true);
    const Record* record = company();
    Record* current = record ? record->related(reference.key) : nullptr;
    reference.popup->setCurrentIndex(current ? reference.popup->findData(QVariant::fromValue(current)) : -1);
}

void MyCompanyWindow::referenceChosen(const Reference& reference)
{
    Record* record = company();
    if (m_loading || !record)
        return;
    record->setRelated(reference.key, reference.popup->currentData().value<Record*>());
    commit();
}

void MyCompanyWindow::contextDidChange(const store::ChangeSet& changes)
{
    if (changes.touches(s("Compose")))
        loadCustomLabels();
    const bool companyChanged = changes.touches(s("MyCompany"));
    for (const Reference& reference : std::as_const(m_references)) {
        if (changes.touches(reference.entity))
            fillReference(reference);
        else if (companyChanged)
            selectCurrent(reference);
    }
    // Another window changed the company (a list window made another tax the default, say):
    // the fields not being edited here show what is stored now.
    if (companyChanged && !m_committing) {
        const Record* record = company();
        QScopedValueRollback guard(m_loading, true);
        for (const auto& [key, edit] : std::as_const(m_lineEdits)) {
            if (record && !edit->hasFocus() && edit->text() != record->value(key).toString())
                edit->setText(record->value(key).toString());
        }
        for (const auto& [key, edit] : std::as_const(m_textEdits)) {
            if (record && !edit->hasFocus() && edit->toPlainText() != record->value(key).toString())
                edit->setPlainText(record->value(key).toString());
        }
    }
}

} // namespace corvanta::ui
