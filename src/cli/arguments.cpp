#include "arguments.h"

namespace corvanta::cli {

QString Arguments::value(const QString& name, const QString& fallback) const
{
    const QStringList given = m_values.value(name);
    return given.isEmpty() ? fallback : given.last();
}

std::optional<Arguments> Arguments::parse(const QStringList& arguments, const QList<OptionSpec>& specs,
                                          QString* error)
{
    const auto specOf = [&](const QString& name) -> const OptionSpec* {
        for (const OptionSpec& spec : specs) {
            if (spec.name == name)
                return &spec;
        }
        return nullptr;
    };
    Arguments result;
    bool optionsEnded = false;
    for (qsizetype i = 0; i < arguments.size(); ++i) {
        const QString& argument = arguments.at(i);
        if (optionsEnded || !argument.startsWith(QLatin1Char('-')) || argument == QLatin1String("-")) {
            result.m_words << argument;
            continue;
        }
        if (argument == QLatin1String("--")) {
            optionsEnded = true;
            continue;
        }
        if (argument == QLatin1String("-h")) {
            result.m_values[QStringLiteral("help")] << QString();
            continue;
        }
        // A one-letter option is written "-o" as well as "--o".
        const bool shortOption = !argument.startsWith(QLatin1String("--"));
        if (shortOption && (argument.size() != 2 || !specOf(argument.mid(1)))) {
            *error = tr("Unknown option \"%1\".").arg(argument);
            return std::nullopt;
        }
        const qsizetype equals = shortOption ? -1 : argument.indexOf(QLatin1Char('='));
        const QString name = shortOption ? argument.mid(1) : argument.mid(2, equals < 0 ? -1 : equals - 2);
        const OptionSpec* spec = specOf(name);
        if (!spec) {
            *error = tr("Unknown option \"--%1\".").arg(name);
            return std::nullopt;
        }
        QStringList given;
        if (spec->takesValue) {
            if (equals >= 0)
                given << argument.mid(equals + 1);
            while (given.size() < spec->valueCount && i + 1 < arguments.size())
                given << arguments.at(++i);
            if (given.size() < spec->valueCount) {
                *error = spec->valueCount == 1
                             ? tr("The option \"--%1\" needs a value.").arg(name)
                             : tr("The option \"--%1\" needs %2 values.").arg(name).arg(spec->valueCount);
                return std::nullopt;
            }
        } else if (equals >= 0) {
            *error = tr("The option \"--%1\" takes no value.").arg(name);
            return std::nullopt;
        }
        if (!spec->repeatable && spec->takesValue && result.m_values.contains(name)) {
            *error = tr("The option \"--%1\" may be given only once.").arg(name);
            return std::nullopt;
        }
        if (given.isEmpty())
            given << QString();
        result.m_values[name] << given;
    }
    return result;
}

} // namespace corvanta::cli
