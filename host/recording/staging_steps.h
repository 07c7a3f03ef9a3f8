#pragma once

#include <optional>
#include <vector>

#include "recording/conversion.h"
#include "recording/recording_writer.h"
#include "recording/staged_record.h"

namespace host {

// How a recording was made into a file.
struct Rendered {
  RecordingFormat from = {};
  WrittenForm to = {};
  std::optional<ChannelChoice> choice = {};
  Cut cut = {};
  bool dithered = false;
  double gain = 1;
};

// What was done, in the order in which it was.
std::vector<StagingStep> StepsOf(const Rendered& rendered);

// "3.2 dB", "0.004 dB".
std::string Softening(double gain);

}  // namespace host
