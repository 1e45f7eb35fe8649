#include "crashsoakoptions.h"

#include <QCommandLineParser>
#include <QDateTime>
#include <QFileInfo>

namespace corvanta::bench {

namespace {

std::optional<int> positive(const QString& text)
{
    bool ok = false;
    const int value = text.toInt(&ok);
    if (!ok || value < 1)
        return std::nullopt;
    return value;
}

} // namespace

std::optional<SoakOptions> SoakOptions::parse(const QStringList& arguments, QString* error)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Starts corvanta-cli writers on one company database, kills them at random moments "
                       "and checks that nothing acknowledged is lost and nothing half-written stays."));
    parser.addHelpOption();
    const QCommandLineOption cli(QStringLiteral("cli"), QStringLiteral("the corvanta-cli to run"),
                                 QStringLiteral("PATH"));
    const QCommandLineOption seconds(QStringLiteral("seconds"), QStringLiteral("how long to run"),
                                     QStringLiteral("N"), QStringLiteral("30"));
    const QCommandLineOption workDir(QStringLiteral("workdir"),
                                     QStringLiteral("an empty or missing folder for the run's files (kept)"),
                                     QStringLiteral("DIR"));
    const QCommandLineOption seed(QStringLiteral("seed"),
                                  QStringLiteral("the random seed (default: the time)"), QStringLiteral("S"));
    const QCommandLineOption writers(QStringLiteral("writers"),
                                     QStringLiteral("how many writers may run at the same time"),
                                     QStringLiteral("K"), QStringLiteral("3"));
    const QCommandLineOption checkEvery(QStringLiteral("check-every"),
                                        QStringLiteral("kills between two checks of the files"),
                                        QStringLiteral("KILLS"), QStringLiteral("50"));
    parser.addOptions({cli, seconds, workDir, seed, writers, checkEvery});
    if (!parser.parse(arguments)) {
        *error = parser.errorText();
        return std::nullopt;
    }
    if (parser.isSet(QStringLiteral("help"))) {
        *error = parser.helpText();
        return std::nullopt;
    }

    SoakOptions options;
    options.cli = parser.value(cli);
    if (options.cli.isEmpty() || !QFileInfo(options.cli).isExecutable()) {
        *error = QStringLiteral("--cli must name the corvanta-cli executable\n\n") + parser.helpText();
        return std::nullopt;
    }
    options.cli = QFileInfo(options.cli).absoluteFilePath();
    const std::optional<int> secondsValue = positive(parser.value(seconds));
    const std::optional<int> writersValue = positive(parser.value(writers));
    const std::optional<int> checkValue = positive(parser.value(checkEvery));
    if (!secondsValue || !writersValue || !checkValue) {
        *error = QStringLiteral("--seconds, --writers and --check-every take a whole number of at least 1");
        return std::nullopt;
    }
    options.seconds = *secondsValue;
    options.writers = *writersValue;
    options.checkEveryKills = *checkValue;
    if (parser.isSet(workDir))
        options.workDir = QFileInfo(parser.value(workDir)).absoluteFilePath();
    if (parser.isSet(seed)) {
        bool ok = false;
        options.seed = parser.value(seed).toUInt(&ok);
        if (!ok) {
            *error = QStringLiteral("--seed takes a whole number");
            return std::nullopt;
        }
    } else {
        options.seed = std::uint32_t(QDateTime::currentMSecsSinceEpoch());
    }
    return options;
}

} // namespace corvanta::bench
