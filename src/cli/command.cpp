#include "command.h"

#include "cliprompter.h"
#include "commandline.h"
#include "output.h"
#include "predicate/parser.h"
#include "valuetext.h"

namespace corvanta::cli {

int Invocation::refuse(const QString& message) const
{
    prompter.report(message);
    return Refused;
}

int Invocation::usageError(const QString& message) const
{
    output.error() << QStringLiteral("corvanta-cli: ") << message << '\n'
                   << CommandLine::tr("Usage: corvanta-cli %1").arg(command.synopsis) << '\n'
                   << CommandLine::tr("Try \"corvanta-cli %1 --help\" for more.").arg(command.name()) << '\n';
    return UsageError;
}

int Invocation::number(const QString& option, double* value) const
{
    if (!arguments.has(option))
        return Success;
    const std::optional<double> read = ValueText::number(arguments.value(option));
    if (!read)
        return usageError(ValueText::notANumber(QStringLiteral("--") + option, arguments.value(option)));
    *value = *read;
    return Success;
}

int Invocation::date(const QString& option, QDate* value) const
{
    if (!arguments.has(option))
        return Success;
    const std::optional<QDate> read = ValueText::date(arguments.value(option));
    if (!read)
        return usageError(ValueText::notADate(QStringLiteral("--") + option, arguments.value(option)));
    *value = *read;
    return Success;
}

int Invocation::require(const QString& option) const
{
    if (arguments.has(option))
        return Success;
    return usageError(CommandLine::tr("The option \"--%1\" is required.").arg(option));
}

int Invocation::where(predicate::Predicate* condition) const
{
    if (!arguments.has(QStringLiteral("where")))
        return Success;
    predicate::ParseError error;
    const std::optional<predicate::Predicate> parsed =
        predicate::Parser::parse(arguments.value(QStringLiteral("where")), {}, &error);
    if (!parsed)
        return refuse(error.message());
    *condition = *parsed;
    return Success;
}

} // namespace corvanta::cli
