#pragma once

#include <span>
#include <string_view>

namespace audio_measures {

// Which way a figure goes when what is measured gets better. kNeither: it can only be right.
enum class Better { kHigher, kLower, kNeither };

// What a measure needs beside the output. Bits, so that one can need several.
enum Needs : unsigned {
  kNothing = 0,
  kReference = 1,  // What the output should be: the same sound, undamaged.
  kFar = 2,        // What the loudspeaker played.
  kNear = 4,       // What was said at the microphone, without echo.
  kInput = 8,      // What was processed into the output.
  kRun = 16,       // A run of the process under test: samples alone do not tell.
  kBytes = 32,     // How long the coded stream is,
  kFrames = 64,    // and how many frames it has.
  kBeats = 128,    // Beats that somebody found, and those that there are.
};

inline constexpr int kLowestRate = 8000;     // Hz
inline constexpr int kHighestRate = 192000;  // Hz

// What is known of a measure beside its figures.
struct Measure {
  std::string_view name;
  std::string_view unit;  // Empty for a bare number.
  Better better = Better::kNeither;
  std::string_view definition;  // One sentence.
  std::string_view source;      // In the literature.
  // Raised whenever a figure changes. 0: Compute knows no figure of it, a run gives it.
  int version = 0;
  double margin = 0;  // A difference between two figures that does not matter yet, in the unit.
  unsigned needs = kNothing;
  unsigned uses = kNothing;  // What else it makes use of where it is given.
  int lowestRate = kLowestRate;
  int highestRate = kHighestRate;
  double leastSeconds = 0;
};

// All measures, in the order in which they are listed.
std::span<const Measure> AllMeasures();

// nullptr when there is none of that name.
const Measure* FindMeasure(std::string_view name);

}  // namespace audio_measures
