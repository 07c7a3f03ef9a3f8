#pragma once

#include <optional>
#include <string>
#include <vector>

#include "base/json_parts.h"
#include "measure/measure_file.h"

namespace host {

// An output of a case beside the recordings that belong with it.

// One of the recordings, by its part in this.
struct PlayedFile {
  std::string key = {};    // "output", "input", "reference", "against", "near", "far"
  std::string label = {};  // For readers.
  std::string name = {};   // As the routine knows it.
  MeasuredSource source = {};
};

// A guard that the output hits at a place.
struct GuardMark {
  double at = 0;  // Seconds.
  std::optional<int> channel = {};
  std::string name = {};
  bool fails = false;
  bool isNew = false;  // The other run does not hit it.
};

struct PlayedOutput {
  std::string title = {};
  std::vector<PlayedFile> files = {};  // The output first.
  bool faithful = false;               // It should be what its input is.
  std::vector<GuardMark> marks = {};
};

// A recording that stands in the page.
struct PageAudio {
  std::string key;
  std::string base64;
};

struct Player {
  Json json = {};  // Null where the output cannot be heard.
  std::vector<PageAudio> audio = {};
  std::vector<std::string> notes = {};  // What cannot be heard, and what is not as it was.
};

// The excerpt of `seconds` around the place of the output that is worth hearing: the first guard
// that fails, that is new, or that is hit; else the largest difference from the other run or from
// the reference; else the loudest place. All recordings are cut there, at the delay that was
// measured. Their keys begin with `prefix`.
Player MakePlayer(const PlayedOutput& output, double seconds, const std::string& prefix);

}  // namespace host
