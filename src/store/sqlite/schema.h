#pragma once

#include "store/datamodel.h"

#include <QSqlDatabase>
#include <QSqlError>
#include <QString>

namespace corvanta::store::schema {

// Brings the database's tables, columns and indexes in step with the model: creates what is
// missing and keeps every row and every column it does not know, and marks the file with the
// model's application id. Runs in one transaction; `failure` is the error of the statement
// that failed.
bool migrate(QSqlDatabase& db, const DataModel& model, QSqlError* failure);

} // namespace corvanta::store::schema
