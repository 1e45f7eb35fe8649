#pragma once

#include "store/datamodel.h"

namespace corvanta::model {

// The data model of a Corvanta company database: every entity, attribute and relationship.
// Entity and attribute names are the table and column names, the key paths, the predicate
// vocabulary and the template field keys.
// The model is built once and never changes.
const store::DataModel& corvantaDataModel();

// The data-model version that a new database records in its `version` setting.
inline constexpr const char* kModelVersion = "1.0";

// Marks a SQLite file as a Corvanta company database ("CRVT").
inline constexpr int kApplicationId = 0x43525654;

} // namespace corvanta::model
