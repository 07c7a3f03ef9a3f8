#pragma once

#include <string>

#include "files/workspace.h"

namespace host {

// The name of a file as messages have it: "/sdcard/x (bench_work/sdcard/x)".
std::string FileName(const FilePlace& place);

// What to do about an input that is missing, as the end of a line that says so; empty when nothing
// is known.
std::string MissingInputRemedy(const FilePlace& input);

// The commands for a shell that make what the routine takes of an audio file in its place: 16-bit
// WAVE, headerless samples.
std::string WaveConversion(const FilePlace& input);
std::string HeaderlessConversion(const FilePlace& input);

}  // namespace host
