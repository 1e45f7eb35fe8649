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

#include <QAbstractItemModel>
#include <QApplication>
#include <QComboBox>
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

// Chooses `text` in a pop-up as the user does: the window reacts to activated(), not to a
// programmatic change.
inline void pickText(QComboBox* popup, const QString& text)
{
    QVERIFY(popup);
    const int index = popup->findText(text);
    QVERIFY2(index >= 0, qPrintable(text + s(" is not offered")));
    popup->setCurrentIndex(index);
    Q_EMIT popup->activated(index);
}

// Every question asked, as "title | text | buttons/joined".
inline QStringList askedLines(const support::ScriptedPrompter& prompter)
{
    QStringList result;
    for (const support::ScriptedPrompter::Question& question : prompter.questions())
        result << QStringList{question.title, question.text, question.buttons.join(u'/')}.join(s(" | "));
    return result;
}

// The model's rows, cells joined by "|".
inline QStringList modelRows(const QAbstractItemModel& model)
{
    QStringList rows;
    for (int row = 0; row < model.rowCount(); ++row) {
        QStringList cells;
        for (int column = 0; column < model.columnCount(); ++column)
            cells << model.index(row, column).data().toString();
        rows << cells.join(u'|');
    }
    return rows;
}

inline QStringList columnTitles(const QAbstractItemModel& model)
{
    QStringList titles;
    for (int column = 0; column < model.columnCount(); ++column)
        titles << model.headerData(column, Qt::Horizontal).toString();
    return titles;
}

// The alert shown when another program holds the company database's write lock.
inline QString databaseInUseText(store::Store& store)
{
    return s("The company database \"%1\" is in use by another program: it could not be saved.")
        .arg(store.path());
}

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
