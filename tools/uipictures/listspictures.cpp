// The list windows' pictures: a few taxes with two rates, the currencies with their samples, the
// due days and units a workshop uses, and the labels of the clients' own fields.
#include "listspictures.h"

#include "editors/customfieldsmodel.h"
#include "editors/referencelistmodel.h"
#include "pictures.h"
#include "predicate/literal.h"
#include "store/editingcontext.h"
#include "store/fetchrequest.h"
#include "store/record.h"
#include "store/store.h"
#include "support/prompter.h"
#include "ui/customfieldswindow.h"
#include "ui/referencelistwindow.h"

#include <QTabWidget>
#include <QTableView>
#include <QTest>

namespace corvanta::uipictures {

namespace {

using editors::ReferenceListType;
using store::Record;

// Nothing is deleted or refused in these pictures; a question would be a fault.
class NoQuestions : public support::Prompter
{
public:
    QString alert(const QString& title, const QString& text, const QStringList&) override
    {
        qFatal("unexpected question: %s: %s", qPrintable(title), qPrintable(text));
    }
    std::optional<QString> chooseFolder(const QString&) override { return std::nullopt; }
    std::optional<QString> chooseFile(const QString&, const QStringList&) override { return std::nullopt; }
    std::optional<QString> askText(const QString&, const QString&, const QString&) override
    {
        return std::nullopt;
    }
};

Record* named(store::EditingContext& context, const char* entity, const char* key, const QString& value)
{
    return context.fetchFirst(
        store::FetchRequest(s(entity), predicate::literal(QString(s(key) + s(" == %@")), {value})));
}

// The record `entity` named `value`, made when the company has none yet.
Record* ensure(store::EditingContext& context, const char* entity, const char* key, const QString& value,
               const QVariantMap& values = {})
{
    Record* record = named(context, entity, key, value);
    if (!record) {
        QVariantMap all = values;
        all.insert(s(key), value);
        record = context.insertRecord(s(entity), all);
    }
    return record;
}

void fill(store::EditingContext& context)
{
    ensure(context, "Taxes", "name", s("Standard 20%"), {{s("rate1"), 20.0}});
    ensure(context, "Taxes", "name", s("Reduced 7%"), {{s("rate1"), 7.0}});
    ensure(context, "Taxes", "name", s("Zero Rated"), {{s("rate1"), 0.0}});
    ensure(context, "Taxes", "name", s("GST + QST"), {{s("rate1"), 5.0}, {s("rate2"), 9.975}});

    for (const char* unit : {"Metres", "Square Metres", "Kilograms", "Days", "Pallets"})
        ensure(context, "Units", "name", s(unit));

    ensure(context, "DueDays", "name", s("Net 14"), {{s("days"), 14}, {s("type"), 0}});
    ensure(context, "DueDays", "name", s("Net 30"), {{s("days"), 30}, {s("type"), 0}});
    ensure(context, "DueDays", "name", s("Net 60"), {{s("days"), 60}, {s("type"), 0}});

    struct Format
    {
        const char* code;
        const char* symbol;
        const char* placement;
        const char* grouping;
        const char* decimal;
        int digits;
        bool fixed;
    };
    const Format formats[] = {{"EUR", "€", "sr", ".", ",", 2, true},
                              {"GBP", "£", "l", ",", ".", 2, true},
                              {"CHF", "CHF", "code", "'", ".", 2, true},
                              {"DKK", "kr.", "sr", ".", ",", 2, true},
                              {"CZK", "Kč", "sr", " ", ",", 2, false}};
    for (const Format& format : formats) {
        if (Record* currency = named(context, "Currencies", "code", s(format.code))) {
            currency->setValue(s("symbol"), QString::fromUtf8(format.symbol));
            currency->setValue(s("symbol_format"), s(format.placement));
            currency->setValue(s("grouping_separator"), s(format.grouping));
            currency->setValue(s("decimal_separator"), s(format.decimal));
            currency->setValue(s("digits"), format.digits);
            currency->setValue(s("show_fixed_digits"), format.fixed);
            currency->setValue(s("selectable"), true);
        }
    }

    const QList<std::pair<const char*, const char*>> labels = {{"client_custom01", "Customer Number"},
                                                               {"client_custom02", "VAT ID"},
                                                               {"client_custom03", "Account Manager"},
                                                               {"client_custom04", "Delivery Notes"}};
    for (const auto& [name, label] : labels) {
        if (Record* field = named(context, "Compose", "name", s(name)))
            field->setValue(s("label"), s(label));
    }
    store::StoreError error;
    if (!context.save(&error))
        qFatal("cannot save: %s", qPrintable(error.message()));
}

void showAndWait(QWidget* window)
{
    window->show();
    window->activateWindow();
    if (!QTest::qWaitForWindowExposed(window))
        qFatal("%s is not shown", qPrintable(window->objectName()));
    QTest::qWait(100);
}

// The list window with `selected` chosen and in view, pictured as `name`.
void pictureList(store::Store& store, support::Prompter& prompter, ReferenceListType type, QSize size,
                 const QString& selected, const char* name)
{
    auto* window = new ui::ReferenceListWindow(type, store, prompter);
    window->resize(size);
    showAndWait(window);
    editors::ReferenceListModel& model = window->model();
    for (int row = 0; row < model.rowCount(); ++row) {
        if (model.index(row, model.namingColumn()).data().toString() == selected) {
            window->selectRecord(model.recordAt(row));
            window->view()->scrollTo(model.index(row, 0), QAbstractItemView::PositionAtCenter);
        }
    }
    QTest::qWait(50);
    save(window, name);
    window->close();
}

} // namespace

void takeReferenceListPictures(store::Store& store)
{
    fill(store.mainContext());
    NoQuestions prompter;
    pictureList(store, prompter, ReferenceListType::Taxes, QSize(640, 300), s("Reduced 7%"), "taxes");
    pictureList(store, prompter, ReferenceListType::Currencies, QSize(1180, 520), s("EUR"), "currencies");
    pictureList(store, prompter, ReferenceListType::DueDays, QSize(520, 280), s("Net 30"), "due-days");
    pictureList(store, prompter, ReferenceListType::Units, QSize(420, 340), s("Hours"), "units");

    auto* fields = new ui::CustomFieldsWindow(store, prompter);
    fields->tabs()->setCurrentIndex(ui::CustomFieldsWindow::Clients);
    fields->resize(520, 350);
    showAndWait(fields);
    QTableView* view = fields->view(ui::CustomFieldsWindow::Clients);
    view->selectRow(1);
    save(fields, "custom-fields");
    fields->close();
}

} // namespace corvanta::uipictures
