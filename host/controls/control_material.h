#pragma once

#include <string>

namespace host {

// Writes what the controls are run on into a folder: recordings of speech and of music, made of the
// demo's voices, bands and noises, and suite.toml, whose cases are called SOUND-ROUTINE-NUMBER and
// ask for every measure that can be computed of their output. Throws UsageError.
void WriteControlMaterial(const std::string& folder);

}  // namespace host
