#include "commandline.h"

#include "model/editingcontext.h"
#include "model/store.h"

namespace corvanta::cli {

CommandLine::CommandLine(QTextStream& out, QTextStream& err)
    : m_out(out)
    , m_err(err)
{}

QString CommandLine::usage() const
{
    return tr("Usage: corvanta-cli [--database FILE] COMMAND\n"
              "\n"
              "Corvanta keeps a small business's invoices, quotations and other documents,\n"
              "with its clients, items and payments, in one company database file.\n"
              "\n"
              "Options:\n"
              "  --database FILE  use this company database file (created when missing)\n"
              "  --help           show this text\n"
              "  --version        show the program's version\n"
              "\n"
              "Commands:\n"
              "  info             open the database, bring it up to date and show what it holds\n");
}

int CommandLine::run(const QStringList& arguments)
{
    QString database;
    QStringList rest;
    for (qsizetype i = 1; i < arguments.size(); ++i) {
        const QString& a = arguments.at(i);
        if (a == QLatin1String("--help") || a == QLatin1String("-h")) {
            m_out << usage();
            return 0;
        }
        if (a == QLatin1String("--version")) {
            m_out << QStringLiteral("corvanta-cli %1\n").arg(QLatin1String(CORVANTA_VERSION));
            return 0;
        }
        if (a == QLatin1String("--database")) {
            if (i + 1 >= arguments.size()) {
                m_err << tr("--database needs a file name.") << '\n' << usage();
                return 2;
            }
            database = arguments.at(++i);
            continue;
        }
        if (a.startsWith(QLatin1String("--"))) {
            m_err << tr("Unknown option \"%1\".").arg(a) << '\n' << usage();
            return 2;
        }
        rest << a;
    }
    if (rest.isEmpty()) {
        m_out << usage();
        return 0;
    }
    const QString command = rest.takeFirst();
    if (command == QLatin1String("info") && rest.isEmpty()) {
        if (database.isEmpty()) {
            m_err << tr("info needs --database FILE.") << '\n';
            return 2;
        }
        return info(database);
    }
    m_err << tr("Unknown command \"%1\".").arg((QStringList{command} + rest).join(QLatin1Char(' '))) << '\n'
          << usage();
    return 2;
}

int CommandLine::info(const QString& databasePath)
{
    model::StoreError error;
    const std::unique_ptr<model::Store> store = model::Store::open(databasePath, &error);
    if (!store) {
        m_err << error.message() << '\n';
        return 1;
    }
    m_out << tr("Database: %1").arg(store->path()) << '\n';
    m_out << tr("Data model: %1")
                 .arg(store->storedModelVersion().isEmpty() ? tr("new") : store->storedModelVersion())
          << '\n';
    for (const model::EntityDescription& entity : store->model().entities()) {
        const int count = store->mainContext().count(model::FetchRequest(entity.name()));
        m_out << QStringLiteral("  %1 %2\n").arg(entity.name(), -20).arg(count);
    }
    return 0;
}

} // namespace corvanta::cli
