#pragma once

#include <string>

#include "base/json_parts.h"
#include "suite/suite_case.h"

namespace host {

// What is known of one case, as JSON: the object that results.json has for it, and what is kept
// with it for the bench itself.

// Keys of a line of cases.jsonl that results.json leaves out.
inline constexpr const char* kFingerprintKey =
    "fingerprint";                                      // Of all that decides about a result.
inline constexpr const char* kLogTailKey = "log_tail";  // The last lines of the log.

// A case that has not run.
Json NotRunRecord(const SuiteCase& one);

// The record of `one` that no process has left: it is skipped, or has failed before it ran.
Json UnrunRecord(const SuiteCase& one, const std::string& verdict, int exitCode,
                 const std::string& cause, const std::string& reason);

// The record of a case that ran and left this report; `folder` is that of the suite's results.
Json EndedRecord(const SuiteCase& one, const std::string& folder, const std::string& reportPath,
                 const Json& report);

// Makes a failure of a record, whatever it was.
void FailRecord(Json& record, const std::string& cause, const std::string& reason);

// Whether a record is that of a known failure, which counts as such alone.
bool IsKnownFailure(const Json& record);

// Whether the outputs of the case may be used by others.
bool HasOutputs(const Json& record);

}  // namespace host
