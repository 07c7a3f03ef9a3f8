#pragma once

#include <string>

namespace host {

// Writes what the controls are run on into a folder: recordings of speech and of music, made of the
// demo's voices, bands and noises, and suite.toml, whose cases are called SOUND-ROUTINE-NUMBER.
// Beside each input of a case there is what its output should be, where that is known. Throws
// UsageError.
void WriteControlMaterial(const std::string& folder);

// The files of a case in that folder: SOUND-ROUTINE-NUMBER.WHAT.wav with WHAT being `in` for what
// is processed, `clean` for what should come out, or `far`.
std::string ControlFile(const std::string& folder, const std::string& id, const std::string& what);

// The name of every case's output in its workspace: that of the one routine that takes no other.
inline constexpr const char* kControlOutput = "ns_out.wav";

}  // namespace host
