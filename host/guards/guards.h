#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "guards/rules.h"
#include "guards/signal.h"

namespace host {

class InputStudy;

// An argument that the routine takes and does not use.
struct IgnoredArgument {
  std::string name = {};
  std::string given = {};
  std::string used = {};  // The value that the routine went by instead.
};

// How far into one of its inputs the routine came.
struct InputRead {
  std::string name = {};
  double read = 0;       // Seconds,
  double all = 0;        // and all that there are.
  bool inBytes = false;  // Both are bytes, of what has no known duration.
};

// What the caller knows of the run, beside the signals.
struct RunFacts {
  bool nullDevice = false;  // The output was recorded from a device that hears nothing.
  double keptBefore = 0;    // Seconds of audio that the file held before, and still holds,
  uint64_t keptBytes = 0;   // or bytes, of what has no known duration.
  std::vector<IgnoredArgument> ignoredArguments = {};
  std::vector<InputRead> inputs = {};
  // Lines of the engine, which refused, or left out or alone something.
  std::vector<std::string> engineLines = {};
};

// One output, what it was made from, and what is asked of it.
struct GuardInput {
  const Signal* input = nullptr;   // Null: made from nothing, or not known.
  const Signal* output = nullptr;  // What this run wrote. Null: no audio, only facts are judged.
  GuardRules rules = {};
  RunFacts facts = {};
  // Of the input, for who has several outputs of it; null: made for this output alone.
  InputStudy* study = nullptr;
};

struct GuardHit {
  Guard guard = Guard::kSilent;
  std::optional<double> at = {};    // Seconds into the file of the first place; null: all of it.
  std::optional<int> channel = {};  // Of the output, from 0; null: all, or none in particular.
  bool fails = false;               // Else it warns.
  std::string text = {};            // What is wrong, without place and channel.

  const char* Name() const { return GuardName(guard); }
};

// Every guard that is hit, each once, with its first place, in the order of the enumeration. Needs
// memory of its own that does not grow with the signals. What cannot be decided (no input, silence,
// too short, the delay between both not to be found) is no hit.
std::vector<GuardHit> CheckGuards(const GuardInput& input);

}  // namespace host
