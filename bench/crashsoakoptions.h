#pragma once

#include <QString>
#include <QStringList>
#include <cstdint>
#include <optional>

namespace corvanta::bench {

// The command line of crash_soak.
struct SoakOptions
{
    QString cli;
    int seconds = 30;
    QString workDir; // empty: a temporary folder, removed after a run that passed
    std::uint32_t seed = 0;
    int writers = 3;
    int checkEveryKills = 50; // the database and file checks run again after this many kills

    // The options of `arguments` (the program's name first); nothing, with `error` set, when
    // they are wrong.
    static std::optional<SoakOptions> parse(const QStringList& arguments, QString* error);
};

} // namespace corvanta::bench
