#pragma once

#include "base/json_parts.h"

namespace host {

// The forms of the lines that a suite leaves (suite_journal.h), which somebody may have edited, or
// an earlier version written.

// The first line of the plan: what of it is there is of its type.
bool IsPlanHeader(const Json& line);

// A line with the place of a case among all.
bool HasPlace(const Json& line);

// Whether this is a record of a case (case_record.h), of which the lists may have been left out.
// What it lacks beside the id, the routine and the verdict is filled in as unknown.
bool TakeRecord(Json& line);

// The same of a record with its lists.
bool TakeWholeRecord(Json& line);

}  // namespace host
