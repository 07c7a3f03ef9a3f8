#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

namespace host {

// How often, over all audio devices of a process, a loudspeaker had nothing to play and a
// microphone lost something.
struct DeviceGaps {
  uint64_t underruns = 0;
  uint64_t overruns = 0;
};

// A file that the engine was given to play or mix and could not: its name as the routine gave it,
// and why. As much of both as fits.
struct RefusedFile {
  char name[252] = {};
  char reason[100] = {};
};

// What an engine says of a routine's run, in memory that processes can share.
struct EngineFindings {
  static constexpr size_t kMaxRefused = 8;

  std::optional<DeviceGaps> gaps = {};  // Nothing when the engine does not tell.
  RefusedFile refused[kMaxRefused];
  size_t refusedCount = 0;

  // The lines of its log that say what it refused, or left out or alone.
  static constexpr size_t kMaxLines = 8;
  char lines[kMaxLines][200] = {};
  size_t lineCount = 0;

  // Adds a file while there is room.
  void Refuse(std::string_view name, std::string_view reason) {
    if (refusedCount == kMaxRefused) return;
    RefusedFile& file = refused[refusedCount++];
    name.copy(file.name, sizeof file.name - 1);
    reason.copy(file.reason, sizeof file.reason - 1);
  }

  // Adds as much of a line as fits, while there is room.
  void Say(std::string_view line) {
    if (lineCount < kMaxLines) line.copy(lines[lineCount++], sizeof lines[0] - 1);
  }
};

// Called in the routine's process after the routine has returned: waits, for `limit` at most, until
// the engine has finished what it does in the background, such as writing the last seconds of a
// recording. A foreign engine cannot be asked for that: with `runsOn`, when the routine is known to
// leave something running, its process then goes on for the whole of `limit`. Answers what the
// engine says of the run, which a foreign engine does not.
//
// Each program that links the host has one definition of it, which belongs to its engine.
EngineFindings FinishEngineWork(std::chrono::milliseconds limit, bool runsOn);

}  // namespace host
