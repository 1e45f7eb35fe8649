// The editor windows' pictures: a long invoice in euros with its preview, e-mail and payments
// sheets, a client with three addresses and its tags popover, an item with its stock and the
// delivery sheet, a monthly to-do, and the questions these windows ask, each as the program's own
// message box shows it.
#include "documents/documentpayments.h"
#include "editors/documentcontroller.h"
#include "editors/itemcontroller.h"
#include "model/companyrecord.h"
#include "pictures.h"
#include "predicate/literal.h"
#include "store/editingcontext.h"
#include "store/fetchrequest.h"
#include "store/record.h"
#include "store/store.h"
#include "support/uuid.h"
#include "ui/clienteditorwindow.h"
#include "ui/deliverysheet.h"
#include "ui/dialogprompter.h"
#include "ui/documenteditorwindow.h"
#include "ui/documentoutputs.h"
#include "ui/documentpaymentssheet.h"
#include "ui/editorwindows.h"
#include "ui/emailpreparationwindow.h"
#include "ui/itemeditorwindow.h"
#include "ui/mainwindow.h"
#include "ui/previewwindow.h"
#include "ui/tagspopover.h"
#include "ui/todoeditorwindow.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QComboBox>
#include <QCompleter>
#include <QLineEdit>
#include <QListWidget>
#include <QPainter>
#include <QPushButton>
#include <QRadioButton>
#include <QSpinBox>
#include <QTabWidget>
#include <QTest>
#include <QToolButton>
#include <cmath>

namespace corvanta::uipictures {

namespace {

using store::Record;

// The records the pictures show, made in the company's own context as its windows make them.
class Company
{
public:
    explicit Company(store::Store& store)
        : m_store(store)
    {}

    store::Store& store() { return m_store; }
    store::EditingContext& main() { return m_store.mainContext(); }

