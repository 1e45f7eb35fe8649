#pragma once

#include "datamodel.h"

namespace corvanta::model {

// The data model of a Corvanta company database: every entity, attribute and relationship.
// Entity and attribute names are the table and column names, the key paths, the predicate
// vocabulary and the template field keys.
const DataModel& corvantaDataModel();

// The data-model version that a new database records in its `version` setting.
inline constexpr const char* kModelVersion = "1.0";

} // namespace corvanta::model
