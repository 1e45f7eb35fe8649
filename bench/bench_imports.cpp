// Times the clients import window on a long file: reading the file into the preview until it is
// drawn, the import itself driven through the window with its progress dialog, and the longest
// time the window went without handling events while importing. A cancel at half way must leave
// no client behind.
#include "app/applicationcore.h"
#include "benchoutput.h"
#include "scratchcompany.h"
#include "store/editingcontext.h"
#include "store/fetchrequest.h"
#include "store/store.h"
#include "support/scriptedprompter.h"
#include "ui/importclientswindow.h"

#include <QAction>
#include <QApplication>
#include <QCommandLineParser>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QMenu>
#include <QPointer>
#include <QProgressDialog>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

using namespace corvanta;
using bench::msSince;
using bench::out;

namespace {

QString s(const char* text)
{
    return QString::fromLatin1(text);
}

// A file as an address list exports it, its columns in the order of the compose pop-up: company
// name, e-mail, phone, street, city, zip code and country.
QString writeClients(const ScratchCompany& folder, int lines)
{
    const QString path = folder.filePath(s("clients.csv"));
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        qFatal("cannot write %s", qPrintable(path));
    static const char* const cities[] = {"Bristol;BS1 4RN;United Kingdom", "Lyon;69002;France",
                                         "Innsbruck;6020;Austria", "Madrid;28013;Spain",
                                         "Toronto;M5V 1M2;Canada"};
    for (int line = 1; line <= lines; ++line) {
        file.write(QStringLiteral("Client %1 Ltd;accounts%1@example.com;+44 117 496 %2;%3 Harbour Road;")
                       .arg(line)
                       .arg(line % 10000, 4, 10, QLatin1Char('0'))
                       .arg(line % 300 + 1)
                       .toUtf8());
        file.write(cities[line % 5]);
        file.write(line % 7 == 0 ? "\r\n" : "\n");
    }
    return path;
}

int clientCount(store::Store& store)
{
    return store.mainContext().count(store::FetchRequest(s("Clients")));
}

// The longest time between two turns of the event loop while it runs, as the user feels it.
class FreezeMeter : public QObject
{
public:
    FreezeMeter()
    {
        m_timer.setInterval(5);
        connect(&m_timer, &QTimer::timeout, this, [this] {
            m_longest = qMax(m_longest, msSince(m_sinceLast));
            m_sinceLast.restart();
        });
        m_sinceLast.start();
        m_timer.start();
    }
    // Up to now: a stretch without events that has not ended yet counts too.
    double longest() const { return qMax(m_longest, msSince(m_sinceLast)); }

private:
    QTimer m_timer;
    QElapsedTimer m_sinceLast;
    double m_longest = 0;
};

void tick(QWidget* window, const char* key)
{
    QAction* action = window->findChild<QMenu*>(s("composeMenu"))->findChild<QAction*>(s(key));
    if (!action)
        qFatal("the compose pop-up offers no %s", key);
    action->trigger();
}

} // namespace

int main(int argc, char** argv)
{
    ScratchCompany company;
    QCoreApplication::setAttribute(Qt::AA_ShareOpenGLContexts);
    QApplication application(argc, argv);
    QCommandLineParser parser;
    parser.setApplicationDescription(s("Times the clients import window on a long file."));
    parser.addHelpOption();
    const QCommandLineOption linesOption(s("lines"), s("Lines of the clients file."), s("n"), s("50000"));
    parser.addOption(linesOption);
    parser.process(application);
    const int lines = qMax(2, parser.value(linesOption).toInt());

    const std::unique_ptr<app::ApplicationCore> core = company.start();
    store::Store& store = *core->store();
    support::ScriptedPrompter& prompter = company.prompter();
    const QString path = writeClients(company, lines);
    const int before = clientCount(store);

    QPointer<ui::ImportClientsWindow> window = new ui::ImportClientsWindow(store, prompter);
    window->show();
    QApplication::processEvents();
    QElapsedTimer timer;
    timer.start();
    if (!window->openFile(path))
        qFatal("the file cannot be read: %s", qPrintable(prompter.titles().join(s(", "))));
    QApplication::processEvents();
    const double preview = msSince(timer);
    if (window->preview().rows().size() != lines)
        qFatal("the preview shows %lld lines of %d", qint64(window->preview().rows().size()), lines);
    for (const char* key : {"emails", "phones", "street", "city", "zip_code", "country"})
        tick(window, key);
    auto* importButton = window->findChild<QPushButton*>(s("importButton"));

    // Cancel once half the lines are gone through, as the user would with the dialog's button.
    qsizetype cancelledAt = 0;
    QTimer canceller;
    canceller.setInterval(0);
    QObject::connect(&canceller, &QTimer::timeout, [&] {
        auto* progress = window ? window->findChild<QProgressDialog*>(s("importProgress")) : nullptr;
        if (progress && progress->value() >= lines / 2) {
            cancelledAt = progress->value();
            progress->findChild<QPushButton*>()->click();
            canceller.stop();
        }
    });
    canceller.start();
    timer.restart();
    QTest::mouseClick(importButton, Qt::LeftButton);
    const double cancel = msSince(timer);
    canceller.stop();
    if (!window || cancelledAt == 0)
        qFatal("the import was not cancelled");
    const int afterCancel = clientCount(store) - before;
    if (afterCancel != 0)
        qFatal("a cancelled import left %d clients", afterCancel);

    prompter.clear();
    double longestFreeze = 0;
    timer.restart();
    {
        const FreezeMeter meter;
        QTest::mouseClick(importButton, Qt::LeftButton);
        longestFreeze = meter.longest();
    }
    const double import = msSince(timer);
    QApplication::processEvents();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    const int added = clientCount(store) - before;
    if (window || added != lines || prompter.titles() != QStringList{s("Import Clients")})
        qFatal("the import added %d clients of %d lines", added, lines);

    out() << "clients file: " << lines << " lines, 7 columns\n\n";
    out() << "file read into the preview and drawn: " << preview << " ms\n";
    out() << "import through the window:            " << import << " ms (" << lines / (import / 1000.0)
          << " lines/s)\n";
    out() << "  longest time without events:        " << longestFreeze << " ms\n";
    out() << "cancelled at line " << cancelledAt << " after " << cancel << " ms: " << afterCancel
          << " clients stored\n";
    out().flush();
    return 0;
}
