#pragma once

struct sqlite3;

namespace corvanta::store::sqlitefunctions {

inline constexpr const char* kLocalizedCollation = "cv_localized";

// Registers on one SQLite connection the functions the compiled SQL uses, so that SQL and the
// in-memory evaluator share one set of text rules:
//   cv_fold(text, options)         the [c]/[d] folding of a text
//   cv_text_op(op, a, b, options)  CONTAINS (0), BEGINSWITH (1), ENDSWITH (2) of two texts
//   COLLATE cv_localized           localized, case-insensitive order
// Returns false when SQLite refused one of them.
bool registerAll(sqlite3* db);

} // namespace corvanta::store::sqlitefunctions
