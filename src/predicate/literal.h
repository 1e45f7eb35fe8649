#pragma once

#include "predicate.h"

#include <QStringView>
#include <QVariantList>

namespace corvanta::predicate {

// A predicate written in the program's code ("self == %@", "type == 2 && subtype == %@"),
// parsed with its arguments bound as values.
//
// Such a text is part of the program, so one that does not parse is a programming error and
// fails loudly: a debug build stops at once with the text and the place the parser gave up;
// a release build logs the same in "corvanta.predicate" and returns FALSEPREDICATE, so that a
// typo selects nothing rather than every record. Texts that come from the user or a file go
// through Parser::parse, which reports what is wrong.
Predicate literal(QStringView text, const QVariantList& arguments = {});
Predicate literal(const char* text, const QVariantList& arguments = {});

} // namespace corvanta::predicate
