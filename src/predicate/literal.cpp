#include "literal.h"

#include "parser.h"
#include "predicatelog.h"

namespace corvanta::predicate {

Predicate literal(QStringView text, const QVariantList& arguments)
{
    const QString source = text.toString();
    ParseError error;
    if (std::optional<Predicate> parsed = Parser::parse(source, arguments, &error))
        return *std::move(parsed);
    const QString message = QStringLiteral("The predicate \"%1\" written in the program does not parse: %2")
                                .arg(source, error.message());
    qCCritical(lcPredicate).noquote() << message;
    Q_ASSERT_X(false, "predicate::literal", qPrintable(message));
    return Predicate::falsePredicate();
}

Predicate literal(const char* text, const QVariantList& arguments)
{
    return literal(QString::fromUtf8(text), arguments);
}

} // namespace corvanta::predicate
