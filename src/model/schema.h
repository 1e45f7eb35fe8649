#pragma once

#include "datamodel.h"

#include <QSqlDatabase>
#include <QString>

namespace corvanta::model::schema {

// Marks a SQLite file as a Corvanta company database ("CRVT").
inline constexpr int kApplicationId = 0x43525654;

// Brings the database's tables, columns and indexes in step with the model: creates what is
// missing and keeps every row and every column it does not know. Runs in one transaction.
bool migrate(QSqlDatabase& db, const DataModel& model, QString* error);

} // namespace corvanta::model::schema
