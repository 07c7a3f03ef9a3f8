#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "files/audio_layout.h"
#include "recording/rendering.h"
#include "recording/staged_record.h"

namespace host {

// The way out: what a routine has written, as a file of the user's in the kind that its name ends
// in. ".wav" and ".raw" (or ".pcm") keep the sample type, ".flac" has 24 bits of floats, ".ogg" is
// Vorbis. The bytes are the same where the kind is, and of what is no audio.

// An output in the workspace.
struct DeliveredOutput {
  std::string path = {};
  Container container = Container::kOther;
  std::optional<AudioLayout> audio = {};  // Nothing where it is no audio.
};

// Why an output of this container is not delivered under this name: an ending that stands for no
// kind. Empty when it is. `own` is the name of the output.
std::string EndingFault(const std::string& to, Container container, const std::string& own);

// Why nothing can be written at this place, as far as can be known before. Empty when it can.
std::string PlaceFault(const std::string& to);

struct Delivery {
  std::vector<StagingStep> steps = {};
  std::optional<RecordingFault> fault =
      {};  // A whole sentence; what was at the place is as it was.
};

// Writes the output to the path `to`, through the links that lead there, whole or not at all. Gives
// up as soon as `goOn` returns false.
Delivery DeliverOutput(const DeliveredOutput& output, const std::string& to,
                       const std::function<bool()>& goOn);

}  // namespace host