    Record* insert(const char* entity, const QVariantMap& values)
    {
        QVariantMap all = values;
        if (entity != std::string_view("Warehouse") && entity != std::string_view("DocumentRows") &&
            entity != std::string_view("Categories"))
            all.insert(s("identifier"), support::UUID());
        return main().insertRecord(s(entity), all);
    }
    Record* named(const char* entity, const char* key, const QString& value)
    {
        return main().fetchFirst(
            store::FetchRequest(s(entity), predicate::literal(QString(s(key) + s(" == %@")), {value})));
    }
    void save()
    {
        store::StoreError error;
        if (!main().save(&error))
            qFatal("cannot save: %s", qPrintable(error.message()));
    }

private:
    store::Store& m_store;
};

template <typename T>
T* child(QWidget* window, const char* name)
{
    T* found = window->findChild<T*>(s(name));
    if (!found)
        qFatal("no %s in %s", name, qPrintable(window->objectName()));
    return found;
}

void showAndWait(QWidget* window)
{
    window->show();
    window->activateWindow();
    if (!QTest::qWaitForWindowExposed(window))
        qFatal("%s is not shown", qPrintable(window->objectName()));
    QTest::qWait(200);
}

// A window whose edits are kept asks before closing; the question is pictured and answered
// "Cancel", and the window then goes without asking again.
void pictureCloseQuestion(QWidget* window, const char* name)
{
    window->activateWindow();
    pictureNextDialog(name, s("Cancel"));
    window->close();
    if (!window->isVisible())
        qFatal("%s closed without asking", qPrintable(window->objectName()));
    delete window;
}

// The window with a popup where it opened, as one picture.
void saveWithPopup(QWidget* window, QWidget* popup, const char* name)
{
    const QPoint at = popup->mapToGlobal(QPoint(0, 0)) - window->mapToGlobal(QPoint(0, 0));
    QPixmap picture(window->size().expandedTo(QSize(at.x() + popup->width(), at.y() + popup->height())));
    picture.fill(window->palette().color(QPalette::Window));
    QPainter painter(&picture);
    painter.drawPixmap(0, 0, window->grab());
    painter.drawPixmap(at, popup->grab());
    painter.setPen(window->palette().color(QPalette::Mid));
    painter.drawRect(QRect(at, popup->size()).adjusted(0, 0, -1, -1));
    painter.end();
    save(picture, name);
}

void documentPictures(Company& company, ui::DialogPrompter& prompter, ui::EditorWindows& editors)
{
    // Euros as a user sets them up in the currencies window.
    Record* euro = company.named("Currencies", "code", s("EUR"));
    euro->setValue(s("selectable"), true);
    euro->setValue(s("symbol"), s("€"));
    euro->setValue(s("symbol_format"), s("sr"));
    euro->setValue(s("show_fixed_digits"), true);
    euro->setValue(s("grouping_separator"), s("."));
    euro->setValue(s("decimal_separator"), s(","));
    Record* client = company.insert("Clients", {{s("company_name"), s("Lindqvist & Partner GmbH")},
                                                {s("full_name"), s("Lindqvist & Partner GmbH")},
                                                {s("type"), qint64(0)},
                                                {s("emails"), s("accounts@lindqvist.example")}});
    Record* tax = model::CompanyRecord::defaultRecord(company.main(), s("default_tax"));
    const QList<std::pair<const char*, double>> items = {
        {"Site survey and measurement", 420.0},   {"Steel beam HEA 160, per metre", 86.5},
        {"Anchor bolts M16, box of 25", 54.9},    {"Welding, per hour", 68.0},
        {"Primer coat, per square metre", 12.75}, {"Crane hire, half day", 380.0},
        {"Galvanised bracket 90°", 7.4},          {"Transport to site", 145.0}};
    for (const auto& [name, price] : items) {
        Record* item = company.insert(
            "Items", {{s("name"), s(name)}, {s("type"), qint64(1)}, {s("custom_price01"), price}});
        item->setRelated(s("tax"), tax);
        item->setRelated(
            s("unit"),
            company.named(
                "Units", "name",
                s(std::string_view(name).find("hour") != std::string_view::npos ? "Hours" : "Each")));
    }
    company.save();

    // A 30-row invoice typed in its editor and saved: a draft.
    auto* draft = new ui::DocumentEditorWindow(company.store(), prompter, editors.openEditors());
    draft->newDocument(0);
    editors::DocumentController& controller = draft->controller();
    controller.setClient(client->ref());
    for (Record* currency : controller.currencies()) {
        if (currency->value(s("code")).toString() == s("EUR"))
            controller.currencyChanged(currency);
    }
    controller.setExchangeRate(1.0825);
    for (int i = 0; i < 30; ++i) {
        Record* row = controller.addRow();
        controller.itemNameEntered(row, s(items.at(i % items.size()).first));
        controller.setQuantity(row, double(1 + (i * 7) % 12));
    }
    controller.updateDocumentFields();
    controller.updateTaxSummary();
    draft->resize(1100, 780);
    showAndWait(draft);
    // Saving without a client is refused with the reason.
    auto* noClient = new ui::DocumentEditorWindow(company.store(), prompter, editors.openEditors());
    noClient->newDocument(0);
    noClient->controller().addRow();
    showAndWait(noClient);
    pictureNextDialog("no-client-selected-question");
    noClient->save();
    pictureCloseQuestion(noClient, "document-close-question");

    // The window's Save keeps it as a draft and closes the window.
    const predicate::RecordRef invoice = controller.document()->ref();
    draft->save();
    QTest::qWait(100);

    // Its PDF asks to finalise the draft first; the file dialog after the question is left.
    auto* finalising = new ui::DocumentEditorWindow(company.store(), prompter, editors.openEditors());
    finalising->setOutput(&editors.outputs());
    finalising->openDocument(invoice);
    showAndWait(finalising);
    pictureNextDialog("finalize-invoice-question", s("Finalize"), [] { pictureNextDialog(nullptr); });
    finalising->saveAs();
    delete finalising;

    auto* window = new ui::DocumentEditorWindow(company.store(), prompter, editors.openEditors());
    window->openDocument(invoice);
    window->resize(1100, 780);
    showAndWait(window);
    auto* rows = child<QAbstractItemView>(window, "rowsView");
    rows->selectionModel()->select(rows->model()->index(2, 0),
                                   QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
    QTest::qWait(100);
    save(window, "document-editor");

    Record* stored = window->controller().document();
    editors.outputs().preview(stored);
    ui::PreviewWindow* preview = editors.outputs().previewWindow(invoice);
    if (!preview)
        qFatal("no preview");
    preview->resize(760, 900);
    (void)QTest::qWaitForWindowExposed(preview);
    QTest::qWait(500);
    save(preview, "document-preview");
    editors.outputs().closePreview(invoice);

    company.insert("EmailTemplates",
                   {{s("name"), s("Invoice")},
                    {s("subject"), s("Your invoice")},
                    {s("body"), s("Dear @ClientName,\n\nplease find our invoice attached.\n\nKind "
                                  "regards\n@MyCompanyName")}});
    company.save();
    {
        ui::EmailPreparationWindow email(company.store(), prompter, invoice, window);
        auto* templates = child<QComboBox>(&email, "templatePopup");
        templates->setCurrentIndex(templates->findText(s("Invoice")));
        Q_EMIT templates->activated(templates->currentIndex());
        showAndWait(&email);
        save(&email, "email-preparation-sheet");
        email.reject();

        documents::DocumentPayments payments(company.store(), prompter);
        const double total = stored->value(s("sum_total")).toDouble();
        payments.addPayment(invoice, 2000, {}, QDateTime(QDate(2026, 3, 2), QTime(9, 0)));
        payments.addPayment(invoice, std::floor(total / 4), {}, QDateTime(QDate(2026, 3, 16), QTime(9, 0)));
        ui::DocumentPaymentsSheet sheet(company.store(), prompter, invoice, window);
        showAndWait(&sheet);
        save(&sheet, "document-payments-sheet");
        sheet.finish(false);
    }
    delete window;
}

void clientPictures(Company& company, ui::DialogPrompter& prompter, ui::EditorWindows& editors)
{
    const QList<std::pair<const char*, QColor>> tags = {{"Wholesale", QColor(Qt::darkGreen)},
                                                        {"Export", QColor(0x1d, 0x63, 0x9b)},
                                                        {"Priority", QColor(0xb0, 0x3a, 0x2e)}};
    for (const auto& [name, colour] : tags) {
        company.insert("Categories", {{s("name"), s(name)},
                                      {s("type"), qint64(1)},
                                      {s("foreground_color"), QColor(Qt::white)},
                                      {s("background_color"), colour}});
    }
    company.save();

    auto* window = new ui::ClientEditorWindow(company.store(), prompter, editors.openEditors());
    window->newClient(0);
    showAndWait(window);
    QTest::keyClicks(child<QLineEdit>(window, "firstNameField"), s("Harbourside Joinery Ltd"));
    QTest::keyClicks(child<QLineEdit>(window, "secondNameField"), s("GB 284 1193 07"));
    QTest::keyClicks(child<QLineEdit>(window, "emailsField"),
                     s("orders@harbourside.example,accounts@harbourside.example"));
    QTest::keyClicks(child<QLineEdit>(window, "phonesField"), s("+44 20 7946 0958"));
    const QList<QStringList> addresses = {
        {s("14 Harbour Road"), s("Bristol"), s("BS1 5TY"), s("United Kingdom")},
        {s("Unit 7, Mill Lane Estate"), s("Leeds"), s("LS11 8BP"), s("United Kingdom")},
        {s("Kaiserstrasse 21"), s("Frankfurt"), s("60311"), s("Germany")}};
    child<QTabWidget>(window, "clientTabs")->setCurrentIndex(1);
    for (const QStringList& address : addresses) {
        QTest::mouseClick(child<QToolButton>(window, "addressesAddButton"), Qt::LeftButton);
        int field = 0;
        for (const char* name :
             {"addresses_street", "addresses_city", "addresses_zip_code", "addresses_country"})
            QTest::keyClicks(child<QWidget>(window, name), address.at(field++));
    }
    child<QListWidget>(window, "addressesList")->setCurrentRow(0);
    QTest::qWait(100);
    save(window, "client-editor");

    QTest::mouseClick(child<QPushButton>(window, "tagsButton"), Qt::LeftButton);
    ui::TagsPopover* popover = window->tagsPopover();
    if (!popover || !popover->isVisible())
        qFatal("the tags popover is not shown");
    auto* list = child<QListWidget>(popover, "tagsList");
    for (int row : {1, 2})
        QTest::mouseClick(list->viewport(), Qt::LeftButton, {},
                          list->visualItemRect(list->item(row)).center());
    QTest::qWait(100);
    saveWithPopup(window, popover, "tags-popover");
    QTest::keyClick(list, Qt::Key_Escape);
    QTest::qWait(100);
    pictureCloseQuestion(window, "client-close-question");
}

void itemPictures(Company& company, ui::DialogPrompter& prompter, ui::EditorWindows& editors)
{
    const auto supplier = [&](const char* name) {
        return company.insert(
            "Clients", {{s("company_name"), s(name)}, {s("full_name"), s(name)}, {s("type"), qint64(1)}});
    };
    Record* northwind = supplier("Northwind Traders");
    Record* oakHill = supplier("Oak Hill Timber Co.");
    supplier("Timberline Furniture Supply");
    const auto customer = [&](const char* name) {
        return company.insert(
            "Clients", {{s("company_name"), s(name)}, {s("full_name"), s(name)}, {s("type"), qint64(0)}});
    };
    Record* cafe = customer("Blue Harbour Café");
    Record* dental = customer("Greenfield Dental Practice");
    Record* item =
        company.insert("Items", {{s("name"), s("Oak Dining Table 180 cm")},
                                 {s("type"), qint64(1)},
                                 {s("code"), s("ODT-180")},
                                 {s("desc"), s("Solid oak, oiled finish, seats six.\nDelivered assembled.")},
                                 {s("custom01"), s("Oak, oiled")},
                                 {s("custom02"), s("180 × 90 cm")},
                                 {s("custom_price01"), 1290.0},
                                 {s("custom_price02"), 1161.0},
                                 {s("custom_price03"), 1095.0},
                                 {s("use_warehouse"), true}});
    item->setRelated(s("tax"), model::CompanyRecord::defaultRecord(company.main(), s("default_tax")));
    item->setRelated(s("unit"), company.named("Units", "name", s("Each")));
    const QList<std::tuple<Record*, double, QDate>> deliveries = {{northwind, 10, QDate(2026, 1, 5)},
                                                                  {oakHill, 6, QDate(2026, 2, 9)},
                                                                  {northwind, 4, QDate(2026, 3, 20)}};
    for (const auto& [from, quantity, date] : deliveries) {
        Record* delivery = company.insert(
            "Warehouse", {{s("quantity"), quantity}, {s("date"), QDateTime(date, QTime(0, 0))}});
        delivery->setRelated(s("item"), item);
        delivery->setRelated(s("client"), from);
    }
    const QList<std::tuple<qint64, const char*, Record*, double, QDate>> sold = {
        {0, "INV-2026-014", cafe, 2, QDate(2026, 2, 12)},
        {0, "INV-2026-021", dental, 1, QDate(2026, 3, 2)},
        {3, "QUO-2026-007", dental, 4, QDate(2026, 3, 15)},
        {0, "INV-2026-030", cafe, 3, QDate(2026, 4, 1)}};
    for (const auto& [type, number, to, quantity, date] : sold) {
        const QDateTime created(date, QTime(9, 0));
        Record* document = company.insert("Documents", {{s("type"), type},
                                                        {s("draft"), false},
                                                        {s("number_formatted"), s(number)},
                                                        {s("created"), created},
                                                        {s("date_creation"), created}});
        document->setRelated(s("client"), to);
        Record* row = company.insert("DocumentRows", {{s("quantity"), quantity}, {s("order"), qint64(1)}});
        row->setRelated(s("document"), document);
        row->setRelated(s("item"), item);
    }
    company.save();
    {
        // The stock as a save of the item counts it.
        ui::ItemEditorWindow counting(company.store(), prompter, editors.openEditors());
        counting.openItem(item->ref());
        counting.controller().markEdited();
        counting.controller().save(editors::ItemController::Sender::None);
    }

    auto* window = new ui::ItemEditorWindow(company.store(), prompter, editors.openEditors());
    window->openItem(item->ref());
    window->resize(std::max(1000, window->sizeHint().width()), 640);
    showAndWait(window);
    save(window, "item-editor");
    child<QToolButton>(window, "deliveriesInButton")->click();
    QTest::qWait(100);
    save(window, "item-editor-deliveries");

    child<QPushButton>(window, "addDeliveryButton")->click();
    auto* sheet = child<ui::DeliverySheet>(window, "DeliverySheet");
    (void)QTest::qWaitForWindowExposed(sheet);
    auto* supplierEdit = child<QLineEdit>(sheet, "supplierEdit");
    QTest::keyClicks(supplierEdit, s("tim"));
    QTest::qWait(200);
    QAbstractItemView* suggestions = supplierEdit->completer()->popup();
    saveWithPopup(sheet, suggestions, "delivery-sheet-suggestions");
    suggestions->setCurrentIndex(suggestions->model()->index(0, 0));
    QTest::keyClick(suggestions, Qt::Key_Return);
    auto* quantity = child<QLineEdit>(sheet, "quantityEdit");
    quantity->selectAll();
    QTest::keyClicks(quantity, s("8"));
    QTest::qWait(100);
    save(sheet, "delivery-sheet");
    QTest::mouseClick(child<QPushButton>(sheet, "addButton"), Qt::LeftButton);
    QTest::qWait(200);
    pictureCloseQuestion(window, "item-close-question");
}

void toDoPictures(Company& company, ui::DialogPrompter& prompter, ui::EditorWindows& editors)
{
    company.insert("Clients", {{s("company_name"), s("Berger Haustechnik GmbH")},
                               {s("full_name"), s("Berger Haustechnik GmbH")},
                               {s("type"), qint64(0)}});
    company.insert("Items", {{s("name"), s("Maintenance contract")}, {s("type"), qint64(0)}});
    company.save();
    auto* window = new ui::ToDoEditorWindow(company.store(), prompter, editors.openEditors());
    window->newToDo(QDateTime(QDate(2026, 12, 8), QTime(10, 0)));
    showAndWait(window);
    QTest::keyClicks(child<QLineEdit>(window, "titleEdit"), s("Service visit"));
    QTest::keyClicks(child<QLineEdit>(window, "clientEdit"), s("Berger Haustechnik GmbH"));
    QTest::keyClicks(child<QLineEdit>(window, "itemEdit"), s("Maintenance contract"));
    auto* repeat = child<QComboBox>(window, "repeatPopup");
    repeat->setCurrentIndex(repeat->findText(s("Monthly")));
    QTest::mouseClick(child<QRadioButton>(window, "byWeekdayRadio"), Qt::LeftButton, {}, QPoint(4, 4));
    auto* end = child<QComboBox>(window, "endPopup");
    end->setCurrentIndex(end->findText(s("After")));
    child<QSpinBox>(window, "occurrencesSpin")->setValue(12);
    QTest::keyClicks(child<QWidget>(window, "notesEdit"),
                     s("Check the heating pumps and replace the filters."));
    QTest::qWait(100);
    save(window, "todo-editor");
    pictureCloseQuestion(window, "todo-close-question");
}

} // namespace

void takeEditorPictures(store::Store& store, ui::MainWindow& mainWindow)
{
    Company company(store);
    ui::DialogPrompter prompter(&mainWindow);
    ui::EditorWindows& editors = *mainWindow.editorWindows();
    documentPictures(company, prompter, editors);
    clientPictures(company, prompter, editors);
    itemPictures(company, prompter, editors);
    toDoPictures(company, prompter, editors);
}

} // namespace corvanta::uipictures
