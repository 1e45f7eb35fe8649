#pragma once

#include "../companies/companiestestsupport.h"
#include "app/applicationcore.h"
#include "predicate/literal.h"
#include "store/editingcontext.h"
#include "store/fetchrequest.h"
#include "store/record.h"
#include "store/store.h"
#include "support/scriptedprompter.h"
#include "support/uuid.h"

#include <QApplication>
#include <QTest>

namespace corvanta::ui::testing {

inline QString s(const char* text)
{
    return QString::fromUtf8(text);
}

// A company database started as the program starts it, in scratch folders, with its default
// records and helpers to add what a test lists. Questions are answered from a script.
class UiCompany
{
public:
    UiCompany()
        : m_core(m_prompter, m_folders.folders(), app::ApplicationCore::defaultShippedTemplatesFolder())
    {
        if (!m_core.start())
            qFatal("the company database does not open: %s", qPrintable(m_prompter.titles().join(s(", "))));
    }

    app::ApplicationCore& core() { return m_core; }
    store::Store& store() { return *m_core.store(); }
    store::EditingContext& main() { return store().mainContext(); }
    support::ScriptedPrompter& prompter() { return m_prompter; }
    const companies::testing::ScratchFolders& folders() const { return m_folders; }

    store::Record* named(const char* entity, const QString& key, const QString& value)
    {
        return main().fetchFirst(
            store::FetchRequest(s(entity), predicate::literal(QString(key + s(" == %@")), {value})));
    }
    store::Record* category(const QString& name) { return named("Categories", s("name"), name); }
    store::Record* client(const QString& name) { return named("Clients", s("full_name"), name); }

    store::Record* addClient(const QString& name)
    {
        store::Record* client = main().insertRecord(s("Clients"), {{s("company_name"), name},
                                                                   {s("full_name"), name},
                                                                   {s("type"), qint64(0)},
                                                                   {s("identifier"), support::UUID()}});
        save();
        return client;
    }
    // A final invoice numbered `number`.
    store::Record* addInvoice(const QString& number, double total)
    {
        store::Record* document =
            main().insertRecord(s("Documents"), {{s("type"), qint64(0)},
                                                 {s("draft"), false},
                                                 {s("number_formatted"), number},
                                                 {s("sum_total"), total},
                                                 {s("date_creation"), QDateTime::currentDateTime()},
                                                 {s("created"), QDateTime::currentDateTime()},
                                                 {s("identifier"), support::UUID()}});
        save();
        return document;
    }
    void save()
    {
        store::StoreError error;
        if (!main().save(&error))
            qFatal("cannot save: %s", qPrintable(error.message()));
    }

private:
    companies::testing::ScratchFolders m_folders;
    support::ScriptedPrompter m_prompter;
    app::ApplicationCore m_core;
};

// QtWebEngine shares its GL contexts with the windows: the attribute must be set before the
// application object exists.
#define CORVANTA_UI_TEST_MAIN(TestClass)                                                                     \
    int main(int argc, char** argv)                                                                          \
    {                                                                                                        \
        QCoreApplication::setAttribute(Qt::AA_ShareOpenGLContexts);                                          \
        QApplication application(argc, argv);                                                                \
        application.setAttribute(Qt::AA_Use96Dpi, true);                                                     \
        TestClass test;                                                                                      \
        QTEST_SET_MAIN_SOURCE_PATH                                                                           \
        return QTest::qExec(&test, argc, argv);                                                              \
    }

} // namespace corvanta::ui::testing
