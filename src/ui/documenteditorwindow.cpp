#include "documenteditorwindow.h"

#include "app/commandrules.h"
#include "documentrowdelegate.h"
#include "documentrowsmodel.h"
#include "documentrowsview.h"
#include "documents/customfields.h"
#include "documents/documenttotals.h"
#include "documents/documenttypes.h"
#include "documents/pricelevels.h"
#include "editors/documentcontroller.h"
#include "editors/rownotelibrary.h"
#include "format/formattedcurrency.h"
#include "format/numberformatter.h"
#include "format/numberinput.h"
#include "format/relativedates.h"
#include "mainwindow.h"
#include "model/companyrecord.h"
#include "openeditors.h"
#include "store/editingcontext.h"
#include "store/record.h"
#include "store/store.h"
#include "support/prompter.h"
#include "tagspopover.h"
#include "windowplacement.h"

#include <QAction>
#include <QButtonGroup>
#include <QCloseEvent>
#include <QComboBox>
#include <QCompleter>
#include <QDateEdit>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QIcon>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScopedValueRollback>
#include <QStringListModel>
#include <QStyle>
#include <QTabWidget>
#include <QToolBar>
#include <QToolButton>
#include <QVBoxLayout>
#include <algorithm>

namespace corvanta::ui {

using editors::DocumentController;
using store::Record;

namespace {

QString s(const char* key)
{
    return QString::fromLatin1(key);
}

// The rate is typed with more digits than an amount has.
constexpr int kExchangeRateDigits = 6;
// The row note field shows a few lines; longer notes scroll.
constexpr int kRowNoteLines = 3;

QToolButton* iconButton(const QString& icon, const QString& text, const QString& name, QWidget* parent)
{
    auto* button = new QToolButton(parent);
    button->setObjectName(name);
    button->setIcon(QIcon::fromTheme(icon));
    button->setToolTip(text);
    button->setAccessibleName(text);
    button->setAutoRaise(true);
    return button;
}

QLabel* buddyLabel(const QString& text, QWidget* buddy)
{
    auto* label = new QLabel(text, buddy->parentWidget());
    label->setBuddy(buddy);
    return label;
}

QDate localDate(const QVariant& value)
{
    return value.toDateTime().toLocalTime().date();
}

// Lists `records` in a chooser by `nameKey`, with `current` chosen; with `withNone` an empty
// first entry stands for no record.
void fillChooser(QComboBox* chooser, const QList<Record*>& records, const QString& nameKey,
                 const Record* current, bool withNone)
{
    const QSignalBlocker blocker(chooser);
    chooser->clear();
    if (withNone)
        chooser->addItem(QString(), qint64(0));
    for (const Record* record : records)
        chooser->addItem(record->value(nameKey).toString(), record->pk());
    chooser->setCurrentIndex(std::max(0, chooser->findData(current ? current->pk() : qint64(0))));
}

} // namespace

DocumentEditorWindow::DocumentEditorWindow(store::Store& store, support::Prompter& prompter,
                                           OpenEditors& openEditors, QWidget* parent)
    : QMainWindow(parent)
    , m_prompter(prompter)
    , m_openEditors(openEditors)
    , m_controller(std::make_unique<DocumentController>(store, prompter))
{
    setObjectName(s("DocumentEditorWindow"));
    setAttribute(Qt::WA_DeleteOnClose);
    setProperty(MainWindow::windowKindProperty(), int(app::WindowKind::DocumentEditor));
    setProperty("canAdd", true);
    setProperty("selectedRowCount", 0);

    m_rowsModel = new DocumentRowsModel(*m_controller, prompter, this);
    makeActions();
    m_tabs = new QTabWidget(this);
    m_tabs->setObjectName(s("tabs"));
    m_tabs->setDocumentMode(true);
    m_tabs->addTab(makeDocumentTab(), tr("&Document"));
    m_tabs->addTab(makeNotesTab(), tr("&Notes"));
    setCentralWidget(m_tabs);

    connect(m_controller.get(), &DocumentController::editedChanged, this, &QWidget::setWindowModified);
    connect(m_controller.get(), &DocumentController::rowsChanged, this, &DocumentEditorWindow::rowsChanged);
    connect(m_controller.get(), &DocumentController::scrollToRowRequested, this,
            &DocumentEditorWindow::scrollToRow);
    connect(m_controller.get(), &DocumentController::documentTabRequested, this,
            [this] { m_tabs->setCurrentIndex(0); });
    connect(m_controller.get(), &DocumentController::closeRequested, this, &QWidget::close);
    connect(m_rowsModel, &DocumentRowsModel::amountsChanged, this, [this] {
        refreshTotals();
        refreshSelection(); // the selected row's price fields
    });
    connect(m_controller.get(), &DocumentController::handOverReceived, this, [this] {
        refreshHeader();
        m_rowsModel->updateFormats();
        refreshTotals();
        refreshSelection();
    });

    // Lists edited in their own windows (taxes, units, banks, payment types, currencies) reach the
    // choosers here without reopening the document.
    connect(&store, &store::Store::didSave, this, &DocumentEditorWindow::referenceListsSaved);

    openEditors.addDocumentEditor(this, m_controller.get());

    if (!WindowPlacement::restore(this))
        resize(1000, 720);
}

DocumentEditorWindow::~DocumentEditorWindow()
{
    // The views go before the controller whose records they show.
    disconnect(m_controller.get(), nullptr, this, nullptr);
    delete takeCentralWidget();
}

bool DocumentEditorWindow::newDocument(qint64 type)
{
    if (!m_controller->newDocument(type))
        return false;
    showDocument();
    return true;
}

bool DocumentEditorWindow::openDocument(const predicate::RecordRef& document)
{
    if (!m_controller->openDocument(document))
        return false;
    showDocument();
    return true;
}

void DocumentEditorWindow::setOutput(editors::DocumentOutput* output)
{
    m_controller->setOutput(output);
}

// Building the window

void DocumentEditorWindow::makeActions()
{
    auto* bar = addToolBar(tr("Document"));
    bar->setObjectName(s("documentToolBar"));
    bar->setMovable(false);
    bar->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    const auto action = [&](const QString& icon, const QString& text, const char* name,
                            void (DocumentEditorWindow::*slot)()) {
        QAction* a = bar->addAction(QIcon::fromTheme(icon), text);
        a->setObjectName(s(name));
        connect(a, &QAction::triggered, this, slot);
    };
    action(s("document-save"), tr("Save"), "saveAction", &DocumentEditorWindow::save);
    bar->addSeparator();
    action(s("document-print-preview"), tr("Preview"), "previewAction", &DocumentEditorWindow::preview);
    action(s("document-print"), tr("Print"), "printAction", &DocumentEditorWindow::print);
    action(s("document-export"), tr("Save as PDF"), "saveAsAction", &DocumentEditorWindow::saveAs);
    action(s("mail-send"), tr("Send by Email"), "emailAction", &DocumentEditorWindow::sendEmail);
}

QWidget* DocumentEditorWindow::makeDocumentTab()
{
    auto* tab = new QWidget;
    auto* layout = new QVBoxLayout(tab);
    layout->addWidget(makeHeader());
    layout->addWidget(makeRowsBar());

    m_rowsView = new DocumentRowsView(tab);
    m_rowsView->setObjectName(s("rowsView"));
    m_rowsView->setModel(m_rowsModel);
    m_rowsView->setItemDelegate(new DocumentRowDelegate(*m_controller, m_rowsView));
    QHeaderView* header = m_rowsView->horizontalHeader();
    header->setSectionResizeMode(QHeaderView::Interactive);
    header->setSectionResizeMode(DocumentRowsModel::Name, QHeaderView::Stretch);
    const int digits = m_rowsView->fontMetrics().horizontalAdvance(QLatin1Char('0'));
    header->resizeSection(DocumentRowsModel::Quantity, 9 * digits);
    header->resizeSection(DocumentRowsModel::Unit, 9 * digits);
    header->resizeSection(DocumentRowsModel::Price, 14 * digits);
    header->resizeSection(DocumentRowsModel::Tax, 10 * digits);
    header->resizeSection(DocumentRowsModel::Total, 15 * digits);
    connect(m_rowsView->selectionModel(), &QItemSelectionModel::selectionChanged, this,
            &DocumentEditorWindow::refreshSelection);
    connect(m_rowsView, &DocumentRowsView::returnOnLastRow, this, &DocumentEditorWindow::addRow);
    layout->addWidget(m_rowsView, 1);
    layout->addWidget(makeFooter());
    return tab;
}

QWidget* DocumentEditorWindow::makeHeader()
{
    auto* box = new QWidget;
    auto* columns = new QHBoxLayout(box);
    columns->setContentsMargins(0, 0, 0, 0);
    auto* left = new QFormLayout;
    auto* right = new QFormLayout;
    m_termsForm = right;
    columns->addLayout(left, 1);
    columns->addSpacing(box->style()->pixelMetric(QStyle::PM_LayoutHorizontalSpacing) * 4);
    columns->addLayout(right, 1);

    m_typeChooser = new QComboBox(box);
    m_typeChooser->setObjectName(s("typeChooser"));
    for (int type = 0; type < documents::DocumentTypes::kCount; ++type)
        m_typeChooser->addItem(documents::DocumentTypes::displayName(type), type);
    connect(m_typeChooser, &QComboBox::activated, this, [this](int index) {
        m_controller->typeChanged(m_typeChooser->itemData(index).toLongLong());
        refreshHeader();
        refreshTitle();
    });
    left->addRow(buddyLabel(tr("&Type:"), m_typeChooser), m_typeChooser);

    m_numberLabel = new QLabel(box);
    m_numberLabel->setObjectName(s("numberLabel"));
    m_numberLabel->setTextInteractionFlags(Qt::TextSelectableByMouse);
    left->addRow(tr("Number:"), m_numberLabel);

    m_clientEdit = new QLineEdit(box);
    m_clientEdit->setObjectName(s("clientEdit"));
    m_clientEdit->setPlaceholderText(tr("Type a client's name"));
    m_clientEdit->setClearButtonEnabled(true);
    m_clientNames = new QStringListModel(this);
    auto* completer = new QCompleter(m_clientNames, m_clientEdit);
    completer->setObjectName(s("clientCompleter"));
    completer->setCompletionMode(QCompleter::UnfilteredPopupCompletion);
    m_clientEdit->setCompleter(completer);
    connect(m_clientEdit, &QLineEdit::textEdited, this, &DocumentEditorWindow::clientTyped);
    connect(m_clientEdit, &QLineEdit::editingFinished, this, &DocumentEditorWindow::clientEntered);
    left->addRow(buddyLabel(tr("&Client:"), m_clientEdit), m_clientEdit);

    m_clientLabel = new QLabel(box);
    m_clientLabel->setObjectName(s("clientLabel"));
    m_clientLabel->setTextFormat(Qt::PlainText);
    m_clientLabel->setTextInteractionFlags(Qt::TextSelectableByMouse);
    left->addRow(QString(), m_clientLabel);

    m_templateChooser = new QComboBox(box);
    m_templateChooser->setObjectName(s("templateChooser"));
    connect(m_templateChooser, &QComboBox::activated, this,
            [this] { setDocumentRelated(s("template"), m_templateChooser, s("Templates")); });
    left->addRow(buddyLabel(tr("Te&mplate:"), m_templateChooser), m_templateChooser);

    m_tagsButton = new QPushButton(QIcon::fromTheme(s("tag")), tr("Ta&gs…"), box);
    m_tagsButton->setObjectName(s("tagsButton"));
    m_tagsButton->setToolTip(tr("Choose the document's tags"));
    connect(m_tagsButton, &QPushButton::clicked, this, &DocumentEditorWindow::showTags);
    auto* tagsRow = new QHBoxLayout;
    tagsRow->addWidget(m_tagsButton);
    tagsRow->addStretch(1);
    left->addRow(QString(), tagsRow);

    const QString dateFormat = QLocale().dateFormat(QLocale::ShortFormat);
    m_dateEdit = new QDateEdit(box);
    m_dateEdit->setObjectName(s("dateEdit"));
    m_dateEdit->setCalendarPopup(true);
    m_dateEdit->setDisplayFormat(dateFormat);
    connect(m_dateEdit, &QDateEdit::dateChanged, this, [this](QDate date) {
        setDocumentValue(s("date_creation"), format::dates::midday(QDateTime(date, QTime(0, 0))));
    });
    right->addRow(buddyLabel(tr("D&ate:"), m_dateEdit), m_dateEdit);

    m_dueDateEdit = new QDateEdit(box);
    m_dueDateEdit->setObjectName(s("dueDateEdit"));
    m_dueDateEdit->setCalendarPopup(true);
    m_dueDateEdit->setDisplayFormat(dateFormat);
    m_dueDateEdit->setSpecialValueText(tr("None"));
    m_dueDateEdit->setMinimumDate(QDate(2001, 1, 1));
    connect(m_dueDateEdit, &QDateEdit::dateChanged, this, [this](QDate date) {
        setDocumentValue(s("date_due"), date == m_dueDateEdit->minimumDate()
                                            ? QVariant()
                                            : QVariant(format::dates::midday(QDateTime(date, QTime(0, 0)))));
    });
    m_dueDaysButton = iconButton(s("view-calendar-day"), tr("Due in"), s("dueDaysButton"), box);
    m_dueDaysButton->setPopupMode(QToolButton::InstantPopup);
    auto* dueDaysMenu = new QMenu(m_dueDaysButton);
    dueDaysMenu->setObjectName(s("dueDaysMenu"));
    m_dueDaysButton->setMenu(dueDaysMenu);
    connect(dueDaysMenu, &QMenu::aboutToShow, this, [this, dueDaysMenu] {
        dueDaysMenu->clear();
        for (Record* dueDay : m_controller->dueDays()) {
            connect(dueDaysMenu->addAction(dueDay->value(s("name")).toString()), &QAction::triggered, this,
                    [this, ref = dueDay->ref()] {
                        m_controller->dueDaysChanged(m_controller->context().record(ref));
                        refreshHeader();
                    });
        }
    });
    auto* dueRow = new QHBoxLayout;
    dueRow->addWidget(m_dueDateEdit, 1);
    dueRow->addWidget(m_dueDaysButton);
    right->addRow(buddyLabel(tr("D&ue date:"), m_dueDateEdit), dueRow);

    m_currencyChooser = new QComboBox(box);
    m_currencyChooser->setObjectName(s("currencyChooser"));
    connect(m_currencyChooser, &QComboBox::activated, this, &DocumentEditorWindow::currencyChosen);
    right->addRow(buddyLabel(tr("Cu&rrency:"), m_currencyChooser), m_currencyChooser);

    m_exchangeRateEdit = new QLineEdit(box);
    m_exchangeRateEdit->setObjectName(s("exchangeRateEdit"));
    m_exchangeRateEdit->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    m_exchangeRateEdit->setToolTip(
        tr("What one unit of the document's currency is worth in the company's currency"));
    connect(m_exchangeRateEdit, &QLineEdit::editingFinished, this,
            &DocumentEditorWindow::exchangeRateEntered);
    m_exchangeRateLabel = buddyLabel(tr("E&xchange rate:"), m_exchangeRateEdit);
    right->addRow(m_exchangeRateLabel, m_exchangeRateEdit);

    m_paymentTypeChooser = new QComboBox(box);
    m_paymentTypeChooser->setObjectName(s("paymentTypeChooser"));
    connect(m_paymentTypeChooser, &QComboBox::activated, this,
            [this] { setDocumentRelated(s("payment_type"), m_paymentTypeChooser, s("PaymentTypes")); });
    right->addRow(buddyLabel(tr("&Payment:"), m_paymentTypeChooser), m_paymentTypeChooser);

    m_bankChooser = new QComboBox(box);
    m_bankChooser->setObjectName(s("bankChooser"));
    connect(m_bankChooser, &QComboBox::activated, this,
            [this] { setDocumentRelated(s("bank"), m_bankChooser, s("Banks")); });
    right->addRow(buddyLabel(tr("&Bank:"), m_bankChooser), m_bankChooser);
    return box;
}

QWidget* DocumentEditorWindow::makeRowsBar()
{
    auto* bar = new QWidget;
    auto* layout = new QHBoxLayout(bar);
    layout->setContentsMargins(0, 0, 0, 0);
    QToolButton* add = iconButton(s("list-add"), tr("Add Row"), s("addRowButton"), bar);
    QToolButton* duplicate = iconButton(s("edit-copy"), tr("Duplicate Row"), s("duplicateRowButton"), bar);
    QToolButton* remove = iconButton(s("list-remove"), tr("Delete Rows"), s("deleteRowButton"), bar);
    connect(add, &QToolButton::clicked, this, &DocumentEditorWindow::addRow);
    connect(duplicate, &QToolButton::clicked, this, &DocumentEditorWindow::duplicateRow);
    connect(remove, &QToolButton::clicked, this, &DocumentEditorWindow::deleteRow);
    layout->addWidget(add);
    layout->addWidget(duplicate);
    layout->addWidget(remove);
    layout->addStretch(1);

    layout->addWidget(new QLabel(tr("Price level:"), bar));
    m_priceLevels = new QButtonGroup(this);
    m_priceLevels->setExclusive(true);
    for (int level = 1; level <= documents::PriceLevels::kCount; ++level) {
        auto* button = new QToolButton(bar);
        button->setObjectName(s("priceLevel%1").arg(level));
        button->setCheckable(true);
        button->setAutoRaise(true);
        m_priceLevels->addButton(button, level);
        layout->addWidget(button);
    }
    connect(m_priceLevels, &QButtonGroup::idClicked, this, &DocumentEditorWindow::priceLevelChosen);
    return bar;
}

QWidget* DocumentEditorWindow::makeFooter()
{
    auto* footer = new QWidget;
    auto* layout = new QHBoxLayout(footer);
    layout->setContentsMargins(0, 0, 0, 0);

    auto* noteColumn = new QVBoxLayout;
    auto* noteTitle = new QHBoxLayout;
    m_rowNoteEdit = new QPlainTextEdit(footer);
    m_rowNoteEdit->setObjectName(s("rowNoteEdit"));
    m_rowNoteEdit->setTabChangesFocus(true);
    m_rowNoteEdit->setPlaceholderText(tr("A note printed under the selected line"));
    m_rowNoteEdit->setFixedHeight(m_rowNoteEdit->fontMetrics().lineSpacing() * kRowNoteLines +
                                  2 * m_rowNoteEdit->frameWidth() + 8);
    connect(m_rowNoteEdit, &QPlainTextEdit::textChanged, this, [this] {
        const QList<Record*>& rows = m_controller->selectedRows();
        if (m_loading || rows.isEmpty())
            return;
        rows.first()->setValue(s("note"), m_rowNoteEdit->toPlainText());
        m_controller->markEdited();
    });
    noteTitle->addWidget(buddyLabel(tr("&Line note:"), m_rowNoteEdit));
    noteTitle->addStretch(1);
    m_notesButton = iconButton(s("view-list-text"), tr("Row Notes"), s("rowNotesButton"), footer);
    m_notesButton->setPopupMode(QToolButton::InstantPopup);
    auto* notesMenu = new QMenu(tr("actions"), m_notesButton);
    notesMenu->setObjectName(s("rowNotesMenu"));
    m_notesButton->setMenu(notesMenu);
    connect(notesMenu, &QMenu::aboutToShow, this, &DocumentEditorWindow::buildNotesMenu);
    noteTitle->addWidget(m_notesButton);
    noteColumn->addLayout(noteTitle);
    noteColumn->addWidget(m_rowNoteEdit);
    noteColumn->addStretch(1);
    layout->addLayout(noteColumn, 3);
    layout->addSpacing(footer->style()->pixelMetric(QStyle::PM_LayoutHorizontalSpacing) * 2);
    layout->addWidget(makeRowPrices(), 2, Qt::AlignTop);

    m_totalsBox = new QWidget(footer);
    m_totalsBox->setObjectName(s("totalsBox"));
    m_totalsForm = new QFormLayout(m_totalsBox);
    m_totalsForm->setContentsMargins(0, 0, 0, 0);
    m_totalsForm->setLabelAlignment(Qt::AlignRight);
    m_totalsForm->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
    layout->addSpacing(footer->style()->pixelMetric(QStyle::PM_LayoutHorizontalSpacing) * 4);
    layout->addWidget(m_totalsBox, 2, Qt::AlignTop);
    return footer;
}

QWidget* DocumentEditorWindow::makeRowPrices()
{
    auto* box = new QWidget;
    box->setObjectName(s("rowPrices"));
    auto* form = new QFormLayout(box);
    form->setContentsMargins(0, 0, 0, 0);
    form->setLabelAlignment(Qt::AlignRight);
    for (int level = 1; level <= documents::PriceLevels::kCount; ++level) {
        auto* field = new QLineEdit(box);
        field->setObjectName(s("priceField%1").arg(level));
        field->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
        connect(field, &QLineEdit::editingFinished, this, [this, level] { priceEntered(level); });
        auto* label = new QLabel(box);
        label->setBuddy(field);
        form->addRow(label, field);
        m_priceLabels << label;
        m_priceFields << field;
    }
    return box;
}

void DocumentEditorWindow::priceEntered(int level)
{
    QLineEdit* field = m_priceFields.at(level - 1);
    const QList<Record*>& rows = m_controller->selectedRows();
    if (m_loading || !field->isModified() || rows.isEmpty())
        return;
    field->setModified(false);
    Record* row = rows.first();
    if (const std::optional<double> price = m_rowsModel->readPrice(field->text())) {
        if (m_controller->setPrice(row, level, *price))
            m_rowsModel->rowValuesChanged(row);
    }
    refreshSelection();
}

QWidget* DocumentEditorWindow::makeNotesTab()
{
    auto* tab = new QWidget;
    auto* layout = new QVBoxLayout(tab);
    const auto noteArea = [&](const QString& label, const char* name, const char* key,
                              bool (DocumentController::*saveDefault)()) {
        auto* edit = new QPlainTextEdit(tab);
        edit->setObjectName(s(name));
        edit->setTabChangesFocus(true);
        connect(edit, &QPlainTextEdit::textChanged, this,
                [this, edit, key] { setDocumentValue(s(key), edit->toPlainText()); });
        auto* title = new QHBoxLayout;
        title->addWidget(buddyLabel(label, edit));
        title->addStretch(1);
        auto* button = new QPushButton(tr("Save as Default"), tab);
        button->setObjectName(s(name) + s("DefaultButton"));
        connect(button, &QPushButton::clicked, this,
                [this, saveDefault] { (m_controller.get()->*saveDefault)(); });
        title->addWidget(button);
        layout->addLayout(title);
        layout->addWidget(edit, 1);
        return edit;
    };
    m_headerNoteEdit = noteArea(tr("&Header note:"), "headerNoteEdit", "note_header",
                                &DocumentController::saveHeaderNoteAsDefault);
    m_footerNoteEdit = noteArea(tr("&Footer note:"), "footerNoteEdit", "note_footer",
                                &DocumentController::saveFooterNoteAsDefault);
    return tab;
}

// Showing the document

void DocumentEditorWindow::showDocument()
{
    m_rowsModel->updateFormats();
    m_rowsModel->reload();
    refreshHeader();
    refreshPriceLevels();
    refreshTitle();
    refreshSelection();
    setWindowModified(m_controller->isEdited());
}

void DocumentEditorWindow::refreshHeader()
{
    const Record* document = m_controller->document();
    if (!document)
        return;
    const QScopedValueRollback<bool> loading(m_loading, true);

    m_typeChooser->setCurrentIndex(int(document->value(s("type")).toLongLong()));
    const QString number = document->value(s("number_formatted")).toString();
    m_numberLabel->setText(number.isEmpty() ? tr("Given when saved") : number);
    m_numberLabel->setEnabled(!number.isEmpty());

    m_dateEdit->setDate(localDate(document->value(s("date_creation"))));
    const QVariant due = document->value(s("date_due"));
    m_dueDateEdit->setDate(due.isNull() ? m_dueDateEdit->minimumDate() : localDate(due));

    const QString client = document->value(s("client_full_name")).toString();
    const QString street = document->value(s("client_street")).toString();
    m_clientLabel->setText(client.isEmpty()   ? tr("No client chosen")
                           : street.isEmpty() ? client
                                              : client + QLatin1Char('\n') + street);
    m_clientLabel->setEnabled(!client.isEmpty());

    refreshTemplates();
    refreshReferenceChoosers();
    refreshExchangeRate();

    const auto showNote = [&](QPlainTextEdit* edit, const char* key) {
        const QString text = document->value(s(key)).toString();
        if (edit->toPlainText() != text)
            edit->setPlainText(text);
    };
    showNote(m_headerNoteEdit, "note_header");
    showNote(m_footerNoteEdit, "note_footer");
}

void DocumentEditorWindow::refreshReferenceChoosers()
{
    const Record* document = m_controller->document();
    store::EditingContext& context = m_controller->context();
    refreshCurrencies();
    fillChooser(m_paymentTypeChooser,
                context.fetch(store::FetchRequest(s("PaymentTypes"), {},
                                                  {store::SortDescriptor::localized(s("name"))})),
                s("name"), document->related(s("payment_type")), true);
    fillChooser(
        m_bankChooser,
        context.fetch(store::FetchRequest(s("Banks"), {}, {store::SortDescriptor::localized(s("line1"))})),
        s("line1"), document->related(s("bank")), true);
}

void DocumentEditorWindow::referenceListsSaved(const store::ChangeSet& changes, store::EditingContext* origin)
{
    // The controller has merged the change already; its own saves are shown by their commands.
    if (origin == &m_controller->context() || !m_controller->document())
        return;
    const QSet<QString> touched = changes.entities();
    const auto any = [&touched](std::initializer_list<const char*> entities) {
        return std::any_of(entities.begin(), entities.end(),
                           [&touched](const char* entity) { return touched.contains(s(entity)); });
    };
    if (any({"PaymentTypes", "Banks", "Currencies", "MyCompany"})) {
        const QScopedValueRollback<bool> loading(m_loading, true);
        refreshReferenceChoosers();
    }
    // Renamed taxes and units, and a currency's new format, show in the rows and totals.
    if (any({"Taxes", "Units", "Currencies"})) {
        m_rowsModel->updateFormats();
        refreshTotals();
    }
}

void DocumentEditorWindow::refreshTemplates()
{
    fillChooser(m_templateChooser, m_controller->templates(), s("name"),
                m_controller->document()->related(s("template")), true);
}

void DocumentEditorWindow::refreshCurrencies()
{
    fillChooser(m_currencyChooser, m_controller->currencies(), s("code"),
                m_controller->document()->related(s("currency")), false);
}

void DocumentEditorWindow::refreshExchangeRate()
{
    const Record* document = m_controller->document();
    const bool hidden = m_controller->isExchangeRateHidden();
    m_termsForm->setRowVisible(m_exchangeRateEdit, !hidden);
    const Record* company = model::CompanyRecord::of(m_controller->context());
    format::NumberFormatter formatter(company ? company->related(s("default_currency")) : nullptr);
    formatter.setMinimumFractionDigits(0);
    formatter.setMaximumFractionDigits(kExchangeRateDigits);
    m_exchangeRateEdit->setText(formatter.stringForObjectValue(document->value(s("exchange_rate"))));
    m_exchangeRateEdit->setModified(false);
}

void DocumentEditorWindow::refreshTotals()
{
    while (m_totalsForm->rowCount() > 0)
        m_totalsForm->removeRow(0);
    const Record* document = m_controller->document();
    if (!document)
        return;
    const Record* currency = document->related(s("currency"));
    const documents::DocumentTotals::Sums sums = documents::DocumentTotals::currentSums(document);
    const auto addLine = [&](const QString& label, double amount, const QString& name, bool strong) {
        auto* value = new QLabel(format::formattedCurrency(amount, currency), m_totalsBox);
        value->setObjectName(name);
        value->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
        value->setTextInteractionFlags(Qt::TextSelectableByMouse);
        auto* title = new QLabel(label, m_totalsBox);
        if (strong) {
            QFont font = value->font();
            font.setBold(true);
            value->setFont(font);
            title->setFont(font);
        }
        m_totalsForm->addRow(title, value);
    };
    addLine(tr("Net:"), sums.net, s("netValue"), false);
    for (const documents::DocumentTotals::TaxLine& line : sums.taxLines) {
        addLine(tr("%1:").arg(line.name), line.tax1Value, s("taxValue"), false);
        if (line.tax2Value != 0.0)
            addLine(tr("%1, second tax:").arg(line.name), line.tax2Value, s("secondTaxValue"), false);
    }
    addLine(tr("Total:"), sums.total, s("totalValue"), true);
}

void DocumentEditorWindow::refreshTitle()
{
    const Record* document = m_controller->document();
    if (!document)
        return;
    const QString type = documents::DocumentTypes::displayName(document->value(s("type")).toLongLong());
    const QString number = document->value(s("number_formatted")).toString();
    setWindowTitle(number.isEmpty() ? tr("New %1[*]").arg(type) : tr("%1 %2[*]").arg(type, number));
}

void DocumentEditorWindow::refreshPriceLevels()
{
    const QStringList labels = documents::PriceLevels::labels(m_controller->context());
    const int active = m_controller->priceLevels().active();
    for (int level = 1; level <= documents::PriceLevels::kCount; ++level) {
        QAbstractButton* button = m_priceLevels->button(level);
        QString label = labels.value(level - 1);
        if (label.isEmpty())
            label = documents::CustomFields::readableName(documents::PriceLevels::slotKey(level));
        button->setText(label);
        button->setToolTip(tr("Show and type the prices of level %1").arg(level));
        button->setChecked(level == active);
        QFont font = button->font();
        font.setBold(level == active);
        button->setFont(font);
        QLabel* fieldLabel = m_priceLabels.at(level - 1);
        fieldLabel->setText(tr("%1:").arg(label));
        fieldLabel->setFont(font);
    }
}

void DocumentEditorWindow::refreshSelection()
{
    QList<Record*> rows;
    const QModelIndexList selected = m_rowsView->selectionModel()->selectedRows();
    QList<int> numbers;
    for (const QModelIndex& index : selected)
        numbers << index.row();
    std::sort(numbers.begin(), numbers.end());
    for (int row : std::as_const(numbers)) {
        if (Record* record = m_rowsModel->rowRecord(row))
            rows << record;
    }
    m_controller->setSelectedRows(rows);
    setProperty("selectedRowCount", int(rows.size()));

    const QScopedValueRollback<bool> loading(m_loading, true);
    m_rowNoteEdit->setEnabled(!rows.isEmpty());
    const QString note = rows.isEmpty() ? QString() : rows.first()->value(s("note")).toString();
    if (m_rowNoteEdit->toPlainText() != note)
        m_rowNoteEdit->setPlainText(note);
    const Record* first = rows.value(0);
    for (int level = 1; level <= documents::PriceLevels::kCount; ++level) {
        QLineEdit* field = m_priceFields.at(level - 1);
        field->setEnabled(first);
        field->setText(first
                           ? m_rowsModel->priceText(first->value(m_controller->priceLevels().fieldKey(level)))
                           : QString());
        field->setModified(false);
    }
}

// Reactions

void DocumentEditorWindow::rowsChanged()
{
    m_rowsModel->reload();
    refreshSelection();
}

void DocumentEditorWindow::scrollToRow(Record* row)
{
    const int number = m_rowsModel->rowOf(row);
    if (number < 0)
        return;
    const QModelIndex index = m_rowsModel->index(number, DocumentRowsModel::Name);
    m_rowsView->setCurrentIndex(index);
    m_rowsView->scrollTo(index);
    if (m_editNewRow) {
        m_rowsView->setFocus();
        m_rowsView->edit(index);
    }
}

void DocumentEditorWindow::clientTyped(const QString& text)
{
    QStringList names;
    if (!text.trimmed().isEmpty()) {
        for (const Record* client : m_controller->clientSuggestions(text.trimmed()))
            names << client->value(s("full_name")).toString();
    }
    m_clientNames->setStringList(names);
    if (names.isEmpty())
        m_clientEdit->completer()->popup()->hide();
    else
        m_clientEdit->completer()->complete();
}

void DocumentEditorWindow::clientEntered()
{
    const QString text = m_clientEdit->text().trimmed();
    if (text.isEmpty() || !m_controller->document())
        return;
    m_controller->clientEntered(text);
    // The chosen client shows in the label; the field is ready for the next name.
    m_clientEdit->clear();
    m_clientNames->setStringList({});
    refreshHeader();
}

void DocumentEditorWindow::exchangeRateEntered()
{
    if (!m_exchangeRateEdit->isModified() || !m_controller->document())
        return;
    m_exchangeRateEdit->setModified(false);
    const Record* company = model::CompanyRecord::of(m_controller->context());
    format::NumberFormatter formatter(company ? company->related(s("default_currency")) : nullptr);
    QVariant rate;
    QString error;
    if (!formatter.getObjectValue(&rate, m_exchangeRateEdit->text(), &error))
        m_prompter.alert(format::NumberInput::alertTitle(), error, {tr("OK")});
    else if (!rate.isNull())
        m_controller->setExchangeRate(rate.toDouble());
    refreshExchangeRate();
}

void DocumentEditorWindow::currencyChosen(int index)
{
    Record* currency =
        m_controller->context().record({s("Currencies"), m_currencyChooser->itemData(index).toLongLong()});
    if (!currency || currency == m_controller->document()->related(s("currency")))
        return;
    m_rowsView->finishEditing();
    m_controller->currencyChanged(currency);
    m_rowsModel->updateFormats();
    refreshExchangeRate();
    refreshTotals();
}

void DocumentEditorWindow::priceLevelChosen(int level)
{
    m_rowsView->finishEditing();
    m_controller->defaultPriceChanged(level);
    refreshPriceLevels();
    refreshSelection();
    m_rowsModel->updateFormats();
    refreshTotals();
}

void DocumentEditorWindow::buildNotesMenu()
{
    QMenu* menu = m_notesButton->menu();
    menu->clear();
    const bool rowSelected = !m_controller->selectedRows().isEmpty();
    QAction* saveNote = menu->addAction(tr("Save Note"));
    saveNote->setObjectName(s("saveNoteAction"));
    saveNote->setEnabled(rowSelected);
    connect(saveNote, &QAction::triggered, this, [this] { m_controller->saveNote(); });
    const QList<editors::RowNoteLibrary::Entry> entries = m_controller->noteLibrary().entries();
    if (!entries.isEmpty())
        menu->addSeparator();
    for (const editors::RowNoteLibrary::Entry& entry : entries) {
        QMenu* noteMenu = menu->addMenu(entry.title);
        QAction* add = noteMenu->addAction(tr("Add to Selected Line"));
        add->setEnabled(rowSelected);
        connect(add, &QAction::triggered, this, [this, note = entry.note] {
            m_controller->addNote(note);
            refreshSelection();
        });
        connect(noteMenu->addAction(tr("Remove from Menu")), &QAction::triggered, this,
                [this, entry] { m_controller->removeNote(entry); });
    }
}

void DocumentEditorWindow::showTags()
{
    Record* document = m_controller->document();
    if (!document)
        return;
    auto* popover = new TagsPopover(document, this);
    popover->setObjectName(s("TagsPopover"));
    popover->setAttribute(Qt::WA_DeleteOnClose);
    connect(popover, &TagsPopover::tagsChanged, m_controller.get(), &DocumentController::markEdited);
    popover->showUnder(m_tagsButton);
}

void DocumentEditorWindow::setDocumentValue(const QString& key, const QVariant& value)
{
    Record* document = m_controller->document();
    if (m_loading || !document)
        return;
    document->setValue(key, value);
    m_controller->markEdited();
}

void DocumentEditorWindow::setDocumentRelated(const QString& key, QComboBox* chooser, const QString& entity)
{
    Record* document = m_controller->document();
    if (m_loading || !document)
        return;
    const qint64 pk = chooser->currentData().toLongLong();
    document->setRelated(key, pk > 0 ? m_controller->context().record({entity, pk}) : nullptr);
    m_controller->markEdited();
}

void DocumentEditorWindow::finishEditing()
{
    m_rowsView->finishEditing();
    if (!m_clientEdit->text().trimmed().isEmpty())
        clientEntered();
    exchangeRateEntered();
    for (int level = 1; level <= documents::PriceLevels::kCount; ++level)
        priceEntered(level);
}

// Commands

void DocumentEditorWindow::addRow()
{
    finishEditing();
    m_editNewRow = true;
    m_controller->addRow();
    m_editNewRow = false;
}

void DocumentEditorWindow::editRow()
{
    const QModelIndex current = m_rowsView->currentIndex();
    if (!current.isValid())
        return;
    m_rowsView->setFocus();
    m_rowsView->edit(m_rowsModel->index(current.row(), DocumentRowsModel::Name));
}

void DocumentEditorWindow::duplicateRow()
{
    finishEditing();
    Record* copy = m_controller->duplicateRow();
    if (copy)
        scrollToRow(copy);
}

void DocumentEditorWindow::deleteRow()
{
    finishEditing();
    m_controller->deleteRow();
}

void DocumentEditorWindow::save()
{
    finishEditing();
    // A save that succeeds closes the window; one that fails keeps it and the edits.
    if (!m_controller->save(DocumentController::Sender::Control)) {
        refreshHeader();
        refreshTitle();
    }
}

void DocumentEditorWindow::preview()
{
    finishEditing();
    m_controller->preview();
    m_rowsModel->updateFormats();
    refreshTotals();
}

void DocumentEditorWindow::print()
{
    finishEditing();
    if (!m_controller->print()) {
        refreshHeader();
        refreshTitle();
    }
}

void DocumentEditorWindow::saveAs()
{
    finishEditing();
    if (!m_controller->saveAs()) {
        refreshHeader();
        refreshTitle();
    }
}

void DocumentEditorWindow::sendEmail()
{
    finishEditing();
    if (!m_controller->sendEmail()) {
        refreshHeader();
        refreshTitle();
    }
}

// Window events

void DocumentEditorWindow::closeEvent(QCloseEvent* event)
{
    if (m_controller->document()) {
        finishEditing();
        if (m_controller->windowShouldClose() == DocumentController::CloseAnswer::KeepOpen) {
            event->ignore();
            if (m_controller->document()) {
                refreshHeader();
                refreshTitle();
            }
            return;
        }
    }
    WindowPlacement::save(this);
    event->accept();
}

void DocumentEditorWindow::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::ActivationChange && isActiveWindow())
        m_openEditors.documentEditorActivated(this);
    QMainWindow::changeEvent(event);
}

} // namespace corvanta::ui
