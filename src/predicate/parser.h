#pragma once

#include "predicate.h"

#include <QCoreApplication>
#include <QString>
#include <QVariantList>
#include <optional>

namespace corvanta::predicate {

// Where a predicate text could not be read, and what was expected there.
struct ParseError
{
    int position = -1; // 0-based character offset into the text
    QString expected;  // what the parser was looking for
    QString found;     // what it found instead (empty at the end of the text)

    bool isError() const { return position >= 0; }
    QString message() const;
};

// Reads the text form of a predicate into its syntax tree. Format arguments are bound, never
// pasted into the text: `%@` takes the next argument as a value (a record, text, number, date,
// list ...), `%ld`/`%d`/`%i`/`%lld` as an integer, `%f` as a number, and `%K` as a key path.
//
//   predicate   := or
//   or          := and (("OR" | "||") and)*
//   and         := not (("AND" | "&&") not)*
//   not         := ("NOT" | "!") not | "(" predicate ")" | "TRUEPREDICATE" | "FALSEPREDICATE" | comparison
//   comparison  := ["ANY" | "SOME" | "ALL"] expression operator ["[" c|d|cd "]"] expression
//   operator    := == = != <> < <= =< > >= => CONTAINS BEGINSWITH ENDSWITH LIKE IN
//   expression  := keypath | "quoted text" | 'quoted text' | number | NULL | NIL | YES | NO | TRUE
//                | FALSE | SELF | format argument | CAST(expression, "NSDate") | { expression, ... }
//
// Keywords are case-insensitive. A key path is names joined by dots, where a name may be an
// aggregate (`@sum`, `@count`, `@avg`, `@min`, `@max`) or a `%K` argument.
class Parser
{
    Q_DECLARE_TR_FUNCTIONS(Parser)

public:
    static std::optional<Predicate> parse(const QString& text, const QVariantList& arguments = {},
                                          ParseError* error = nullptr);
};

} // namespace corvanta::predicate
