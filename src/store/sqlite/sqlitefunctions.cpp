#include "sqlitefunctions.h"

#include "predicate/textrules.h"

#include <QString>
#include <sqlite3.h>

namespace corvanta::store::sqlitefunctions {

namespace {

using predicate::Predicate;

QString textArgument(sqlite3_value* value)
{
    const auto* bytes = reinterpret_cast<const char*>(sqlite3_value_text(value));
    return QString::fromUtf8(bytes, sqlite3_value_bytes(value));
}

void resultText(sqlite3_context* context, const QString& text)
{
    const QByteArray utf8 = text.toUtf8();
    sqlite3_result_text(context, utf8.constData(), int(utf8.size()), SQLITE_TRANSIENT);
}

void fold(sqlite3_context* context, int, sqlite3_value** args)
{
    if (sqlite3_value_type(args[0]) == SQLITE_NULL) {
        sqlite3_result_null(context);
        return;
    }
    const auto options = Predicate::Options(sqlite3_value_int(args[1]));
    resultText(context, predicate::textrules::fold(textArgument(args[0]), options));
}

void textOperation(sqlite3_context* context, int, sqlite3_value** args)
{
    if (sqlite3_value_type(args[1]) == SQLITE_NULL || sqlite3_value_type(args[2]) == SQLITE_NULL) {
        sqlite3_result_int(context, 0);
        return;
    }
    const auto options = Predicate::Options(sqlite3_value_int(args[3]));
    const QString text = predicate::textrules::fold(textArgument(args[1]), options);
    const QString needle = predicate::textrules::fold(textArgument(args[2]), options);
    bool match = false;
    if (!needle.isEmpty()) {
        switch (sqlite3_value_int(args[0])) {
        case 0:
            match = text.contains(needle);
            break;
        case 1:
            match = text.startsWith(needle);
            break;
        default:
            match = text.endsWith(needle);
            break;
        }
    }
    sqlite3_result_int(context, match ? 1 : 0);
}

int localizedCompare(void*, int lengthA, const void* a, int lengthB, const void* b)
{
    // The collation is registered for UTF-16 in native byte order, which is QChar's layout.
    const QString textA = QString::fromRawData(static_cast<const QChar*>(a), lengthA / 2);
    const QString textB = QString::fromRawData(static_cast<const QChar*>(b), lengthB / 2);
    return predicate::textrules::localizedCaseInsensitiveCompare(textA, textB);
}

} // namespace

bool registerAll(sqlite3* db)
{
    const int flags = SQLITE_UTF8 | SQLITE_DETERMINISTIC;
    bool ok = sqlite3_create_function_v2(db, "cv_fold", 2, flags, nullptr, fold, nullptr, nullptr, nullptr) ==
              SQLITE_OK;
    ok = ok && sqlite3_create_function_v2(db, "cv_text_op", 4, flags, nullptr, textOperation, nullptr,
                                          nullptr, nullptr) == SQLITE_OK;
    ok = ok && sqlite3_create_collation_v2(db, kLocalizedCollation, SQLITE_UTF16, nullptr, localizedCompare,
                                           nullptr) == SQLITE_OK;
    return ok;
}

} // namespace corvanta::store::sqlitefunctions
