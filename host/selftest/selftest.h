#pragma once

namespace host {

// Runs the controls of all measures, keeps what they show (trust.h) and prints it: a line for each
// measure and the controls that do not hold, or with `json` the same as selftest.schema.json has
// it. Returns kPass when all hold, else kFail; kUsage if stdout cannot be written.
int Selftest(bool json);

}  // namespace host
