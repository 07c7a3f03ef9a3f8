#pragma once

#include <cstdint>
#include <cstdio>
#include <optional>
#include <span>

#include "report/report.h"

namespace host {

// WAVE inputs: whether they are in the format in which a routine takes their samples.

// Before the run: why the routine can make nothing of the samples, or that there are not enough of
// them; nothing otherwise, and of a file without content.
std::optional<Problem> WaveProblem(const FilePlace& input, FILE* file, uint64_t bytes);

// Before the run, when all inputs have been looked at: adds what is to be known of those that
// WaveProblem lets pass. Samples that are fed to what counts on another format, and files that are
// shorter than they say, are problems that are warnings; where only the right format is of use, the
// run is not begun. Where the routine has an outcome for such an input, that is a concern. `engine`
// is that of the run, which may have codecs of other formats than the catalogue has.
void AddFormatProblems(std::span<FileReport> inputs, const Engine& engine = {});

}  // namespace host
