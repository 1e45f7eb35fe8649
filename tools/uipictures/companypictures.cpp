// The company's own record and the preferences: a joinery firm with its address, tax number,
// bank account in a custom field and its usual defaults; the preferences on each page, and the
// menu of a number token as it opens.
#include "companypictures.h"

#include "model/companyrecord.h"
#include "pictures.h"
#include "predicate/literal.h"
#include "store/editingcontext.h"
#include "store/fetchrequest.h"
#include "store/record.h"
#include "store/store.h"
#include "ui/dialogprompter.h"
#include "ui/mycompanywindow.h"
#include "ui/numberformatfield.h"
#include "ui/preferenceswindow.h"

#include <QMenu>
#include <QPainter>
#include <QTest>
#include <QToolButton>

namespace corvanta::uipictures {

namespace {

void fillCompany(store::Store& store)
{
    store::EditingContext& main = store.mainContext();
    store::Record* company = model::CompanyRecord::of(main);
    if (!company)
        return;
    company->setValue(s("name"), s("Lindqvist Joinery Ltd"));
    company->setValue(s("address"), s("4 Mill Lane\nYork YO1 7HH\nUnited Kingdom"));
    company->setValue(s("tax_number"), s("GB 123 4567 89"));
    company->setValue(s("email"), s("office@lindqvist-joinery.example"));
    company->setValue(s("phone"), s("+44 1904 555 018"));
    company->setValue(s("desc"),
                      s("Fitted kitchens, staircases and sash windows made to measure since 1987."));
    const auto label = [&](const char* field, const char* caption) {
        if (store::Record* compose = main.fetchFirst(
                store::FetchRequest(s("Compose"), predicate::literal("name == %@", {s(field)}))))
            compose->setValue(s("label"), s(caption));
    };
    label("my_custom01", "Bank Account");
    label("my_custom02", "Company Number");
    label("my_custom03", "Web Site");
    company->setValue(s("custom01"), s("GB29 NWBK 6016 1331 9268 19"));
    company->setValue(s("custom02"), s("04512876"));
    company->setValue(s("custom03"), s("lindqvist-joinery.example"));
    store::StoreError error;
    if (!main.save(&error))
        qFatal("cannot save the company: %s", qPrintable(error.message()));
}

} // namespace

void takeCompanyPictures(store::Store& store)
{
    fillCompany(store);
    ui::DialogPrompter prompter;

    auto* company = new ui::MyCompanyWindow(store, prompter);
    company->show();
    QTest::qWait(300);
    save(company, "my-company");
    company->close();

    auto* preferences = new ui::PreferencesWindow(store, prompter);
    preferences->show();
    QTest::qWait(300);
    save(preferences, "preferences-numbering");
    if (auto* field = preferences->findChild<ui::NumberFormatField*>(s("format_invoice"))) {
        if (auto* token = field->findChild<QToolButton*>(s("token3"))) {
            // The menu is a window of its own: it is drawn onto the window where it opens.
            token->menu()->popup(token->mapToGlobal(QPoint(0, token->height())));
            QTest::qWait(300);
            QPixmap picture = preferences->grab();
            QPainter painter(&picture);
            painter.drawPixmap(token->mapTo(preferences, QPoint(0, token->height())), token->menu()->grab());
            painter.end();
            save(picture, "preferences-numbering-menu");
            token->menu()->close();
        }
    }
    preferences->showPage(ui::PreferencesWindow::DocumentsPage);
    QTest::qWait(200);
    save(preferences, "preferences-documents");
    preferences->showPage(ui::PreferencesWindow::ClientsAndItemsPage);
    QTest::qWait(200);
    save(preferences, "preferences-clients");
    preferences->close();
}

} // namespace corvanta::uipictures
