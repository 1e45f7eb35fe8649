// bench_pdf: Corvanta's PDF rendering against the HTML-to-PDF engines other invoicing programs
// use (wkhtmltopdf and WeasyPrint, installed by bench/pdf_engines.sh), side by side in one run.
// Each engine renders three inputs as whole processes: a 15-row invoice, a 1,000-row invoice and
// the report of every document of a 5,000-document company. Prints median wall times, peak
// memory, the peers' times as multiples of Corvanta's, and the goals met or not. Exits 1 when a
// Corvanta run fails (or, with --smoke, writes no pages), 2 on a usage error; goals never
// change the exit status.

#include "app/applicationcore.h"
#include "model/companydatabase.h"
#include "pdfbenchcompany.h"
#include "pdfbenchreport.h"
#include "pdfbenchrunner.h"
#include "pdfengines.h"
#include "peerhtml.h"
#include "store/store.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QLocale>
#include <QTemporaryDir>
#include <QTextStream>
#include <algorithm>
#include <memory>

using namespace corvanta;
using namespace corvanta::bench;

namespace {

constexpr int kSmallRows = 15;
constexpr int kLargeRows = 1000;
constexpr int kSmokeDocuments = 200;

QTextStream& out()
{
    static QTextStream stream(stdout);
    return stream;
}

QString s(const char* text)
{
    return QString::fromLatin1(text);
}

// The peers' HTML, written from the database before any engine opens it.
bool writeHtml(const QString& database, const QList<PdfBenchInput>& inputs, const QStringList& invoices,
               QString* error)
{
    store::StoreError storeError;
    std::unique_ptr<store::Store> store = model::CompanyDatabase::open(database, &storeError);
    if (!store) {
        *error = storeError.message();
        return false;
    }
    store::EditingContext& context = store->mainContext();
    const bool written = PeerHtml::writeInvoice(context, invoices.at(0), inputs.at(0).html) &&
                         PeerHtml::writeInvoice(context, invoices.at(1), inputs.at(1).html) &&
                         PeerHtml::writeReport(context, inputs.at(2).html);
    if (!written)
        *error = s("the HTML of the inputs could not be written");
    return written;
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    QCommandLineParser parser;
    parser.setApplicationDescription(
        s("Times corvanta-cli writing PDFs against wkhtmltopdf and WeasyPrint rendering the same content."));
    parser.addHelpOption();
    const QCommandLineOption runsOption(s("runs"), s("Timed runs per engine and input, after one warm-up."),
                                        s("n"), s("7"));
    const QCommandLineOption budgetOption(
        s("budget"),
        s("Seconds of timed runs per engine and input; a slow engine gets fewer runs (at least 3)."),
        s("seconds"), s("120"));
    const QCommandLineOption documentsOption(
        s("documents"), s("Documents in the company, and so in the report."), s("n"), s("5000"));
    const QCommandLineOption keepOption(
        s("keep"), s("Work in this folder and keep the database, HTML and PDFs."), s("folder"));
    const QCommandLineOption noPeersOption(s("no-peers"), s("Run Corvanta only."));
    const QCommandLineOption smokeOption(
        s("smoke"), s("A small company, one run, no peers: checks that the commands write PDFs with pages."));
    const QCommandLineOption cliOption(
        s("cli"), s("The corvanta-cli to run (default: the one beside this program)."), s("file"));
    const QCommandLineOption templatesOption(
        s("templates"), s("The folder of the shipped template files (default: the program's)."), s("folder"));
    parser.addOptions({runsOption, budgetOption, documentsOption, keepOption, noPeersOption, smokeOption,
                       cliOption, templatesOption});
    parser.process(app);

    const bool smoke = parser.isSet(smokeOption);
    const int runs = smoke ? 1 : parser.value(runsOption).toInt();
    const int documents = smoke ? kSmokeDocuments : parser.value(documentsOption).toInt();
    if (runs < 1 || documents < 3) {
        out() << "--runs must be at least 1 and --documents at least 3" << Qt::endl;
        return 2;
    }
    const QString cli = parser.isSet(cliOption)
                            ? parser.value(cliOption)
                            : QDir(QCoreApplication::applicationDirPath()).filePath(s("corvanta-cli"));
    const QString shippedTemplates = parser.isSet(templatesOption)
                                         ? parser.value(templatesOption)
                                         : app::ApplicationCore::defaultShippedTemplatesFolder();

    QTemporaryDir scratch;
    const QString folder = parser.isSet(keepOption) ? parser.value(keepOption) : scratch.path();
    QDir().mkpath(folder);
    const QDir work(folder);
    const QString database = work.filePath(s("company.cvdb"));
    if (QFile::exists(database)) {
        out() << database << " exists already; give --keep an empty folder" << Qt::endl;
        return 2;
    }

    const PdfEngine corvanta = PdfEngine::corvanta(cli, work.filePath(s("home")));
    QString error;
    QElapsedTimer preparation;
    preparation.start();
    out() << "generating a company of " << documents << " documents in " << folder << " ..." << Qt::endl;
    PdfBenchCompany company(database, documents);
    if (!company.generate(shippedTemplates, &error)) {
        out() << "cannot generate the company: " << error << Qt::endl;
        return 1;
    }
    out() << "templates installed from " << shippedTemplates << ": " << company.installedTemplates()
          << Qt::endl;
    if (company.installedTemplates() == 0) {
        out() << "no template to render with: build the shipped templates or give --templates" << Qt::endl;
        return 1;
    }
    QStringList invoices;
    for (int rows : {kSmallRows, kLargeRows}) {
        const QString identifier = company.addInvoice(cli, corvanta.environment, rows, &error);
        if (identifier.isEmpty()) {
            out() << "corvanta-cli could not write the " << rows << "-row invoice: " << error << Qt::endl;
            return 1;
        }
        invoices << identifier;
    }

    const QList<PdfBenchInput> inputs{
        {s("15-row invoice"),
         {s("documents"), s("pdf"), invoices.at(0)},
         work.filePath(s("invoice-15.html")),
         0.060},
        {s("1,000-row invoice"),
         {s("documents"), s("pdf"), invoices.at(1)},
         work.filePath(s("invoice-1000.html")),
         0.300},
        {s("%1-document report").arg(QLocale(QLocale::English).toString(documents)),
         {s("reports"), s("pdf")},
         work.filePath(s("report.html")),
         1.0},
    };

    QList<PdfEngine> engines{corvanta};
    if (!smoke && !parser.isSet(noPeersOption)) {
        engines << PdfEngine::wkhtmltopdf() << PdfEngine::weasyPrint();
        if (!writeHtml(database, inputs, invoices, &error)) {
            out() << error << Qt::endl;
            return 1;
        }
    }
    out() << "prepared in " << QString::number(double(preparation.elapsed()) / 1000.0, 'f', 1) << " s; "
          << runs << " timed run(s) per engine and input" << (smoke ? "" : " after one warm-up") << Qt::endl
          << Qt::endl;

    const PdfBenchRunner runner(database, folder, runs, !smoke, parser.value(budgetOption).toDouble());
    PdfBenchReport report(engines);
    bool corvantaFailed = false;
    QList<int> corvantaPages;
    for (const PdfBenchInput& input : inputs) {
        QList<PdfRunFigures> byEngine;
        for (const PdfEngine& engine : engines) {
            byEngine << (engine.isAvailable() ? runner.measure(engine, input) : PdfRunFigures{});
            const PdfRunFigures& f = byEngine.last();
            if (engine.kind == PdfEngine::Kind::Corvanta) {
                corvantaFailed = corvantaFailed || !f.ran;
                corvantaPages << f.pages;
            }
        }
        report.add(input, byEngine);
    }

    report.printTable(out());
    if (smoke) {
        // Every PDF has pages, and the long invoice runs over more of them than the short one.
        const bool paged = std::ranges::all_of(corvantaPages, [](int pages) { return pages > 0; }) &&
                           corvantaPages.at(1) > corvantaPages.at(0);
        const bool passed = !corvantaFailed && paged;
        out() << Qt::endl
              << (passed ? "smoke: every command wrote a PDF"
                         : "smoke: FAILED (a command failed, or a PDF has too few pages)")
              << Qt::endl;
        return passed ? 0 : 1;
    }
    out() << Qt::endl;
    report.printRatios(out());
    out() << Qt::endl << "goals:" << Qt::endl;
    const int missed = report.printGoals(out());
    out() << Qt::endl << missed << " goal(s) not met" << Qt::endl;
    return corvantaFailed ? 1 : 0;
}
