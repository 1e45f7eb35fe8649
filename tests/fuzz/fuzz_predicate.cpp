// The predicate parser reads conditions typed by the user (the command line's --where, smart
// folders) and stored in databases. Any text must be read or refused without a fault, and a
// condition that was read must survive being written and read again: the formatter's text
// parses to the same tree and is written the same way the second time.
#include "predicate/formatter.h"
#include "predicate/parser.h"

#include <QDateTime>
#include <cstdint>
#include <cstdlib>

using namespace corvanta::predicate;

namespace {

[[noreturn]] void failRoundTrip(const char* what, const QString& first, const QString& second)
{
    qFatal("%s\n  first:  %s\n  second: %s", what, qUtf8Printable(first), qUtf8Printable(second));
}

void checkRoundTrip(const Predicate& predicate)
{
    const QString text = Formatter::format(predicate);
    ParseError error;
    const std::optional<Predicate> again = Parser::parse(text, Formatter::recordArguments(predicate), &error);
    if (!again)
        failRoundTrip("the formatted condition does not parse", text, error.message());
    const QString textAgain = Formatter::format(*again);
    if (textAgain != text)
        failRoundTrip("the condition is written differently when read again", text, textAgain);
    if (!(*again == predicate))
        failRoundTrip("the condition reads back as another tree", text, textAgain);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const QString text = QString::fromUtf8(reinterpret_cast<const char*>(data), qsizetype(size));

    ParseError error;
    if (const std::optional<Predicate> predicate = Parser::parse(text, {}, &error))
        checkRoundTrip(*predicate);
    else
        (void)error.message();

    // Bound arguments of every kind the callers pass, for the %@, %K, %d and %f formats.
    static const QVariantList arguments{QStringLiteral("name"),
                                        qint64(7),
                                        2.5,
                                        QVariantList{1, QStringLiteral("a")},
                                        QDateTime(QDate(2024, 3, 15), QTime(12, 0), Qt::UTC),
                                        QVariant(),
                                        true};
    if (const std::optional<Predicate> predicate = Parser::parse(text, arguments, &error))
        (void)Formatter::format(*predicate);
    return 0;
}
