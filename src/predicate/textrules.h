#pragma once

#include "predicate.h"

#include <QString>

namespace corvanta::predicate {

// The text rules of the language, shared by the in-memory evaluator and the SQL functions that
// the store registers, so that both paths select the same records.
namespace textrules {

// Folds a text for the [c] and [d] options: Unicode case folding for CaseInsensitive; for
// DiacriticInsensitive the text is decomposed and its combining marks dropped ("é" -> "e",
// "ő" -> "o").
QString fold(const QString& text, Predicate::Options options);

// The order of "localized, case-insensitive" sorting: the user's locale collation, ignoring case.
int localizedCaseInsensitiveCompare(const QString& a, const QString& b);

// Orders two texts by their Unicode code points, as SQLite's binary collation orders UTF-8.
int compareCodePoints(const QString& a, const QString& b);

// Translates a LIKE pattern (`*` any run, `?` one character, backslash escapes the next
// character) into an SQLite GLOB pattern with the same meaning.
QString likePatternToGlob(const QString& pattern);

// LIKE matching in memory, with the same meaning as the GLOB translation above.
bool likeMatches(const QString& text, const QString& pattern);

} // namespace textrules
} // namespace corvanta::predicate
