#include "preferenceswindow.h"

#include "app/commandrules.h"
#include "documents/documenttypes.h"
#include "documents/savefailure.h"
#include "editors/numberformatpreferences.h"
#include "mainwindow.h"
#include "model/companysettings.h"
#include "numberformatfield.h"
#include "store/editingcontext.h"
#include "store/store.h"
#include "support/prompter.h"
#include "windowplacement.h"

#include <QCheckBox>
#include <QCloseEvent>
#include <QComboBox>
#include <QFormLayout>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScopedValueRollback>
#include <QSpinBox>
#include <QTabWidget>
#include <QVBoxLayout>

namespace corvanta::ui {

using documents::DocumentTypes;
using editors::NumberFormatPreferences;

namespace {

QString s(const char* text)
{
    return QString::fromLatin1(text);
}

} // namespace

PreferencesWindow::PreferencesWindow(store::Store& store, support::Prompter& prompter, QWidget* parent)
    : QWidget(parent, Qt::Window)
    , m_context(store.newContext())
    , m_prompter(prompter)
    , m_numbers(std::make_unique<NumberFormatPreferences>(*m_context))
{
    setObjectName(s("PreferencesWindow"));
    setAttribute(Qt::WA_DeleteOnClose);
    setProperty(MainWindow::windowKindProperty(), int(app::WindowKind::Other));
    setWindowTitle(tr("Preferences"));
    setWindowIcon(QIcon::fromTheme(s("preferences-other")));

    // Settings saved by other windows come into this context, which the pages read.
    connect(&store, &store::Store::didSave, this,
            [this](const store::ChangeSet& changes, store::EditingContext* origin) {
                if (origin != m_context.get())
                    m_context->mergeChanges(changes);
            });

    m_pages = new QTabWidget(this);
    m_pages->setObjectName(s("pages"));
    m_pages->setDocumentMode(true);
    m_pages->addTab(makeNumberingPage(), QIcon::fromTheme(s("format-list-ordered")), tr("&Numbering"));
    m_pages->addTab(makeDocumentsPage(), QIcon::fromTheme(s("document-print")), tr("&Documents"));
    m_pages->addTab(makeClientsAndItemsPage(), QIcon::fromTheme(s("system-users")), tr("&Clients and Items"));
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(m_pages);

    if (!WindowPlacement::restore(this))
        resize(sizeHint());
}

PreferencesWindow::~PreferencesWindow()
{
    // Fields that lose the focus while they go would still store: they are cut off first.
    const QList<QWidget*> children = findChildren<QWidget*>();
    for (QWidget* child : children)
        disconnect(child, nullptr, this, nullptr);
    qDeleteAll(findChildren<QWidget*>(Qt::FindDirectChildrenOnly));
}

void PreferencesWindow::showPage(Page page)
{
    m_pages->setCurrentIndex(int(page));
}

void PreferencesWindow::closeEvent(QCloseEvent* event)
{
    // A format typed but not yet left is stored as leaving it would.
    bool stored = true;
    for (const int type : NumberFormatPreferences::listedTypes())
        stored = stored && formatFinished(type);
    // What the database refused stays in the window, to be stored once it takes it.
    if (stored && m_context->hasChanges()) {
        store::StoreError error;
        stored = m_context->save(&error);
        if (!stored)
            documents::SaveFailure::show(m_prompter, error);
    }
    if (!stored) {
        event->ignore();
        return;
    }
    WindowPlacement::save(this);
    QWidget::closeEvent(event);
}

QWidget* PreferencesWindow::makeNumberingPage()
{
    auto* page = new QWidget(this);
    auto* grid = new QGridLayout;
    auto* intro = new QLabel(tr("Each document type is numbered in its own sequence, restarted every year. "
                                "Choose the length of the year and of the number from their menus, or type "
                                "the whole format."),
                             page);
    intro->setWordWrap(true);
    grid->addWidget(new QLabel(tr("<b>Format</b>"), page), 0, 1);
    grid->addWidget(new QLabel(tr("<b>Sample</b>"), page), 0, 2);
    int line = 1;
    for (const int type : NumberFormatPreferences::listedTypes()) {
        const QString key = DocumentTypes::typeNameByNumber(type);
        FormatRow row;
        row.tokens = new NumberFormatField(page);
        row.tokens->setObjectName(s("format_") + key);
        // The whole format as text, for pieces the menus do not offer.
        row.text = new QLineEdit(page);
        row.text->setObjectName(s("formatEdit_") + key);
        row.tokens->setFollowingWidget(row.text);
        row.text->setToolTip(tr("The pieces of the number joined by commas: YYYY or YY for the year, "
                                "NNNN, NNNNN or NNNNNN for the number, anything else as it is"));
        auto* label = new QLabel(NumberFormatPreferences::label(type) + u':', page);
        row.tokens->setAccessibleName(
            tr("Tokens of the %1 number").arg(NumberFormatPreferences::label(type)));
        label->setBuddy(row.text);
        row.sample = new QLabel(page);
        row.sample->setObjectName(s("sample_") + key);
        row.sample->setTextInteractionFlags(Qt::TextSelectableByMouse);
        row.sample->setMinimumWidth(fontMetrics().horizontalAdvance(s("PURCHASE ORDER/2026-000123")));
        row.reset = new QPushButton(QIcon::fromTheme(s("edit-undo")), tr("Reset"), page);
        row.reset->setObjectName(s("reset_") + key);
        row.reset->setToolTip(tr("Use the format a new company starts with"));
        row.reset->setAutoDefault(false);
        grid->addWidget(label, line, 0, Qt::AlignRight);
        grid->addWidget(row.tokens, line, 1);
        grid->addWidget(row.sample, line, 2);
        grid->addWidget(row.reset, line, 3);
        grid->addWidget(row.text, line + 1, 1);
        grid->setRowMinimumHeight(line + 2, fontMetrics().lineSpacing() / 2);
        line += 3;

        connect(row.text, &QLineEdit::textEdited, this, [this, type](const QString& format) {
            const FormatRow& shown = m_formats[type];
            shown.tokens->setFormat(format);
            shown.sample->setText(m_numbers->sample(format));
        });
        connect(row.text, &QLineEdit::editingFinished, this, [this, type] { formatFinished(type); });
        connect(row.tokens, &NumberFormatField::tokenChosen, this,
                [this, type](int index, const QString& entry) { tokenChosen(type, index, entry); });
        connect(row.reset, &QPushButton::clicked, this, [this, type] { resetFormat(type); });
        m_formats.insert(type, row);
        showFormat(type);
        QWidget::setTabOrder(row.text, row.reset);
    }
    grid->setColumnStretch(1, 1);
    auto* layout = new QVBoxLayout(page);
    layout->addWidget(intro);
    layout->addLayout(grid);
    layout->addStretch(1);
    return page;
}

QWidget* PreferencesWindow::makeDocumentsPage()
{
    auto* page = new QWidget(this);
    auto* copies = new QGroupBox(tr("Printed Copies"), page);
    auto* form = new QFormLayout(copies);
    form->setFieldGrowthPolicy(QFormLayout::FieldsStayAtSizeHint);
    for (int type = 0; type < DocumentTypes::kCount; ++type) {
        const QString key = s("print_copy_") + DocumentTypes::typeNameByNumber(type);
        auto* spin = new QSpinBox(copies);
        spin->setObjectName(key);
        spin->setRange(1, 99);
        spin->setValue(int(qMax<qint64>(1, setting(key))));
        auto* label = new QLabel(DocumentTypes::displayName(type) + u':', copies);
        label->setBuddy(spin);
        form->addRow(label, spin);
        connect(spin, &QSpinBox::valueChanged, this,
                [this, key](int value) { storeSetting(key, qint64(value)); });
    }
    auto* finalising = new QGroupBox(tr("Finalising"), page);
    auto* finalisingLayout = new QVBoxLayout(finalising);
    finalisingLayout->addWidget(makeCheck(
        s("sound_finalize_invoice"), tr("&Play a sound when an invoice is finalised"), true, finalising));

    auto* layout = new QVBoxLayout(page);
    layout->addWidget(copies);
    layout->addWidget(finalising);
    layout->addStretch(1);
    return page;
}

QWidget* PreferencesWindow::makeClientsAndItemsPage()
{
    auto* page = new QWidget(this);
    auto* clients = new QGroupBox(tr("Clients"), page);
    auto* clientForm = new QFormLayout(clients);
    clientForm->setFieldGrowthPolicy(QFormLayout::FieldsStayAtSizeHint);
    QComboBox* order = makeChoice(s("first_name_position"),
                                  {tr("First Name Last Name"), tr("Last Name First Name")}, clients);
    auto* orderLabel = new QLabel(tr("Na&mes of individuals:"), clients);
    orderLabel->setBuddy(order);
    clientForm->addRow(orderLabel, order);
    QComboBox* clientType =
        makeChoice(s("default_client_type"), {tr("Company"), tr("Supplier"), tr("Individual")}, clients);
    auto* clientTypeLabel = new QLabel(tr("New clients &are:"), clients);
    clientTypeLabel->setBuddy(clientType);
    clientForm->addRow(clientTypeLabel, clientType);
    clientForm->addRow(makeCheck(s("system_tags_client_hidden"),
                                 tr("&Show the kind tags (Company, Supplier, Individual) in lists"), false,
                                 clients));

    auto* items = new QGroupBox(tr("Items"), page);
    auto* itemForm = new QFormLayout(items);
    itemForm->setFieldGrowthPolicy(QFormLayout::FieldsStayAtSizeHint);
    QComboBox* itemType = makeChoice(s("default_item_type"), {tr("Service"), tr("Product")}, items);
    auto* itemTypeLabel = new QLabel(tr("New items a&re:"), items);
    itemTypeLabel->setBuddy(itemType);
    itemForm->addRow(itemTypeLabel, itemType);
    itemForm->addRow(makeCheck(s("system_tags_item_hidden"),
                               tr("S&how the kind tags (Service, Product) in lists"), false, items));
    itemForm->addRow(makeCheck(s("use_warehouse"), tr("&Track the stock of items"), true, items));

    auto* layout = new QVBoxLayout(page);
    layout->addWidget(clients);
    layout->addWidget(items);
    layout->addStretch(1);
    return page;
}

QComboBox* PreferencesWindow::makeChoice(const QString& key, const QStringList& captions, QWidget* parent)
{
    auto* popup = new QComboBox(parent);
    popup->setObjectName(key);
    for (qsizetype value = 0; value < captions.size(); ++value)
        popup->addItem(captions.at(value), qint64(value));
    popup->setCurrentIndex(popup->findData(setting(key)));
    connect(popup, &QComboBox::activated, this,
            [this, key, popup](int index) { storeSetting(key, popup->itemData(index)); });
    return popup;
}

// A check box over a setting of 1 or 0; `onMeansSet` false shows the opposite ("show" over a
// "hidden" setting).
QCheckBox* PreferencesWindow::makeCheck(const QString& key, const QString& caption, bool onMeansSet,
                                        QWidget* parent)
{
    auto* check = new QCheckBox(caption, parent);
    check->setObjectName(key);
    check->setChecked((setting(key) != 0) == onMeansSet);
    connect(check, &QCheckBox::toggled, this,
            [this, key, onMeansSet](bool on) { storeSetting(key, qint64(on == onMeansSet ? 1 : 0)); });
    return check;
}

qint64 PreferencesWindow::setting(const QString& key)
{
    return model::CompanySettings(*m_context).setting(key).toLongLong();
}

bool PreferencesWindow::storeSetting(const QString& key, const QVariant& value)
{
    // The alert that tells a refused save takes the focus, which leaves a field once more.
    if (m_storing)
        return false;
    QScopedValueRollback guard(m_storing, true);
    store::StoreError error;
    if (model::CompanySettings(*m_context).setSetting(key, value, &error))
        return true;
    documents::SaveFailure::show(m_prompter, error);
    return false;
}

void PreferencesWindow::showFormat(int type)
{
    const FormatRow row = m_formats.value(type);
    const QString format = m_numbers->format(type);
    if (row.text->text() != format)
        row.text->setText(format);
    row.tokens->setFormat(format);
    row.sample->setText(m_numbers->sample(format));
}

bool PreferencesWindow::formatFinished(int type)
{
    const FormatRow row = m_formats.value(type);
    if (m_storing || !row.text || row.text->text() == m_numbers->format(type))
        return true;
    QScopedValueRollback guard(m_storing, true);
    store::StoreError error;
    if (m_numbers->setFormat(type, row.text->text(), &error))
        return true;
    documents::SaveFailure::show(m_prompter, error);
    return false;
}

void PreferencesWindow::tokenChosen(int type, int index, const QString& entry)
{
    // The menu works on the stored format: what was typed before is stored first.
    if (m_storing || !formatFinished(type))
        return;
    {
        QScopedValueRollback guard(m_storing, true);
        store::StoreError error;
        if (!m_numbers->chooseToken(type, index, entry, &error))
            documents::SaveFailure::show(m_prompter, error);
    }
    showFormat(type);
    m_formats.value(type).text->setFocus();
}

void PreferencesWindow::resetFormat(int type)
{
    if (m_storing)
        return;
    {
        QScopedValueRollback guard(m_storing, true);
        store::StoreError error;
        if (!m_numbers->reset(type, &error))
            documents::SaveFailure::show(m_prompter, error);
    }
    showFormat(type);
}

} // namespace corvanta::ui
