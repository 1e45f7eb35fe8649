#include "sqlitestatement.h"

#include <memory>
#include <sqlite3.h>

namespace corvanta::store {

std::unique_ptr<SqliteStatement> SqliteStatement::prepare(sqlite3* db, const QString& sql, QString* error)
{
    sqlite3_stmt* statement = nullptr;
    const QByteArray utf8 = sql.toUtf8();
    if (sqlite3_prepare_v3(db, utf8.constData(), int(utf8.size()), SQLITE_PREPARE_PERSISTENT, &statement,
                           nullptr) != SQLITE_OK) {
        if (error)
            *error = QString::fromUtf8(sqlite3_errmsg(db));
        sqlite3_finalize(statement);
        return nullptr;
    }
    return std::unique_ptr<SqliteStatement>(new SqliteStatement(db, statement));
}

SqliteStatement::SqliteStatement(sqlite3* db, sqlite3_stmt* statement)
    : m_db(db)
    , m_statement(statement)
{}

SqliteStatement::~SqliteStatement()
{
    sqlite3_finalize(m_statement);
}

void SqliteStatement::bind(int index, const QVariant& value)
{
    const int position = index + 1;
    if (value.isNull() || !value.isValid())
        return;
    switch (value.typeId()) {
    case QMetaType::Bool:
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::Long:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
        sqlite3_bind_int64(m_statement, position, value.toLongLong());
        break;
    case QMetaType::Double:
    case QMetaType::Float:
        sqlite3_bind_double(m_statement, position, value.toDouble());
        break;
    case QMetaType::QByteArray: {
        const QByteArray bytes = value.toByteArray();
        sqlite3_bind_blob(m_statement, position, bytes.constData(), int(bytes.size()), SQLITE_TRANSIENT);
        break;
    }
    default: {
        const QString text = value.toString();
        sqlite3_bind_text16(m_statement, position, text.utf16(), int(text.size() * sizeof(char16_t)),
                            SQLITE_TRANSIENT);
        break;
    }
    }
}

bool SqliteStatement::run(QString* error)
{
    const int result = sqlite3_step(m_statement);
    const bool ok = result == SQLITE_DONE || result == SQLITE_ROW;
    if (!ok && error)
        *error = QString::fromUtf8(sqlite3_errmsg(m_db));
    sqlite3_reset(m_statement);
    sqlite3_clear_bindings(m_statement);
    return ok;
}

} // namespace corvanta::store
